// The inner area of a form's window: paints the form and reports the pointer.
//
// Its handlers only push events; program code never runs inside them. The pointer's position is given in the form's
// pixels. A press is always preceded by a move to its place and followed by its release, even when the system loses
// one of them.
#pragma once

#include "platform/EventQueue.h"
#include "platform/qt/FormPainter.h"

#include <QPoint>
#include <QWidget>

class QSinglePointEvent;

namespace quarnel {

class FormCanvas : public QWidget {
    Q_OBJECT
  public:
    /// `form` and `queue` must outlive the canvas or, for the form, the call of Forget().
    FormCanvas(Form& form, EventQueue& queue, QWidget* parent);

    /// The form shown, null once it was forgotten.
    Form* ShownForm() const { return form_; }

    void Present(const Surface& frame, const FrameView& view, const Rectangle& changed);
    /// Makes up for releases that something else in front of the window has taken.
    void CatchUpWithButtons();
    /// Paints anew as soon as events are processed, and lets screen readers know what has changed.
    void Refresh();
    /// Lets them know as soon as events are processed; with the form's announcement, if there is a new one.
    void TellScreenReaders(bool announcement);
    /// Lets the pressed pointer carry the window until the release.
    void CarryWindow();
    /// Pushes a move to (x, y), and a press and a release of the left button there.
    void PushClick(double x, double y);
    /// The form goes away; what is on the screen stays until the window does.
    void Forget();

  signals:
    /// Screen readers wait to be told of changes, of the form's announcement, too, if there is a new one.
    void ToBeTold(bool announcement);

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;

  private:
    void Push(FormPointerEvent::Action what, PointerButton button, Qt::KeyboardModifiers keys, const QPointF& at);
    void FollowPointer(const QSinglePointEvent& event, Qt::MouseButtons held);
    void ReleaseWhatIsNotHeld(Qt::MouseButtons held, Qt::KeyboardModifiers keys, const QPointF& at);
    bool ShowToolTip(const QPoint& at, const QPoint& onScreen);

    Form* form_;
    EventQueue& queue_;
    FormPainter painter_;
    const QImage* painted_ = nullptr; ///< the painter's picture
    QRect unpainted_;                 ///< what of the widget it does not show yet
    double paintedRatio_ = 0;
    Qt::MouseButtons pressed_; ///< buttons whose press was pushed and whose release was not
    QPoint grabbedAt_;         ///< where in the window the last press was
    bool carrying_ = false;
    bool tells_ = false;     ///< screen readers will be told
    bool announces_ = false; ///< with the announcement
};

} // namespace quarnel
