// The desktop's own queue of window events, and how an event finds its control.
//
// A back end's toolkit handlers only push; program code runs inside DeliverNext(). So an event may be
// delivered while the handler of another still runs (a loop inside it asks for pending events), but
// never inside a toolkit handler. Shared by all back ends. Program thread only.
#pragma once

#include "platform/Form.h"

#include <deque>
#include <variant>

namespace quarnel {

/// A pointer event in a form's inner area, pixels from its top-left corner.
struct FormPointerEvent {
    enum class Action { Press, Move, Release } What = Action::Move;
    Form* Target = nullptr;
    PointerEvent Pointer;
};

/// A menu item was chosen, by pointer or shortcut.
struct MenuClickEvent {
    MenuItem* Item = nullptr;
};

using WindowEvent = std::variant<FormPointerEvent, MenuClickEvent>;

class EventQueue {
  public:
    void Push(const WindowEvent& event) { events_.push_back(event); }
    /// Appends a pointer move. It takes the place of a move of the same form and button that is the newest
    /// event waiting, so that a pointer faster than the program leaves no row of old positions behind it.
    void PushMove(const FormPointerEvent& event);
    bool Empty() const { return events_.empty(); }
    /// Whether anything but pointer moves is waiting.
    bool HasCommand() const;

    /// Takes the oldest event out and runs its handlers; false when there was none.
    ///
    /// While a form is shown modally, presses and menu clicks of other forms are dropped. The release
    /// of a press that was delivered always is delivered, so that no drag hangs.
    /// A menu item is clicked only if it is reachable when its turn comes.
    bool DeliverNext();

    /// Brackets a modal show; they nest.
    void EnterModal(Form& form) { modal_.push_back(&form); }
    void LeaveModal() { modal_.pop_back(); }

    /// Forgets a form that is going away, its events included.
    void Forget(Form& form);

  private:
    void Deliver(const FormPointerEvent& event);
    bool Blocked(const Form& form) const { return !modal_.empty() && modal_.back() != &form; }

    std::deque<WindowEvent> events_;
    std::vector<Form*> modal_;
    Control* pressed_ = nullptr; ///< has the pointer until the buttons are released
    PointerButton button_ = PointerButton::None;
};

/// The topmost enabled and shown control at (x, y) of the form's inner area; the form itself where
/// there is none. `x` and `y` are turned into pixels from the found control's corner.
Control& ControlAt(Form& form, float& x, float& y);

} // namespace quarnel
