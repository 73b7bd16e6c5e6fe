#include "BoardFixture.h"

#include "display/BoardDescription.h"

namespace quarnel {
namespace {

using BoardRendererTest = BoardFixture;

TEST_F(BoardRendererTest, ShowsTheStartPositionInBothOrientations) {
    renderer.RedrawBoard();
    EXPECT_TRUE(Shown() == ExpectedFrame{state.CurPos}.Draw(desktop));
    renderer.FlipBoard();
    EXPECT_EQ(state.BoardFlipped, True);
    EXPECT_TRUE(Shown() == (ExpectedFrame{state.CurPos, True}.Draw(desktop)));
    renderer.FlipBoard();
    EXPECT_TRUE(Shown() == ExpectedFrame{state.CurPos}.Draw(desktop));
}

TEST_F(BoardRendererTest, TurningRoundKeepsTheBackgroundOfAPieceInMotion) {
    pictures.buf[1].Fill(ColourWhite);
    renderer.FlipBoard();
    EXPECT_TRUE(pictures.buf[1] == Surface(400, 400, ColourWhite));
}

TEST_F(BoardRendererTest, MarksTheLastMoveUnderAndTheSelectionOverThePieces) {
    for (const Truth flipped : {False, True}) {
        state.BoardFlipped = flipped;
        renderer.DrawCoordinates();
        // The queen reaches into the 4 pixels of the border, so the order shows.
        state.LastMoveFile = 4;
        state.LastMoveRow = 8;
        controller.SelFile = 4;
        controller.SelRow = 1;
        ExpectedFrame expected{state.CurPos, flipped};
        expected.LastMove = {4, 8};
        expected.Selected = {4, 1};
        renderer.RedrawBoard();
        EXPECT_TRUE(Shown() == expected.Draw(desktop)) << flipped;
    }
    state.ShowLastMove = 0;
    ExpectedFrame unmarked{state.CurPos, True};
    unmarked.Selected = {4, 1};
    renderer.RedrawBoard();
    EXPECT_TRUE(Shown() == unmarked.Draw(desktop));
}

TEST_F(BoardRendererTest, MarksTheKingInCheckOrMate) {
    struct Case {
        const char16_t* Caption;
        std::int16_t PlyNow;
        Square Inverted, Red;
    };
    const Case cases[] = {
        {u"Move: Qh5+", 3, {5, 1}, {}}, {u"Move: Qh5+", 4, {5, 8}, {}}, {u"Move: Qxf7#", 7, {}, {5, 1}},
        {u"Move: Qh4#", 4, {}, {5, 8}}, {u"Move: Nf3", 3, {}, {}},      {u"", 3, {}, {}},
        {u"Welcome", 0, {}, {}},        {u"Move: Qh5+ ", 3, {}, {}},
    };
    for (const Case& c : cases) {
        status.mdis.Caption = c.Caption;
        state.PlyNow = c.PlyNow;
        ExpectedFrame expected{state.CurPos};
        expected.Inverted = c.Inverted;
        expected.Red = c.Red;
        renderer.RedrawBoard();
        EXPECT_TRUE(Shown() == expected.Draw(desktop)) << ToUtf8(c.Caption) << " at ply " << c.PlyNow;
    }
}

TEST_F(BoardRendererTest, LooksForTheCheckedKingInTheCurrentPositionFromH1On) {
    status.mdis.Caption = u"Move: Re8+";
    Truth hide = False;
    const Position shown = MakePosition("k");
    renderer.DrawBoard(shown, hide);
    ExpectedFrame expected{shown};
    expected.Inverted = {5, 8};
    EXPECT_TRUE(Shown() == expected.Draw(desktop));

    // Files come before rows, and row 8 before row 1: h3 is found before h8 and g1.
    for (const Square king : {Square{8, 6}, Square{8, 1}, Square{7, 8}})
        PieceAt(state.CurPos, king.File, king.Row) = King;
    PieceAt(state.CurPos, 5, 8) = NoPiece;
    renderer.RedrawBoard();
    expected = {state.CurPos};
    expected.Inverted = {8, 6};
    EXPECT_TRUE(Shown() == expected.Draw(desktop));

    state.CurPos = MakePosition("k");
    renderer.RedrawBoard();
    EXPECT_TRUE(Shown() == ExpectedFrame{state.CurPos}.Draw(desktop));
}

TEST_F(BoardRendererTest, LeavesOutTheDraggedPieceOnly) {
    controller.SelFile = 2;
    controller.SelRow = 8;
    ExpectedFrame expected{state.CurPos};
    expected.Selected = expected.Hidden = {2, 8};

    controller.FloatPiece = Knight;
    Truth hide = False;
    renderer.DrawBoard(state.CurPos, hide);
    EXPECT_EQ(hide, True);
    EXPECT_TRUE(Shown() == expected.Draw(desktop));

    controller.FloatPiece = 0;
    renderer.DrawBoard(state.CurPos, hide);
    EXPECT_TRUE(Shown() == expected.Draw(desktop)) << "asked to hide";
    expected.Hidden = {};
    renderer.RedrawBoard();
    EXPECT_TRUE(Shown() == expected.Draw(desktop)) << "not asked";
}

TEST_F(BoardRendererTest, DrawsUnknownCodesAsAWhitePawnUpTo16AndNotAtAllBeyond) {
    for (int first = 0; first < 256; first += 64) {
        for (int i = 0; i < 64; ++i) PieceAt(state.CurPos, 1 + i % 8, 1 + i / 8) = static_cast<std::uint8_t>(first + i);
        renderer.RedrawBoard();
        EXPECT_TRUE(Shown() == ExpectedFrame{state.CurPos}.Draw(desktop)) << first;
    }
}

TEST_F(BoardRendererTest, IgnoresMarksBesideTheBoard) {
    state.LastMoveFile = 255;
    controller.SelFile = -300;
    renderer.RedrawBoard();
    EXPECT_TRUE(Shown() == ExpectedFrame{state.CurPos}.Draw(desktop));
}

TEST_F(BoardRendererTest, PresentsBeforeItLetsEventsRunAtEachZoom) {
    desktop.LogEvents = true;
    for (const auto& [zoom, entry] : {std::pair{0.75F, "present 274x274"},
                                      {1.0F, "present 366x366"},
                                      {1.25F, "present 458x458"},
                                      {1.75F, "present 640x640"},
                                      {2.25F, "present 824x824"},
                                      {2.5F, "present 915x915"}}) {
        state.Zoom = zoom;
        desktop.Log.clear();
        renderer.RedrawBoard();
        EXPECT_EQ(desktop.Log, (std::vector<std::string>{entry, "process"}));
    }
}

TEST_F(BoardRendererTest, ShowMoveTextNamesTheMoveAndLightsTheSideToMove) {
    struct Case {
        const char16_t* Move;
        Truth Computer;
        std::int16_t PlyNow;
        bool Lower, Upper;
    };
    for (const Case& c : {Case{u"e4", Black, 1, false, true}, Case{u"e5", Black, 2, true, false},
                          Case{u"e4", White, 1, true, false}, Case{u"none", White, 0, false, true},
                          Case{u"Qh5+", Black, 2, true, false}, Case{u"Qxf7#", Black, 7, false, false},
                          Case{u"", Black, -1, false, true}, Case{u"", White, -1, false, true}}) {
        state.ComputerColor = c.Computer;
        state.PlyNow = c.PlyNow;
        renderer.ShowMoveText(c.Move);
        EXPECT_EQ(status.mdis.Caption.Get(), Text(u"Move: ") + c.Move);
        EXPECT_EQ(frmBoard.Announcement.Get(), Text(u"Move: ") + c.Move);
        EXPECT_EQ(status.Picture4[0].Visible.Get(), c.Lower) << ToUtf8(c.Move) << c.PlyNow;
        EXPECT_EQ(status.Picture4[1].Visible.Get(), c.Upper) << ToUtf8(c.Move) << c.PlyNow;
    }
}

TEST_F(BoardRendererTest, BoardBorderIsOutsideTheMiddle400) {
    for (const auto& [x, y, outside] : {std::tuple{19, 216, true},
                                        {20, 216, false},
                                        {219, 415, false},
                                        {219, 416, true},
                                        {418, 17, false},
                                        {419, 17, true},
                                        {418, 16, true}}) {
        controller.FloatPiece = 0;
        EXPECT_EQ(renderer.BoardBorder(static_cast<float>(x), static_cast<float>(y)), outside) << x << "," << y;
        controller.FloatPiece = 1;
        EXPECT_FALSE(renderer.BoardBorder(static_cast<float>(x), static_cast<float>(y)));
    }
}

TEST(SquareAtPixel, RoundsDownOnAllSides) {
    struct Case {
        double X, Y;
        Truth Flipped;
        Square Expected;
    };
    for (const Case& c : {Case{18, 18, False, {1, 1}}, Case{58, 58, False, {1, 1}}, Case{59, 58, False, {2, 1}},
                          Case{345, 345, False, {8, 8}}, Case{346, 345, False, {9, 8}}, Case{17, 17, False, {0, 0}},
                          Case{-24, -65, False, {-1, -2}}, Case{18, 18, True, {8, 8}}, Case{345, 305, True, {1, 1}},
                          Case{17, 346, True, {9, 0}}}) {
        EXPECT_EQ(SquareAtPixel(c.X, c.Y, c.Flipped), c.Expected) << c.X << "," << c.Y;
    }
}

TEST(DescribeBoard, NamesEverySquareWhereItIsShown) {
    GameState state;
    state.CurPos = MakePosition(StartSquares);
    PieceAt(state.CurPos, 1, 4) = 14;
    auto items = DescribeBoard(state);
    ASSERT_EQ(items.size(), 64U);
    EXPECT_EQ(items[0], (AccessibleItem{u"a8, black rook", 18, 18, 41, 41}));
    EXPECT_EQ(items[4].Name, u"e8, black king");
    EXPECT_EQ(items[24].Name, u"a5, unknown piece");
    EXPECT_EQ(items[35].Name, u"d4, empty");
    EXPECT_EQ(items[62], (AccessibleItem{u"g1, white knight", 264, 305, 41, 41}));

    state.BoardFlipped = True;
    state.Zoom = 2;
    items = DescribeBoard(state);
    EXPECT_EQ(items[0], (AccessibleItem{u"h1, white rook", 36, 36, 82, 82}));
    EXPECT_EQ(items[54], (AccessibleItem{u"b7, black pawn", 528, 528, 82, 82}));
}

} // namespace
} // namespace quarnel
