// The real desktop as the program finds it: a form with one of everything, used by real events, notes what happens.
//
// What the program's own window shows of it is left to the tests that use the program.
#include "platform/qt/QtDesktop.h"

#include "window/VirtualDisplay.h"
#include "window/WindowDriver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

#include <thread>

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using xdriver::VirtualDisplay;
using xdriver::WindowDriver;
using xdriver::WindowId;

constexpr int InnerWidth = 361;
constexpr int InnerHeight = 362;
constexpr int FrameSize = 366;
constexpr Colour Ground = Rgb(10, 20, 30);

// One display and one desktop for all tests, as a process has only one.
std::unique_ptr<VirtualDisplay> TheDisplay;
std::unique_ptr<Desktop> TheDesktop;

void Place(Control& control, double left, double top, double width, double height) {
    control.Left = left;
    control.Top = top;
    control.Width = width;
    control.Height = height;
}

class QtDesktopTest : public testing::Test {
  protected:
    QtDesktopTest() {
        Place(Strip, 18.75, 320, 96, 20.5);
        Strip.BackColor = Rgb(192, 64, 0);
        Main.Add(Strip);
        Place(Button, 10, 2, 16, 16);
        Button.ToolTip = u"Press me";
        Button.Stretch = true;
        Button.Image = MakePicture(Surface(16, 16, Rgb(0, 0, 255)));
        Strip.Add(Button);
        Place(Caption, 150, 320, 120, 18);
        Caption.Caption = u"Move: e4";
        Caption.ForeColor = ColourWhite;
        Main.Add(Caption);
        Moves.Add(Back);
        Main.AddMenu(Moves);
        Main.Caption = u"Sample";
        Main.OnQueryUnload = [this] { Log.emplace_back("close"); };
        TheDesktop->Attach(Main);
        const int menu = MenuHeight();
        Main.OuterWidth = InnerWidth * 15;
        Main.OuterHeight = (InnerHeight + menu) * 15;
        Box.Caption = u"Box";
        Box.OuterWidth = 200 * 15;
        Box.OuterHeight = 100 * 15;
        TheDesktop->Attach(Box);
        for (Control* control : std::initializer_list<Control*>{&Main, &Button}) Follow(*control);

        User.BetweenLooks = [] {
            TheDesktop->ProcessEvents();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        };
        User.MoveTo(Root, 1200, 1000);
        TheDesktop->Present(Main, Surface(FrameSize, FrameSize, Ground), FrameSize, FrameSize, FrameSize, FrameSize);
        Main.Visible = true;
        Window = User.WaitForWindow("Sample");
        User.Activate(Window);
        EXPECT_TRUE(User.WaitUntil([&] { return User.HasKeys(Window) && PixelAt(50, 100) == Ground; }));
        Log.clear();
    }
    ~QtDesktopTest() override {
        TheDesktop->Detach(Box);
        TheDesktop->Detach(Main);
        EXPECT_TRUE(User.WaitUntil([&] { return User.FindWindow("Sample") == 0; }));
    }

    // Notes "form down 10,20 b1", "button click", ...; moves only while NoteMoves.
    void Follow(Control& control) {
        const auto note = [this, &control](const std::string& what) {
            return [this, &control, what](const PointerEvent& event) {
                if (what == "move" && !NoteMoves) return;
                Log.push_back(control.Name + " " + what + " " + std::to_string(static_cast<int>(event.X)) + "," +
                              std::to_string(static_cast<int>(event.Y)));
                if (event.Button != PointerButton::None) {
                    Log.back() += " b" + std::to_string(static_cast<int>(event.Button));
                }
            };
        };
        control.OnMouseDown = note("down");
        control.OnMouseMove = note("move");
        control.OnMouseUp = note("up");
        control.OnClick = [this, &control] { Log.push_back(control.Name + " click"); };
    }
    std::vector<std::string> TakeLog() { return std::exchange(Log, {}); }
    bool WaitForLog(const std::string& entry) {
        return User.WaitUntil([&] { return std::find(Log.begin(), Log.end(), entry) != Log.end(); });
    }

    // Distance from the window's top to the form's inner area, in which the positions below lie.
    int MenuHeight() { return TheDesktop->OuterSize(Main).Height - TheDesktop->InnerSize(Main).Height; }
    void MoveTo(int x, int y) { User.MoveTo(Window, x, y + MenuHeight()); }
    void Click(int x, int y, int button = 1) { User.Click(Window, x, y + MenuHeight(), button); }
    Colour PixelAt(int x, int y) {
        const Surface window = User.GrabWindow(Window);
        return window.Width() >= InnerWidth ? window.At(x, y + MenuHeight()) : 0;
    }

    static constexpr WindowId Root = 0;
    Form Main{"form", FormBorder::Framed};
    Control Strip{ControlKind::Picture, "strip"};
    Control Button{ControlKind::Image, "button"};
    Control Caption{ControlKind::Label, "caption"};
    MenuItem Moves{"moves", u"Moves"};
    MenuItem Back{"back", u"Back"};
    Form Box{"box", FormBorder::None};
    std::vector<std::string> Log;
    bool NoteMoves = false;
    WindowDriver User{TheDisplay->Name()};
    WindowId Window = 0;
};

TEST_F(QtDesktopTest, PeekingWaitingAndProcessingAreThreeThings) {
    EXPECT_FALSE(TheDesktop->PeekEvent());
    MoveTo(20, 30);
    User.Press();
    User.BetweenLooks = nullptr;
    EXPECT_TRUE(User.WaitUntil([] { return TheDesktop->PeekEvent(); }));
    TheDesktop->WaitEvent(); // returns, because something waits
    EXPECT_TRUE(TheDesktop->PeekEvent());
    EXPECT_THAT(Log, IsEmpty());
    EXPECT_TRUE(User.WaitUntil([&] {
        TheDesktop->ProcessEvents();
        return !Log.empty() && Log.back() == "form down 20,30 b1";
    }));
    EXPECT_FALSE(TheDesktop->PeekEvent());
    User.Release();
    EXPECT_TRUE(User.WaitUntil([] { return TheDesktop->PeekEvent(); }));
}

TEST_F(QtDesktopTest, EachPressHasItsReleaseAndItsClick) {
    Click(20, 30, 3);
    Click(20, 30);
    Click(20, 30); // the toolkit calls this one a double click
    Click(18 + 10 + 5, 320 + 2 + 6);
    EXPECT_TRUE(WaitForLog("button click"));
    EXPECT_THAT(TakeLog(), ElementsAre("form down 20,30 b2", "form up 20,30 b2", "form down 20,30 b1",
                                       "form up 20,30 b1", "form click", "form down 20,30 b1", "form up 20,30 b1",
                                       "form click", "button down 4,6 b1", "button up 4,6 b1", "button click"));
}

// Events as the toolkit sends them now and then, but no device can be made to.
TEST_F(QtDesktopTest, AStrangeOrderOfPointerEventsIsPutRight) {
    QWidget* canvas = nullptr;
    for (QWidget* widget : QApplication::allWidgets()) {
        const bool ours = widget->window()->windowTitle() == QLatin1String("Sample");
        if (ours && widget->inherits("quarnel::FormCanvas")) canvas = widget;
    }
    ASSERT_NE(canvas, nullptr);
    NoteMoves = true;
    // A press where the pointer was never seen before: the move to it comes first.
    const QPointF place(50, 60);
    QMouseEvent press(QEvent::MouseButtonPress, place, place, canvas->mapToGlobal(place), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(canvas, &press);
    TheDesktop->ProcessEvents();
    EXPECT_THAT(TakeLog(), ElementsAre("form move 50,60", "form down 50,60 b1"));
    // Its release is lost, and the next move makes up for it.
    MoveTo(51, 61);
    EXPECT_TRUE(WaitForLog("form up 51,61 b1"));
    // The pointer comes in with a button held: that is no release.
    User.Press();
    EXPECT_TRUE(WaitForLog("form down 51,61 b1"));
    TakeLog();
    QEnterEvent enter(place, place, canvas->mapToGlobal(place));
    QCoreApplication::sendEvent(canvas, &enter);
    TheDesktop->ProcessEvents();
    EXPECT_THAT(TakeLog(), ElementsAre("form move 50,60 b1"));
    User.Release();
    EXPECT_TRUE(WaitForLog("form up 51,61 b1"));
}

TEST_F(QtDesktopTest, ControlsLieOverTheFrameWithTheirEdgesRoundedOnce) {
    EXPECT_TRUE(User.WaitUntil([&] { return PixelAt(19, 320) == Rgb(192, 64, 0); }));
    EXPECT_EQ(PixelAt(18, 325), Ground); // 18.75 is nearer to 19
    EXPECT_EQ(PixelAt(114, 325), Rgb(192, 64, 0));
    EXPECT_EQ(PixelAt(115, 325), Ground);         // 114.75 is nearer to 115
    EXPECT_EQ(PixelAt(30, 339), Rgb(192, 64, 0)); // 340.5 goes to the even 340
    EXPECT_EQ(PixelAt(30, 340), Ground);
    EXPECT_EQ(PixelAt(29, 322), Rgb(0, 0, 255));
    EXPECT_EQ(PixelAt(268, 336), Ground) << "a label has no background";
    Strip.Visible = false;
    EXPECT_TRUE(User.WaitUntil([&] { return PixelAt(30, 330) == Ground; }));
}

TEST_F(QtDesktopTest, ACloseIsHonouredBeforeTheEventsThatWait) {
    User.BetweenLooks = nullptr;
    Click(10, 50);
    EXPECT_TRUE(User.WaitUntil([] { return TheDesktop->PeekEvent(); }));
    User.AskToClose(Window);
    EXPECT_TRUE(User.WaitUntil([&] {
        TheDesktop->PeekEvent();
        return !Log.empty();
    }));
    EXPECT_THAT(Log, ElementsAre("close"));
    TheDesktop->ProcessEvents();
    EXPECT_NE(User.FindWindow("Sample"), 0U) << "only the program takes its window away";
}

TEST_F(QtDesktopTest, ABoxIsCutToItsOutlineAndCarriedByItsTitle) {
    const std::vector<Rectangle> rectangles = {{7, 1, 194, 2}, {5, 2, 196, 3}, {0, 3, 200, 96}, {8, 96, 192, 100}};
    TheDesktop->ShapeForm(Box, rectangles);
    Box.OnMouseMove = [&](const PointerEvent& event) {
        if (event.Button == PointerButton::Left) TheDesktop->MoveForm(Box);
    };
    Box.OnMouseUp = [&](const PointerEvent&) { Box.Unload(); };
    std::vector<Rectangle> outline;
    bool carried = true;
    std::thread user([&] {
        WindowDriver hand(TheDisplay->Name());
        const WindowId box = hand.WaitForWindow("Box");
        outline = hand.Outline(box);
        const Rectangle before = hand.Area(box).value_or(Rectangle());
        hand.MoveTo(box, 50, 10);
        hand.Press();
        for (const auto& [x, y] : {std::pair{40, 30}, {-70, 60}}) {
            hand.MoveTo(Root, before.Left + x + 50, before.Top + y + 10);
            carried = carried && hand.WaitUntil([&, x = x, y = y] {
                const Rectangle now = hand.Area(box).value_or(before);
                return now.Left == before.Left + x && now.Top == before.Top + y;
            });
        }
        hand.Release();
    });
    TheDesktop->ShowModal(Box);
    user.join();
    EXPECT_EQ(outline, rectangles);
    EXPECT_TRUE(carried);
}

TEST_F(QtDesktopTest, TextIsMeasuredAsItIsDrawn) {
    const FontChoice font{u"Tahoma", 8, false};
    const Size one = TheDesktop->MeasureText(u"Move", font, 0);
    const Size two = TheDesktop->MeasureText(u"Move\r\nMove", font, 0);
    EXPECT_GT(TheDesktop->MeasureText(u"Move  ", font, 0).Width, one.Width);
    EXPECT_EQ(two.Width, one.Width);
    EXPECT_NEAR(two.Height, 2 * one.Height, 1);
    EXPECT_EQ(TheDesktop->MeasureText(u"Move Move", font, one.Width + 2).Height, two.Height);

    Surface board(60, 30, ColourBlack);
    TheDesktop->DrawText(board, 5, 4, u"Move", font, ColourWhite);
    Rectangle ink{60, 30, 0, 0};
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 60; ++x) {
            if (board.At(x, y) == ColourBlack) continue;
            ink = {std::min(ink.Left, x), std::min(ink.Top, y), std::max(ink.Right, x), std::max(ink.Bottom, y)};
        }
    }
    EXPECT_TRUE(ink.Left >= 5 && ink.Top >= 4 && ink.Right < 5 + one.Width && ink.Bottom < 4 + one.Height);
    EXPECT_GT(ink.Right - ink.Left, one.Width / 2);
}

TEST_F(QtDesktopTest, ALibraryMayBeReleasedUntilThatFails) {
    EXPECT_EQ(TheDesktop->LoadLibrary(u"NoSuchLibrary"), 0);
    const LibraryHandle library = TheDesktop->LoadLibrary(u"DesktopProbe");
    ASSERT_NE(library, 0);
    EXPECT_EQ(TheDesktop->LoadLibrary(u"DesktopProbe"), library);
    for (const bool released : {true, true, false, false}) EXPECT_EQ(TheDesktop->ReleaseLibrary(library), released);
    const auto answer = reinterpret_cast<int (*)()>(TheDesktop->FindSymbol(u"DesktopProbe", "probe_Answer"));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    EXPECT_EQ(TheDesktop->FindSymbol(u"DesktopProbe", "probe_Question"), nullptr);
}

TEST_F(QtDesktopTest, TheNumberOfProcessorsIsKnownWhereItIsNotSet) {
    unsetenv("NUMBER_OF_PROCESSORS");
    EXPECT_GE(std::stoi(ToUtf8(TheDesktop->EnvironmentValue("NUMBER_OF_PROCESSORS").value_or(u"0"))), 1);
    setenv("NUMBER_OF_PROCESSORS", "x3", 1);
    EXPECT_EQ(TheDesktop->EnvironmentValue("NUMBER_OF_PROCESSORS"), u"x3");
    EXPECT_EQ(TheDesktop->EnvironmentValue("QUARNEL_NO_SUCH_VARIABLE"), std::nullopt);
}

// What a screen reader finds.

QAccessibleInterface* FindNamed(QAccessibleInterface* parent, const QString& name) {
    for (int i = 0; parent != nullptr && i < parent->childCount(); ++i) {
        QAccessibleInterface* child = parent->child(i);
        if (child->text(QAccessible::Name) == name) return child;
        if (QAccessibleInterface* found = FindNamed(child, name)) return found;
    }
    return nullptr;
}

TEST_F(QtDesktopTest, AScreenReaderFindsControlsItemsAndTheAnnouncement) {
    Main.OnDescribe = [] {
        return std::vector<AccessibleItem>{{u"e2, white pawn", 182, 264, 41, 41}, {u"e4, empty", 182, 182, 41, 41}};
    };
    Main.Announcement = u"White: e4";
    QAccessibleInterface* window = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->windowTitle() == QLatin1String("Sample")) window = QAccessible::queryAccessibleInterface(widget);
    }
    const auto press = [&](const char* name) {
        QAccessibleInterface* part = FindNamed(window, QString::fromLatin1(name));
        ASSERT_NE(part, nullptr) << name;
        EXPECT_EQ(part->role(), QAccessible::Button);
        part->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        TheDesktop->ProcessEvents();
    };
    press("Press me");
    EXPECT_THAT(TakeLog(), ElementsAre("button down 8,8 b1", "button up 8,8 b1", "button click"));
    press("e2, white pawn");
    EXPECT_THAT(TakeLog(), ElementsAre("form down 202,284 b1", "form up 202,284 b1", "form click"));
    const Rectangle area = User.Area(Window).value_or(Rectangle());
    EXPECT_EQ(FindNamed(window, "e4, empty")->rect(), QRect(area.Left + 182, area.Top + MenuHeight() + 182, 41, 41));
    for (const char* name : {"Move: e4", "White: e4", "Moves"}) EXPECT_NE(FindNamed(window, name), nullptr) << name;
    Strip.Visible = false;
    EXPECT_EQ(FindNamed(window, "Press me"), nullptr);
}

// On a display with two pixels for each of the program's; run by itself with --scale=2.
class SharpDisplayTest : public QtDesktopTest {};

TEST_F(SharpDisplayTest, StretchesTheFrameAtTheDisplaysOwnResolution) {
    if (qgetenv("QT_SCALE_FACTOR") != "2") GTEST_SKIP() << "this display has one pixel a point";
    Surface lines(FrameSize, FrameSize, Rgb(10, 20, 30));
    for (int i = 0; i < FrameSize * FrameSize; i += 3) lines.Pixels()[i] = Rgb(200, 100, 50);
    TheDesktop->Present(Main, lines, FrameSize, FrameSize, FrameSize, FrameSize);
    const Surface expected = StretchBlt(lines, FrameSize, FrameSize, 2 * FrameSize, 2 * FrameSize);
    EXPECT_TRUE(User.WaitUntil([&] {
        const Surface seen = User.GrabWindow(Window);
        if (seen.Width() != 2 * InnerWidth || seen.Height() != 2 * (InnerHeight + MenuHeight())) return false;
        for (int y = 0; y < 2 * 320; ++y) {
            for (int x = 0; x < 2 * InnerWidth; ++x) {
                if (seen.At(x, y + 2 * MenuHeight()) != expected.At(x, y)) return false;
            }
        }
        return true;
    }));
}

} // namespace
} // namespace quarnel

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    using namespace quarnel;
    TheDisplay = VirtualDisplay::Start();
    TheDisplay->EnterEnvironment();
    if (argc > 1 && std::string(argv[1]) == "--scale=2") setenv("QT_SCALE_FACTOR", "2", 1);
    TheDesktop = MakeQtDesktop(argc, argv);
    const int result = RUN_ALL_TESTS();
    TheDesktop.reset();
    TheDisplay.reset();
    return result;
}
