#include "platform/qt/FormCanvas.h"

#include "platform/qt/Conversions.h"

#include <QAbstractEventDispatcher>
#include <QAccessible>
#include <QCursor>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QToolTip>
#include <QWindow>

#include <utility>

namespace quarnel {

namespace {

using Action = FormPointerEvent::Action;

constexpr QEvent::Type TellEvent = QEvent::User;

constexpr std::pair<Qt::MouseButton, PointerButton> Buttons[] = {
    {Qt::LeftButton, PointerButton::Left},
    {Qt::RightButton, PointerButton::Right},
    {Qt::MiddleButton, PointerButton::Middle},
};

// The first of `buttons` that the program knows.
PointerButton ToPointerButton(Qt::MouseButtons buttons) {
    for (const auto& [qtButton, button] : Buttons) {
        if (buttons.testFlag(qtButton)) return button;
    }
    return PointerButton::None;
}

int ToShift(Qt::KeyboardModifiers keys) {
    return (keys.testFlag(Qt::ShiftModifier) ? 1 : 0) + (keys.testFlag(Qt::ControlModifier) ? 2 : 0) +
           (keys.testFlag(Qt::AltModifier) ? 4 : 0);
}

} // namespace

FormCanvas::FormCanvas(Form& form, EventQueue& queue, QWidget* parent) : QWidget(parent), form_(&form), queue_(queue) {
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent, form.Border == FormBorder::Framed);
}

void FormCanvas::Present(const Surface& frame, const FrameView& view, const Rectangle& changed) {
    const QRect part = painter_.SetFrame(frame, view, changed) & rect();
    unpainted_ |= part;
    update(part);
    TellScreenReaders(false);
}

void FormCanvas::Refresh() {
    unpainted_ = rect();
    update();
    TellScreenReaders(false);
}

void FormCanvas::TellScreenReaders(bool announcement) {
    if (!QAccessible::isActive()) return;
    announces_ = announces_ || announcement;
    if (!std::exchange(tells_, true)) QCoreApplication::postEvent(this, new QEvent(TellEvent));
}

void FormCanvas::Forget() {
    form_ = nullptr;
}

void FormCanvas::paintEvent(QPaintEvent* event) {
    const double ratio = devicePixelRatioF();
    const QSize needed(qMax(1, qCeil(width() * ratio)), qMax(1, qCeil(height() * ratio)));
    if (painted_ == nullptr || paintedRatio_ != ratio || painted_->size() != needed) unpainted_ = rect();
    if (!unpainted_.isEmpty() && form_ != nullptr) {
        painted_ = &painter_.Paint(*form_, size(), ratio, unpainted_);
        paintedRatio_ = ratio;
        unpainted_ = {};
    }
    if (painted_ == nullptr) return;
    QImage image = *painted_;
    image.setDevicePixelRatio(ratio);
    QPainter painter(this);
    // Not every desktop cuts the window itself.
    const QRegion outline = window()->mask();
    painter.setClipRegion(outline.isEmpty() ? event->region() : event->region() & outline);
    painter.drawImage(0, 0, image);
}

void FormCanvas::Push(Action what, PointerButton button, Qt::KeyboardModifiers keys, const QPointF& at) {
    if (form_ == nullptr) return;
    const FormPointerEvent event{
        what, form_, {button, ToShift(keys), static_cast<float>(at.x()), static_cast<float>(at.y())}};
    if (what == Action::Move) {
        queue_.PushMove(event);
    } else {
        queue_.Push(event);
    }
    // Not every dispatcher looks again before it sleeps.
    QCoreApplication::eventDispatcher()->wakeUp();
}

void FormCanvas::PushClick(double x, double y) {
    Push(Action::Move, PointerButton::None, {}, {x, y});
    Push(Action::Press, PointerButton::Left, {}, {x, y});
    Push(Action::Release, PointerButton::Left, {}, {x, y});
}

void FormCanvas::mousePressEvent(QMouseEvent* event) {
    const PointerButton button = ToPointerButton(event->button());
    if (button == PointerButton::None) return;
    pressed_ |= event->button();
    grabbedAt_ = event->globalPosition().toPoint() - window()->pos();
    // The pointer may have come here unseen, and whoever takes the press must not find it at its last place.
    const Qt::MouseButtons before = event->buttons() & ~Qt::MouseButtons(event->button());
    Push(Action::Move, ToPointerButton(before), event->modifiers(), event->position());
    Push(Action::Press, button, event->modifiers(), event->position());
}

void FormCanvas::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

void FormCanvas::mouseReleaseEvent(QMouseEvent* event) {
    ReleaseWhatIsNotHeld(event->buttons(), event->modifiers(), event->position());
}

void FormCanvas::mouseMoveEvent(QMouseEvent* event) {
    FollowPointer(*event, event->buttons());
}

// The toolkit drops a move to the place where the pointer came in; its event for coming in knows no buttons.
void FormCanvas::enterEvent(QEnterEvent* event) {
    FollowPointer(*event, QGuiApplication::mouseButtons());
}

void FormCanvas::FollowPointer(const QSinglePointEvent& event, Qt::MouseButtons held) {
    ReleaseWhatIsNotHeld(held, event.modifiers(), event.position());
    if (carrying_) {
        window()->move(event.globalPosition().toPoint() - grabbedAt_);
        return;
    }
    Push(Action::Move, ToPointerButton(held), event.modifiers(), event.position());
}

// Pushes the release of every button that is not `held` any longer. A release can get lost, for example when
// the window manager takes the pointer away in the middle of a press; it is made up for as soon as the pointer is seen
// again.
void FormCanvas::ReleaseWhatIsNotHeld(Qt::MouseButtons held, Qt::KeyboardModifiers keys, const QPointF& at) {
    for (const auto& [qtButton, button] : Buttons) {
        if (!pressed_.testFlag(qtButton) || held.testFlag(qtButton)) continue;
        pressed_.setFlag(qtButton, false);
        if (qtButton == Qt::LeftButton) carrying_ = false;
        Push(Action::Release, button, keys, at);
    }
}

void FormCanvas::CatchUpWithButtons() {
    ReleaseWhatIsNotHeld(QGuiApplication::mouseButtons(), QGuiApplication::keyboardModifiers(),
                         mapFromGlobal(QCursor::pos()));
}

void FormCanvas::CarryWindow() {
    if (carrying_ || !pressed_.testFlag(Qt::LeftButton)) return;
    // Only the desktop itself can move windows under Wayland; it keeps the release to itself.
    if (QGuiApplication::platformName().startsWith(QStringLiteral("wayland"))) {
        pressed_.setFlag(Qt::LeftButton, false);
        window()->windowHandle()->startSystemMove();
        Push(Action::Release, PointerButton::Left, {}, grabbedAt_);
        return;
    }
    carrying_ = true;
    window()->move(QCursor::pos() - grabbedAt_); // the pointer has gone on since the press
}

bool FormCanvas::event(QEvent* event) {
    if (event->type() == TellEvent) {
        tells_ = false;
        emit ToBeTold(std::exchange(announces_, false));
        return true;
    }
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        if (ShowToolTip(help->pos(), help->globalPos())) return true;
    }
    return QWidget::event(event);
}

bool FormCanvas::ShowToolTip(const QPoint& at, const QPoint& onScreen) {
    if (form_ == nullptr) return false;
    auto x = static_cast<float>(at.x());
    auto y = static_cast<float>(at.y());
    const Control& control = ControlAt(*form_, x, y);
    if (control.ToolTip.Get().empty()) return false;
    const QRectF area(at.x() - x, at.y() - y, control.Width, control.Height);
    QToolTip::showText(onScreen, ToQString(control.ToolTip.Get()), this, area.toAlignedRect());
    return true;
}

} // namespace quarnel
