// The real desktop as the program finds it: a form with one of everything, used by real events, notes what happens.
//
// What the program's own window shows of it is left to the tests that use the program.
#include "platform/qt/QtDesktop.h"
#include "platform/Stretch.h"

#include "controls/MessageBox.h"
#include "window/WindowDriver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QCursor>
#include <QMenuBar>
#include <QMouseEvent>
#include <QTimer>
#include <QWidget>

#include <sstream>
#include <thread>

// What screen readers are told. In the place of the toolkit's functions, which tell nobody where none listens.
static std::vector<std::string> Told;
bool QAccessible::isActive() {
    return true;
}
void QAccessible::updateAccessibility(QAccessibleEvent* event) {
    const QAccessibleInterface* part = event->accessibleInterface();
    const char* state = event->type() != StateChanged ? "" : part->state().checked ? " on" : " off";
    Told.push_back(part->text(Name).toStdString() + state);
}

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using xdriver::WindowDriver;
using xdriver::WindowId;

constexpr int InnerWidth = 361;
constexpr int InnerHeight = 362;
constexpr int FrameSize = 366;
constexpr FrameView View{FrameSize, FrameSize, FrameSize, FrameSize};
constexpr Rectangle All{0, 0, FrameSize, FrameSize};
constexpr Colour Ground = Rgb(10, 20, 30);

// One desktop for all tests, as a process has only one.
std::unique_ptr<Desktop> TheDesktop;

class QtDesktopTest : public testing::Test {
  protected:
    QtDesktopTest() {
        Strip.Place(18.75, 320, 96, 20.5);
        Strip.BackColor = Rgb(192, 64, 0);
        Main.Add(Strip);
        Button.Place(10, 2, 16, 16);
        Button.ToolTip = u"Press me";
        Button.Stretch = true;
        Button.Image = MakePicture(Surface(16, 16, Rgb(0, 0, 255)));
        Strip.Add(Button);
        Caption.Place(150, 320, 120, 18);
        Caption.Caption = u"Move: e4";
        Caption.ForeColor = ColourWhite;
        Main.Add(Caption);
        Moves.Add(Back);
        Main.AddMenu(Moves);
        Main.Caption = u"Sample";
        TheDesktop->Attach(Main);
        const int menu = MenuHeight();
        Main.OuterWidth = InnerWidth * 15;
        Main.OuterHeight = (InnerHeight + menu) * 15;
        Box.Caption = u"Box";
        Box.BackColor = Rgb(206, 206, 206);
        Box.OuterWidth = 200 * 15;
        Box.OuterHeight = 100 * 15;
        TheDesktop->Attach(Box);
        for (Control* control : std::initializer_list<Control*>{&Main, &Button}) {
            control->OnMouseDown = Note(*control, "down");
            control->OnMouseUp = Note(*control, "up");
            control->OnClick = [this, control] { Log.push_back(control->Name + " click"); };
        }

        User.BetweenLooks = [] {
            TheDesktop->ProcessEvents();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        };
        User.MoveOnScreen(1200, 1000);
        TheDesktop->Present(Main, Surface(FrameSize, FrameSize, Ground), View, All);
        Main.Visible = true;
        Window = User.WaitForWindow("Sample");
        EXPECT_TRUE(User.Activate(Window));
        EXPECT_TRUE(User.WaitUntil([&] { return PixelAt(50, 100) == Ground; }));
        Log.clear();
    }
    ~QtDesktopTest() override {
        TheDesktop->Detach(Box);
        TheDesktop->Detach(Main);
        EXPECT_TRUE(User.WaitUntil([&] { return User.FindWindow("Sample") == 0; }));
    }

    // Notes "form down 10,20 b1", "button click", ...
    std::function<void(const PointerEvent&)> Note(Control& control, const char* what) {
        return [this, &control, what](const PointerEvent& event) {
            std::ostringstream entry;
            entry << control.Name << ' ' << what << ' ' << event.X << ',' << event.Y << " b" << int(event.Button);
            Log.push_back(entry.str());
        };
    }
    std::vector<std::string> TakeLog() { return std::exchange(Log, {}); }
    bool WaitForLog(const std::string& entry) {
        return User.WaitUntil([&] { return std::find(Log.begin(), Log.end(), entry) != Log.end(); });
    }

    static QWidget* Canvas(const char* title = "Sample") {
        for (QWidget* widget : QApplication::allWidgets()) {
            const bool ours = widget->window()->windowTitle() == QLatin1String(title);
            if (ours && widget->inherits("quarnel::FormCanvas")) return widget;
        }
        throw std::runtime_error("no canvas");
    }

    // Distance from the window's top to the form's inner area, in which the positions below lie.
    int MenuHeight() { return TheDesktop->OuterSize(Main).Height - TheDesktop->InnerSize(Main).Height; }
    void MoveTo(int x, int y) { User.MoveTo(Window, x, y + MenuHeight()); }
    void Click(int x, int y, int button = 1) { User.Click(Window, x, y + MenuHeight(), button); }
    Colour PixelAt(int x, int y) {
        const Surface window = User.GrabWindow(Window);
        return window.Width() >= InnerWidth ? window.At(x, y + MenuHeight()) : 0;
    }

    Form Main{"form", FormBorder::Framed};
    Control Strip{ControlKind::Picture, "strip"};
    Control Button{ControlKind::Image, "button"};
    Control Caption{ControlKind::Label, "caption"};
    MenuItem Moves{"moves", u"Moves"};
    MenuItem Back{"back", u"Back"};
    Form Box{"box", FormBorder::None};
    std::vector<std::string> Log;
    WindowDriver User;
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
                                       "form click", "button down 4.25,6 b1", "button up 4.25,6 b1", "button click"));
}

// Events as the toolkit sends them now and then, but no device can be made to.
TEST_F(QtDesktopTest, AStrangeOrderOfPointerEventsIsPutRight) {
    QWidget* const canvas = Canvas();
    Main.OnMouseMove = Note(Main, "move");
    // A press where the pointer was never seen before: the move to it comes first.
    const QPointF place(50, 60);
    QMouseEvent press(QEvent::MouseButtonPress, place, place, canvas->mapToGlobal(place), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(canvas, &press);
    TheDesktop->ProcessEvents();
    EXPECT_THAT(TakeLog(), ElementsAre("form move 50,60 b0", "form down 50,60 b1"));
    // Its release is lost, and the next move makes up for it.
    MoveTo(51, 61);
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
    Strip.BorderColor = ColourWhite;
    EXPECT_TRUE(User.WaitUntil([&] { return PixelAt(19, 320) == ColourWhite && PixelAt(114, 339) == ColourWhite; }));
    EXPECT_TRUE(PixelAt(20, 321) == Strip.BackColor && PixelAt(113, 338) == Strip.BackColor);
    Strip.Visible = false;
    EXPECT_TRUE(User.WaitUntil([&] { return PixelAt(30, 330) == Ground; }));
}

TEST_F(QtDesktopTest, ALargerWindowHasItsGroundBeforeItIsPainted) {
    Main.OuterWidth = 2.0 * InnerWidth * 15;
    QCursor::pos(); // asks the server, after the new size
    User.BetweenLooks = nullptr;
    EXPECT_TRUE(User.WaitUntil([&] { return PixelAt(2 * InnerWidth - 10, 100) == Main.BackColor; }));
}

TEST_F(QtDesktopTest, ABoxIsCutToItsOutlineAndCarriedByItsTitle) {
    const std::vector<Rectangle> rectangles = {{7, 1, 194, 2}, {5, 2, 196, 3}, {0, 3, 200, 96}, {8, 96, 192, 100}};
    TheDesktop->ShapeForm(Box, rectangles);
    Box.OnMouseMove = [&](const PointerEvent& event) {
        if (event.Button == PointerButton::Left) TheDesktop->MoveForm(Box);
    };
    Box.OnMouseUp = [&](const PointerEvent&) { Box.Unload(); };
    Surface picture;
    bool carried = false;
    std::thread user([&] {
        WindowDriver hand;
        const WindowId box = hand.WaitForWindow("Box");
        const Rectangle before = hand.Area(box).value_or(Rectangle());
        hand.MoveTo(box, 50, 10);
        hand.Press();
        hand.MoveOnScreen(before.Left + 50 - 70, before.Top + 10 + 60);
        carried = hand.WaitUntil([&] {
            const Rectangle now = hand.Area(box).value_or(before);
            picture = hand.GrabWindow(box);
            return now.Left == before.Left - 70 && now.Top == before.Top + 60 && picture.At(100, 50) == Box.BackColor;
        });
        hand.Release();
    });
    TheDesktop->ShowModal(Box);
    user.join();
    EXPECT_TRUE(carried);
    const QImage painted = Canvas("Box")->window()->grab().toImage();
    for (const auto& [x, y] : {std::pair{7, 1}, {193, 1}, {5, 2}, {0, 3}, {199, 95}, {8, 96}, {191, 99}}) {
        EXPECT_EQ(picture.At(x, y), Box.BackColor) << x << "," << y;
    }
    for (const auto& [x, y] : {std::pair{100, 0}, {6, 1}, {194, 1}, {4, 2}, {199, 2}, {7, 96}, {192, 99}}) {
        EXPECT_NE(picture.At(x, y), Box.BackColor) << x << "," << y;
        EXPECT_EQ(painted.pixelColor(x, y).alpha(), 0) << "for desktops that cut no windows";
    }
}

TEST_F(QtDesktopTest, AMenuShowsWhichItemsAreCheckedAndEnabled) {
    const auto* menu = Canvas()->window()->findChild<QMenuBar*>()->actions().front()->menu();
    for (const bool on : {true, false}) {
        Back.Checked = on;
        Back.Enabled = on;
        TheDesktop->ProcessEvents();
        const QAction* item = menu->actions().front();
        EXPECT_EQ(item->isCheckable() && item->isChecked(), on);
        EXPECT_EQ(item->isEnabled(), on);
    }
}

// Processing does not return to the program before; the pointer's release, which the menu takes, is made up for.
TEST_F(QtDesktopTest, AnOpenMenuHoldsTheProgramUntilItIsClosedOrACommandComesFromElsewhere) {
    auto* menu = Canvas()->window()->findChild<QMenuBar*>()->actions().front()->menu();
    Back.OnClick = [&] { Log.push_back("back"); };
    const std::pair<std::function<void()>, const char*> ends[] = {
        {[&] { menu->actions().front()->trigger(); }, "back"},
        {[&] { User.Chord("Escape"); }, nullptr},
        {[&] {
             User.Release();
             User.Chord("Escape");
         },
         "form up 20,30 b1"},
    };
    for (const auto& [end, entry] : ends) {
        const bool drags = entry == ends[2].second;
        MoveTo(20, 30);
        if (drags) {
            User.Press();
            EXPECT_TRUE(WaitForLog("form down 20,30 b1"));
        }
        Log.clear();
        int looks = 0;
        bool peeked = false;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&, &end = end] {
            if (!menu->isVisible() || ++looks != 3) return;
            peeked = TheDesktop->PeekEvent();
            end();
        });
        timer.start(1);
        menu->popup(Canvas()->mapToGlobal(QPoint(150, 100)));
        TheDesktop->ProcessEvents();
        EXPECT_FALSE(menu->isVisible());
        EXPECT_GE(looks, 3);
        EXPECT_TRUE(peeked);
        EXPECT_TRUE(entry == nullptr ? Log.empty() : WaitForLog(entry)) << (entry == nullptr ? "" : entry);
        User.Release();
    }
}

TEST_F(QtDesktopTest, TheMenuBarHasOneEdgeInEveryStyleAndRoomForItsTitlesInEveryWindow) {
    auto* bar = Canvas()->window()->findChild<QMenuBar*>();
    for (const char* style : {"windows", "fusion"}) {
        QApplication::setStyle(QString::fromLatin1(style));
        for (const int shade : {40, 240}) {
            QApplication::setPalette(QPalette(QColor(shade, shade, shade)));
            const QImage picture = bar->grab().toImage();
            const int top = picture.height() - 4; // "Moves" has nothing so low
            EXPECT_NE(picture.pixel(0, top + 3), picture.pixel(0, top + 2)) << style;
            const QImage row = picture.copy(0, top, picture.width(), 4);
            EXPECT_EQ(row, picture.copy(0, top, 1, 4).scaled(row.size())) << style;
        }
    }
    Moves.Caption = Text(30, u'm');
    Main.OuterWidth = 300 * 15;
    TheDesktop->ProcessEvents();
    const QRect title = bar->actionGeometry(bar->actions().front());
    EXPECT_TRUE(title.width() > 200 && title.right() < 300) << title.right();
}

TEST_F(QtDesktopTest, TextIsMeasuredAsItIsDrawn) {
    const FontChoice font{u"Tahoma", 8, false};
    const Size one = TheDesktop->MeasureText(u"Move", font, 0);
    const Size two = TheDesktop->MeasureText(u"Move\r\nMove", font, 0);
    EXPECT_GT(TheDesktop->MeasureText(u"Move  ", font, 0).Width, one.Width);
    EXPECT_EQ(two.Width, one.Width);
    EXPECT_NEAR(two.Height, 2 * one.Height, 1);
    EXPECT_EQ(TheDesktop->MeasureText(u"Move Move", font, one.Width + 2).Height, two.Height);

    Surface measured(one.Width, one.Height);
    TheDesktop->DrawText(measured, 0, 0, u"Move", font, ColourWhite);
    EXPECT_FALSE(measured == Surface(one.Width, one.Height));
    Surface expected(60, 30);
    BitBlt(expected, 5, 4, one.Width, one.Height, measured, 0, 0, RasterOp::SrcCopy);
    Surface board(60, 30);
    TheDesktop->DrawText(board, 5, 4, u"Move", font, ColourWhite);
    EXPECT_EQ(board, expected);

    // Nor does a label lose any of it, however many pixels a point the display has.
    Caption.Caption = u"Quarnel Chess";
    Caption.Font = FontChoice{u"Verdana", 8.25, false};
    Caption.Width = TheDesktop->MeasureText(Caption.Caption, Caption.Font, 0).Width;
    const QImage label = Canvas()->grab().toImage();
    Caption.Width = 200;
    EXPECT_EQ(label, Canvas()->grab().toImage());
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

TEST_F(QtDesktopTest, AScreenReaderFindsControlsItemsAndTheAnnouncementAndHearsOfTheirChanges) {
    std::vector<AccessibleItem> items{{u"e2, white pawn", 182, 264, 41, 41}, {u"e4, empty", 182, 182, 41, 41}};
    Main.OnDescribe = [&] { return items; };
    Main.Announce(u"White: e4");
    Strip.Signals = u"Your turn";
    QAccessibleInterface* const window = QAccessible::queryAccessibleInterface(Canvas()->window());
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
    EXPECT_THAT(TakeLog(), ElementsAre("form down 202.5,284.5 b1", "form up 202.5,284.5 b1", "form click"));
    const Rectangle area = User.Area(Window).value_or(Rectangle());
    EXPECT_EQ(FindNamed(window, "e4, empty")->rect(), QRect(area.Left + 182, area.Top + MenuHeight() + 182, 41, 41));
    for (const char* name : {"Move: e4", "White: e4", "Moves"}) EXPECT_NE(FindNamed(window, name), nullptr) << name;

    TheDesktop->ProcessEvents();
    Told.clear();
    std::swap(items[0].Name, items[1].Name);
    Strip.Visible = false;
    Main.Announce(u"White: e4");
    TheDesktop->ProcessEvents();
    EXPECT_THAT(std::exchange(Told, {}), ElementsAre("Your turn off", "e4, empty", "e2, white pawn", "White: e4"));
    EXPECT_EQ(FindNamed(window, "Press me"), nullptr);
    EXPECT_FALSE(FindNamed(window, "Your turn")->state().checked);
    Caption.Caption = u"Move: e5";
    Main.Announce(u"White: e4");
    TheDesktop->ProcessEvents();
    EXPECT_THAT(std::exchange(Told, {}), ElementsAre("Move: e5", "White: e4"));
}

TEST_F(QtDesktopTest, AScreenReaderFindsAMessageModalWithItsTitleOnceAndOneButton) {
    MessageBox messages(*TheDesktop);
    const std::function<std::string(QAccessibleInterface*)> names = [&](QAccessibleInterface* parent) {
        const std::string name = parent->text(QAccessible::Name).toStdString();
        std::string all = name.empty() ? "" : parent->role() == QAccessible::Button ? "[" + name + "]" : name + ".";
        for (int i = 0; i < parent->childCount(); ++i) all += names(parent->child(i));
        return all;
    };
    QTimer::singleShot(0, [&] {
        QAccessibleInterface* box = QAccessible::queryAccessibleInterface(Canvas("Quarnel Chess")->window());
        EXPECT_TRUE(box->role() == QAccessible::Dialog && box->state().modal);
        EXPECT_EQ(names(box), "Quarnel Chess.Checkmate!  .[OK]Checkmate!  .");
        FindNamed(box, "OK")->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    });
    EXPECT_EQ(messages.MsgBoxXP(u"Checkmate!"), 6);
}

// On a display with two pixels for each of the program's.
class SharpDisplayTest : public QtDesktopTest {};

TEST_F(SharpDisplayTest, StretchesTheFrameAtTheDisplaysOwnResolution) {
    if (qgetenv("QT_SCALE_FACTOR") != "2") GTEST_SKIP() << "this display has one pixel a point";
    Surface lines(FrameSize, FrameSize, Rgb(10, 20, 30));
    for (int i = 0; i < FrameSize * FrameSize; i += 3) lines.Pixels()[i] = Rgb(200, 100, 50);
    TheDesktop->Present(Main, lines, View, All);
    const Surface frame = StretchBlt(lines, FrameSize, FrameSize, 2 * FrameSize, 2 * FrameSize);
    Surface expected(2 * InnerWidth, 2 * 320); // above the strip
    BitBlt(expected, 0, 0, expected.Width(), expected.Height(), frame, 0, 0, RasterOp::SrcCopy);
    Surface seen(expected.Width(), expected.Height());
    EXPECT_TRUE(User.WaitUntil([&] {
        const Surface window = User.GrabWindow(Window);
        BitBlt(seen, 0, 0, seen.Width(), seen.Height(), window, 0, 2 * MenuHeight(), RasterOp::SrcCopy);
        return seen == expected;
    }));
}

} // namespace
} // namespace quarnel

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    using namespace quarnel;
    TheDesktop = MakeQtDesktop(argc, argv);
    const int result = RUN_ALL_TESTS();
    TheDesktop.reset();
    return result;
}
