#include "BoardFixture.h"

#include "display/BoardDescription.h"

namespace quarnel {
namespace {

using BoardRendererTest = BoardFixture;

TEST_F(BoardRendererTest, ShowsThePositionInBothOrientationsAndTurningKeepsTheBackgroundOfAMotion) {
    EXPECT_TRUE(ShowsAfterRedraw({}));
    pictures.buf[1].Fill(ColourWhite);
    renderer.FlipBoard();
    EXPECT_EQ(state.BoardFlipped, True);
    EXPECT_TRUE(Shows({}));
    EXPECT_TRUE(pictures.buf[1] == Surface(400, 400, ColourWhite));
    renderer.FlipBoard();
    EXPECT_TRUE(Shows({}));
}

TEST_F(BoardRendererTest, DrawsUnknownCodesAsAWhitePawnUpTo16AndNotAtAllBeyond) {
    for (int first = 0; first < 256; first += 64) {
        for (int i = 0; i < 64; ++i) PieceAt(state.CurPos, 1 + i % 8, 1 + i / 8) = static_cast<std::uint8_t>(first + i);
        EXPECT_TRUE(ShowsAfterRedraw({})) << first;
    }
}

TEST_F(BoardRendererTest, MarksTheLastMoveUnderAndTheSelectionOverThePieces) {
    // The queens reach into the 4 pixels of the border, so the order shows.
    state.LastMoveFile = controller.SelFile = 4;
    state.LastMoveRow = 8;
    controller.SelRow = 1;
    EXPECT_TRUE(ShowsAfterRedraw({.LastMove = {4, 8}, .Selected = {4, 1}}));
    state.BoardFlipped = True;
    EXPECT_TRUE(ShowsAfterRedraw({.LastMove = {4, 8}, .Selected = {4, 1}}));
    state.ShowLastMove = 0;
    EXPECT_TRUE(ShowsAfterRedraw({.Selected = {4, 1}}));
    // Marks beside the board are none.
    state.ShowLastMove = 1;
    state.LastMoveFile = 255;
    controller.SelFile = -300;
    EXPECT_TRUE(ShowsAfterRedraw({}));
}

TEST_F(BoardRendererTest, MarksTheKingInCheckOrMate) {
    const struct {
        const char16_t* Caption;
        int PlyNow;
        Square Inverted, Red;
    } cases[] = {{u"Move: Qh5+", 3, {5, 1}, {}}, {u"Move: Qh5+", 4, {5, 8}, {}}, {u"Move: Qxf7#", 7, {}, {5, 1}},
                 {u"Move: Qh4#", 4, {}, {5, 8}}, {u"Move: Nf3", 3, {}, {}},      {u"", 3, {}, {}},
                 {u"Move: Qh5+ ", 3, {}, {}}};
    for (const auto& [caption, plyNow, inverted, red] : cases) {
        status.mdis.Caption = caption;
        state.PlyNow = static_cast<std::int16_t>(plyNow);
        EXPECT_TRUE(ShowsAfterRedraw({.Inverted = inverted, .Red = red})) << ToUtf8(caption) << " at ply " << plyNow;
    }
}

TEST_F(BoardRendererTest, LooksForTheCheckedKingInTheCurrentPositionFromH1On) {
    status.mdis.Caption = u"Move: Re8+";
    Truth hide = False;
    const Position shown = MakePosition("k");
    renderer.DrawBoard(shown, hide);
    EXPECT_TRUE(Shows({.Inverted = {5, 8}}, shown));

    // Files come before rows, and row 8 before row 1: h3 is found before h8 and g1.
    for (const Square king : {Square{8, 6}, Square{8, 1}, Square{7, 8}})
        PieceAt(state.CurPos, king.File, king.Row) = King;
    EXPECT_TRUE(ShowsAfterRedraw({.Inverted = {8, 6}}));
    state.CurPos = MakePosition("k");
    EXPECT_TRUE(ShowsAfterRedraw({}));
}

TEST_F(BoardRendererTest, LeavesOutTheDraggedPieceOnly) {
    controller.SelFile = 2;
    controller.SelRow = 8;
    controller.FloatPiece = Knight;
    Truth hide = False;
    renderer.DrawBoard(state.CurPos, hide);
    EXPECT_EQ(hide, True);
    EXPECT_TRUE(Shows({.Selected = {2, 8}, .Hidden = {2, 8}}));
    controller.FloatPiece = 0;
    renderer.DrawBoard(state.CurPos, hide);
    EXPECT_TRUE(Shows({.Selected = {2, 8}, .Hidden = {2, 8}})) << "asked to hide";
    EXPECT_TRUE(ShowsAfterRedraw({.Selected = {2, 8}})) << "not asked";
}

TEST_F(BoardRendererTest, ShowMoveTextNamesTheMoveAndLightsTheSideToMove) {
    const struct {
        const char16_t* Move;
        Truth Computer;
        std::int16_t PlyNow;
        bool Lower, Upper;
    } cases[] = {{u"e4", Black, 1, false, true},   {u"e5", Black, 2, true, false},   {u"e4", White, 1, true, false},
                 {u"none", White, 0, false, true}, {u"Qh5+", Black, 2, true, false}, {u"Qxf7#", Black, 7, false, false},
                 {u"", Black, -1, false, true},    {u"", White, -1, false, true}};
    for (const auto& [move, computer, plyNow, lower, upper] : cases) {
        SCOPED_TRACE(ToUtf8(move));
        state.ComputerColor = computer;
        state.PlyNow = plyNow;
        renderer.ShowMoveText(move);
        EXPECT_EQ(status.mdis.Caption.Get(), Text(u"Move: ") + move);
        EXPECT_EQ(frmBoard.Announcement.Get(), Text(u"Move: ") + move);
        EXPECT_EQ(status.Picture4[0].Visible.Get(), lower);
        EXPECT_EQ(status.Picture4[1].Visible.Get(), upper);
    }
}

TEST_F(BoardRendererTest, TheBorderIsOutsideTheMiddle400WhileNoPieceIsDragged) {
    const std::tuple<float, float, bool> cases[] = {{19, 216, true},  {20, 216, false}, {219, 415, false},
                                                    {219, 416, true}, {418, 17, false}, {419, 17, true},
                                                    {418, 16, true}};
    for (const auto& [x, y, outside] : cases) {
        controller.FloatPiece = 0;
        EXPECT_EQ(renderer.BoardBorder(x, y), outside) << x << "," << y;
        controller.FloatPiece = 1;
        EXPECT_FALSE(renderer.BoardBorder(x, y));
    }
}

TEST(SquareAtPixel, RoundsDownOnAllSides) {
    const std::tuple<double, double, Truth, Square> cases[] = {
        {18, 18, False, {1, 1}},   {58, 58, False, {1, 1}}, {59, 58, False, {2, 1}},     {345, 345, False, {8, 8}},
        {346, 345, False, {9, 8}}, {17, 17, False, {0, 0}}, {-24, -65, False, {-1, -2}}, {18, 18, True, {8, 8}},
        {345, 305, True, {1, 1}},  {17, 346, True, {9, 0}}};
    for (const auto& [x, y, flipped, square] : cases) EXPECT_EQ(SquareAtPixel(x, y, flipped), square) << x << "," << y;
}

TEST(DescribeBoard, NamesEverySquareWhereItIsShown) {
    GameState state;
    state.CurPos = MakePosition(StartSquares);
    PieceAt(state.CurPos, 1, 4) = 14;
    state.BoardFlipped = True;
    state.Zoom = 2;
    const auto items = DescribeBoard(state);
    ASSERT_EQ(items.size(), 64U);
    EXPECT_EQ(items[0], (AccessibleItem{u"h1, white rook", 36, 36, 82, 82}));
    EXPECT_EQ(items[28].Name, u"d4, empty");
    EXPECT_EQ(items[39].Name, u"a5, unknown piece");
    EXPECT_EQ(items[54], (AccessibleItem{u"b7, black pawn", 528, 528, 82, 82}));
}

} // namespace
} // namespace quarnel
