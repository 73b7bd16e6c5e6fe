#include "controls/SkinnableButton.h"
#include "Pictures.h"
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
        button.Box().Width = 30;
        button.Box().Height = 24;
        button.Click = [this] {
            ++clicks;
            pressedAtClick = Pressed();
        };
    }

    void Run() { desktop.ProcessEvents(); }

    // Whether each column of the face comes from the given column of the skin.
    void ExpectColumns(const std::vector<int>& skinColumns) {
        const auto* skin = FindPicture("pic_Buttons");
        const Surface& face = button.pic_Button.Image.Get()->front();
        ASSERT_EQ(face.Width(), static_cast<int>(skinColumns.size()));
        ASSERT_EQ(face.Height(), 24);
        for (int x = 0; x < face.Width(); ++x) {
            for (int y = 0; y < 24; ++y) {
                const Colour pixel = skin->pixels[y * 144 + skinColumns[static_cast<std::size_t>(x)]] | 0xFF000000U;
                ASSERT_EQ(face.At(x, y), pixel) << x << "," << y;
            }
        }
    }
    bool Pressed() const { return button.lbl_Caption.Top.Get() == 5; }

    Form form{"Form", FormBorder::Framed};
    ScriptedDesktop desktop;
    ctrl_SkinableButton button{"button", u"OK"};
    int clicks = 0;
    bool pressedAtClick = false;
};

std::vector<int> Columns(std::initializer_list<std::pair<int, int>> runs) {
    std::vector<int> columns;
    for (const auto& [first, count] : runs) {
        for (int i = 0; i < count; ++i) columns.push_back(first + i);
    }
    return columns;
}

TEST_F(SkinnableButtonTest, PutsTheRightCapOverTheTiles) {
    ExpectColumns(Columns({{0, 14}, {55, 16}}));
    button.Box().Width = 52; // three tiles: 3.47 is nearest to 3
    ExpectColumns(Columns({{0, 15}, {15, 15}, {15, 6}, {55, 16}}));
    EXPECT_EQ(button.lbl_Caption.Width, 52);
    EXPECT_EQ(button.lbl_Caption.Top, 4);
    desktop.Press(form, 12, 22);
    Run();
    ExpectColumns(Columns({{72, 15}, {83, 15}, {83, 6}, {128, 16}}));
    EXPECT_EQ(button.lbl_Caption.Top, 5);
    button.Box().Height = 25;
    ExpectColumns(Columns({{0, 15}, {15, 15}, {15, 6}, {55, 16}}));
}

TEST_F(SkinnableButtonTest, ClicksOnceOnTheReleaseOfTheLeftButtonWhereverItIs) {
    for (const auto& [x, y] : {std::pair{20, 30}, {11, 43}, {300, 300}}) {
        clicks = 0;
        desktop.Press(form, 20, 30);
        Run();
        EXPECT_TRUE(Pressed());
        EXPECT_EQ(clicks, 0);
        desktop.Release(form, x, y);
        Run();
        EXPECT_EQ(clicks, 1);
        EXPECT_TRUE(pressedAtClick) << "the look changes after the click";
        EXPECT_FALSE(Pressed());
    }
    for (const PointerButton other : {PointerButton::Right, PointerButton::Middle}) {
        desktop.Press(form, 20, 30, other);
        Run();
        EXPECT_FALSE(Pressed());
        desktop.Release(form, 20, 30, other);
        Run();
    }
    EXPECT_EQ(clicks, 1);
}

TEST_F(SkinnableButtonTest, KeepsItsLookWhenDisabledAndTakesNoPresses) {
    desktop.Press(form, 20, 30);
    Run();
    button.Enabled(false);
    EXPECT_TRUE(Pressed());
    EXPECT_FALSE(button.lbl_Caption.Enabled.Get());
    EXPECT_FALSE(button.pic_Button.Enabled.Get());
    desktop.Release(form, 300, 300);
    Run();
    clicks = 0;
    button.LoadSkin();
    desktop.Click(form, 20, 30);
    Run();
    EXPECT_EQ(clicks, 0);
    desktop.Press(form, 20, 30);
    Run();
    EXPECT_FALSE(Pressed());
    button.Enabled(true);
    EXPECT_TRUE(button.Enabled());
    desktop.Release(form, 20, 30);
    desktop.Click(form, 20, 30);
    Run();
    EXPECT_GE(clicks, 1);
}

TEST_F(SkinnableButtonTest, ReadingTheCaptionRestoresItOnTheLabel) {
    EXPECT_EQ(button.lbl_Caption.Caption.Get(), u"OK");
    button.Caption(u"Close");
    button.lbl_Caption.Caption = u"?";
    EXPECT_EQ(button.Caption(), u"Close");
    EXPECT_EQ(button.lbl_Caption.Caption.Get(), u"Close");
    EXPECT_EQ(ctrl_SkinableButton("new").Caption(), u"Caption");
}

} // namespace
} // namespace quarnel
