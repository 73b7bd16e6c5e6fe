// A game by mouse against the real engine until somebody is mated.
//
// The player's moves are legal and poor; the replies are read off the pixels and must be legal, too.
#include "PlayedProgram.h"

#include <random>

namespace quarnel::xdriver {
namespace {

class WholeGame : public PlayedProgram {
  protected:
    // A move that takes nothing when there is one: the engine shall win soon.
    MoveRec PoorMove() {
        const MoveList list = Legal(Game);
        std::vector<MoveRec> quiet;
        for (int i = 0; i < list.Count; ++i) {
            const Square to = Target(list.Moves[i]);
            const bool takes = PieceAt(Game, to.File, to.Row) != NoPiece || list.Moves[i].EpCapFile != 0;
            if (!takes) quiet.push_back(list.Moves[i]);
        }
        MoveRec move = quiet.empty() ? list.Moves[0] : quiet[Random() % quiet.size()];
        if (move.Promote != NoPiece) move.Promote = Queen;
        return move;
    }

    void PlayByMouse(const MoveRec& move, bool drag) {
        const Square from{move.FromFile, move.FromRow};
        if (drag) {
            Drag(from, Target(move));
        } else {
            Click(Eye->Middle(from));
            ASSERT_TRUE(WaitForBoard([&] { return Eye->Mark(from) == SquareMark::Origin; }));
            Click(Eye->Middle(Target(move)));
        }
        Game = After(Game, move);
    }

    bool InCheck() { return quarnel_KingAttacked(&Game, Game.SideToMove) != 0; }
    // The ground under the king of the side to move.
    SquareGround KingsGround() {
        const int king = King + (Game.SideToMove != White ? BlackOffset : 0);
        for (int cell = 0; cell < 64; ++cell) {
            if (PieceAt(Game, cell % 8 + 1, cell / 8 + 1) == king) return Eye->Ground(cell % 8 + 1, cell / 8 + 1);
        }
        return SquareGround::Plain;
    }

    std::mt19937 Random{11};
};

TEST_F(WholeGame, IsPlayedByMouseUntilSomebodyIsMated) {
    ASSERT_NO_FATAL_FAILURE(StartWith(QUARNEL_PROGRAM, "Level=5\nPonder=-1\n"));
    ASSERT_TRUE(WaitForBoard([&] { return Eye->ShowsBoardOf(Game) && Eye->LowerLight() && !Eye->UpperLight(); }));
    Surface lastStrip = Eye->Strip();
    for (int moves = 0; Legal(Game).Count != 0; ++moves) {
        ASSERT_LT(moves, 150) << "nobody is mated";
        const MoveRec poor = PoorMove();
        ASSERT_NO_FATAL_FAILURE(PlayByMouse(poor, moves % 2 == 1));
        if (Legal(Game).Count == 0) break;
        const MoveRec reply = TakeEngineMove();
        ASSERT_NE(reply.FromFile, 0);
        // The user's own origin counts as a selection while a piece stands there, so a reply onto it keeps that frame.
        const bool ontoOrigin = Target(reply) == Square{poor.FromFile, poor.FromRow};
        EXPECT_EQ(Eye->Mark(Target(reply)), ontoOrigin ? SquareMark::Origin : SquareMark::Target);
        EXPECT_EQ(Eye->Mark({reply.FromFile, reply.FromRow}), ontoOrigin ? SquareMark::None : SquareMark::Origin);
        const bool mate = InCheck() && Legal(Game).Count == 0;
        EXPECT_EQ(Eye->LowerLight(), !mate);
        EXPECT_FALSE(Eye->UpperLight());
        EXPECT_EQ(KingsGround(), mate ? SquareGround::Mate : InCheck() ? SquareGround::Check : SquareGround::Plain);
        EXPECT_FALSE(Eye->Strip() == lastStrip) << "the strip names each move";
        lastStrip = Eye->Strip();
    }
    ASSERT_TRUE(InCheck()) << "a stalemate is no mate";
    EXPECT_TRUE(User.WaitUntil([&] { return TakeBoxAway() || BoxesSeen > 0; }));
    EXPECT_EQ(BoxesSeen, 1);
    ExpectItEndsWhenClosed();
}

TEST_F(WholeGame, EndsAtOnceWhenClosedWhileTheEngineThinks) {
    ASSERT_NO_FATAL_FAILURE(StartWith(QUARNEL_PROGRAM, "Level=9\n"));
    ASSERT_TRUE(WaitForBoard([&] { return Eye->LowerLight(); }));
    Drag({5, 7}, {5, 5});
    ASSERT_TRUE(WaitForBoard([&] { return Eye->UpperLight(); }));
    ExpectItEndsWhenClosed();
}

} // namespace
} // namespace quarnel::xdriver
