#include "BoardFixture.h"

#include "base/Numbers.h"

#include <algorithm>
#include <cstring>

namespace quarnel {
namespace {

MoveRec MakeMove(int fromFile, int fromRow, int toFile, int toRow, int castle = NoCastle) {
    MoveRec move{};
    move.FromFile = static_cast<std::uint8_t>(fromFile);
    move.FromRow = static_cast<std::uint8_t>(fromRow);
    move.ToFile = static_cast<std::uint8_t>(toFile);
    move.ToRow = static_cast<std::uint8_t>(toRow);
    move.Castle = static_cast<std::uint8_t>(castle);
    return move;
}

bool operator==(const MoveRec& a, const MoveRec& b) {
    return std::memcmp(&a, &b, sizeof(MoveRec)) == 0;
}

PixelPoint ImageAt(Square square, Truth flipped) {
    return flipped ? PixelPoint{18 + 41 * (8 - square.File), 18 + 41 * (8 - square.Row)}
                   : PixelPoint{18 + 41 * (square.File - 1), 18 + 41 * (square.Row - 1)};
}

class AnimateMoveTest : public BoardFixture {
  protected:
    // Draws `state.CurPos` and slides `move` over it.
    void Animate(MoveRec& move, Truth noMarks = False) {
        renderer.DrawCoordinates();
        renderer.RedrawBoard();
        firstTick = desktop.NowMs;
        before = Presented();
        animation.AnimateMove(state.CurPos, move, noMarks);
    }
    int Steps() { return Presented() - before; }

    std::uint32_t firstTick = 0;
    int before = 0;
};

TEST_F(AnimateMoveTest, TakesFiftyMillisecondsASquareAtEveryZoom) {
    struct Case {
        MoveRec Move;
        std::uint32_t DurationMs;
    };
    desktop.TickStepMs = 1;
    for (const float zoom : {1.0F, 2.5F}) {
        for (const Case& c :
             {Case{MakeMove(5, 7, 5, 6), 50}, Case{MakeMove(5, 8, 6, 7), 50}, Case{MakeMove(2, 8, 3, 6), 100},
              Case{MakeMove(1, 8, 1, 1), 350}, Case{MakeMove(8, 1, 1, 3), 350}}) {
            state.Zoom = zoom;
            MoveRec move = c.Move;
            Animate(move);
            // The clock is read once at the start and once after each step.
            EXPECT_EQ(desktop.NowMs - firstTick, c.DurationMs + 1);
            EXPECT_EQ(Steps(), static_cast<int>(c.DurationMs) + 1) << "the last one is the redraw";
        }
    }
}

TEST_F(AnimateMoveTest, ShowsThePieceOnItsWayAndNothingLeftBehind) {
    struct Case {
        Square From, To;
        Truth Flipped;
    };
    desktop.TickStepMs = 9; // uneven, so that positions fall between pixels
    for (const Case& c : {Case{{7, 8}, {6, 6}, False}, Case{{7, 8}, {6, 6}, True}, Case{{1, 1}, {8, 8}, False},
                          Case{{8, 7}, {8, 5}, True}, Case{{5, 2}, {1, 2}, False}}) {
        state.BoardFlipped = c.Flipped;
        state.LastMoveFile = 4;
        state.LastMoveRow = 4;
        controller.SelFile = 0;
        ExpectedFrame expected{state.CurPos, c.Flipped};
        expected.LastMove = {4, 4};
        expected.Erased = c.From;
        expected.Floating = PieceAt(state.CurPos, c.From.File, c.From.Row);
        const PixelPoint from = ImageAt(c.From, c.Flipped);
        const PixelPoint to = ImageAt(c.To, c.Flipped);
        const int durationMs = 50 * std::max(std::abs(c.From.File - c.To.File), std::abs(c.From.Row - c.To.Row));

        renderer.DrawCoordinates();
        renderer.RedrawBoard();
        int elapsedMs = 0;
        desktop.BeforeProcess = [&] {
            if (elapsedMs >= durationMs) return;
            const auto along = [&](int a, int b) { return RoundHalfEven(a + (b - a) * 1.0 * elapsedMs / durationMs); };
            expected.At = {along(from.X, to.X), along(from.Y, to.Y)};
            EXPECT_TRUE(Shown() == expected.Draw(desktop)) << "after " << elapsedMs << " ms";
            elapsedMs += 9;
        };
        MoveRec move = MakeMove(c.From.File, c.From.Row, c.To.File, c.To.Row);
        animation.AnimateMove(state.CurPos, move, True);
        desktop.BeforeProcess = nullptr;
        EXPECT_GE(elapsedMs, durationMs);
        expected = {state.CurPos, c.Flipped};
        expected.LastMove = {4, 4};
        EXPECT_TRUE(Shown() == expected.Draw(desktop)) << "redrawn at the end";
    }
}

TEST_F(AnimateMoveTest, MarksTheOriginAtOnceAndBothSquaresAtTheEnd) {
    for (const Truth flipped : {False, True}) {
        state.BoardFlipped = flipped;
        state.LastMoveFile = state.LastMoveRow = 1;
        controller.SelFile = controller.SelRow = 0;
        int frames = 0;
        desktop.BeforeProcess = [&] {
            if (++frames != 2) return; // the first of the slide
            EXPECT_EQ(controller.SelFile, 7);
            EXPECT_EQ(controller.SelRow, 8);
            EXPECT_EQ(state.LastMoveFile, 1);
        };
        MoveRec move = MakeMove(7, 8, 6, 6);
        Animate(move);
        EXPECT_EQ((Square{controller.SelFile, controller.SelRow}), (Square{7, 8}));
        EXPECT_EQ((Square{state.LastMoveFile, state.LastMoveRow}), (Square{6, 6}));
        EXPECT_TRUE(move == MakeMove(7, 8, 6, 6));
        EXPECT_GT(frames, 2);
        desktop.BeforeProcess = nullptr;
    }
    MoveRec move = MakeMove(2, 8, 3, 6);
    Animate(move, True);
    EXPECT_EQ((Square{controller.SelFile, controller.SelRow}), (Square{7, 8})) << "no marks asked for";
    EXPECT_EQ((Square{state.LastMoveFile, state.LastMoveRow}), (Square{6, 6}));
}

TEST_F(AnimateMoveTest, RewritesACastlingRecordToTheKingsMove) {
    struct Case {
        int Castle;
        Truth Side, Flipped;
        MoveRec Expected;
    };
    for (const Case& c :
         {Case{1, White, False, MakeMove(5, 8, 7, 8, 1)}, Case{2, White, True, MakeMove(5, 8, 3, 8, 2)},
          Case{1, Black, True, MakeMove(5, 1, 7, 1, 1)}, Case{2, Black, False, MakeMove(5, 1, 3, 1, 2)}}) {
        state.CurPos = MakePosition(StartSquares, c.Side);
        state.BoardFlipped = c.Flipped;
        MoveRec move = MakeMove(5, c.Side == Black ? 1 : 8, 0, 0, c.Castle);
        Animate(move);
        EXPECT_TRUE(move == c.Expected) << c.Castle << " " << c.Side;
        EXPECT_EQ(Steps(), 11) << "two squares";
        EXPECT_EQ((Square{controller.SelFile, controller.SelRow}), (Square{5, c.Expected.FromRow}));
        EXPECT_EQ((Square{state.LastMoveFile, state.LastMoveRow}), (Square{c.Expected.ToFile, c.Expected.ToRow}));
    }
}

TEST_F(AnimateMoveTest, DoesNothingWithoutAWayOrAPiece) {
    for (const Truth flipped : {False, True}) {
        state.BoardFlipped = flipped;
        for (const MoveRec& record :
             {MakeMove(0, 0, 0, 0), MakeMove(5, 7, 5, 7), MakeMove(5, 5, 5, 4), MakeMove(0, 3, 2, 3)}) {
            MoveRec move = record;
            Animate(move);
            EXPECT_EQ(Steps(), 0);
            EXPECT_TRUE(move == record);
            EXPECT_EQ(state.LastMoveFile, 0);
            EXPECT_EQ(desktop.NowMs, firstTick);
        }
    }
}

TEST_F(AnimateMoveTest, EndsAtItsFirstFailureWithTheRedraw) {
    PieceAt(state.CurPos, 4, 4) = 17; // a code without an image
    for (const Truth flipped : {False, True}) {
        state.BoardFlipped = flipped;
        for (const MoveRec& record : {MakeMove(9, 1, 2, 1), MakeMove(1, 200, 2, 1), MakeMove(4, 4, 4, 5)}) {
            MoveRec move = record;
            Animate(move);
            EXPECT_EQ(Steps(), 1) << int{record.FromFile};
            EXPECT_TRUE(move == record);
            EXPECT_EQ(state.LastMoveFile, 0);
        }
        ExpectedFrame expected{state.CurPos, flipped};
        expected.Selected = {4, 4};
        EXPECT_TRUE(Shown() == expected.Draw(desktop));
    }
}

TEST_F(AnimateMoveTest, SurvivesAnyRecord) {
    desktop.TickStepMs = 100000;
    for (std::uint32_t seed = 1; seed < 400; ++seed) {
        const std::uint32_t bits = seed * 2654435761U;
        const MoveRec record = MakeMove(bits >> 24 & 0xFF, bits >> 16 & 0xF, bits >> 8 & 0xFF, bits & 0xFF, seed % 4);
        state.BoardFlipped = ToTruth(seed % 2 != 0);
        MoveRec move = record;
        animation.AnimateMove(state.CurPos, move, False);
        EXPECT_TRUE(record.Castle != NoCastle || move == record) << seed;
    }
}

class MovePieceTest : public BoardFixture {
  protected:
    MovePieceTest() {
        frmBoard.OnMouseMove = [this](const PointerEvent& event) {
            controller.CurrentX = static_cast<std::int32_t>(event.X);
            controller.CurrentY = static_cast<std::int32_t>(event.Y);
        };
        frmBoard.OnMouseUp = [this](const PointerEvent&) { controller.FloatPiece = 0; };
        frmBoard.OuterWidth = frmBoard.OuterHeight = 9000;
    }

    // Picks up the piece on `square` with the pointer in its middle, as move input does.
    void Drag(Square square) {
        const PixelPoint corner = ImageAt(square, state.BoardFlipped);
        controller.SelFile = static_cast<std::int16_t>(square.File);
        controller.SelRow = static_cast<std::int16_t>(square.Row);
        controller.FloatPiece = PieceAt(state.CurPos, square.File, square.Row);
        controller.CurrentX = corner.X + 20;
        controller.CurrentY = corner.Y + 20;
        animation.MovePiece(PointerButton::Left, 0, static_cast<float>(corner.X + 20),
                            static_cast<float>(corner.Y + 20));
    }

    ExpectedFrame Expected(Square origin, int pointerX, int pointerY) {
        ExpectedFrame expected{state.CurPos, state.BoardFlipped};
        expected.Selected = expected.Hidden = origin;
        expected.Floating = PieceAt(state.CurPos, origin.File, origin.Row);
        expected.At = {pointerX - 22, pointerY - 22};
        return expected;
    }
};

TEST_F(MovePieceTest, FollowsThePointerWithoutATrail) {
    for (const Truth flipped : {False, True}) {
        state.BoardFlipped = flipped;
        renderer.DrawCoordinates();
        const Square origin{7, 8};
        const PixelPoint start = ImageAt(origin, flipped);
        PixelPoint pointer{start.X + 20, start.Y + 20};
        for (const PixelPoint& next :
             {PixelPoint{200, 100}, {203, 96}, {60, 300}, {361, 2}, {365, 365}, {120, 365}, {120, 120}}) {
            desktop.Script.push_back([this, origin, &pointer, next] {
                EXPECT_TRUE(Shown() == Expected(origin, pointer.X, pointer.Y).Draw(desktop)) << "at " << pointer.X;
                pointer = next;
                desktop.Move(frmBoard, next.X, next.Y, PointerButton::Left);
            });
        }
        desktop.Script.push_back([this, origin] {
            EXPECT_TRUE(Shown() == Expected(origin, 120, 120).Draw(desktop));
            desktop.Release(frmBoard, 120, 120);
        });
        Drag(origin);
        EXPECT_TRUE(desktop.Script.empty());
        ExpectedFrame dropped{state.CurPos, flipped};
        dropped.Selected = origin;
        EXPECT_TRUE(Shown() == dropped.Draw(desktop));
    }
}

TEST_F(MovePieceTest, SleepsWhileThePointerRestsAndNeverOnceThePieceIsDropped) {
    desktop.LogEvents = true;
    desktop.Script = {
        [this] { desktop.Move(frmBoard, 100, 100, PointerButton::Left); },
        [this] { desktop.Press(frmBoard, 100, 100, PointerButton::Right); }, // an event that changes nothing
        [this] {
            desktop.Move(frmBoard, 110, 100, PointerButton::Left);
            desktop.Release(frmBoard, 110, 100);
        },
    };
    // Where the last drag ended is no reason to leave the first frame out.
    controller.DragLastX = 18 + 6 * 41 + 20;
    controller.DragLastY = 18 + 7 * 41 + 20;
    Drag({7, 8});
    const std::vector<std::string> expected{
        "present 366x366",
        "process", // the board without the piece
        "present 366x366",
        "process",
        "process", // the piece under the pointer
        "wait",
        "process", // rests, then moves
        "present 366x366",
        "process",
        "process", // drawn there
        "wait",
        "process", // woken for nothing
        "wait",
        "process", // the drop
        "present 366x366",
        "process",
    };
    EXPECT_EQ(desktop.Log, expected);
}

TEST_F(MovePieceTest, EndsAtOnceWhenTheDropCameWithTheFirstFrame) {
    desktop.Release(frmBoard, 10, 10);
    desktop.LogEvents = true;
    Drag({2, 8});
    EXPECT_EQ(desktop.Log, (std::vector<std::string>{"present 366x366", "process"}));
    EXPECT_EQ(controller.DragX, 0) << "left as it was";
}

TEST_F(MovePieceTest, DragsACodeWithoutAnImageAsNothing) {
    PieceAt(state.CurPos, 3, 3) = 99;
    desktop.Script = {[this] { desktop.Move(frmBoard, -40, 900, PointerButton::Left); },
                      [this] { desktop.Move(frmBoard, 100000, 100, PointerButton::Left); }};
    // The far position cannot be kept as the last one, so this pointer is never at rest and the drop must
    // come with the events of a pass.
    int passes = 0;
    desktop.BeforeProcess = [&] {
        if (controller.CurrentX > 32767 && ++passes == 3) desktop.Release(frmBoard, 0, 0);
    };
    Drag({3, 3});
    ExpectedFrame expected{state.CurPos};
    expected.Selected = {3, 3};
    EXPECT_TRUE(Shown() == expected.Draw(desktop));
}

} // namespace
} // namespace quarnel
