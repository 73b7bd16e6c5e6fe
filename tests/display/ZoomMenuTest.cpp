#include "support/ProgramFixture.h"

namespace quarnel {
namespace {

using Numbers = std::array<double, 4>;

Numbers Box(const Control& control) {
    return {control.Left, control.Top, control.Width, control.Height};
}

class ZoomMenuTest : public ProgramTest {
  protected:
    Text Saved() { return Screen.ReadSetting(u"Quarnel Chess", u"Settings", u"WSize", u"-"); }
    int CheckedItem() {
        for (int i = 0; i < 8; ++i) {
            if (Game->Zoom.vw[static_cast<std::size_t>(i)].Checked.Get()) return i;
        }
        return -1;
    }
    double StripPoints() { return Game->Board.Status.mdis.Font.Get().Points; }
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
    Play([&] {
        Control& strip = Game->Board.Status.crtkalica;
        Control& toolbar = Game->Board.Picture2;
        for (int i = 0; i < 8; ++i) {
            SCOPED_TRACE(i);
            strip.Visible = false;
            Screen.BeforeProcess = [&] { EXPECT_TRUE(strip.Visible.Get() && !toolbar.Visible.Get()); };
            Game->Zoom.vw[static_cast<std::size_t>(i)].OnClick();
            EXPECT_TRUE(toolbar.Visible.Get());
            EXPECT_EQ(State().Zoom, cases[i].Zoom);
            EXPECT_EQ(CheckedItem(), i);
            EXPECT_EQ(Saved(), ToText(i));
            EXPECT_EQ(StripPoints(), cases[i].Points);
            EXPECT_EQ(Game->Board.Moves.poke[0].Top, cases[i].ButtonTop);
            EXPECT_EQ(Screen.InnerSize(Window()), cases[i].Inner);
            EXPECT_EQ(Screen.Log.back(), cases[i].Presented);
        }
    });
}

TEST_F(ZoomMenuTest, LaysOutTheBorderAndKeepsFractions) {
    Play([&] {
        const BoardWindow& board = Game->Board;
        Game->Zoom.vw_Click(5);
        EXPECT_EQ(Box(board.Picture2), (Numbers{50, 694, 256, 32}));
        const double lefts[] = {0, 32, 80, 112, 192, 224};
        for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(Box(board.Moves.poke[i]), (Numbers{lefts[i], -2, 32, 32}));
        EXPECT_EQ(Box(board.Status.Picture4[0]), (Numbers{698, 656, 18, 18}));
        EXPECT_EQ(Box(board.Status.Picture4[1]), (Numbers{698, 64, 18, 18}));
        EXPECT_EQ(Box(board.Status.mdis), (Numbers{0, 0, 306, 34}));
        EXPECT_EQ(Box(board.Picture1), (Numbers{226, 233, 268, 258}));

        Game->Zoom.vw_Click(0);
        EXPECT_TRUE(board.Moves.poke[0].Stretch.Get());
        EXPECT_EQ(Box(board.Picture2), (Numbers{18.75, 260.25, 96, 12}));
        EXPECT_EQ(Box(board.Status.crtkalica), (Numbers{135, 259.5, 114.75, 12.75}));
        EXPECT_EQ(board.Window.OuterWidth.Get(), 0.75 * 5415 + 150);
        EXPECT_EQ(board.Window.OuterHeight.Get(), 0.75 * 5430 + 750);
        EXPECT_EQ(Box(board.Picture1), (Numbers{0, 7, 268, 258}));
    });
}

TEST_F(ZoomMenuTest, StartsWithTheSavedZoom) {
    const struct {
        const char16_t* Saved;
        float Zoom;
        int Checked, Points;
        bool Applied;
    } cases[] = {{u"2", 1.25F, 2, 11, true}, {u"9", 1, -1, 25, true},    {u"-3", 1, -1, 4, true},
                 {u"-7", 1, -1, 8, true},    {u"-8", 1, -1, 8, true},    {u"two", 1, 1, 8, false},
                 {u"", 1, 1, 8, false},      {u"40000", 1, 1, 8, false}, {u"30000", 1, -1, 30007, true}};
    Play([&] {
        EXPECT_EQ(CheckedItem(), 1) << "nothing saved yet";
        EXPECT_EQ(Saved(), u"1");
        for (const auto& c : cases) {
            SCOPED_TRACE(ToUtf8(c.Saved));
            Game->Zoom.vw_Click(1);
            Screen.WriteSetting(u"Quarnel Chess", u"Settings", u"Wsize", c.Saved);
            const int before = FramesShown();
            Game->Zoom.ApplySavedZoom();
            EXPECT_EQ(State().Zoom, c.Zoom);
            EXPECT_EQ(CheckedItem(), c.Checked);
            EXPECT_EQ(StripPoints(), c.Points);
            EXPECT_EQ(FramesShown() - before, c.Applied ? 1 : 0);
            EXPECT_EQ(Saved(), c.Saved);
        }
    });
}

} // namespace
} // namespace quarnel
