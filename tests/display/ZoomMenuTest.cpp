#include "BoardFixture.h"

#include "display/ZoomMenu.h"

#include <algorithm>

namespace quarnel {
namespace {

using Numbers = std::array<double, 4>;

Numbers Box(const Control& control) {
    return {control.Left, control.Top, control.Width, control.Height};
}

class ZoomMenuTest : public BoardFixture {
  protected:
    ZoomMenuTest() {
        frmBoard.Add(Picture2);
        frmBoard.Add(Picture1);
        Picture1.Width = 240;
        Picture1.Height = 181;
        frmBoard.OuterWidth = 5415 + desktop.FrameBorder.Width * 15;
        frmBoard.OuterHeight = 5430 + desktop.FrameBorder.Height * 15;
        zoom.MeasureWindow();
    }

    Text Saved() { return desktop.ReadSetting(u"Quarnel Chess", u"Settings", u"WSize", u"-"); }
    int CheckedItem() {
        const auto item = std::find_if(zoom.vw.begin(), zoom.vw.end(), [](MenuItem& i) { return i.Checked.Get(); });
        return item == zoom.vw.end() ? -1 : static_cast<int>(item - zoom.vw.begin());
    }

    Control Picture2{ControlKind::Picture, "Picture2"};
    std::array<Control, 6> poke{{{ControlKind::Image, "0"},
                                 {ControlKind::Image, "1"},
                                 {ControlKind::Image, "2"},
                                 {ControlKind::Image, "3"},
                                 {ControlKind::Image, "4"},
                                 {ControlKind::Image, "5"}}};
    Control Picture1{ControlKind::Picture, "Picture1"};
    ZoomMenu zoom{state, renderer, status, {Picture2, poke, Picture1}, frmBoard, desktop};
};

TEST_F(ZoomMenuTest, AppliesEachItemWithTheStripBeforeAndTheToolbarAfterTheBoard) {
    const struct {
        float Zoom;
        double Points, ButtonTop;
        Size Inner;
        const char* Presented;
    } cases[] = {{0.75F, 7, -1, {271, 272}, "present 274x274"},  {1, 8, -1, {361, 362}, "present 366x366"},
                 {1.25F, 11, -1, {451, 452}, "present 458x458"}, {1.5F, 13, -2, {542, 543}, "present 549x549"},
                 {1.75F, 15, -1, {632, 634}, "present 640x640"}, {2, 17, -2, {722, 724}, "present 732x732"},
                 {2.25F, 19, -1, {812, 814}, "present 824x824"}, {2.5F, 21, -2, {902, 905}, "present 915x915"}};
    for (int i = 0; i < 8; ++i) {
        SCOPED_TRACE(i);
        status.crtkalica.Visible = false;
        desktop.BeforeProcess = [&] { EXPECT_TRUE(status.crtkalica.Visible.Get() && !Picture2.Visible.Get()); };
        zoom.vw[i].OnClick();
        EXPECT_TRUE(Picture2.Visible.Get());
        EXPECT_EQ(state.Zoom, cases[i].Zoom);
        EXPECT_EQ(CheckedItem(), i);
        EXPECT_EQ(Saved(), ToText(i));
        EXPECT_EQ(status.mdis.Font.Get().Points, cases[i].Points);
        EXPECT_EQ(poke[0].Top, cases[i].ButtonTop);
        EXPECT_EQ(desktop.InnerSize(frmBoard), cases[i].Inner);
        EXPECT_EQ(desktop.Log.back(), cases[i].Presented);
    }
}

TEST_F(ZoomMenuTest, LaysOutTheBorderAndKeepsFractions) {
    zoom.vw_Click(5);
    EXPECT_EQ(Box(Picture2), (Numbers{50, 694, 256, 32}));
    const double lefts[] = {0, 32, 80, 112, 192, 224};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(Box(poke[i]), (Numbers{lefts[i], -2, 32, 32}));
        EXPECT_TRUE(poke[i].Stretch.Get());
    }
    EXPECT_EQ(Box(status.Picture4[0]), (Numbers{698, 656, 18, 18}));
    EXPECT_EQ(Box(status.Picture4[1]), (Numbers{698, 64, 18, 18}));
    EXPECT_EQ(Box(status.mdis), (Numbers{0, 0, 306, 34}));
    EXPECT_EQ(Box(Picture1), (Numbers{240, 271, 240, 181}));

    zoom.vw_Click(0);
    EXPECT_EQ(Box(Picture2), (Numbers{18.75, 260.25, 96, 12}));
    EXPECT_EQ(Box(status.crtkalica), (Numbers{135, 259.5, 114.75, 12.75}));
    EXPECT_EQ(frmBoard.OuterWidth.Get(), 0.75 * 5415 + 150);
    EXPECT_EQ(frmBoard.OuterHeight.Get(), 0.75 * 5430 + 750);
    EXPECT_EQ(Box(Picture1), (Numbers{14, 45, 240, 181}));
}

TEST_F(ZoomMenuTest, StartsWithTheSavedZoom) {
    zoom.ApplySavedZoom();
    EXPECT_EQ(CheckedItem(), 1) << "nothing saved yet";
    EXPECT_EQ(Saved(), u"1");
    const struct {
        const char16_t* Saved;
        float Zoom;
        int Checked, Points;
        bool Applied;
    } cases[] = {{u"2", 1.25F, 2, 11, true}, {u"9", 1, -1, 25, true},    {u"-3", 1, -1, 4, true},
                 {u"-7", 1, -1, 8, true},    {u"-8", 1, -1, 8, true},    {u"two", 1, 1, 8, false},
                 {u"", 1, 1, 8, false},      {u"40000", 1, 1, 8, false}, {u"30000", 1, -1, 30007, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(ToUtf8(c.Saved));
        zoom.vw_Click(1);
        desktop.WriteSetting(u"Quarnel Chess", u"Settings", u"Wsize", c.Saved);
        const int before = Presented();
        zoom.ApplySavedZoom();
        EXPECT_EQ(state.Zoom, c.Zoom);
        EXPECT_EQ(CheckedItem(), c.Checked);
        EXPECT_EQ(status.mdis.Font.Get().Points, c.Points);
        EXPECT_EQ(Presented() - before, c.Applied ? 1 : 0);
        EXPECT_EQ(Saved(), c.Saved);
    }
}

} // namespace
} // namespace quarnel
