#include "platform/qt/QtDesktop.h"

#include "SampleForm.h"
#include "support/VirtualDisplay.h"
#include "support/WindowDriver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QWidget>

#include <atomic>
#include <fstream>
#include <thread>

#include <unistd.h>

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using xdriver::VirtualDisplay;
using xdriver::WindowDriver;
using xdriver::WindowId;

// One display and one desktop for all tests, as a process has only one.
std::unique_ptr<VirtualDisplay> TheDisplay;
std::unique_ptr<Desktop> TheDesktop;

class QtDesktopTest : public testing::Test {
  protected:
    QtDesktopTest() {
        User.BetweenLooks = [] {
            TheDesktop->ProcessEvents();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        };
        User.MoveTo(Root, 1200, 1000);
        Sample.Present(SampleFrame(1));
        Sample.Main.Visible = true;
        Window = User.WaitForWindow("Sample");
        EXPECT_NE(Window, 0U);
        User.Activate(Window);
        EXPECT_TRUE(User.WaitUntil([&] { return User.HasKeys(Window) && ShowsFrame(SampleFrame(1)); }));
        Sample.TakeLog();
    }

    // The next test must not find this one's window.
    void TearDown() override {
        Sample.Main.Visible = false;
        EXPECT_TRUE(User.WaitUntil([&] { return User.FindWindow("Sample") == 0; }));
    }

    // Distance from the window's top to the form's inner area.
    int MenuHeight() { return TheDesktop->OuterSize(Sample.Main).Height - TheDesktop->InnerSize(Sample.Main).Height; }
    Surface InnerPixels() {
        auto area = User.Area(Window).value_or(Rectangle());
        area.Top += MenuHeight();
        return User.Grab(area);
    }
    // Whether the frame is on the screen to the bit, as far as no control covers it.
    bool ShowsFrame(const Surface& frame) {
        const Surface seen = InnerPixels();
        if (seen.Width() != SampleWidth || seen.Height() != SampleHeight) return false;
        for (int y = 0; y < 320; ++y) {
            for (int x = 0; x < SampleWidth; ++x) {
                if (seen.At(x, y) != frame.At(x, y)) return false;
            }
        }
        return true;
    }
    void MoveTo(int x, int y) { User.MoveTo(Window, x, y + MenuHeight()); }
    bool WaitForLog(const std::string& entry) {
        return User.WaitUntil(
            [&] { return std::find(Sample.Log.begin(), Sample.Log.end(), entry) != Sample.Log.end(); });
    }
    // Lets the events of a click reach the program and be delivered; whatever was dropped has been dropped then.
    void ExpectQuiet() {
        Sample.NoteMoves = true;
        MoveTo(3, 3);
        MoveTo(2, 2);
        EXPECT_TRUE(WaitForLog("form move 2,2"));
        std::erase_if(Sample.Log, [](const std::string& entry) { return entry.find(" move ") != std::string::npos; });
        EXPECT_THAT(Sample.TakeLog(), IsEmpty());
    }
    // Opens the menu whose caption is at x in the bar and gives its window.
    WindowId OpenMenu(int x) {
        User.Click(Window, x, MenuHeight() / 2);
        EXPECT_TRUE(User.WaitUntil([&] { return !User.UnmanagedWindows().empty(); }));
        const auto open = User.UnmanagedWindows();
        return open.empty() ? 0 : open.back();
    }

    static constexpr WindowId Root = 0;
    SampleForm Sample{*TheDesktop};
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
    EXPECT_THAT(Sample.Log, IsEmpty());
    EXPECT_TRUE(User.WaitUntil([&] {
        TheDesktop->ProcessEvents();
        return !Sample.Log.empty() && Sample.Log.back() == "form down 20,30 b1";
    }));
    EXPECT_FALSE(TheDesktop->PeekEvent());
    User.Release();
    EXPECT_TRUE(User.WaitUntil([] { return TheDesktop->PeekEvent(); }));
}

TEST_F(QtDesktopTest, AWaitSleepsUntilTheUserDoesSomething) {
    TheDesktop->ProcessEvents();
    const std::string status = "/proc/self/task/" + std::to_string(gettid()) + "/status";
    bool slept = false;
    std::thread user([&] {
        // Asleep is who has not been woken up between many looks.
        const auto wakeUps = [&] {
            std::ifstream file(status);
            std::string line;
            while (std::getline(file, line) && !line.starts_with("voluntary_ctxt_switches")) {
            }
            return line;
        };
        WindowDriver hand(TheDisplay->Name());
        std::string before;
        int same = 0;
        slept = hand.WaitUntil([&] {
            const std::string now = wakeUps();
            same = now == std::exchange(before, now) ? same + 1 : 0;
            return same == 40;
        });
        hand.MoveTo(Window, 20, 30 + MenuHeight());
    });
    TheDesktop->WaitEvent();
    user.join();
    EXPECT_TRUE(slept);
    EXPECT_THAT(Sample.Log, IsEmpty());
    TheDesktop->ProcessEvents();
    EXPECT_THAT(Sample.Log, Not(IsEmpty()));
}

TEST_F(QtDesktopTest, ThePointerIsFollowedWithAndWithoutAButton) {
    MoveTo(20, 30);
    EXPECT_TRUE(WaitForLog("form move 20,30"));
    User.Press();
    EXPECT_TRUE(WaitForLog("form down 20,30 b1"));
    MoveTo(25, 35);
    EXPECT_TRUE(WaitForLog("form move 25,35 b1"));
    MoveTo(-40, 500);
    EXPECT_TRUE(WaitForLog("form move -40,500 b1"));
    User.Release();
    EXPECT_TRUE(WaitForLog("form up -40,500 b1"));
    EXPECT_EQ(Sample.Log.back(), "form up -40,500 b1") << "a release outside is no click";
    MoveTo(20, 30);
    User.Press(3);
    User.Release(3);
    EXPECT_TRUE(WaitForLog("form down 20,30 b2"));
    EXPECT_TRUE(WaitForLog("form up 20,30 b2"));
}

TEST_F(QtDesktopTest, TheSecondPressOfADoubleClickIsAPress) {
    Sample.NoteMoves = false;
    MoveTo(20, 30);
    for (int i = 0; i < 2; ++i) {
        User.Press();
        User.Release();
    }
    EXPECT_TRUE(User.WaitUntil([&] { return Sample.Log.size() >= 6; }));
    EXPECT_THAT(Sample.TakeLog(), ElementsAre("form down 20,30 b1", "form up 20,30 b1", "form click",
                                              "form down 20,30 b1", "form up 20,30 b1", "form click"));
}

TEST_F(QtDesktopTest, AControlIsPressedInItsOwnPixels) {
    Sample.NoteMoves = false;
    MoveTo(18 + 10 + 5, 320 + 2 + 6);
    User.Press();
    User.Release();
    EXPECT_TRUE(WaitForLog("button click"));
    EXPECT_THAT(Sample.TakeLog(), ElementsAre("button down 4,6 b1", "button up 4,6 b1", "button click"));
}

TEST_F(QtDesktopTest, TheLastPresentedFrameStaysOnTheScreen) {
    for (const Colour seed : {2U, 3U}) {
        Sample.Present(SampleFrame(seed));
        EXPECT_TRUE(User.WaitUntil([&] { return ShowsFrame(SampleFrame(seed)); }));
    }
    const Rectangle area = User.Area(Window).value_or(Rectangle());
    const WindowId cover = User.Cover(area, Rgb(1, 2, 3));
    EXPECT_EQ(User.PixelAt(Window, 50, 100), Rgb(1, 2, 3));
    User.RemoveCover(cover);
    EXPECT_TRUE(User.WaitUntil([&] { return ShowsFrame(SampleFrame(3)); }));
    Sample.Main.Visible = false;
    EXPECT_TRUE(User.WaitUntil([&] { return User.FindWindow("Sample") == 0; }));
    Sample.Main.Visible = true;
    Window = User.WaitForWindow("Sample");
    EXPECT_TRUE(User.WaitUntil([&] { return ShowsFrame(SampleFrame(3)); }));
}

TEST_F(QtDesktopTest, ControlsLieOverTheFrameWithTheirEdgesRoundedOnce) {
    const Surface frame = SampleFrame(1);
    EXPECT_TRUE(User.WaitUntil([&] { return InnerPixels().At(19, 320) == Rgb(192, 64, 0); }));
    Surface seen = InnerPixels();
    EXPECT_EQ(seen.At(18, 325), frame.At(18, 325)); // 18.75 is nearer to 19
    EXPECT_EQ(seen.At(114, 325), Rgb(192, 64, 0));  // and 114.75 to 115
    EXPECT_EQ(seen.At(115, 325), frame.At(115, 325));
    EXPECT_EQ(seen.At(30, 339), Rgb(192, 64, 0)); // 340.5 goes to the even 340
    EXPECT_EQ(seen.At(30, 340), frame.At(30, 340));
    EXPECT_EQ(seen.At(29, 322), Rgb(0, 0, 255));
    int white = 0;
    for (int y = 320; y < 338; ++y) {
        for (int x = 150; x < 270; ++x) white += (seen.At(x, y) & 0xE0E0E0U) == 0xE0E0E0U ? 1 : 0;
    }
    EXPECT_GT(white, 20) << "the label's text";
    EXPECT_EQ(seen.At(268, 336), frame.At(268, 336)) << "a label has no background";

    Sample.Strip.Visible = false;
    EXPECT_TRUE(User.WaitUntil([&] { return InnerPixels().At(30, 330) == frame.At(30, 330); }));
}

TEST_F(QtDesktopTest, TheWindowHasTheSizeItIsGiven) {
    for (const double zoom : {0.75, 2.0}) {
        Sample.Resize(zoom);
        const Size outer = TheDesktop->OuterSize(Sample.Main);
        const Size inner = TheDesktop->InnerSize(Sample.Main);
        EXPECT_TRUE(User.WaitUntil([&] {
            const Rectangle area = User.Area(Window).value_or(Rectangle());
            return area.Right - area.Left == outer.Width && area.Bottom - area.Top == outer.Height;
        })) << zoom;
        EXPECT_EQ(inner.Width, zoom == 2 ? 722 : 271);
        if (zoom == 2) {
            EXPECT_EQ(inner.Height, 724);
        }
        EXPECT_EQ(Sample.Main.Width, inner.Width);
        EXPECT_EQ(Sample.Main.Height, inner.Height);
    }
}

TEST_F(QtDesktopTest, ShortcutsObeyEnabled) {
    User.Chord("Ctrl+h");
    User.Chord("Ctrl+b");
    EXPECT_TRUE(WaitForLog("item Back"));
    Sample.Stop.Enabled = true;
    Sample.Back.Enabled = false;
    Sample.TakeLog();
    User.Chord("Ctrl+b");
    User.Chord("Ctrl+h");
    EXPECT_TRUE(WaitForLog("item Stop"));
    EXPECT_THAT(Sample.TakeLog(), ElementsAre("item Stop"));
}

TEST_F(QtDesktopTest, MenuItemsAreChosenWithThePointer) {
    Sample.NoteMoves = false;
    Sample.Back.Checked = true;
    const WindowId menu = OpenMenu(20);
    const Rectangle area = User.Area(menu).value_or(Rectangle());
    const int height = area.Bottom - area.Top;
    User.Click(menu, 30, height * 3 / 5); // "Stop" is disabled: nothing happens, the menu stays
    User.Click(menu, 30, height / 6);
    EXPECT_TRUE(WaitForLog("item Back"));
    EXPECT_THAT(Sample.TakeLog(), ElementsAre("item Back"));
    EXPECT_TRUE(Sample.Back.Checked) << "the check mark is the program's";
    EXPECT_TRUE(User.WaitUntil([&] { return User.UnmanagedWindows().empty(); }));

    User.Click(Window, 75, MenuHeight() / 2); // "Help" has no menu of its own
    EXPECT_TRUE(WaitForLog("item Help"));
}

TEST_F(QtDesktopTest, AMessageBoxKeepsTheOthersFromBeingPressed) {
    bool above = false;
    bool middle = false;
    std::thread user([&] {
        WindowDriver hand(TheDisplay->Name());
        const WindowId box = hand.WaitForWindow("Box");
        const Rectangle area = hand.Area(box).value_or(Rectangle());
        const Rectangle main = hand.Area(Window).value_or(Rectangle());
        middle = std::abs(area.Left + area.Right - main.Left - main.Right) <= 2 &&
                 std::abs(area.Top + area.Bottom - main.Top - main.Bottom) <= 2;
        hand.Activate(Window);
        hand.Click(Window, 10, 50);
        hand.Click(Window, 20, 10); // the menu bar
        hand.Chord("Ctrl+b");
        hand.WaitUntil([&] { return hand.HasKeys(Window); });
        hand.Chord("Ctrl+b");
        above = hand.Higher(box, Window) == 1;
        hand.Click(box, 100, 50);
    });
    Sample.NoteMoves = false;
    Sample.Box.OnClick = [&] {
        Sample.Log.emplace_back("box click");
        Sample.Box.Unload();
    };
    TheDesktop->ShowModal(Sample.Box);
    user.join();
    EXPECT_TRUE(above);
    EXPECT_TRUE(middle);
    EXPECT_THAT(Sample.TakeLog(), ElementsAre("box down 100,50 b1", "box up 100,50 b1", "box click"));
    EXPECT_TRUE(User.WaitUntil([&] { return User.FindWindow("Box") == 0; }));
    EXPECT_THAT(User.UnmanagedWindows(), IsEmpty()) << "no menu opened";
    User.Activate(Window);
    User.Click(Window, 10, 50);
    EXPECT_TRUE(WaitForLog("form click"));
}

TEST_F(QtDesktopTest, ClosingTheMainWindowIsHonouredUnderAMessageBox) {
    std::thread user([&] {
        WindowDriver hand(TheDisplay->Name());
        hand.WaitForWindow("Box");
        hand.AskToClose(Window);
    });
    Sample.Main.OnQueryUnload = [&] {
        Sample.Log.emplace_back("close");
        Sample.Box.Unload(); // so that this test goes on; the program ends its process here
    };
    TheDesktop->ShowModal(Sample.Box);
    user.join();
    EXPECT_THAT(Sample.TakeLog(), testing::Contains("close"));
}

TEST_F(QtDesktopTest, ACloseIsHonouredBeforeTheEventsThatWait) {
    User.BetweenLooks = nullptr;
    User.Click(Window, 10, 50);
    EXPECT_TRUE(User.WaitUntil([] { return TheDesktop->PeekEvent(); }));
    User.AskToClose(Window);
    EXPECT_TRUE(User.WaitUntil([&] {
        TheDesktop->PeekEvent();
        return !Sample.Log.empty();
    }));
    EXPECT_THAT(Sample.Log, ElementsAre("close"));
    TheDesktop->ProcessEvents();
    EXPECT_NE(User.FindWindow("Sample"), 0U) << "only the program takes its window away";
}

TEST_F(QtDesktopTest, ABoxIsCutToItsOutlineAndCarriedByItsTitle) {
    const std::vector<Rectangle> rectangles = {{7, 1, 194, 2}, {5, 2, 196, 3}, {0, 3, 200, 96}, {8, 96, 192, 100}};
    TheDesktop->ShapeForm(Sample.Box, rectangles);
    Sample.Box.OnMouseMove = [&](const PointerEvent& event) {
        if (event.Button == PointerButton::Left) TheDesktop->MoveForm(Sample.Box);
    };
    Sample.Box.OnClick = nullptr;
    Sample.Box.OnMouseUp = [&](const PointerEvent&) { Sample.Box.Unload(); };
    std::vector<Rectangle> outline;
    Rectangle before;
    Rectangle after;
    std::thread user([&] {
        WindowDriver hand(TheDisplay->Name());
        const WindowId box = hand.WaitForWindow("Box");
        outline = hand.Outline(box);
        before = hand.Area(box).value_or(Rectangle());
        hand.MoveTo(box, 50, 10);
        hand.Press();
        const auto carryTo = [&](int x, int y) {
            hand.MoveTo(Root, x + 50, y + 10);
            hand.WaitUntil([&] { return hand.Area(box)->Left == x && hand.Area(box)->Top == y; });
        };
        carryTo(before.Left + 40, before.Top + 30);
        carryTo(before.Left - 70, before.Top + 60);
        after = hand.Area(box).value_or(Rectangle());
        hand.Release();
    });
    TheDesktop->ShowModal(Sample.Box);
    user.join();
    EXPECT_EQ(outline, rectangles);
    EXPECT_EQ(after.Left, before.Left - 70);
    EXPECT_EQ(after.Top, before.Top + 60);
}

TEST_F(QtDesktopTest, ATooltipShowsOverItsControl) {
    MoveTo(18 + 10 + 5, 320 + 2 + 6);
    EXPECT_TRUE(User.WaitUntil([&] {
        // A pointer that rests gets its tooltip; this one is nudged, in case it came too early to rest.
        return !User.UnmanagedWindows().empty();
    }));
    MoveTo(100, 100);
    EXPECT_TRUE(User.WaitUntil([&] { return User.UnmanagedWindows().empty(); }));
}

TEST_F(QtDesktopTest, AFileDialogGivesThePathOrNothing) {
    const std::filesystem::path file = TheDisplay->Home() / "game.txt";
    std::filesystem::remove(file);
    std::ofstream(TheDisplay->Home() / "no-dot") << "x";
    const auto answer = [&](const char* title, const std::string& keys) {
        return std::thread([=, this] {
            WindowDriver hand(TheDisplay->Name());
            const WindowId dialog = hand.WaitForWindow(title);
            hand.Activate(Window);
            hand.WaitUntil([&] { return hand.HasKeys(Window); });
            hand.Chord("Ctrl+b"); // dropped
            hand.Activate(dialog);
            hand.WaitUntil([&] { return hand.HasKeys(dialog); });
            if (keys.empty()) {
                hand.Chord("Escape");
                return;
            }
            for (const char key : keys) {
                hand.Chord(key == '/' ? "slash" : key == '.' ? "period" : key == '-' ? "minus" : std::string(1, key));
            }
            hand.Chord("Return");
        });
    };
    Sample.NoteMoves = false;
    std::filesystem::current_path(TheDisplay->Home());
    std::thread user = answer("Save it", "game.txt");
    const auto saved = TheDesktop->SaveFileDialog(Sample.Main, u"Save it");
    user.join();
    ASSERT_TRUE(saved.has_value());
    EXPECT_EQ(saved->filename(), "game.txt");

    user = answer("Open it", "no-dot");
    const auto opened = TheDesktop->OpenFileDialog(Sample.Main, u"Open it");
    user.join();
    ASSERT_TRUE(opened.has_value());
    EXPECT_EQ(opened->filename(), "no-dot");

    user = answer("Save it", "");
    EXPECT_EQ(TheDesktop->SaveFileDialog(Sample.Main, u"Save it"), std::nullopt);
    user.join();
    EXPECT_THAT(Sample.TakeLog(), IsEmpty()) << "the form behind a dialog takes no presses";
}

TEST_F(QtDesktopTest, ClosingTheMainWindowIsHonouredUnderAFileDialog) {
    std::atomic<bool> closed = false;
    Sample.Main.OnQueryUnload = [&] { closed = true; };
    std::thread user([&] {
        WindowDriver hand(TheDisplay->Name());
        const WindowId dialog = hand.WaitForWindow("Open it");
        hand.AskToClose(Window);
        hand.WaitUntil([&] { return closed.load(); });
        hand.AskToClose(dialog);
    });
    EXPECT_EQ(TheDesktop->OpenFileDialog(Sample.Main, u"Open it"), std::nullopt);
    user.join();
    EXPECT_TRUE(closed);
}

TEST_F(QtDesktopTest, TextIsMeasuredAsItIsDrawn) {
    const FontSpec font{u"Tahoma", 8, false};
    const Size one = TheDesktop->MeasureText(u"Move", font, 0);
    const Size blanks = TheDesktop->MeasureText(u"Move  ", font, 0);
    const Size two = TheDesktop->MeasureText(u"Move\r\nMove", font, 0);
    const Size wrapped = TheDesktop->MeasureText(u"Move Move", font, one.Width + 2);
    EXPECT_GT(blanks.Width, one.Width);
    EXPECT_EQ(two.Width, one.Width);
    EXPECT_NEAR(two.Height, 2 * one.Height, 1);
    EXPECT_EQ(wrapped.Height, two.Height);

    Surface board(60, 30, ColourBlack);
    TheDesktop->DrawText(board, 5, 4, u"Move", font, ColourWhite);
    Rectangle ink{60, 30, 0, 0};
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 60; ++x) {
            if (board.At(x, y) == ColourBlack) continue;
            ink = {std::min(ink.Left, x), std::min(ink.Top, y), std::max(ink.Right, x + 1),
                   std::max(ink.Bottom, y + 1)};
        }
    }
    EXPECT_GE(ink.Left, 5);
    EXPECT_GE(ink.Top, 4);
    EXPECT_LE(ink.Right, 5 + one.Width);
    EXPECT_LE(ink.Bottom, 4 + one.Height);
    EXPECT_GT(ink.Right - ink.Left, one.Width / 2);
}

TEST_F(QtDesktopTest, SettingsAreKeptInTheUsersFolder) {
    EXPECT_EQ(TheDesktop->ReadSetting(u"App", u"Settings", u"WSize", u"1"), u"1");
    TheDesktop->WriteSetting(u"App", u"Settings", u"Wsize", u"2");
    EXPECT_EQ(TheDesktop->ReadSetting(u"App", u"Settings", u"WSize", u"1"), u"2");
    EXPECT_EQ(TheDesktop->ReadSetting(u"Other", u"Settings", u"WSize", u"1"), u"1");
    EXPECT_TRUE(std::filesystem::exists(TheDisplay->Home() / "config" / "quarnel-chess" / "settings.conf"));
}

TEST_F(QtDesktopTest, ALibraryMayBeReleasedUntilThatFails) {
    EXPECT_EQ(TheDesktop->LoadLibrary(u"NoSuchLibrary"), 0);
    EXPECT_EQ(TheDesktop->FindSymbol(u"NoSuchLibrary", "probe_Answer"), nullptr);
    const LibraryHandle library = TheDesktop->LoadLibrary(u"DesktopProbe");
    ASSERT_NE(library, 0);
    EXPECT_EQ(TheDesktop->LoadLibrary(u"DesktopProbe"), library);
    EXPECT_TRUE(TheDesktop->ReleaseLibrary(library));
    EXPECT_TRUE(TheDesktop->ReleaseLibrary(library));
    EXPECT_FALSE(TheDesktop->ReleaseLibrary(library));
    EXPECT_FALSE(TheDesktop->ReleaseLibrary(library));
    EXPECT_FALSE(TheDesktop->ReleaseLibrary(0));
    const auto answer = reinterpret_cast<int (*)()>(TheDesktop->FindSymbol(u"DesktopProbe", "probe_Answer"));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    EXPECT_EQ(TheDesktop->FindSymbol(u"DesktopProbe", "probe_Question"), nullptr);
}

TEST_F(QtDesktopTest, TheNumberOfProcessorsIsKnownWhereItIsNotSet) {
    unsetenv("NUMBER_OF_PROCESSORS");
    const Text cores = TheDesktop->EnvironmentValue("NUMBER_OF_PROCESSORS").value_or(u"");
    EXPECT_GE(std::stoi(ToUtf8(cores)), 1);
    setenv("NUMBER_OF_PROCESSORS", "x3", 1);
    EXPECT_EQ(TheDesktop->EnvironmentValue("NUMBER_OF_PROCESSORS"), u"x3");
    unsetenv("NUMBER_OF_PROCESSORS");
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
    Sample.NoteMoves = false;
    Sample.Main.OnDescribe = [] {
        return std::vector<AccessibleItem>{{u"e2, white pawn", 182, 264, 41, 41}, {u"e4, empty", 182, 182, 41, 41}};
    };
    Sample.Main.Announcement = u"White: e4";
    QWidget* widget = nullptr;
    for (QWidget* candidate : QApplication::topLevelWidgets()) {
        if (candidate->windowTitle() == QLatin1String("Sample")) widget = candidate;
    }
    QAccessibleInterface* window = QAccessible::queryAccessibleInterface(widget);
    ASSERT_NE(window, nullptr);

    QAccessibleInterface* button = FindNamed(window, "Press me");
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->role(), QAccessible::Button);
    ASSERT_NE(button->actionInterface(), nullptr);
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    TheDesktop->ProcessEvents();
    EXPECT_THAT(Sample.TakeLog(), ElementsAre("button down 8,8 b1", "button up 8,8 b1", "button click"));

    QAccessibleInterface* label = FindNamed(window, "Move: e4");
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->role(), QAccessible::StaticText);
    EXPECT_NE(FindNamed(window, "White: e4"), nullptr);
    EXPECT_NE(FindNamed(window, "Moves"), nullptr);

    QAccessibleInterface* square = FindNamed(window, "e2, white pawn");
    ASSERT_NE(square, nullptr);
    const Rectangle area = User.Area(Window).value_or(Rectangle());
    EXPECT_EQ(square->rect(), QRect(area.Left + 182, area.Top + MenuHeight() + 264, 41, 41));
    square->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    TheDesktop->ProcessEvents();
    EXPECT_THAT(Sample.TakeLog(), ElementsAre("form down 202,284 b1", "form up 202,284 b1", "form click"));

    Sample.Strip.Visible = false;
    EXPECT_EQ(FindNamed(window, "Press me"), nullptr);
}

// On a display with two pixels for each of the program's; run by itself with --scale=2.
TEST(SharpDisplayTest, StretchesTheFrameAtTheDisplaysOwnResolution) {
    if (qgetenv("QT_SCALE_FACTOR") != "2") GTEST_SKIP() << "this display has one pixel a point";
    WindowDriver user(TheDisplay->Name());
    user.BetweenLooks = [] { TheDesktop->ProcessEvents(); };
    SampleForm sample(*TheDesktop);
    Surface plain(FrameSize, FrameSize, Rgb(10, 20, 30));
    for (int y = 0; y < FrameSize; y += 2) {
        for (int x = 0; x < FrameSize; ++x) plain.Set(x, y, Rgb(200, 100, 50));
    }
    sample.Present(plain);
    sample.Main.Visible = true;
    const WindowId window = user.WaitForWindow("Sample");
    const Surface expected = StretchBlt(plain, FrameSize, FrameSize, 2 * FrameSize, 2 * FrameSize);
    const int menu = 2 * (TheDesktop->OuterSize(sample.Main).Height - TheDesktop->InnerSize(sample.Main).Height);
    EXPECT_TRUE(user.WaitUntil([&] {
        const Surface seen = user.GrabWindow(window);
        if (seen.Width() != 2 * SampleWidth || seen.Height() != 2 * SampleHeight + menu) return false;
        for (int y = 0; y < 2 * 320; ++y) {
            for (int x = 0; x < 2 * SampleWidth; ++x) {
                if (seen.At(x, y + menu) != expected.At(x, y)) return false;
            }
        }
        return true;
    }));
}

} // namespace
} // namespace quarnel

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    try {
        quarnel::TheDisplay = quarnel::xdriver::VirtualDisplay::Start();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    quarnel::TheDisplay->EnterEnvironment();
    for (int i = 1; i < argc; ++i) {
        if (std::string(argv[i]) == "--scale=2") setenv("QT_SCALE_FACTOR", "2", 1);
    }
    quarnel::TheDesktop = quarnel::MakeQtDesktop(argc, argv);
    const int result = RUN_ALL_TESTS();
    quarnel::TheDesktop.reset();
    quarnel::TheDisplay.reset();
    return result;
}
