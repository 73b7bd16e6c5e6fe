#include "BoardFixture.h"

#include "base/Numbers.h"

namespace quarnel {
namespace {

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
