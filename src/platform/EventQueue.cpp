#include "platform/EventQueue.h"

#include <algorithm>

namespace quarnel {

namespace {

bool Contains(const Control& control, double x, double y) {
    return x >= control.Left && y >= control.Top && x < control.Left + control.Width &&
           y < control.Top + control.Height;
}

// The topmost child of `parent` at (x, y), which become relative to it; null where there is none.
Control* ChildAt(const Control& parent, double& x, double& y) {
    const auto& children = parent.Children();
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        if (!(*child)->Visible.Get() || !(*child)->Enabled.Get() || !Contains(**child, x, y)) continue;
        x -= (*child)->Left;
        y -= (*child)->Top;
        return *child;
    }
    return nullptr;
}

void ToControl(const Control& control, float& x, float& y) {
    for (const Control* c = &control; c->Kind != ControlKind::Form; c = c->Parent()) {
        x -= static_cast<float>(c->Left.Get());
        y -= static_cast<float>(c->Top.Get());
    }
}

template <class Handler, class... Arguments>
void Call(const Handler& handler, const Arguments&... arguments) {
    // A copy, because the handler may well replace or remove itself.
    if (const Handler copy = handler) copy(arguments...);
}

} // namespace

Control& ControlAt(Form& form, float& x, float& y) {
    Control* found = &form;
    double insideX = x;
    double insideY = y;
    while (Control* child = ChildAt(*found, insideX, insideY)) found = child;
    x = static_cast<float>(insideX);
    y = static_cast<float>(insideY);
    return *found;
}

void EventQueue::PushMove(const FormPointerEvent& event) {
    auto* newest = events_.empty() ? nullptr : std::get_if<FormPointerEvent>(&events_.back());
    const bool replaces = newest != nullptr && newest->What == event.What && newest->Target == event.Target &&
                          newest->Pointer.Button == event.Pointer.Button;
    if (replaces) {
        *newest = event;
    } else {
        events_.emplace_back(event);
    }
}

bool EventQueue::HasCommand() const {
    return std::ranges::any_of(events_, [](const WindowEvent& event) {
        const auto* pointer = std::get_if<FormPointerEvent>(&event);
        return pointer == nullptr || pointer->What != FormPointerEvent::Action::Move;
    });
}

bool EventQueue::DeliverNext() {
    if (events_.empty()) return false;
    const WindowEvent event = events_.front();
    events_.pop_front();
    if (const auto* pointer = std::get_if<FormPointerEvent>(&event)) {
        Deliver(*pointer);
    } else {
        MenuItem& item = *std::get<MenuClickEvent>(event).Item;
        const Form* form = Form::Of(item);
        if (form != nullptr && !Blocked(*form) && item.IsReachable()) Call(item.OnClick);
    }
    return true;
}

void EventQueue::Deliver(const FormPointerEvent& event) {
    using Action = FormPointerEvent::Action;
    PointerEvent pointer = event.Pointer;
    const bool held = pressed_ != nullptr && Form::Of(*pressed_) == event.Target;
    if (!held && Blocked(*event.Target)) return;

    Control* control = pressed_;
    if (held) {
        ToControl(*control, pointer.X, pointer.Y);
    } else {
        control = &ControlAt(*event.Target, pointer.X, pointer.Y);
    }
    switch (event.What) {
    case Action::Press:
        if (!held) {
            pressed_ = control;
            button_ = pointer.Button;
        }
        Call(control->OnMouseDown, pointer);
        break;
    case Action::Move:
        Call(control->OnMouseMove, pointer);
        break;
    case Action::Release: {
        const bool ends = held && pointer.Button == button_;
        if (ends) pressed_ = nullptr;
        const bool inside =
            pointer.X >= 0 && pointer.Y >= 0 && pointer.X < control->Width && pointer.Y < control->Height;
        Call(control->OnMouseUp, pointer);
        if (ends && inside && pointer.Button == PointerButton::Left) Call(control->OnClick);
        break;
    }
    }
}

void EventQueue::Forget(Form& form) {
    std::erase_if(events_, [&](const WindowEvent& event) {
        const auto* pointer = std::get_if<FormPointerEvent>(&event);
        return pointer != nullptr ? pointer->Target == &form : Form::Of(*std::get<MenuClickEvent>(event).Item) == &form;
    });
    if (pressed_ != nullptr && Form::Of(*pressed_) == &form) pressed_ = nullptr;
}

} // namespace quarnel
