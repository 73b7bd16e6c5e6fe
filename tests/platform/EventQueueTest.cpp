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
        Place(Window, 0, 0, 200, 100);
        Place(Box, 50, 20, 100, 60);
        Place(Button, 10, 10, 30, 20);
        Window.Add(Box);
        Box.Add(Button);
        Place(Dialog, 0, 0, 80, 40);
        for (Control* control : {static_cast<Control*>(&Window), &Box, &Button, static_cast<Control*>(&Dialog)}) {
            Follow(*control);
        }
        Window.AddMenu(Menu);
        Menu.Add(Item);
        Item.OnClick = [this] { Log.emplace_back("item"); };
    }

    static void Place(Control& control, double left, double top, double width, double height) {
        control.Left = left;
        control.Top = top;
        control.Width = width;
        control.Height = height;
    }
    void Follow(Control& control) {
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
    void Push(Action what, float x, float y, PointerButton button = PointerButton::Left) {
        Queue.Push(FormPointerEvent{what, &Window, {button, 0, x, y}});
    }
    void PushToDialog(Action what, float x, float y) {
        Queue.Push(FormPointerEvent{what, &Dialog, {PointerButton::Left, 0, x, y}});
    }
    std::vector<std::string> Deliver() {
        while (Queue.DeliverNext()) {
        }
        return std::exchange(Log, {});
    }

    Form Window{"window", FormBorder::Framed};
    Form Dialog{"dialog", FormBorder::None};
    Control Box{ControlKind::Picture, "box"};
    Control Button{ControlKind::Image, "button"};
    MenuItem Menu{u"Menu"};
    MenuItem Item{u"Item", u"Ctrl+I"};
    EventQueue Queue;
    std::vector<std::string> Log;
};

TEST_F(EventQueueTest, ThePointerReachesTheInnermostControlInItsOwnPixels) {
    Push(Action::Move, 61, 33, PointerButton::None);
    Push(Action::Move, 55, 25, PointerButton::None);
    Push(Action::Move, 10, 90, PointerButton::None);
    EXPECT_THAT(Deliver(), ElementsAre("button move 1,3", "box move 5,5", "window move 10,90"));
}

TEST_F(EventQueueTest, HiddenAndDisabledControlsLetThePointerThrough) {
    Button.Enabled = false;
    Push(Action::Move, 61, 33, PointerButton::None);
    EXPECT_THAT(Deliver(), ElementsAre("box move 11,13"));
    Box.Visible = false;
    Push(Action::Move, 61, 33, PointerButton::None);
    EXPECT_THAT(Deliver(), ElementsAre("window move 61,33"));
}

TEST_F(EventQueueTest, TheControlAddedLastLiesOnTop) {
    Control cover(ControlKind::Image, "cover");
    Place(cover, 60, 30, 10, 10);
    Follow(cover);
    Window.Add(cover);
    Push(Action::Move, 61, 33, PointerButton::None);
    Push(Action::Move, 70, 33, PointerButton::None);
    EXPECT_THAT(Deliver(), ElementsAre("cover move 1,3", "button move 10,3"));
}

TEST_F(EventQueueTest, AClickIsAPressAndAReleaseInside) {
    Push(Action::Press, 61, 33);
    Push(Action::Release, 62, 34);
    EXPECT_THAT(Deliver(), ElementsAre("button down 1,3", "button up 2,4", "button click"));
}

TEST_F(EventQueueTest, APressedControlHasThePointerUntilTheRelease) {
    Push(Action::Press, 61, 33);
    Push(Action::Move, 10, 90);
    Push(Action::Release, -20, 300);
    Push(Action::Move, 10, 90, PointerButton::None);
    EXPECT_THAT(Deliver(),
                ElementsAre("button down 1,3", "button move -50,60", "button up -80,270", "window move 10,90"))
        << "a release outside is no click";
}

TEST_F(EventQueueTest, OnlyTheButtonThatBeganEndsAPress) {
    Push(Action::Press, 61, 33, PointerButton::Left);
    Push(Action::Press, 61, 33, PointerButton::Right);
    Push(Action::Release, 61, 33, PointerButton::Right);
    Push(Action::Release, 10, 90, PointerButton::Left);
    EXPECT_THAT(Deliver(), ElementsAre("button down 1,3", "button down 1,3", "button up 1,3", "button up -50,60"));
    Push(Action::Press, 61, 33, PointerButton::Right);
    Push(Action::Release, 61, 33, PointerButton::Right);
    EXPECT_THAT(Deliver(), ElementsAre("button down 1,3", "button up 1,3")) << "only the left button clicks";
}

TEST_F(EventQueueTest, AModalFormTakesPressesAndMenusFromTheOthers) {
    Queue.EnterModal(Dialog);
    Push(Action::Press, 61, 33);
    Push(Action::Release, 61, 33);
    Queue.Push(MenuClickEvent{&Item});
    PushToDialog(Action::Press, 1, 2);
    PushToDialog(Action::Release, 1, 2);
    EXPECT_THAT(Deliver(), ElementsAre("dialog down 1,2", "dialog up 1,2", "dialog click"));
    Queue.LeaveModal();
    Queue.Push(MenuClickEvent{&Item});
    EXPECT_THAT(Deliver(), ElementsAre("item"));
}

TEST_F(EventQueueTest, ADragThatAModalFormInterruptsIsStillReleased) {
    Push(Action::Press, 61, 33);
    EXPECT_THAT(Deliver(), ElementsAre("button down 1,3"));
    Queue.EnterModal(Dialog);
    Push(Action::Move, 62, 34);
    Push(Action::Release, 0, 0);
    Push(Action::Press, 61, 33);
    EXPECT_THAT(Deliver(), ElementsAre("button move 2,4", "button up -60,-30"));
}

TEST_F(EventQueueTest, AMenuItemIsClickedOnlyIfItCanBeReachedWhenItsTurnComes) {
    Queue.Push(MenuClickEvent{&Item});
    Item.Enabled = false;
    EXPECT_THAT(Deliver(), IsEmpty());
    Item.Enabled = true;
    Menu.Visible = false;
    Queue.Push(MenuClickEvent{&Item});
    EXPECT_THAT(Deliver(), IsEmpty());
    Menu.Visible = true;
    Queue.Push(MenuClickEvent{&Item});
    EXPECT_THAT(Deliver(), ElementsAre("item"));
}

TEST_F(EventQueueTest, AHandlerMayDeliverWhatFollows) {
    Button.OnMouseDown = [this](const PointerEvent&) {
        Log.emplace_back("begin");
        while (Queue.DeliverNext()) {
        }
        Log.emplace_back("end");
    };
    Push(Action::Press, 61, 33);
    Push(Action::Release, 61, 33);
    EXPECT_THAT(Deliver(), ElementsAre("begin", "button up 1,3", "button click", "end"));
}

TEST_F(EventQueueTest, AHandlerMayReplaceItself) {
    Button.OnMouseDown = [this](const PointerEvent&) {
        Button.OnMouseDown = nullptr;
        Log.emplace_back("once");
    };
    Push(Action::Press, 61, 33);
    Push(Action::Release, 0, 0);
    Push(Action::Press, 61, 33);
    EXPECT_THAT(Deliver(), ElementsAre("once", "button up -60,-30"));
}

TEST_F(EventQueueTest, WaitingMovesBecomeOneAndNothingElseDoes) {
    const auto move = [this](float x, PointerButton held) {
        Queue.PushMove({Action::Move, &Window, {held, 0, x, 90}});
    };
    move(1, PointerButton::None);
    move(2, PointerButton::None);
    Push(Action::Press, 2, 90);
    move(3, PointerButton::Left);
    move(4, PointerButton::Left);
    Push(Action::Release, 5, 90);
    move(6, PointerButton::None);
    EXPECT_THAT(Deliver(), ElementsAre("window move 2,90", "window down 2,90", "window move 4,90", "window up 5,90",
                                       "window click", "window move 6,90"));
}

TEST_F(EventQueueTest, AFormThatGoesAwayTakesItsEventsAlong) {
    Push(Action::Press, 61, 33);
    Deliver();
    Push(Action::Release, 61, 33);
    Queue.Push(MenuClickEvent{&Item});
    PushToDialog(Action::Press, 1, 2);
    Queue.Forget(Window);
    EXPECT_THAT(Deliver(), ElementsAre("dialog down 1,2"));
}

} // namespace
} // namespace quarnel
