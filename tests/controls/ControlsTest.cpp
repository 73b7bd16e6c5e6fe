#include "controls/MessageBox.h"

#include "base/Numbers.h"
#include "controls/SkinnableButton.h"
#include "platform/PictureSurface.h"
#include "platform/scripted/ScriptedDesktop.h"

#include <algorithm>
#include <gmock/gmock.h>

namespace quarnel {
namespace {

using testing::DoubleNear;
using testing::Pointwise;

class MessageBoxTest : public testing::Test {
  protected:
    // Opens a box, runs `look` while it is shown, then answers it with a click on its button.
    std::int32_t Open(const Text& message, std::function<void()> look) {
        desktop.Script = {std::move(look), [this] { desktop.Click(dialog.lbl_OK); }};
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
        const std::tuple<Control&, Text, Colour> labels[] = {{dialog.Caption1, u"Quarnel Chess", ColourBlack},
                                                             {dialog.Caption2, u"Quarnel Chess", ColourWhite},
                                                             {dialog.lbl_Prompt, u"Checkmate!  ", ColourBlack},
                                                             {dialog.lbl_OK, u"OK", Rgb(0, 0, 255)}};
        for (const auto& [label, caption, colour] : labels) {
            EXPECT_EQ(label.Caption.Get(), caption);
            EXPECT_EQ(label.ForeColor.Get(), colour) << label.Name;
        }
        EXPECT_TRUE(dialog.img_Icon.Image.Get()->front() == PictureSurface("Icon_Exc"));
        EXPECT_FALSE(dialog.CloseButton.Visible.Get() || dialog.lbl_No.Visible.Get());
        EXPECT_EQ(dialog.IsMsgBox, True);
    });
    EXPECT_EQ(result, 6);
    EXPECT_FALSE(dialog.Visible.Get());
    EXPECT_EQ(dialog.IsMsgBox, False);
}

TEST_F(MessageBoxTest, GrowsWithItsTextAndIsSurroundedByTheSkinWithoutGaps) {
    const std::tuple<Text, double, double> cases[] = {
        {u"", 2000 / 15.0, 1745 / 15.0},
        {u"A message that takes\nquite some room on its line", 3680 / 15.0, 1985 / 15.0}};
    for (const auto& [message, width, height] : cases) {
        Open(message, [&, width = width, height = height] {
            EXPECT_DOUBLE_EQ(dialog.OuterWidth, width * 15);
            EXPECT_DOUBLE_EQ(dialog.OuterHeight, height * 15);
            const double okTop = height - 625 / 15.0;
            const std::tuple<const Control&, double, double, double, double> pieces[] = {
                {dialog.Ok, width / 2 - 40.5, okTop, width / 2 + 40.5, okTop + 25},
                {dialog.lbl_OK, width / 2 - 6, okTop + 55 / 15.0, width / 2 + 6, okTop + 250 / 15.0},
                {dialog.TitleLeft, 0, 0, 12, 28},
                {dialog.Title, 12, 0, width - 12, 28},
                // The picture of the right end is not stretched: it shows from the control's left edge on.
                {dialog.TitleRight, width - 12, 0, width + 12, 28},
                {dialog.BLeft, 0, 28, 4, height},
                {dialog.BRight, width - 4, 28, width, height},
                {dialog.Bottom, 4, height - 4, width - 4, height},
                {dialog.BottomLeft, 0, height - 12, 12, height},
                {dialog.BottomRight, width - 12, height - 12, width, height}};
            for (const auto& [piece, left, top, right, bottom] : pieces) {
                const double edges[] = {piece.Left, piece.Top, piece.Left + piece.Width, piece.Top + piece.Height};
                EXPECT_THAT(edges, Pointwise(DoubleNear(1e-9), {left, top, right, bottom})) << piece.Name;
            }
        });
    }
}

TEST_F(MessageBoxTest, IsCutToTheOutlineOfItsSkinsCorners) {
    Open(u"Stalemate!", [] {});
    const int w = RoundHalfEven(dialog.OuterWidth / 15);
    const int h = RoundHalfEven(dialog.OuterHeight / 15);
    std::vector<std::pair<int, int>> lines(static_cast<std::size_t>(h)); // where each begins and ends
    for (const Rectangle& r : desktop.Outlines[&dialog]) {
        for (int y = r.Top; y < r.Bottom; ++y) lines.at(static_cast<std::size_t>(y)) = {r.Left, r.Right};
    }
    const auto inset = [](const char* corner, int y) {
        const Surface picture = PictureSurface(corner);
        int clear = 0;
        for (int x = 0; x < picture.Width(); ++x) clear += picture.At(x, y) >> 24 != 255 ? 1 : 0;
        return clear;
    };
    for (int y = 0; y < 12; ++y) {
        const std::pair top(inset("TitleLeft", y), w - inset("TitleRight", y));
        EXPECT_EQ(lines[static_cast<std::size_t>(y)], y == 0 ? std::pair(0, 0) : top);
        const std::pair bottom(inset("BottomLeft", y), w - inset("BottomRight", y));
        EXPECT_EQ(lines[static_cast<std::size_t>(h - 12 + y)], bottom);
    }
    EXPECT_EQ(std::count(lines.begin(), lines.end(), std::pair(0, w)), h - 8 - 8);
}

TEST_F(MessageBoxTest, ItsButtonFollowsThePointerAndItsTitleMovesItWithTheLeftButtonHeld) {
    Open(u"Checkmate!", [&] {
        const auto look = [this] { return dialog.Ok.Image.Get(); };
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

class SkinnableButtonTest : public testing::Test {
  protected:
    SkinnableButtonTest() {
        desktop.Attach(form);
        form.OuterWidth = form.OuterHeight = 9000;
        form.Add(button.Box());
        button.Box().Width = 52;
        button.Box().Height = 24;
        button.Click = [this] {
            ++clicks;
            EXPECT_TRUE(FaceIs({{72, 15}, {83, 15}, {83, 6}, {128, 16}}, 5)) << "the look changes after the click";
        };
    }

    // Presses the button and lets go at (x, y); how often that clicked.
    int Push(PointerButton which, double x, double y) {
        clicks = 0;
        desktop.Press(form, 20, 10, which);
        desktop.Release(form, x, y, which);
        desktop.ProcessEvents();
        return clicks;
    }
    // Whether the face is these slices of the skin, (left, width) each, one beside the other, with its caption there.
    bool FaceIs(const std::vector<std::pair<int, int>>& slices, double captionTop) const {
        const Surface& face = button.pic_Button.Image.Get()->front();
        Surface expected(face.Width(), 24);
        int x = 0;
        for (const auto& [left, width] : slices) {
            BitBlt(expected, x, 0, width, 24, PictureSurface("pic_Buttons"), left, 0, RasterOp::SrcCopy);
            x += width;
        }
        return face == expected && button.lbl_Caption.Width == x && button.lbl_Caption.Top == captionTop;
    }

    Form form{"Form", FormBorder::Framed};
    ScriptedDesktop desktop;
    ctrl_SkinableButton button{"button", u"OK"};
    int clicks = 0;
};

TEST_F(SkinnableButtonTest, PutsTheRightCapOverTheTiles) {
    EXPECT_TRUE(FaceIs({{0, 15}, {15, 15}, {15, 6}, {55, 16}}, 4)); // three tiles: 3.47 is nearest to 3
    button.Box().Width = 30;
    EXPECT_TRUE(FaceIs({{0, 14}, {55, 16}}, 4));
}

TEST_F(SkinnableButtonTest, ClicksOnceOnTheReleaseOfTheLeftButtonWhereverItIs) {
    for (const auto& [x, y] : {std::pair{20, 10}, {1, 23}, {300, 300}}) {
        EXPECT_EQ(Push(PointerButton::Left, x, y), 1);
        EXPECT_TRUE(FaceIs({{0, 15}, {15, 15}, {15, 6}, {55, 16}}, 4));
    }
    for (const PointerButton other : {PointerButton::Right, PointerButton::Middle}) EXPECT_EQ(Push(other, 20, 10), 0);
}

} // namespace
} // namespace quarnel
