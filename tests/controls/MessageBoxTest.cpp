#include "controls/MessageBox.h"

#include "base/Numbers.h"
#include "platform/PictureSurface.h"
#include "platform/scripted/ScriptedDesktop.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace quarnel {
namespace {

class MessageBoxTest : public testing::Test {
  protected:
    // Opens a box, runs `look` while it is shown, then answers it with a click on `answer`.
    std::int32_t Open(
        const Text& message, std::function<void()> look = [] {}, Control* answer = nullptr) {
        desktop.Script = {std::move(look), [this, answer] { desktop.Click(answer != nullptr ? *answer : dialog.Ok); }};
        return messages.MsgBoxXP(message);
    }
    void Pass(double x, double y, PointerButton held = PointerButton::None) {
        desktop.Move(dialog, x, y, held);
        desktop.ProcessEvents();
    }
    void Over(Control& control, PointerButton held = PointerButton::None) {
        Pass(control.Left + control.Width / 2, control.Top + control.Height / 2, held);
    }

    ScriptedDesktop desktop;
    MessageBox messages{desktop};
    FrmMsg& dialog = messages.Dialog();
};

TEST_F(MessageBoxTest, ShowsTheMessageWithTwoSpacesAndOneBlueButton) {
    const std::int32_t result = Open(u"Checkmate!", [this] {
        EXPECT_EQ(desktop.Log, (std::vector<std::string>{"beep", "show FrmMsg"}));
        EXPECT_EQ(dialog.lbl_Prompt.Caption.Get(), u"Checkmate!  ");
        EXPECT_EQ(dialog.lbl_Prompt.TextAlignment.Get(), Alignment::Centre);
        EXPECT_EQ(dialog.Caption1.Caption.Get(), u"Quarnel Chess");
        EXPECT_EQ(dialog.Caption2.Caption.Get(), u"Quarnel Chess");
        EXPECT_EQ(dialog.Caption1.ForeColor.Get(), ColourBlack);
        EXPECT_EQ(dialog.Caption2.ForeColor.Get(), ColourWhite);
        EXPECT_TRUE(dialog.img_Icon.Image.Get()->front() == PictureSurface("Icon_Exc"));
        EXPECT_EQ(dialog.lbl_OK.Caption.Get(), u"OK");
        EXPECT_EQ(dialog.lbl_OK.ForeColor.Get(), Rgb(0, 0, 255));
        EXPECT_EQ(dialog.lbl_Prompt.ForeColor.Get(), ColourBlack);
        EXPECT_EQ(dialog.BackColor.Get(), Rgb(206, 206, 206));
        EXPECT_FALSE(dialog.CloseButton.Visible.Get());
        EXPECT_FALSE(dialog.lbl_No.Visible.Get());
        EXPECT_TRUE(dialog.FraInput.Visible.Get());
        EXPECT_EQ(dialog.FraInput.Width, 0) << "nothing to see";
        EXPECT_EQ(dialog.IsMsgBox, True);
    });
    EXPECT_EQ(result, 6);
    EXPECT_FALSE(dialog.Visible.Get());
    EXPECT_EQ(dialog.IsMsgBox, False);
}

TEST_F(MessageBoxTest, IsAsLargeAsItsTextAndAtLeast2000TwipsWide) {
    const int okHeight = PictureSurface("Ok_Static").Height();
    for (const TextView message :
         {u"", u"Error!", u"A message that takes quite some room on its line", u"Two\nlines"}) {
        Open(Text(message), [&] {
            const Size text = desktop.MeasureText(Text(message) + u"  ", dialog.lbl_Prompt.Font, 0);
            EXPECT_EQ(dialog.OuterWidth, std::max(2000, text.Width * 15 + 200));
            EXPECT_EQ(dialog.OuterHeight, (text.Height + dialog.lbl_Prompt.Top + okHeight) * 15 + 500);
            EXPECT_EQ(dialog.lbl_Prompt.Left, 10);
            const double width = dialog.OuterWidth / 15;
            EXPECT_NEAR(dialog.Ok.Top, dialog.lbl_Prompt.Top + text.Height + 250 / 15.0, 1e-9);
            EXPECT_NEAR(dialog.Ok.Left, (width - dialog.Ok.Width) / 2, 1e-9);
            EXPECT_NEAR(dialog.lbl_OK.Top, dialog.Ok.Top + 55 / 15.0, 1e-9);
            EXPECT_NEAR(dialog.lbl_OK.Left, (width - dialog.lbl_OK.Width) / 2, 1e-9);
        });
    }
}

TEST_F(MessageBoxTest, SurroundsItselfWithTheSkinWithoutGaps) {
    Open(u"A message that is wider than the smallest box", [this] {
        const double width = dialog.OuterWidth / 15;
        const double height = dialog.OuterHeight / 15;
        struct Part {
            const Control& Piece;
            double Left, Top, Right, Bottom;
        };
        for (const Part& p : {Part{dialog.TitleLeft, 0, 0, 12, 28}, Part{dialog.Title, 12, 0, width - 12, 28},
                              Part{dialog.BLeft, 0, 28, 4, height}, Part{dialog.BRight, width - 4, 28, width, height},
                              Part{dialog.Bottom, 4, height - 4, width - 4, height},
                              Part{dialog.BottomLeft, 0, height - 12, 12, height},
                              Part{dialog.BottomRight, width - 12, height - 12, width, height}}) {
            EXPECT_NEAR(p.Piece.Left, p.Left, 1e-9) << p.Piece.Name;
            EXPECT_NEAR(p.Piece.Top, p.Top, 1e-9) << p.Piece.Name;
            EXPECT_NEAR(p.Piece.Left + p.Piece.Width, p.Right, 1e-9) << p.Piece.Name;
            EXPECT_NEAR(p.Piece.Top + p.Piece.Height, p.Bottom, 1e-9) << p.Piece.Name;
        }
        // The picture of the right end is not stretched: it shows from the control's left edge on.
        EXPECT_NEAR(dialog.TitleRight.Left + PictureSurface("TitleRight").Width(), width, 1e-9);
        EXPECT_FALSE(dialog.TitleRight.Stretch.Get());
    });
}

TEST_F(MessageBoxTest, IsCutToItsOutline) {
    Open(u"Stalemate!");
    const int w = RoundHalfEven(dialog.OuterWidth / 15);
    const int h = RoundHalfEven(dialog.OuterHeight / 15);
    std::vector<std::pair<int, int>> expected(static_cast<std::size_t>(h), {0, w}); // first and end column of each row
    expected[0] = {0, 0};
    const std::pair<int, int> top[] = {{7, w - 6}, {5, w - 4}, {4, w - 3}, {3, w - 2},
                                       {2, w - 2}, {1, w - 1}, {1, w - 1}};
    std::copy(std::begin(top), std::end(top), expected.begin() + 1);
    const int cut[] = {8, 6, 4, 3, 2, 2, 1, 1};
    for (int i = 0; i < 8; ++i) expected[static_cast<std::size_t>(h - 1 - i)] = {cut[i], w - cut[i]};

    std::vector<std::vector<int>> pixels(static_cast<std::size_t>(h), std::vector<int>(static_cast<std::size_t>(w), 0));
    for (const Rectangle& r : desktop.Outlines[&dialog]) {
        for (int y = r.Top; y < r.Bottom; ++y) {
            for (int x = r.Left; x < r.Right; ++x)
                pixels.at(static_cast<std::size_t>(y)).at(static_cast<std::size_t>(x)) = 1;
        }
    }
    for (int y = 0; y < h; ++y) {
        const auto& [first, end] = expected[static_cast<std::size_t>(y)];
        for (int x = 0; x < w; ++x) {
            ASSERT_EQ(pixels[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)], x >= first && x < end ? 1 : 0)
                << x << "," << y << " of " << w << "x" << h;
        }
    }
}

TEST_F(MessageBoxTest, TheOutlineNeedsA1695By615TwipsWindow) {
    dialog.OuterWidth = 100;
    dialog.OuterHeight = 100;
    dialog.CutOutline();
    EXPECT_EQ(dialog.OuterWidth, 1695);
    EXPECT_EQ(dialog.OuterHeight, 615);
}

TEST_F(MessageBoxTest, TheButtonFollowsThePointer) {
    Open(
        u"Checkmate!",
        [this] {
            EXPECT_EQ(dialog.Ok.Image.Get(), dialog.Ok_Static);
            Pass(20, 60); // the background, the button not hovered yet
            EXPECT_EQ(dialog.Ok.Image.Get(), dialog.Ok_Static);
            for (Control* part : {&dialog.lbl_OK, &dialog.Ok}) {
                Over(*part);
                EXPECT_EQ(dialog.Ok.Image.Get(), dialog.Ok_Over);
                Pass(5, 35);
                EXPECT_EQ(dialog.Ok.Image.Get(), dialog.Ok_Static);
            }
            desktop.Press(dialog, dialog.Ok.Left + 2, dialog.Ok.Top + 2);
            desktop.ProcessEvents();
            EXPECT_EQ(dialog.Ok.Image.Get(), dialog.Ok_Press);
            desktop.Release(dialog, 5, 35); // beside it: no click
            desktop.ProcessEvents();
            EXPECT_EQ(dialog.Ok.Image.Get(), dialog.Ok_Static);
            EXPECT_TRUE(dialog.Loaded.Get());
            Over(dialog.Ok);
        },
        &dialog.lbl_OK);
    Open(u"Checkmate!", [this] { EXPECT_EQ(dialog.Ok.Image.Get(), dialog.Ok_Static) << "as new"; });
}

TEST_F(MessageBoxTest, IsDraggedByItsTitleWithTheLeftButtonHeld) {
    Open(u"Checkmate!", [this] {
        const auto moves = [this] { return std::count(desktop.Log.begin(), desktop.Log.end(), "move FrmMsg"); };
        Over(dialog.Caption2);
        Over(dialog.Caption2, PointerButton::Right);
        Over(dialog.lbl_Prompt, PointerButton::Left);
        EXPECT_EQ(moves(), 0);
        Over(dialog.Caption2, PointerButton::Left);
        Pass(dialog.Title.Left + 2, 2, PointerButton::Left);
        EXPECT_EQ(moves(), 2);
    });
}

TEST_F(MessageBoxTest, ChoosesTheIconByNumberOrTheGivenPicture) {
    const PictureRef own = MakePicture(Surface(3, 3));
    const char* icons[] = {nullptr, "Icon_Cri", "Icon_Exc", "Icon_Info", "Icon_Question"};
    for (int number = 0; number <= 4; ++number) {
        desktop.Script = {[&] {
            const PictureRef& shown = dialog.img_Icon.Image;
            if (icons[number] == nullptr) {
                EXPECT_EQ(shown, nullptr);
            } else {
                EXPECT_TRUE(shown->front() == PictureSurface(icons[number]));
            }
            desktop.Click(dialog.Ok);
        }};
        messages.MsgBoxXP(u"x", u"", 0, number);
        EXPECT_EQ(dialog.Caption2.Caption.Get(), u"Quarnel Chess") << "in place of an empty title";
    }
    desktop.Script = {[&] {
        EXPECT_EQ(dialog.img_Icon.Image.Get(), own);
        EXPECT_EQ(dialog.lbl_Prompt.ForeColor.Get(), Rgb(1, 2, 3));
        desktop.Click(dialog.Ok);
    }};
    messages.MsgBoxXP(u"x", u"Other", 0, 2, True, own, Rgb(1, 2, 3));
    EXPECT_EQ(dialog.Caption1.Caption.Get(), u"Other");
}

TEST_F(MessageBoxTest, KeepsTheLastButtonWhenTheDesktopClosesTheDialog) {
    const auto closed = [this] {
        desktop.Script = {[this] {
            desktop.Close(dialog);
            desktop.Move(dialog, 1, 1); // something to wake up for
        }};
        return messages.MsgBoxXP(u"Error!");
    };
    EXPECT_EQ(closed(), 0);
    Open(u"Error!");
    EXPECT_EQ(closed(), 6);
}

} // namespace
} // namespace quarnel
