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
        button.Box().Left = 10;
        button.Box().Top = 20;
        button.Box().Width = 52;
        button.Box().Height = 24;
        button.Click = [this] {
            ++clicks;
            EXPECT_TRUE(Pressed()) << "the look changes after the click";
        };
    }

    bool Press(PointerButton which = PointerButton::Left) {
        desktop.Press(form, 20, 30, which);
        desktop.ProcessEvents();
        return Pressed();
    }
    bool Release(double x = 20, double y = 30, PointerButton which = PointerButton::Left) {
        desktop.Release(form, x, y, which);
        desktop.ProcessEvents();
        return !Pressed();
    }
    bool Pressed() const { return button.lbl_Caption.Top.Get() == 5; }
    // Whether the face is these slices of the skin, (left, width) each, one beside the other.
    bool FaceIs(const std::vector<std::pair<int, int>>& slices) const {
        const Surface skin = PictureSurface("pic_Buttons");
        const Surface& face = button.pic_Button.Image.Get()->front();
        Surface expected(face.Width(), 24);
        int x = 0;
        for (const auto& [left, width] : slices) {
            BitBlt(expected, x, 0, width, 24, skin, left, 0, RasterOp::SrcCopy);
            x += width;
        }
        return face == expected && x == face.Width();
    }

    Form form{"Form", FormBorder::Framed};
    ScriptedDesktop desktop;
    ctrl_SkinableButton button{"button", u"OK"};
    int clicks = 0;
};

TEST_F(SkinnableButtonTest, PutsTheRightCapOverTheTiles) {
    EXPECT_TRUE(FaceIs({{0, 15}, {15, 15}, {15, 6}, {55, 16}})); // three tiles: 3.47 is nearest to 3
    EXPECT_EQ(button.lbl_Caption.Width, 52);
    EXPECT_EQ(button.lbl_Caption.Top, 4);
    EXPECT_TRUE(Press());
    EXPECT_TRUE(FaceIs({{72, 15}, {83, 15}, {83, 6}, {128, 16}}));
    button.Box().Width = 30;
    EXPECT_TRUE(FaceIs({{0, 14}, {55, 16}}));
}

TEST_F(SkinnableButtonTest, ClicksOnceOnTheReleaseOfTheLeftButtonWhereverItIs) {
    for (const auto& [x, y] : {std::pair{20, 30}, {11, 43}, {300, 300}}) {
        clicks = 0;
        EXPECT_TRUE(Press());
        EXPECT_EQ(clicks, 0);
        EXPECT_TRUE(Release(x, y));
        EXPECT_EQ(clicks, 1);
    }
    for (const PointerButton other : {PointerButton::Right, PointerButton::Middle}) {
        EXPECT_FALSE(Press(other));
        Release(20, 30, other);
    }
    EXPECT_EQ(clicks, 1);
}

TEST_F(SkinnableButtonTest, KeepsItsLookWhenDisabledAndTakesNoPresses) {
    Press();
    button.Enabled(false);
    EXPECT_TRUE(Pressed());
    Release(300, 300);
    button.LoadSkin();
    clicks = 0;
    EXPECT_FALSE(Press());
    EXPECT_TRUE(Release());
    EXPECT_EQ(clicks, 0);
    button.Enabled(true);
    EXPECT_TRUE(Press());
}

TEST_F(SkinnableButtonTest, ReadingTheCaptionRestoresItOnTheLabel) {
    button.Caption(u"Close");
    button.lbl_Caption.Caption = u"?";
    EXPECT_EQ(button.Caption(), u"Close");
    EXPECT_EQ(button.lbl_Caption.Caption.Get(), u"Close");
    EXPECT_EQ(ctrl_SkinableButton("new").Caption(), u"Caption");
}

} // namespace
} // namespace quarnel
