#include "BoardFixture.h"

namespace quarnel {
namespace {

using BoardRendererTest = BoardTest;

TEST_F(BoardRendererTest, ShowsThePositionInBothOrientationsAndTurningKeepsTheBackgroundOfAMotion) {
    Game->Pictures.buf[1].Fill(ColourWhite);
    for (const Truth flipped : {True, False}) {
        Game->Renderer.FlipBoard();
        EXPECT_EQ(State().BoardFlipped, flipped);
        EXPECT_TRUE(Shows({}));
    }
    EXPECT_TRUE(Game->Pictures.buf[1] == Surface(400, 400, ColourWhite));
}

TEST_F(BoardRendererTest, DrawsUnknownCodesAsAWhitePawnUpTo16AndNotAtAllBeyond) {
    for (int i = 0; i < 64; ++i)
        PieceAt(State().CurPos, 1 + i % 8, 1 + i / 8) = static_cast<std::uint8_t>(i < 32 ? i : 287 - i);
    EXPECT_TRUE(ShowsAfterRedraw({}));
}

TEST_F(BoardRendererTest, MarksTheLastMoveUnderAndTheSelectionOverThePieces) {
    // The queens reach into the 4 pixels of the border, so the order shows.
    State().LastMoveFile = Controller().SelFile = 4;
    State().LastMoveRow = 8;
    Controller().SelRow = 1;
    for (const Truth flipped : {False, True}) {
        State().BoardFlipped = flipped;
        EXPECT_TRUE(ShowsAfterRedraw({.LastMove = {4, 8}, .Selected = {4, 1}}));
    }
    State().ShowLastMove = 0;
    Controller().SelFile = -300; // a mark beside the board is none
    EXPECT_TRUE(ShowsAfterRedraw({}));
}

// The king of the current position, not of the one shown. Files come before rows, and row 8 before row 1, so that
// the white king is found on h3.
TEST_F(BoardRendererTest, MarksTheKingInCheckOrMateFoundFromH1On) {
    const std::tuple<Text, std::int16_t, Square, Square> cases[] = {{u"Move: Qh5+", 3, {5, 1}, {}},
                                                                    {u"Move: Qh5+", 4, {8, 6}, {}},
                                                                    {u"Move: Qxf7#", 7, {}, {5, 1}},
                                                                    {u"Move: Nf3", 3, {}, {}},
                                                                    {u"", 3, {}, {}},
                                                                    {u"Move: Qh5+ ", 3, {}, {}}};
    State().CurPos = PositionOf(u"4k3/8/8/8/8/7K/8/6K1 w - - 0 1");
    const Position shown = PositionOf(u"k7/8/8/8/8/8/8/8 w - - 0 1");
    for (const auto& [caption, plyNow, inverted, red] : cases) {
        Game->Board.Status.mdis.Caption = caption;
        State().PlyNow = plyNow;
        Truth hide = False;
        Game->Renderer.DrawBoard(shown, hide);
        EXPECT_TRUE(Shows({.Inverted = inverted, .Red = red}, shown)) << ToUtf8(caption) << " at ply " << plyNow;
    }
}

TEST_F(BoardRendererTest, TheBorderIsOutsideTheMiddle400WhileNoPieceIsDragged) {
    const std::tuple<float, float, bool> cases[] = {{19, 216, true},   {20, 216, false}, {219, 416, true},
                                                    {418, 415, false}, {419, 17, true},  {418, 17, false},
                                                    {418, 16, true}};
    for (const auto& [x, y, outside] : cases) {
        Controller().FloatPiece = 0;
        EXPECT_EQ(Game->Renderer.BoardBorder(x, y), outside) << x << "," << y;
        Controller().FloatPiece = 1;
        EXPECT_FALSE(Game->Renderer.BoardBorder(x, y));
    }
}

TEST(SquareAtPixel, RoundsDownOnAllSides) {
    const std::tuple<double, double, Truth, Square> cases[] = {
        {18, 58, False, {1, 1}}, {59, 58, False, {2, 1}},     {346, 345, False, {9, 8}}, {17, 17, False, {0, 0}},
        {18, 18, True, {8, 8}},  {-24, -65, False, {-1, -2}}, {345, 305, True, {1, 1}},  {17, 346, True, {9, 0}}};
    for (const auto& [x, y, flipped, square] : cases) EXPECT_EQ(SquareAtPixel(x, y, flipped), square) << x << "," << y;
}

TEST_F(BoardRendererTest, NamesEverySquareForAScreenReaderWhereItIsShown) {
    State().BoardFlipped = True;
    State().Zoom = 2;
    const auto items = Window().OnDescribe();
    ASSERT_EQ(items.size(), 64U);
    EXPECT_EQ(items[0], (AccessibleItem{u"h1, white rook", 36, 36, 82, 82}));
    EXPECT_EQ(items[28].Name, u"d4, empty");
    EXPECT_EQ(items[54], (AccessibleItem{u"b7, black pawn", 528, 528, 82, 82}));
}

} // namespace
} // namespace quarnel
