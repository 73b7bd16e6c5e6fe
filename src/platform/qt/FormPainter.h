// Paints a form as its data describes it: background, presented frame, controls.
//
// Start at Paint(). The picture is made at the display's own resolution in one go: positions and sizes are rounded
// once, a half to the even pixel, and every picture is stretched once, from its source. Nothing here changes the form
// or runs program code.
#pragma once

#include "platform/Desktop.h"
#include "platform/Stretch.h"

#include <QImage>
#include <QPainter>

#include <map>
#include <tuple>

namespace quarnel {

class FormPainter {
  public:
    /// The whole of `form`'s inner area of `size` pixels, with `ratio` pixels of the display for each. Of the last
    /// image, which was of the same size and ratio, only `part` need have changed. The image is valid until the next
    /// call.
    const QImage& Paint(const Form& form, const QSize& size, double ratio, const QRect& part);

    /// Keeps a copy of what lies under a form's controls. Returns the form's pixels that it changes.
    QRect SetFrame(const Surface& frame, const FrameView& view, const Rectangle& changed);

  private:
    // A picture and the size it was stretched to. The reference keeps the picture alive, and so its address unique.
    using StretchKey = std::tuple<PictureRef, int, int>;

    void PaintFrame(QPainter& painter, const QRect& clip);
    void PaintChildren(QPainter& painter, const Control& parent, double left, double top, const QRect& clip);
    void PaintControl(QPainter& painter, const Control& control, const QRect& box);
    const QImage& StretchedPicture(const PictureRef& picture, int width, int height);
    QRect DeviceBox(double left, double top, double width, double height) const;

    Surface frame_; // as `view_` says
    FrameView view_;
    Rectangle unstretched_; // of the frame: what the stretched one does not show yet
    Stretcher stretchedFrame_;
    double ratio_ = 1;
    QImage image_;
    std::map<StretchKey, QImage> stretched_;
};

} // namespace quarnel
