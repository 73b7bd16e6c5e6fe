#include "platform/qt/FormPainter.h"

#include "base/Numbers.h"
#include "platform/qt/Conversions.h"
#include "platform/qt/Fonts.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quarnel {

namespace {

constexpr Colour DisabledText = Rgb(128, 128, 128);

// How much larger or smaller a picture becomes, 0 for not at all; growing counts a little more, because it blurs.
double StretchCost(const Surface& picture, int width, int height) {
    const auto cost = [](double from, double to) {
        return to > from ? 1.25 * std::log(to / from) : std::log(from / to);
    };
    return cost(picture.Width(), width) + cost(picture.Height(), height);
}

Rectangle Union(const Rectangle& a, const Rectangle& b) {
    if (a.Left >= a.Right || a.Top >= a.Bottom) return b;
    if (b.Left >= b.Right || b.Top >= b.Bottom) return a;
    return {std::min(a.Left, b.Left), std::min(a.Top, b.Top), std::max(a.Right, b.Right), std::max(a.Bottom, b.Bottom)};
}

const Surface* BestSize(const Picture& picture, int width, int height) {
    const Surface* best = nullptr;
    for (const Surface& size : picture) {
        if (size.Empty()) continue;
        if (best == nullptr || StretchCost(size, width, height) < StretchCost(*best, width, height)) best = &size;
    }
    return best;
}

// `surface` with its colours multiplied by alpha, so that transparent pixels do not darken their neighbours when the
// picture is stretched.
Surface Premultiplied(const Surface& surface) {
    Surface result(surface.Width(), surface.Height());
    const std::size_t count = static_cast<std::size_t>(surface.Width()) * surface.Height();
    std::transform(surface.Pixels(), surface.Pixels() + count, result.Pixels(),
                   [](QRgb pixel) { return qPremultiply(pixel); });
    return result;
}

// Interpolation may leave a colour a little above its alpha, which the toolkit does not expect.
QRgb WithinAlpha(QRgb pixel) {
    const int alpha = qAlpha(pixel);
    return qRgba(std::min(qRed(pixel), alpha), std::min(qGreen(pixel), alpha), std::min(qBlue(pixel), alpha), alpha);
}

QImage Stretched(const Surface& source, int width, int height) {
    Surface result = StretchBlt(Premultiplied(source), source.Width(), source.Height(), width, height);
    const std::size_t count = static_cast<std::size_t>(width) * height;
    std::transform(result.Pixels(), result.Pixels() + count, result.Pixels(), WithinAlpha);
    return ImageOf(result, QImage::Format_ARGB32_Premultiplied).copy();
}

} // namespace

QRect FormPainter::SetFrame(const Surface& frame, const FrameView& view, const Rectangle& changed) {
    const Rectangle all{0, 0, view.SourceWidth, view.SourceHeight};
    const Rectangle part = view_ == view ? changed : all;
    if (view_ != view) frame_ = Surface(view.SourceWidth, view.SourceHeight);
    view_ = view;
    BitBlt(frame_, part.Left, part.Top, part.Right - part.Left, part.Bottom - part.Top, frame, part.Left, part.Top,
           RasterOp::SrcCopy);
    unstretched_ = Union(unstretched_, part);
    // A pixel of the frame colours those beside it, too.
    constexpr int Reach = 3;
    const double across = static_cast<double>(view.Width) / view.SourceWidth;
    const double down = static_cast<double>(view.Height) / view.SourceHeight;
    const QRectF box((part.Left - Reach) * across, (part.Top - Reach) * down,
                     (part.Right - part.Left + 2 * Reach) * across, (part.Bottom - part.Top + 2 * Reach) * down);
    return box.toAlignedRect();
}

const QImage& FormPainter::Paint(const Form& form, const QSize& size, double ratio, const QRect& part) {
    const int width = std::max(1, static_cast<int>(std::ceil(size.width() * ratio)));
    const int height = std::max(1, static_cast<int>(std::ceil(size.height() * ratio)));
    if (image_.width() != width || image_.height() != height) {
        image_ = QImage(width, height, QImage::Format_RGB32);
        SetDotsPerInch(image_);
        stretched_.clear();
    }
    ratio_ = ratio;
    const QRectF box(part.left() * ratio, part.top() * ratio, part.width() * ratio, part.height() * ratio);
    const QRect clip = box.toAlignedRect() & image_.rect();
    QPainter painter(&image_);
    painter.setClipRect(clip);
    PaintControl(painter, form, image_.rect());
    PaintFrame(painter, clip);
    PaintChildren(painter, form, 0, 0, clip);
    return image_;
}

void FormPainter::PaintFrame(QPainter& painter, const QRect& clip) {
    if (frame_.Empty()) return;
    const int width = std::max(1, RoundHalfEven(view_.Width * ratio_));
    const int height = std::max(1, RoundHalfEven(view_.Height * ratio_));
    const Surface& stretched = stretchedFrame_.Result();
    if (stretchedFrame_.SetSizes(frame_.Width(), frame_.Height(), width, height))
        unstretched_ = {0, 0, frame_.Width(), frame_.Height()};
    stretchedFrame_.Update(frame_, std::exchange(unstretched_, {}));
    painter.drawImage(clip.topLeft(), ImageOf(stretched, QImage::Format_RGB32), clip);
}

QRect FormPainter::DeviceBox(double left, double top, double width, double height) const {
    const QPoint topLeft(RoundHalfEven(left * ratio_), RoundHalfEven(top * ratio_));
    const QPoint end(RoundHalfEven((left + width) * ratio_), RoundHalfEven((top + height) * ratio_));
    return {topLeft, QSize(end.x() - topLeft.x(), end.y() - topLeft.y())};
}

void FormPainter::PaintChildren(QPainter& painter, const Control& parent, double left, double top, const QRect& clip) {
    for (const Control* child : parent.Children()) {
        const double childLeft = left + child->Left;
        const double childTop = top + child->Top;
        const QRect box = DeviceBox(childLeft, childTop, child->Width, child->Height);
        const QRect shown = box & clip;
        if (!child->Visible.Get() || shown.isEmpty()) continue;
        painter.setClipRect(shown);
        PaintControl(painter, *child, box);
        PaintChildren(painter, *child, childLeft, childTop, shown);
    }
}

void FormPainter::PaintControl(QPainter& painter, const Control& control, const QRect& box) {
    if (control.Kind == ControlKind::Form || control.Kind == ControlKind::Picture) {
        painter.fillRect(box, ToQColor(control.BackColor));
    }
    if (const PictureRef& picture = control.Image; picture != nullptr && !picture->empty()) {
        const bool stretch = control.Stretch;
        const int width = stretch ? box.width() : RoundHalfEven(picture->front().Width() * ratio_);
        const int height = stretch ? box.height() : RoundHalfEven(picture->front().Height() * ratio_);
        if (width > 0 && height > 0) painter.drawImage(box.topLeft(), StretchedPicture(picture, width, height));
    }
    if (const auto border = control.BorderColor.Get()) {
        const int width = std::max(1, RoundHalfEven(ratio_));
        const QRect inside = box.adjusted(width, width, -width, -width);
        for (const QRect& side : QRegion(box) - inside) painter.fillRect(side, ToQColor(*border));
    }
    if (control.Kind == ControlKind::Label) {
        painter.setPen(ToQColor(control.Enabled ? control.ForeColor.Get() : DisabledText));
        painter.scale(ratio_, ratio_);
        const QRectF room(box.x() / ratio_, box.y() / ratio_, box.width() / ratio_, box.height() / ratio_);
        DrawTextBox(painter, room, control.Caption, FontFor(control.Font), {control.TextAlignment, control.WordWrap});
        painter.resetTransform();
    }
}

const QImage& FormPainter::StretchedPicture(const PictureRef& picture, int width, int height) {
    const StretchKey key(picture, width, height);
    const auto known = stretched_.find(key);
    if (known != stretched_.end()) return known->second;

    // Enough for every control of a form; a form whose pictures keep changing must not fill the memory.
    constexpr std::size_t MostKept = 100;
    if (stretched_.size() >= MostKept) stretched_.clear();
    const Surface* best = BestSize(*picture, width, height);
    return stretched_[key] = best != nullptr ? Stretched(*best, width, height) : QImage();
}

} // namespace quarnel
