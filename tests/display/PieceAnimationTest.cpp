#include "BoardFixture.h"

#include "base/Numbers.h"

#include <algorithm>
#include <bit>
#include <random>

namespace quarnel {
namespace {

auto Bytes(const MoveRec& move) {
    return std::bit_cast<std::array<std::uint8_t, 8>>(move);
}

class AnimateMoveTest : public BoardFixture {
  protected:
    // Draws the position, slides `move` over it and returns how many frames that took.
    int Animate(MoveRec& move, Truth noMarks = False) {
        renderer.DrawCoordinates();
        renderer.RedrawBoard();
        firstTick = desktop.NowMs;
        const int before = Presented();
        animation.AnimateMove(state.CurPos, move, noMarks);
        return Presented() - before;
    }
    Square Selected() const { return {controller.SelFile, controller.SelRow}; }
    Square LastMove() const { return {state.LastMoveFile, state.LastMoveRow}; }

    std::uint32_t firstTick = 0;
};

TEST_F(AnimateMoveTest, ShowsThePieceOnItsWayAndNothingLeftBehind) {
    desktop.TickStepMs = 29; // positions between pixels, steps wider than the rim around a piece
    state.LastMoveFile = state.LastMoveRow = 4;
    const std::pair<MoveRec, Truth> cases[] = {{{7, 8, 6, 6, 0, 0, 0, 0}, False},
                                               {{7, 8, 6, 6, 0, 0, 0, 0}, True},
                                               {{1, 1, 8, 8, 0, 0, 0, 0}, False},
                                               {{5, 2, 1, 2, 0, 0, 0, 0}, False}};
    for (auto [move, flipped] : cases) {
        state.BoardFlipped = flipped;
        const Square origin{move.FromFile, move.FromRow};
        const Square target{move.ToFile, move.ToRow};
        ExpectedFrame expected{.LastMove = {4, 4}, .Erased = origin};
        expected.Floating = PieceAt(state.CurPos, origin.File, origin.Row);
        const PixelPoint from = SquareCorner(origin, flipped);
        const PixelPoint to = SquareCorner(target, flipped);
        const int durationMs = 50 * std::max(std::abs(origin.File - target.File), std::abs(origin.Row - target.Row));

        int elapsedMs = -29; // the first frame shows the board before the slide
        desktop.BeforeProcess = [&] {
            if (elapsedMs >= 0 && elapsedMs < durationMs) {
                const double part = 1.0 * elapsedMs / durationMs;
                expected.At = {RoundHalfEven(from.X + (to.X - from.X) * part),
                               RoundHalfEven(from.Y + (to.Y - from.Y) * part)};
                EXPECT_TRUE(Shows(expected)) << "after " << elapsedMs << " ms";
            }
            elapsedMs += 29;
        };
        Animate(move, True);
        desktop.BeforeProcess = nullptr;
        EXPECT_GE(elapsedMs, durationMs);
        EXPECT_TRUE(Shows({.LastMove = {4, 4}})) << "redrawn at the end";
    }
}

TEST_F(AnimateMoveTest, TakesFiftyMillisecondsASquareMarksTheOriginAtOnceAndBothAtTheEndAndRewritesCastling) {
    const struct {
        MoveRec Given;
        Truth Side, Flipped;
        MoveRec Left;
        int DurationMs;
    } cases[] = {{{5, 7, 5, 6, 0, 0, 0, 0}, White, False, {5, 7, 5, 6, 0, 0, 0, 0}, 50},
                 {{5, 8, 6, 7, 0, 0, 0, 0}, White, True, {5, 8, 6, 7, 0, 0, 0, 0}, 50},
                 {{2, 8, 3, 6, 0, 0, 0, 0}, White, True, {2, 8, 3, 6, 0, 0, 0, 0}, 100},
                 {{1, 8, 1, 1, 0, 0, 0, 0}, White, False, {1, 8, 1, 1, 0, 0, 0, 0}, 350},
                 {{5, 8, 0, 0, 1, 0, 0, 0}, White, False, {5, 8, 7, 8, 1, 0, 0, 0}, 100},
                 {{5, 8, 0, 0, 2, 0, 0, 0}, White, True, {5, 8, 3, 8, 2, 0, 0, 0}, 100},
                 {{5, 1, 0, 0, 1, 0, 0, 0}, Black, True, {5, 1, 7, 1, 1, 0, 0, 0}, 100},
                 {{5, 1, 0, 0, 2, 0, 0, 0}, Black, False, {5, 1, 3, 1, 2, 0, 0, 0}, 100}};
    desktop.TickStepMs = 1;
    state.Zoom = 2.5F;
    for (const auto& [given, side, flipped, left, durationMs] : cases) {
        SCOPED_TRACE(testing::PrintToString(Bytes(given)));
        state.CurPos = MakePosition(StartSquares, side);
        state.BoardFlipped = flipped;
        const Square from{left.FromFile, left.FromRow};
        const Square before = LastMove();
        int frames = 0;
        desktop.BeforeProcess = [&] {
            if (++frames != 2) return; // the first of the slide
            EXPECT_EQ(Selected(), from);
            EXPECT_EQ(LastMove(), before);
        };
        MoveRec move = given;
        // The last frame is the redraw; the clock is read once at the start and once after each step.
        EXPECT_EQ(Animate(move), durationMs + 1);
        EXPECT_EQ(desktop.NowMs - firstTick, static_cast<std::uint32_t>(durationMs + 1));
        EXPECT_EQ(Bytes(move), Bytes(left));
        EXPECT_EQ(Selected(), from);
        EXPECT_EQ(LastMove(), (Square{left.ToFile, left.ToRow}));
    }
    desktop.BeforeProcess = nullptr;
    const std::pair marks(Selected(), LastMove());
    MoveRec move{2, 8, 3, 6, 0, 0, 0, 0};
    Animate(move, True);
    EXPECT_EQ(std::pair(Selected(), LastMove()), marks) << "no marks asked for";
}

TEST_F(AnimateMoveTest, WithoutAWayOrAPieceNothingIsShownAndAFailureShowsTheRedrawAlone) {
    PieceAt(state.CurPos, 4, 4) = 17; // a code without an image
    const std::pair<MoveRec, int> cases[] = {{{0, 0, 0, 0, 0, 0, 0, 0}, 0}, {{5, 7, 5, 7, 0, 0, 0, 0}, 0},
                                             {{5, 5, 5, 4, 0, 0, 0, 0}, 0}, {{0, 3, 2, 3, 0, 0, 0, 0}, 0},
                                             {{9, 1, 2, 1, 0, 0, 0, 0}, 1}, {{1, 200, 2, 1, 0, 0, 0, 0}, 1},
                                             {{4, 4, 4, 5, 0, 0, 0, 0}, 1}};
    for (const Truth flipped : {False, True}) {
        state.BoardFlipped = flipped;
        for (const auto& [record, frames] : cases) {
            MoveRec move = record;
            EXPECT_EQ(Animate(move), frames) << int{record.FromFile};
            EXPECT_EQ(Bytes(move), Bytes(record));
            EXPECT_EQ(state.LastMoveFile, 0);
        }
        EXPECT_TRUE(Shows({.Selected = {4, 4}}));
    }
    desktop.TickStepMs = 100000;
    std::mt19937 random(1);
    for (int i = 0; i < 400; ++i) {
        const auto any = [&](unsigned count) { return static_cast<std::uint8_t>(random() % count); };
        const MoveRec record{any(256), any(16), any(256), any(256), any(4), 0, 0, 0};
        state.BoardFlipped = ToTruth(i % 2 != 0);
        MoveRec move = record;
        animation.AnimateMove(state.CurPos, move, False);
        EXPECT_TRUE(record.Castle != NoCastle || Bytes(move) == Bytes(record)) << i;
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
        const PixelPoint corner = SquareCorner(square, state.BoardFlipped);
        controller.SelFile = static_cast<std::int16_t>(square.File);
        controller.SelRow = static_cast<std::int16_t>(square.Row);
        controller.FloatPiece = PieceAt(state.CurPos, square.File, square.Row);
        controller.CurrentX = corner.X + 20;
        controller.CurrentY = corner.Y + 20;
        animation.MovePiece(PointerButton::Left, 0, static_cast<float>(corner.X + 20),
                            static_cast<float>(corner.Y + 20));
    }
};

TEST_F(MovePieceTest, FollowsThePointerWithoutATrail) {
    const Square g1{7, 8};
    for (const Truth flipped : {False, True}) {
        state.BoardFlipped = flipped;
        renderer.DrawCoordinates();
        PixelPoint pointer = SquareCorner(g1, flipped);
        pointer = {pointer.X + 20, pointer.Y + 20};
        for (const PixelPoint& next :
             {PixelPoint{200, 100}, {203, 96}, {60, 300}, {361, 2}, {365, 365}, {120, 365}, {120, 120}, {0, 0}}) {
            desktop.Script.push_back([this, g1, &pointer, next] {
                ExpectedFrame expected{.Selected = g1, .Hidden = g1, .Floating = Knight};
                expected.At = {pointer.X - 22, pointer.Y - 22};
                EXPECT_TRUE(Shows(expected)) << "at " << pointer.X;
                pointer = next;
                desktop.Move(frmBoard, next.X, next.Y, PointerButton::Left);
                if (next.X == 0) desktop.Release(frmBoard, 0, 0);
            });
        }
        Drag(g1);
        EXPECT_TRUE(desktop.Script.empty());
        EXPECT_TRUE(Shows({.Selected = g1}));
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
    std::string log;
    for (const std::string& entry : desktop.Log) log += entry.substr(0, entry.find(' ')) + " ";
    // The board without the piece; the piece under the pointer; a rest and a move; woken for nothing; the drop.
    EXPECT_EQ(log, "present process present process process wait process present process process wait process "
                   "wait process present process ");

    desktop.Log.clear();
    desktop.Release(frmBoard, 10, 10);
    Drag({2, 8});
    EXPECT_EQ(desktop.Log, (std::vector<std::string>{"present 366x366", "process"})) << "dropped in the first frame";
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
    EXPECT_TRUE(Shows({.Selected = {3, 3}}));
}

} // namespace
} // namespace quarnel
