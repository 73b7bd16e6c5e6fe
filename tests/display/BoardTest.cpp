// The board on the scripted desktop, at rest and with a piece in motion, against the frame that it should show, worked
// out pixel by pixel.
#include "Pictures.h"
#include "base/Numbers.h"
#include "support/ProgramFixture.h"

namespace quarnel {
namespace {

/// What a frame should show beside the pieces. Squares as (file, row); file 0 is none.
struct ExpectedFrame {
    Square LastMove{}, Selected{}, Hidden{}, Inverted{}, Red{};
    int Floating = 0; ///< a piece drawn over everything at
    PixelPoint At{};

    Surface Draw(Desktop& desktop, const Position& pieces, Truth flipped) const {
        Surface frame(366, 366, 0xFF590000U);
        for (int i = 0; i < 8; ++i) {
            const FontChoice font{u"Arial", 9, true};
            const auto letter = static_cast<char16_t>(flipped ? u'H' - i : u'A' + i);
            const auto digit = static_cast<char16_t>(flipped ? u'1' + i : u'8' - i);
            desktop.DrawText(frame, 35 + 41 * i, 3, Text(1, letter), font, ColourWhite);
            desktop.DrawText(frame, 7, 32 + 41 * i, Text(1, digit), font, ColourWhite);
        }
        for (int y = 0; y < 8 * 41; ++y) {
            for (int x = 0; x < 8 * 41; ++x) frame.Set(18 + x, 18 + y, OnBoard(x, y, pieces, flipped));
        }
        for (int y = std::max(At.Y, 0); Floating != 0 && y < std::min(At.Y + 41, 366); ++y) {
            for (int x = std::max(At.X, 0); x < std::min(At.X + 41, 366); ++x) {
                frame.Set(x, y, Sprite(Floating, x - At.X, y - At.Y).value_or(frame.At(x, y)));
            }
        }
        return frame;
    }

  private:
    // A piece's colour where the mask sheet says that there is any; codes above 12 look like a white pawn.
    static std::optional<Colour> Sprite(int piece, int x, int y) {
        const int cell = piece > 12 ? 0 : piece - 1;
        const int index = (y + cell / 6 * 41) * 246 + cell % 6 * 41 + x;
        static const auto* const image = FindPicture("o_ppic")->pixels;
        static const auto* const mask = FindPicture("m_ppic")->pixels;
        return (mask[index] & 0xFFFFFFU) == 0 ? std::nullopt : std::optional(image[index] | 0xFF000000U);
    }

    Colour OnBoard(int x, int y, const Position& pieces, Truth flipped) const {
        const int column = x / 41;
        const int line = y / 41;
        const bool border = x % 41 < 4 || y % 41 < 4 || x % 41 >= 37 || y % 41 >= 37;
        const Square square = flipped ? Square{8 - column, 8 - line} : Square{column + 1, line + 1};
        Colour colour = (column + line) % 2 == 0 ? Rgb(209, 160, 120) : Rgb(131, 66, 38);
        if (square == Inverted) colour = ~colour | 0xFF000000U;
        if (square == Red) colour = Rgb(255, 0, 0);
        if (square == LastMove && border) colour = ColourWhite;
        const int piece = pieces.Board[square.Row][square.File];
        if (piece >= 1 && piece <= 16 && square != Hidden) colour = Sprite(piece, x % 41, y % 41).value_or(colour);
        return square == Selected && border ? ColourBlack : colour;
    }
};

class BoardTest : public ProgramTest {
  protected:
    BoardTest() { Screen.Log.clear(); }

    /// Whether the frame on the screen is this one, pixel by pixel.
    bool Shows(const ExpectedFrame& frame, const std::optional<Position>& pieces = {}) {
        const Surface drawn = frame.Draw(Screen, pieces.value_or(State().CurPos), State().BoardFlipped);
        return Screen.Frames[&Window()].Frame == drawn;
    }
    bool ShowsAfterRedraw(const ExpectedFrame& frame) {
        Game->Renderer.DrawCoordinates();
        Game->Renderer.RedrawBoard();
        return Shows(frame);
    }
};

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
    Controller().SelFile = Controller().SelRow = 8;
    EXPECT_EQ(Window().OnDescribe()[0].Name, u"h1, white rook, selected");
    Controller().SelFile = Controller().SelRow = 2; // the user plays White
    const auto items = Window().OnDescribe();
    ASSERT_EQ(items.size(), 64U);
    EXPECT_EQ(items[0], (AccessibleItem{u"h1, white rook", 36, 36, 82, 82}));
    EXPECT_EQ(items[28].Name, u"d4, empty");
    EXPECT_EQ(items[54], (AccessibleItem{u"b7, black pawn", 528, 528, 82, 82}));
}

class AnimateMoveTest : public BoardTest {
  protected:
    // Draws the position, slides `move` over it and returns how many frames that took.
    int Animate(MoveRec& move, Truth noMarks = False) {
        ShowsAfterRedraw({});
        const int before = FramesShown();
        Game->Animation.AnimateMove(State().CurPos, move, noMarks);
        return FramesShown() - before;
    }
    // Both ends of the last move as they are marked.
    std::pair<Square, Square> Marks() {
        return {{Controller().SelFile, Controller().SelRow}, {State().LastMoveFile, State().LastMoveRow}};
    }
    static std::string Bytes(const MoveRec& move) { return {reinterpret_cast<const char*>(&move), sizeof move}; }
};

TEST_F(AnimateMoveTest, ShowsThePieceOnItsWayAndNothingLeftBehind) {
    Screen.TickStepMs = 29; // positions between pixels, steps wider than the rim around a piece
    State().LastMoveFile = State().LastMoveRow = 4;
    const std::tuple<MoveRec, Truth, int> cases[] = {{{7, 8, 6, 6, 0, 0, 0, 0}, True, 100},
                                                     {{1, 1, 8, 8, 0, 0, 0, 0}, False, 350},
                                                     {{5, 2, 1, 2, 0, 0, 0, 0}, False, 200}};
    for (auto [move, flipped, durationMs] : cases) {
        State().BoardFlipped = flipped;
        const Square origin{move.FromFile, move.FromRow};
        const PixelPoint from = SquareCorner(origin, flipped);
        const PixelPoint to = SquareCorner({move.ToFile, move.ToRow}, flipped);
        ExpectedFrame expected{.LastMove = {4, 4}, .Hidden = origin};
        expected.Floating = PieceAt(State().CurPos, origin.File, origin.Row);
        int elapsedMs = -29; // the first frame shows the board before the slide
        Screen.BeforeProcess = [&, durationMs = durationMs] {
            if (elapsedMs >= 0 && elapsedMs < durationMs) {
                const double part = 1.0 * elapsedMs / durationMs;
                expected.At = {RoundHalfEven(from.X + (to.X - from.X) * part),
                               RoundHalfEven(from.Y + (to.Y - from.Y) * part)};
                EXPECT_TRUE(Shows(expected)) << "after " << elapsedMs << " ms";
            }
            elapsedMs += 29;
        };
        Animate(move, True);
        EXPECT_GE(elapsedMs, durationMs);
        EXPECT_TRUE(Shows({.LastMove = {4, 4}})) << "redrawn at the end, and no other marks";
    }
}

TEST_F(AnimateMoveTest, TakesFiftyMillisecondsASquareMarksTheOriginAtOnceAndBothAtTheEndAndRewritesCastling) {
    const std::tuple<MoveRec, Truth, Truth, MoveRec, int> cases[] = {
        {{5, 8, 6, 7, 0, 0, 0, 0}, White, True, {5, 8, 6, 7, 0, 0, 0, 0}, 50},
        {{1, 8, 1, 1, 0, 0, 0, 0}, White, False, {1, 8, 1, 1, 0, 0, 0, 0}, 350},
        {{5, 8, 0, 0, 2, 0, 0, 0}, White, True, {5, 8, 3, 8, 2, 0, 0, 0}, 100},
        {{5, 1, 0, 0, 1, 0, 0, 0}, Black, False, {5, 1, 7, 1, 1, 0, 0, 0}, 100}};
    Screen.TickStepMs = 1;
    State().Zoom = 2.5F;
    for (const auto& [given, side, flipped, left, durationMs] : cases) {
        SCOPED_TRACE(durationMs);
        State().CurPos.SideToMove = side;
        State().BoardFlipped = flipped;
        const Square from{left.FromFile, left.FromRow};
        int frames = 0;
        Screen.BeforeProcess = [&, before = Marks().second] {
            EXPECT_TRUE(++frames != 2 || Marks() == std::pair(from, before)) << "in the first frame of the slide";
        };
        MoveRec move = given;
        // The last frame is the redraw.
        EXPECT_EQ(Animate(move), durationMs + 1);
        EXPECT_EQ(Bytes(move), Bytes(left));
        EXPECT_EQ(Marks(), std::pair(from, Square{left.ToFile, left.ToRow}));
    }
}

TEST_F(AnimateMoveTest, ShowsNoMorePicturesThanTheDisplayAndSleepsBetweenThem) {
    Screen.TickStepMs = 1;
    Screen.FrameMs = 16;
    Screen.LogEvents = true;
    MoveRec move{1, 8, 1, 1, 0, 0, 0, 0};
    const std::uint32_t start = Screen.NowMs;
    const int pictures = Animate(move);
    const auto waits = std::ranges::count_if(Screen.Log, [](const std::string& e) { return e.starts_with("wait "); });
    EXPECT_THAT(pictures, testing::AllOf(testing::Ge(350 / 20), testing::Le(350 / 16 + 2)));
    EXPECT_EQ(waits, pictures - 1);
    EXPECT_THAT(Screen.NowMs - start, testing::AllOf(testing::Ge(350U), testing::Le(355U)));
}

TEST_F(AnimateMoveTest, WithoutAWayOrAPieceNothingIsShownAndAFailureShowsTheRedrawAlone) {
    PieceAt(State().CurPos, 4, 4) = 17; // a code without an image
    const std::pair<MoveRec, int> cases[] = {{{5, 7, 5, 7, 0, 0, 0, 0}, 0},   {{5, 5, 5, 4, 0, 0, 0, 0}, 0},
                                             {{0, 3, 2, 3, 0, 0, 0, 0}, 0},   {{9, 1, 2, 1, 0, 0, 0, 0}, 1},
                                             {{1, 200, 2, 1, 0, 0, 0, 0}, 1}, {{4, 4, 4, 5, 0, 0, 0, 0}, 1}};
    for (const Truth flipped : {False, True}) {
        State().BoardFlipped = flipped;
        for (const auto& [record, frames] : cases) {
            MoveRec move = record;
            EXPECT_EQ(Animate(move), frames) << int{record.FromFile};
            EXPECT_EQ(Bytes(move), Bytes(record));
        }
        EXPECT_TRUE(Shows({.Selected = {4, 4}}));
    }
}

using MovePieceTest = BoardTest;

TEST_F(MovePieceTest, FollowsThePointerWithoutATrail) {
    const Square g1{7, 8};
    for (const Truth flipped : {False, True}) {
        State().BoardFlipped = flipped;
        Game->Renderer.DrawCoordinates();
        PixelPoint corner = SquareCorner(g1, flipped);
        corner = {corner.X - 2, corner.Y - 2};
        for (const auto& [x, y] :
             {std::pair{200, 100}, {203, 96}, {60, 300}, {361, 2}, {365, 365}, {120, 365}, {0, 0}}) {
            Screen.Script.push_back([this, g1, &corner, x = x, y = y] {
                EXPECT_TRUE(Shows({.Selected = g1, .Hidden = g1, .Floating = Knight, .At = corner})) << corner.X;
                corner = {x - 22, y - 22};
                Screen.Move(Window(), x, y, PointerButton::Left);
                if (x == 0) Screen.Release(Window(), 0, 0);
            });
        }
        PressSquare("g1");
        Screen.ProcessEvents();
        EXPECT_TRUE(Screen.Script.empty());
        EXPECT_TRUE(Shows({.Selected = g1}));
        Game->Input.CancelPieceSel();
    }
}

TEST_F(MovePieceTest, SleepsWhileThePointerRestsAndNeverOnceThePieceIsDropped) {
    Screen.LogEvents = true;
    Screen.Script = {[this] { Screen.Move(Window(), 284, 325); }, // where it is: woken for nothing
                     [this] { Screen.Release(Window(), 284, 325); }};
    PressSquare("g1");
    Screen.ProcessEvents();
    std::string log;
    for (const std::string& entry : Screen.Log) log += entry.substr(0, entry.find(' ')) + " ";
    // The drop selects the piece once more, and both the drag and the press that it came from redraw at their ends.
    EXPECT_EQ(log, "process present process present process process wait process wait process "
                   "present process present process present process present process ");
}

} // namespace
} // namespace quarnel
