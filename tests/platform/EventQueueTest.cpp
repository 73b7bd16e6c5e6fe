#include "platform/EventQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
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
        Item.OnClick = [this] { Log.emplace_back("item"); };
    }

    // Gives the control its place and lets the log follow what happens to it.
    void Put(Control& control, double left, double top, double width, double height) {
        control.Left = left;
        control.Top = top;
        control.Width = width;
        control.Height = height;
        const auto note = [this, &control](const char* what) {
            return [this, &control, what](const PointerEvent& event) {
                Log.push_back(control.Name + " " + what + " " + std::to_string(static_cast<int>(event.X)) + "," +
                              std::to_string(static_cast<int>(event.Y)));
            };
        };
        control.OnMouseDown = note("down");
        control.OnMouseMove = note("move");
        control.OnMouseUp = note("up");
        control.OnClick = [this, &control] { Log.push_back(control.Name + " click"); };
    }
    void Press(float x, float y, PointerButton button = PointerButton::Left) {
        Queue.Push(FormPointerEvent{Action::Press, &Window, {button, 0, x, y}});
    }
    void Release(float x, float y, PointerButton button = PointerButton::Left) {
        Queue.Push(FormPointerEvent{Action::Release, &Window, {button, 0, x, y}});
    }
    void Move(float x, float y, PointerButton held = PointerButton::None) {
        Queue.PushMove({Action::Move, &Window, {held, 0, x, y}});
    }
    void PressDialog() { Queue.Push(FormPointerEvent{Action::Press, &Dialog, {PointerButton::Left, 0, 1, 2}}); }
    std::vector<std::string> Deliver() {
        while (Queue.DeliverNext()) {
        }
        return std::exchange(Log, {});
    }
    std::string Reached(float x, float y) {
        Move(x, y);
        return Deliver().front();
    }

    Form Window{"window", FormBorder::Framed};
    Form Dialog{"dialog", FormBorder::None};
    Control Box{ControlKind::Picture, "box"};
    Control Button{ControlKind::Image, "button"};
    MenuItem Menu{"menu", u"Menu"};
    MenuItem Item{"item", u"Item", u"Ctrl+I"};
    EventQueue Queue;
    std::vector<std::string> Log;
};

TEST_F(EventQueueTest, ThePointerReachesTheInnermostAndTopmostControlThatIsShownAndEnabledInItsOwnPixels) {
    EXPECT_EQ(Reached(61, 33), "button move 1,3");
    EXPECT_EQ(Reached(55, 25), "box move 5,5");
    EXPECT_EQ(Reached(10, 90), "window move 10,90");
    Control cover(ControlKind::Image, "cover");
    Put(cover, 60, 30, 10, 10);
    Window.Add(cover);
    EXPECT_EQ(Reached(61, 33), "cover move 1,3") << "added last";
    EXPECT_EQ(Reached(70, 33), "button move 10,3") << "beside it";
    cover.Enabled = Button.Enabled = false;
    EXPECT_EQ(Reached(61, 33), "box move 11,13");
    Box.Visible = false;
    EXPECT_EQ(Reached(61, 33), "window move 61,33");
}

TEST_F(EventQueueTest, APressedControlHasThePointerUntilItsButtonIsReleasedAndInsideThatIsAClick) {
    Press(61, 33);
    Release(62, 34);
    EXPECT_THAT(Deliver(), ElementsAre("button down 1,3", "button up 2,4", "button click"));
    Press(61, 33);
    Move(10, 90, PointerButton::Left);
    Release(-20, 300);
    Move(10, 90);
    EXPECT_THAT(Deliver(),
                ElementsAre("button down 1,3", "button move -50,60", "button up -80,270", "window move 10,90"));
    Press(61, 33);
    Press(61, 33, PointerButton::Right);
    Release(61, 33, PointerButton::Right);
    Release(10, 90);
    EXPECT_THAT(Deliver(), ElementsAre("button down 1,3", "button down 1,3", "button up 1,3", "button up -50,60"));
    Press(61, 33, PointerButton::Right);
    Release(61, 33, PointerButton::Right);
    EXPECT_THAT(Deliver(), ElementsAre("button down 1,3", "button up 1,3")) << "only the left button clicks";
}

TEST_F(EventQueueTest, AModalFormTakesPressesAndMenusFromTheOthersButNotARunningDrag) {
    Press(61, 33);
    Deliver();
    Queue.EnterModal(Dialog);
    Move(62, 34, PointerButton::Left);
    Release(0, 0);
    Press(61, 33);
    Queue.Push(MenuClickEvent{&Item});
    PressDialog();
    EXPECT_THAT(Deliver(), ElementsAre("button move 2,4", "button up -60,-30", "dialog down 1,2"));
    Queue.LeaveModal();
    Queue.Push(MenuClickEvent{&Item});
    EXPECT_THAT(Deliver(), ElementsAre("item"));
    Queue.Push(MenuClickEvent{&Item});
    Menu.Visible = false; // it can no longer be reached when its turn comes
    EXPECT_THAT(Deliver(), IsEmpty());
}

TEST_F(EventQueueTest, AHandlerMayReplaceItselfAndDeliverWhatFollows) {
    Button.OnMouseDown = [this](const PointerEvent&) {
        Button.OnMouseDown = nullptr;
        Log.emplace_back("begin");
        while (Queue.DeliverNext()) {
        }
        Log.emplace_back("end");
    };
    Press(61, 33);
    Release(61, 33);
    Press(61, 33);
    EXPECT_THAT(Deliver(), ElementsAre("begin", "button up 1,3", "button click", "end"));
}

TEST_F(EventQueueTest, WaitingMovesBecomeOneAndNothingElseDoes) {
    Move(1, 90);
    Move(2, 90);
    Press(2, 90);
    Move(3, 90, PointerButton::Left);
    Move(4, 90, PointerButton::Left);
    Move(5, 90);
    Release(5, 90);
    EXPECT_THAT(Deliver(), ElementsAre("window move 2,90", "window down 2,90", "window move 4,90", "window move 5,90",
                                       "window up 5,90", "window click"));
}

TEST_F(EventQueueTest, AFormThatGoesAwayTakesItsEventsAlong) {
    Press(61, 33);
    Deliver();
    Release(61, 33);
    Queue.Push(MenuClickEvent{&Item});
    Queue.Push(FormPointerEvent{Action::Move, &Dialog, {PointerButton::Left, 0, 1, 2}});
    Queue.Forget(Window);
    EXPECT_THAT(Deliver(), ElementsAre("dialog move 1,2"));
    EXPECT_EQ(Reached(10, 90), "window move 10,90") << "and the press";
}

} // namespace
} // namespace quarnel
