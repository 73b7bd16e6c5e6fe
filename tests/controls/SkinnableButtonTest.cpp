#include "controls/SkinnableButton.h"
#include "platform/PictureSurface.h"
#include "platform/scripted/ScriptedDesktop.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

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
