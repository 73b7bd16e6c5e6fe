#include "platform/qt/FormWindow.h"

#include "Pictures.h"
#include "base/Numbers.h"
#include "platform/qt/AccessibleForm.h"
#include "platform/qt/Conversions.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QIcon>
#include <QLayout>
#include <QPixmap>
#include <QScreen>
#include <QWindow>
#if QT_CONFIG(xcb)
#include <xcb/xcb.h>
#endif

namespace quarnel {

namespace {

QIcon WindowIcon() {
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64}) {
        const EmbeddedPicture* picture = FindPicture("quarnel-chess-" + std::to_string(size));
        if (picture == nullptr) continue;
        const QImage image(reinterpret_cast<const uchar*>(picture->pixels), picture->width, picture->height,
                           QImage::Format_ARGB32);
        icon.addPixmap(QPixmap::fromImage(image.copy()));
    }
    return icon;
}

Qt::WindowFlags FlagsFor(FormBorder border) {
    if (border == FormBorder::None) return Qt::Dialog | Qt::FramelessWindowHint;
    return Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
           Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint;
}

// What an X server shows of a window where nothing has been painted yet; elsewhere a window grows with its picture.
void SetGround([[maybe_unused]] WId window, [[maybe_unused]] Colour colour) {
#if QT_CONFIG(xcb)
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr) return;
    xcb_change_window_attributes(x11->connection(), static_cast<xcb_window_t>(window), XCB_CW_BACK_PIXEL, &colour);
#endif
}

} // namespace

FormWindow::FormWindow(Form& form, EventQueue& queue)
    : QMainWindow(nullptr, FlagsFor(form.Border)), form_(&form), queue_(queue),
      canvas_(new FormCanvas(form, queue, this)) {
    setObjectName(QString::fromStdString(form.Name));
    setContextMenuPolicy(Qt::NoContextMenu);
    setAttribute(Qt::WA_TranslucentBackground, form.Border == FormBorder::None);
    setWindowIcon(WindowIcon());
    setCentralWidget(canvas_);
    connect(canvas_, &FormCanvas::ToBeTold, this, [this](bool announcement) { TellChanges(*canvas_, announcement); });
    FollowForm();
}

Size FormWindow::OuterSize() const {
    return {RoundHalfEven(form_->OuterWidth / TwipsPerPixel), RoundHalfEven(form_->OuterHeight / TwipsPerPixel)};
}

Size FormWindow::InnerSize() const {
    const Size outer = OuterSize();
    return {outer.Width, outer.Height - (form_->Menus().empty() ? 0 : FormMenuBar::Height())};
}

void FormWindow::Follow(Control& control) {
    if (form_ == nullptr) return;
    if (&control == form_) FollowForm();
    canvas_->Refresh();
}

void FormWindow::Follow(MenuItem& item) {
    if (form_ == nullptr) return;
    if (menuBar_ != nullptr) {
        menuBar_->Follow(item);
    } else {
        FollowForm();
    }
}

void FormWindow::FollowForm() {
    if (menuBar_ == nullptr && !form_->Menus().empty()) {
        menuBar_ = new FormMenuBar(*form_, queue_, this);
        setMenuBar(menuBar_);
    }
    setWindowTitle(ToQString(form_->Caption.Get()));
    const Size inner = InnerSize();
    const Size outer = OuterSize();
    form_->Width = inner.Width;
    form_->Height = inner.Height;
    setFixedSize(std::max(1, outer.Width), std::max(1, outer.Height));
    FollowPosition();
    if (form_->Visible.Get() != isVisible()) setVisible(form_->Visible);
}

void FormWindow::FollowPosition() {
    if (adoptsPosition_) return;
    const QPoint position(RoundHalfEven(form_->Left), RoundHalfEven(form_->Top));
    if (position == followedPosition_) return;
    followedPosition_ = position;
    move(position);
}

void FormWindow::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    if (form_ == nullptr) return;
    followedPosition_ = pos();
    // Each of the two properties reports its change while the other is still the old one.
    adoptsPosition_ = true;
    form_->Left = pos().x();
    form_->Top = pos().y();
    adoptsPosition_ = false;
}

void FormWindow::SetBlocked(bool blocked) {
    if (menuBar_ != nullptr) menuBar_->SetBlocked(blocked);
}

void FormWindow::Shape(std::span<const Rectangle> rectangles) {
    QRegion region;
    for (const Rectangle& r : rectangles) region += QRect(r.Left, r.Top, r.Right - r.Left, r.Bottom - r.Top);
    setMask(region);
}

void FormWindow::PlaceAbove(QWidget* owner) {
    const bool above = owner != nullptr && owner->isVisible();
    const QRect room = (above ? owner : this)->screen()->availableGeometry();
    QRect place(QPoint(), size());
    place.moveCenter(above ? owner->geometry().center() : room.center());
    place.moveRight(std::min(place.right(), room.right()));
    place.moveBottom(std::min(place.bottom(), room.bottom()));
    place.moveLeft(std::max(place.left(), room.left()));
    place.moveTop(std::max(place.top(), room.top()));
    move(place.topLeft());
    create();
    if (above) windowHandle()->setTransientParent(owner->windowHandle());
}

bool FormWindow::event(QEvent* event) {
    const bool framed = form_ != nullptr && form_->Border == FormBorder::Framed;
    if (event->type() == QEvent::WinIdChange && framed && internalWinId() != 0) {
        SetGround(internalWinId(), form_->BackColor);
    }
    return QMainWindow::event(event);
}

void FormWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (form_ == nullptr || form_->Border != FormBorder::Framed) return;
    if (const auto close = form_->OnQueryUnload) close();
}

void FormWindow::Forget() {
    hide();
    form_ = nullptr;
    canvas_->Forget();
    if (menuBar_ != nullptr) menuBar_->Forget();
    deleteLater();
}

} // namespace quarnel
