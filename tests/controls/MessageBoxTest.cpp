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
        EXPECT_EQ(dialog.Caption1.Caption.Get(), u"Quarnel Chess");
        EXPECT_EQ(dialog.Caption2.Caption.Get(), u"Quarnel Chess");
        EXPECT_TRUE(dialog.img_Icon.Image.Get()->front() == PictureSurface("Icon_Exc"));
        EXPECT_EQ(dialog.lbl_OK.Caption.Get(), u"OK");
        for (const auto& [shown, colour] :
             {std::pair{&dialog.Caption1, ColourBlack}, std::pair{&dialog.Caption2, ColourWhite},
              std::pair{&dialog.lbl_OK, Rgb(0, 0, 255)}, std::pair{&dialog.lbl_Prompt, ColourBlack}}) {
            EXPECT_EQ(shown->ForeColor.Get(), colour) << shown->Name;
        }
        EXPECT_FALSE(dialog.CloseButton.Visible.Get() || dialog.lbl_No.Visible.Get());
        EXPECT_EQ(dialog.IsMsgBox, True);
    });
    EXPECT_EQ(result, 6);
    EXPECT_FALSE(dialog.Visible.Get());
    EXPECT_EQ(dialog.IsMsgBox, False);
}

TEST_F(MessageBoxTest, IsAsLargeAsItsTextAtLeast2000TwipsWideAndSurroundedByTheSkinWithoutGaps) {
    const int okHeight = PictureSurface("Ok_Static").Height();
    for (const TextView message :
         {u"", u"Error!", u"A message that takes quite some room on its line", u"Two\nlines"}) {
        SCOPED_TRACE(ToUtf8(message));
        Open(Text(message), [&] {
            const Size text = desktop.MeasureText(Text(message) + u"  ", dialog.lbl_Prompt.Font, 0);
            EXPECT_EQ(dialog.OuterWidth, std::max(2000, text.Width * 15 + 200));
            EXPECT_EQ(dialog.OuterHeight, (text.Height + 42 + okHeight) * 15 + 500);
            const double width = dialog.OuterWidth / 15;
            const double height = dialog.OuterHeight / 15;
            EXPECT_NEAR(dialog.Ok.Top, 42 + text.Height + 250 / 15.0, 1e-9);
            EXPECT_NEAR(dialog.Ok.Left, (width - dialog.Ok.Width) / 2, 1e-9);
            EXPECT_NEAR(dialog.lbl_OK.Top, dialog.Ok.Top + 55 / 15.0, 1e-9);
            EXPECT_NEAR(dialog.lbl_OK.Left, (width - dialog.lbl_OK.Width) / 2, 1e-9);

            const struct {
                const Control& Piece;
                double Left, Top, Right, Bottom;
            } skin[] = {{dialog.TitleLeft, 0, 0, 12, 28},
                        {dialog.Title, 12, 0, width - 12, 28},
                        {dialog.BLeft, 0, 28, 4, height},
                        {dialog.BRight, width - 4, 28, width, height},
                        {dialog.Bottom, 4, height - 4, width - 4, height},
                        {dialog.BottomLeft, 0, height - 12, 12, height},
                        {dialog.BottomRight, width - 12, height - 12, width, height}};
            for (const auto& [piece, left, top, right, bottom] : skin) {
                EXPECT_NEAR(piece.Left, left, 1e-9) << piece.Name;
                EXPECT_NEAR(piece.Top, top, 1e-9) << piece.Name;
                EXPECT_NEAR(piece.Left + piece.Width, right, 1e-9) << piece.Name;
                EXPECT_NEAR(piece.Top + piece.Height, bottom, 1e-9) << piece.Name;
            }
            // The picture of the right end is not stretched: it shows from the control's left edge on.
            EXPECT_NEAR(dialog.TitleRight.Left + PictureSurface("TitleRight").Width(), width, 1e-9);
            EXPECT_FALSE(dialog.TitleRight.Stretch.Get());
        });
    }
}

TEST_F(MessageBoxTest, IsCutToTheOutlineOfItsSkinsCorners) {
    Open(u"Stalemate!");
    const int w = RoundHalfEven(dialog.OuterWidth / 15);
    const int h = RoundHalfEven(dialog.OuterHeight / 15);
    Surface expected(w, h, ColourBlack);
    for (int x = 0; x < w; ++x) expected.Set(x, 0, 0);
    for (const auto& [name, right, bottom] : {std::tuple{"TitleLeft", false, false},
                                              {"TitleRight", true, false},
                                              {"BottomLeft", false, true},
                                              {"BottomRight", true, true}}) {
        const Surface corner = PictureSurface(name);
        for (int y = 0; y < corner.Height(); ++y) {
            for (int x = 0; x < corner.Width(); ++x) {
                expected.Set(x + (right ? w - corner.Width() : 0), y + (bottom ? h - corner.Height() : 0),
                             corner.At(x, y) >> 24 == 255 ? ColourBlack : 0);
            }
        }
    }
    Surface cut(w, h, 0);
    for (const Rectangle& r : desktop.Outlines[&dialog]) {
        ASSERT_TRUE(r.Left >= 0 && r.Top >= 0 && r.Right <= w && r.Bottom <= h);
        for (int y = r.Top; y < r.Bottom; ++y) {
            for (int x = r.Left; x < r.Right; ++x) cut.Set(x, y, ColourBlack);
        }
    }
    EXPECT_TRUE(cut == expected);

    dialog.OuterWidth = dialog.OuterHeight = 100;
    dialog.CutOutline();
    EXPECT_EQ(dialog.OuterWidth, 1695);
    EXPECT_EQ(dialog.OuterHeight, 615);
}

TEST_F(MessageBoxTest, TheButtonFollowsThePointer) {
    const auto look = [this] { return dialog.Ok.Image.Get(); };
    Open(
        u"Checkmate!",
        [&] {
            for (Control* part : {&dialog.lbl_OK, &dialog.Ok}) {
                Over(*part);
                EXPECT_EQ(look(), dialog.Ok_Over);
                Pass(5, 35);
                EXPECT_EQ(look(), dialog.Ok_Static);
            }
            desktop.Press(dialog, dialog.Ok.Left + 2, dialog.Ok.Top + 2);
            desktop.ProcessEvents();
            EXPECT_EQ(look(), dialog.Ok_Press);
            desktop.Release(dialog, 5, 35); // beside it: no click
            desktop.ProcessEvents();
            EXPECT_EQ(look(), dialog.Ok_Static);
            EXPECT_TRUE(dialog.Loaded.Get());
        },
        &dialog.lbl_OK);
}

TEST_F(MessageBoxTest, IsDraggedByItsTitleWithTheLeftButtonHeld) {
    Open(u"Checkmate!", [this] {
        const auto moves = [this] { return std::count(desktop.Log.begin(), desktop.Log.end(), "move FrmMsg"); };
        Over(dialog.Caption2, PointerButton::Right);
        Over(dialog.lbl_Prompt, PointerButton::Left);
        EXPECT_EQ(moves(), 0);
        Over(dialog.Caption2, PointerButton::Left);
        Pass(dialog.Title.Left + 2, 2, PointerButton::Left);
        EXPECT_EQ(moves(), 2);
    });
}

TEST_F(MessageBoxTest, KeepsTheLastButtonWhenTheDesktopClosesTheDialog) {
    for (const std::int32_t kept : {0, 6}) {
        desktop.Script = {[this] {
            Over(dialog.Ok);
            desktop.Close(dialog);
            desktop.Move(dialog, 1, 1); // something to wake up for
        }};
        EXPECT_EQ(messages.MsgBoxXP(u"Error!"), kept);
        Open(u"Error!", [this] { EXPECT_EQ(dialog.Ok.Image.Get(), dialog.Ok_Static) << "as new"; });
    }
}

} // namespace
} // namespace quarnel
