// Paints a form as its data describes it: background, presented frame, controls.
//
// Start at Paint(). The picture is made at the display's own resolution in one go: positions and sizes are rounded
// once, a half to the even pixel, and every picture is stretched once, from its source. Nothing here changes the form
// or runs program code.
#pragma once

#include "platform/Form.h"

#include <QImage>
#include <QPainter>

#include <map>
#include <tuple>

namespace quarnel {

/// What lies under a form's controls: all of `Source`, to be stretched to `Width` x `Height` pixels of the form.
struct PresentedFrame {
    Surface Source;
    int Width = 0;
    int Height = 0;
};

class FormPainter {
  public:
    /// The whole of `form`'s inner area of `size` pixels, with `ratio` pixels of the display for each. The image is
    /// valid until the next call.
    const QImage& Paint(const Form& form, const QSize& size, double ratio);

    /// Keeps a copy of the top-left `sourceWidth` x `sourceHeight` of `source`.
    void SetFrame(const Surface& source, int sourceWidth, int sourceHeight, int width, int height);

  private:
    // A picture and the size it was stretched to. The reference keeps the picture alive, and so its address unique.
    using StretchKey = std::tuple<PictureRef, int, int>;

    void PaintFrame(QPainter& painter);
    void PaintChildren(QPainter& painter, const Control& parent, double left, double top, const QRect& clip);
    void PaintControl(QPainter& painter, const Control& control, const QRect& box);
    const QImage& StretchedPicture(const PictureRef& picture, int width, int height);
    QRect DeviceBox(double left, double top, double width, double height) const;

    PresentedFrame frame_;
    double ratio_ = 1;
    QImage image_;
    std::map<StretchKey, QImage> stretched_;
};

} // namespace quarnel
