#include "platform/EventQueue.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace quarnel {
namespace {

using Action = FormPointerEvent::Action;

// A form of 200 x 100 with a box at (50, 20) of 100 x 60, in the box a button at (10, 10) of 30 x 20.
class EventQueueTest : public testing::Test {
  protected:
    EventQueueTest() {
        Put(Window, 0, 0, 200, 100);
        Put(Box, 50, 20, 100, 60);
        Put(Button, 10, 10, 30, 20);
        Put(Dialog, 0, 0, 80, 40);
        Window.Add(Box);
        Box.Add(Button);
        Window.AddMenu(Menu);
        Menu.Add(Item);
        Item.OnClick = [this] { Log << "item; "; };
    }

    // Gives the control its place and lets the log follow what happens to it.
    void Put(Control& control, double left, double top, double width, double height) {
        control.Left = left;
        control.Top = top;
        control.Width = width;
        control.Height = height;
        const auto note = [this, &control](const char* what) {
            return [=, this, &control](const PointerEvent& event) {
                Log << control.Name << what << event.X << ',' << event.Y << "; ";
            };
        };
        control.OnMouseDown = note(" down ");
        control.OnMouseMove = note(" move ");
        control.OnMouseUp = note(" up ");
        control.OnClick = [this, &control] { Log << control.Name << " click; "; };
    }
    // Each event reads like "press left 61,33", the pointer in the window's pixels.
    void Push(const std::string& events) {
        const std::map<std::string, PointerButton> buttons = {
            {"left", PointerButton::Left}, {"right", PointerButton::Right}, {"none", PointerButton::None}};
        std::istringstream words(events);
        char comma = 0;
        float x = 0, y = 0;
        for (std::string action, button; words >> action >> button >> x >> comma >> y;) {
            const auto kind = action == "press" ? Action::Press : action == "move" ? Action::Move : Action::Release;
            const FormPointerEvent event{kind, &Window, {buttons.at(button), 0, x, y}};
            kind == Action::Move ? Queue.PushMove(event) : Queue.Push(event);
        }
    }
    std::string Deliver(const std::string& events = {}) {
        Push(events);
        while (Queue.DeliverNext()) {
        }
        return std::exchange(Log, {}).str();
    }

    Form Window{"window", FormBorder::Framed};
    Form Dialog{"dialog", FormBorder::None};
    Control Box{ControlKind::Picture, "box"};
    Control Button{ControlKind::Image, "button"};
    MenuItem Menu{"menu", u"Menu"};
    MenuItem Item{"item", u"Item", u"Ctrl+I"};
    EventQueue Queue;
    std::ostringstream Log;
};

TEST_F(EventQueueTest, ThePointerReachesTheInnermostAndTopmostControlThatIsShownAndEnabledInItsOwnPixels) {
    EXPECT_EQ(Deliver("move none 61,33"), "button move 1,3; ");
    EXPECT_EQ(Deliver("move none 50,20"), "box move 0,0; ");
    EXPECT_EQ(Deliver("move none 10,90"), "window move 10,90; ");
    Control cover(ControlKind::Image, "cover");
    Put(cover, 60, 30, 10, 10);
    Window.Add(cover);
    EXPECT_EQ(Deliver("move none 61,33"), "cover move 1,3; ") << "added last";
    EXPECT_EQ(Deliver("move none 70,33"), "button move 10,3; ") << "beside it";
    cover.Enabled = Button.Enabled = false;
    EXPECT_EQ(Deliver("move none 61,33"), "box move 11,13; ");
    Box.Visible = false;
    EXPECT_EQ(Deliver("move none 61,33"), "window move 61,33; ");
}

TEST_F(EventQueueTest, APressedControlHasThePointerUntilItsButtonIsReleasedAndInsideThatIsAClick) {
    EXPECT_EQ(Deliver("press left 61,33 release left 62,34"), "button down 1,3; button up 2,4; button click; ");
    EXPECT_EQ(Deliver("press left 61,33 move left 10,90 release left -20,300 move none 10,90"),
              "button down 1,3; button move -50,60; button up -80,270; window move 10,90; ");
    EXPECT_EQ(Deliver("press left 61,33 press right 61,33 release right 61,33 release left 10,90"),
              "button down 1,3; button down 1,3; button up 1,3; button up -50,60; ");
    EXPECT_EQ(Deliver("press right 61,33 release right 61,33"), "button down 1,3; button up 1,3; ");
}

TEST_F(EventQueueTest, AModalFormTakesPressesAndMenusFromTheOthersButNotARunningDrag) {
    Deliver("press left 61,33");
    Queue.EnterModal(Dialog);
    Push("move left 62,34 release left 0,0 press left 61,33");
    Queue.Push(MenuClickEvent{&Item});
    Queue.Push(FormPointerEvent{Action::Press, &Dialog, {PointerButton::Left, 0, 1, 2}});
    EXPECT_EQ(Deliver(), "button move 2,4; button up -60,-30; dialog down 1,2; ");
    Queue.LeaveModal();
    Queue.Push(MenuClickEvent{&Item});
    EXPECT_EQ(Deliver(), "item; ");
    Queue.Push(MenuClickEvent{&Item});
    Menu.Visible = false; // it can no longer be reached when its turn comes
    EXPECT_EQ(Deliver(), "");
}

TEST_F(EventQueueTest, AHandlerMayReplaceItselfAndDeliverWhatFollows) {
    Button.OnMouseDown = [this](const PointerEvent&) {
        Button.OnMouseDown = nullptr;
        const std::string inside = Deliver();
        Log << "begin; " << inside << "end; ";
    };
    EXPECT_EQ(Deliver("press left 61,33 release left 61,33 press left 61,33"),
              "begin; button up 1,3; button click; end; ");
}

TEST_F(EventQueueTest, WaitingMovesBecomeOneAndNothingElseDoes) {
    EXPECT_EQ(Deliver("move none 1,90 move none 2,90 press left 2,90 move left 3,90 move left 4,90 move none 5,90 "
                      "release left 5,90"),
              "window move 2,90; window down 2,90; window move 4,90; window move 5,90; window up 5,90; window click; ");
}

TEST_F(EventQueueTest, AFormThatGoesAwayTakesItsEventsAlong) {
    Deliver("press left 61,33");
    Push("release left 61,33");
    Queue.Push(MenuClickEvent{&Item});
    Queue.Push(FormPointerEvent{Action::Move, &Dialog, {PointerButton::Left, 0, 1, 2}});
    Queue.Forget(Window);
    EXPECT_EQ(Deliver(), "dialog move 1,2; ");
    EXPECT_EQ(Deliver("move none 10,90"), "window move 10,90; ") << "and the press";
}

} // namespace
} // namespace quarnel
