// A game by mouse against the real engine until somebody is mated.
//
// The player's moves are legal and poor; the replies are read off the pixels and must be legal, too.
#include "PlayedProgram.h"

#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/records/San.h"

#include <random>

namespace quarnel::xdriver {
namespace {

class WholeGame : public PlayedProgram {
  protected:
    // A move that takes nothing when there is one: the engine shall win soon.
    engine::Move PoorMove() {
        engine::MoveBuffer moves;
        engine::GenerateMoves<engine::MoveClass::Quiet>(Game, moves);
        if (moves.Empty()) engine::GenerateMoves(Game, moves);
        const engine::Move move = moves[Random() % moves.Size()];
        return move.IsPromotion() ? engine::Move(move.From(), move.To(), move.Kind(), engine::Queen) : move;
    }

    void PlayByMouse(engine::Move move, bool drag) {
        if (drag) {
            Drag(move);
        } else {
            Click(move.From());
            AwaitBoard("a selection", [&] { return Eye->Mark(SquareOf(move.From())) == SquareMark::Origin; });
            Click(move.To());
        }
        Game.Make(move);
    }

    SquareGround KingsGround() {
        const Square king = SquareOf(Game.KingSquare(Game.SideToMove()));
        return Eye->Ground(king.File, king.Row);
    }

    std::mt19937 Random{11};
};

TEST_F(WholeGame, IsPlayedByMouseUntilSomebodyIsMated) {
    StartWith(QUARNEL_PROGRAM, "Level=5\nPonder=-1\n");
    ASSERT_TRUE(Shows(Game) && Eye->LowerLight() && !Eye->UpperLight());
    Surface lastStrip = Eye->Strip();
    for (int moves = 0; engine::CountMoves(Game) != 0; ++moves) {
        ASSERT_LT(moves, 150) << "nobody is mated";
        const engine::Move poor = PoorMove();
        PlayByMouse(poor, moves % 2 == 1);
        if (engine::CountMoves(Game) == 0) break;
        const engine::Move reply = AwaitReply(Game);
        // The user's own origin counts as a selection while a piece stands there, so a reply onto it keeps that frame.
        const bool ontoOrigin = reply.To() == poor.From();
        EXPECT_EQ(Eye->Mark(SquareOf(reply.To())), ontoOrigin ? SquareMark::Origin : SquareMark::Target);
        EXPECT_EQ(Eye->Mark(SquareOf(reply.From())), ontoOrigin ? SquareMark::None : SquareMark::Origin);
        const bool mate = Game.InCheck() && engine::CountMoves(Game) == 0;
        EXPECT_EQ(Eye->LowerLight(), !mate);
        EXPECT_FALSE(Eye->UpperLight());
        EXPECT_EQ(KingsGround(), mate             ? SquareGround::Mate
                                 : Game.InCheck() ? SquareGround::Check
                                                  : SquareGround::Plain);
        EXPECT_FALSE(Eye->Strip() == lastStrip) << "the strip names each move";
        lastStrip = Eye->Strip();
    }
    ASSERT_TRUE(Game.InCheck()) << "a stalemate is no mate";
    Await("the message", [&] { return TakeMessageAway() || MessagesTaken > 0; });
    EXPECT_EQ(MessagesTaken, 1);
    EXPECT_EQ(Close(), 0);
}

TEST_F(WholeGame, EndsAtOnceWhenClosedWhileTheEngineThinks) {
    StartWith(QUARNEL_PROGRAM, "Level=9\n");
    Drag(engine::ReadSan(Game, "e4"));
    AwaitBoard("a search", [&] { return Eye->UpperLight(); });
    EXPECT_EQ(Close(), 0);
}

} // namespace
} // namespace quarnel::xdriver
