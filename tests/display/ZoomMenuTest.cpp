#include "support/ProgramFixture.h"

namespace quarnel {
namespace {

using Numbers = std::array<double, 4>;

Numbers Box(const Control& control) {
    return {control.Left, control.Top, control.Width, control.Height};
}

class ZoomMenuTest : public ProgramTest {
  protected:
    int CheckedItem() {
        int checked = -1;
        for (int i = 0; i < 8; ++i) {
            if (Game->Zoom.vw[static_cast<std::size_t>(i)].Checked.Get()) checked = checked == -1 ? i : 8;
        }
        return checked;
    }
    double StripPoints() { return Game->Board.Status.mdis.Font.Get().Points; }
};

TEST_F(ZoomMenuTest, AppliesEachItemWithTheStripBeforeAndTheToolbarAfterTheBoard) {
    const std::tuple<double, double, Size, const char*> cases[] = {
        {7, -1, {271, 272}, "present 274x274"},  {8, -1, {361, 362}, "present 366x366"},
        {11, -1, {451, 452}, "present 458x458"}, {13, -2, {542, 543}, "present 549x549"},
        {15, -1, {632, 634}, "present 640x640"}, {17, -2, {722, 724}, "present 732x732"},
        {19, -1, {812, 814}, "present 824x824"}, {21, -2, {902, 905}, "present 915x915"}};
    Control& strip = Game->Board.Status.crtkalica;
    Control& toolbar = Game->Board.Picture2;
    for (int i = 0; i < 8; ++i) {
        SCOPED_TRACE(i);
        strip.Visible = false;
        Screen.BeforeProcess = [&] { EXPECT_TRUE(strip.Visible.Get() && !toolbar.Visible.Get()); };
        Game->Zoom.vw[static_cast<std::size_t>(i)].OnClick();
        EXPECT_TRUE(toolbar.Visible.Get());
        EXPECT_EQ(CheckedItem(), i);
        EXPECT_EQ(Saved("wsize"), ToText(i));
        const auto& [points, buttonTop, inner, presented] = cases[i];
        EXPECT_EQ(StripPoints(), points);
        EXPECT_EQ(Game->Board.Moves.poke[0].Top, buttonTop);
        EXPECT_EQ(Screen.InnerSize(Window()), inner);
        EXPECT_EQ(Screen.Log.back(), presented);
    }
}

TEST_F(ZoomMenuTest, LaysOutTheBorderAndKeepsFractions) {
    const BoardWindow& board = Game->Board;
    Game->Zoom.vw_Click(0);
    EXPECT_EQ(Box(board.Picture2), (Numbers{18.75, 260.25, 96, 12}));
    const double lefts[] = {0, 12, 30, 42, 72, 84};
    for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(Box(board.Moves.poke[i]), (Numbers{lefts[i], -1, 12, 12}));
    EXPECT_TRUE(board.Moves.poke[0].Stretch.Get());
    EXPECT_EQ(Box(board.Status.Picture4[0]), (Numbers{261.75, 246, 6.75, 6.75}));
    EXPECT_EQ(Box(board.Status.Picture4[1]), (Numbers{261.75, 24, 6.75, 6.75}));
    EXPECT_EQ(Box(board.Status.crtkalica), (Numbers{135, 259.5, 114.75, 12.75}));
    EXPECT_EQ(Box(board.Status.mdis), (Numbers{0, 0, 114.75, 12.75}));
    EXPECT_EQ(Box(board.Picture1), (Numbers{0, 7, 268, 258}));
}

TEST_F(ZoomMenuTest, StartsWithTheSavedZoom) {
    const std::tuple<Text, float, int, int, int> cases[] = {
        {u"2", 1.25F, 2, 11, 1}, {u"9", 1, -1, 25, 1}, {u"-3", 1, -1, 4, 1},       {u"-7", 1, -1, 8, 1},
        {u"two", 1, 1, 8, 0},    {u"", 1, 1, 8, 0},    {u"30000", 1, -1, 30007, 1}};
    for (const auto& [saved, zoom, checked, points, frames] : cases) {
        SCOPED_TRACE(ToUtf8(saved));
        Game->Zoom.vw_Click(1);
        Saved("wsize") = saved;
        const int before = FramesShown();
        Game->Zoom.ApplySavedZoom();
        EXPECT_EQ(State().Zoom, zoom);
        EXPECT_EQ(CheckedItem(), checked);
        EXPECT_EQ(StripPoints(), points);
        EXPECT_EQ(FramesShown() - before, frames);
    }
}

} // namespace
} // namespace quarnel
