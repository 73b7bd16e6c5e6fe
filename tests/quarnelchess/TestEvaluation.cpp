#include "RandomGames.h"

#include "quarnelchess/evaluation/Endgames.h"
#include "quarnelchess/evaluation/Evaluation.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quarnel::engine {
namespace {

int Value(const char* fen) {
    return Evaluation().Evaluate(BoardOf(fen));
}

/// The same position with colours and board halves exchanged.
Board Mirrored(const Board& board) {
    BoardBuilder builder;
    for (Square square = 0; square < 64; ++square) {
        const Piece piece = board.At(square);
        if (piece != NoPiece) builder.Put(FlipRank(square), MakePiece(~ColorOf(piece), KindOf(piece)));
    }
    builder.SetSide(~board.SideToMove());
    builder.SetCastling(((board.Castling() & 3) << 2) | (board.Castling() >> 2));
    if (board.EnPassant() != NoSquare) builder.SetEnPassantFile(FileOf(board.EnPassant()));
    return builder.Build().value();
}

TEST(Evaluation, JudgesBothColoursAndBothOperationsAlike) {
    Evaluation evaluation;
    Evaluation base(net::BaseOperations);
    ForRandomPositions(8, 120, [&](const Board& board) {
        const int value = evaluation.Evaluate(board);
        ASSERT_EQ(evaluation.Evaluate(Mirrored(board)), value) << WriteFen(board);
        ASSERT_EQ(base.Evaluate(board), value) << WriteFen(board);
    });
}

/// Plays at random from `board` at `ply` and back again, asking for values now and then as a search does, and compares
/// each with the value of the position by itself.
class LineFollower {
  public:
    void Follow(const Board& board, int ply, int plies) {
        if (random_() % 3 != 0) Compare(board, ply);
        if (plies == 0) return;
        const MoveBuffer moves = MovesOf(board);
        for (int branch = 0; branch < 2 && !moves.Empty(); ++branch) {
            const Move move = PickMove(board, moves);
            Board next = board;
            next.Make(move);
            evaluation_.Played(board, move, ply);
            seen_ |= Bit(static_cast<int>(move.Kind()));
            Follow(next, ply + 1, branch == 0 ? plies - 1 : std::min(plies - 1, 2));
        }
        if (!board.InCheck()) {
            Board next = board;
            next.MakeNull();
            evaluation_.Passed(ply);
            Follow(next, ply + 1, std::min(plies - 1, 1));
        }
        Compare(board, ply); // the children have used the plies beyond
    }
    void Begin(const Board& board) { evaluation_.Begin(board); }
    bool HasSeenEveryKindOfMove() const { return seen_ == 15; }

  private:
    /// Kings wander and special moves are played when there are any.
    Move PickMove(const Board& board, const MoveBuffer& moves) {
        for (const Move move : moves)
            if (move.Kind() != MoveKind::Normal && random_() % 2 == 0) return move;
        for (const Move move : moves)
            if (KindOf(board.At(move.From())) == King && random_() % 4 == 0) return move;
        return moves[random_() % moves.Size()];
    }
    void Compare(const Board& board, int ply) {
        ASSERT_EQ(evaluation_.Evaluate(board, ply), Evaluation().Evaluate(board)) << WriteFen(board);
    }

    std::mt19937 random_{9};
    Evaluation evaluation_;
    Bitboard seen_ = 0; // kinds of moves
};

TEST(Evaluation, KeepsItsSumsAlongEveryLine) {
    LineFollower follower;
    for (const char* fen : {"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
                            "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
                            "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
                            "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1"}) {
        for (int game = 0; game < 6; ++game) {
            follower.Begin(BoardOf(fen));
            ASSERT_NO_FATAL_FAILURE(follower.Follow(BoardOf(fen), 0, 7));
        }
    }
    EXPECT_TRUE(follower.HasSeenEveryKindOfMove());
}

TEST(Net, OperationsAgreeAtTheEndsOfTheirRanges) {
    struct alignas(64) Numbers {
        std::int16_t Of[2 * net::Hidden];
    };
    std::mt19937 random(11);
    const std::int16_t sums[] = {-32768, -1, 0, 1, 254, 255, 256, 16665, 32767};
    const std::int16_t weights[] = {-127, -1, 0, 1, 127};
    for (int round = 0; round < 2000; ++round) {
        Numbers own, other, weight, added, removed;
        // Whole rounds at the largest values show that nothing overflows.
        const auto at = [&](const auto& values) {
            return round < 4 ? values[round % 2 == 0 ? std::size(values) - 1 : std::size(values) - 3]
                             : values[random() % std::size(values)];
        };
        for (int i = 0; i < 2 * net::Hidden; ++i) {
            own.Of[i] = at(sums);
            other.Of[i] = at(sums);
            weight.Of[i] = round == 2 ? std::int16_t{-127} : at(weights);
            added.Of[i] = static_cast<std::int16_t>(random() % 1011) - 505;
            removed.Of[i] = static_cast<std::int16_t>(random() % 1011) - 505;
        }
        std::int64_t expected = 0;
        for (int i = 0; i < 2 * net::Hidden; ++i) {
            const std::int64_t clipped =
                std::clamp<std::int64_t>((i < net::Hidden ? own.Of[i] : other.Of[i - net::Hidden]), 0, net::Unit);
            expected += clipped * clipped * weight.Of[i];
        }
        for (const net::Operations* operations : {&net::BaseOperations, &net::BestOperations()})
            ASSERT_EQ(operations->Output(own.Of, other.Of, weight.Of), expected) << round;
        for (const auto& [addedCount, removedCount] : {std::pair{1, 1}, {1, 2}, {2, 2}}) {
            net::Change change{{added.Of, removed.Of}, {removed.Of, weight.Of}, addedCount, removedCount};
            Numbers base, best;
            net::BaseOperations.Apply(base.Of, own.Of, change);
            net::BestOperations().Apply(best.Of, own.Of, change);
            ASSERT_TRUE(std::equal(base.Of, base.Of + net::Hidden, best.Of)) << addedCount << removedCount;
        }
    }
}

TEST(Evaluation, PrefersWhatAPlayerWouldPrefer) {
    const struct {
        const char* Better;
        const char* Worse;
    } pairs[] = {
        // Castled behind pawns, or out in the open.
        {"r1bqkb1r/pppp1ppp/2n2n2/4p3/2B1P3/5N2/PPPP1PPP/RNBQ1RK1 w kq - 0 1",
         "r1bqkb1r/pppp1ppp/2n2n2/4p3/2B1P3/4KN2/PPPP1PPP/RNBQ3R w kq - 0 1"},
        // A passed pawn far up, or at home.
        {"4k3/8/P7/8/8/8/5ppp/r3K2R w - - 0 1", "4k3/8/8/8/8/P7/5ppp/r3K2R w - - 0 1"},
        // A rook on an open file, or behind its own pawn.
        {"4k3/pp3ppp/8/8/8/8/PP3PPP/3RK3 w - - 0 1", "4k3/pp3ppp/8/8/8/8/PP3PPP/R3K3 w - - 0 1"},
        // Whole pawns, or doubled and isolated ones.
        {"4k3/5ppp/8/8/8/8/5PPP/4K3 w - - 0 1", "4k3/5ppp/8/8/8/7P/5P1P/4K3 w - - 0 1"},
        // A knight in the centre, or on the rim.
        {"4k3/ppp2ppp/8/3N4/4P3/8/PPP2PPP/4K3 w - - 0 1", "4k3/ppp2ppp/8/7N/4P3/8/PPP2PPP/4K3 w - - 0 1"},
        // Bishops of opposite colours promise less than the same material otherwise.
        {"4k3/p4b2/8/8/8/8/PP2B3/4K3 w - - 0 1", "4k3/p3b3/8/8/8/8/PP2B3/4K3 w - - 0 1"},
        // The bare king belongs at the edge, with bishop and knight in a corner of the bishop's colour (dark: h8).
        {"7k/8/5K2/8/8/8/8/6R1 w - - 0 1", "8/8/8/3k4/8/3K4/8/6R1 w - - 0 1"},
        {"7k/8/5K2/8/8/4B3/8/6N1 w - - 0 1", "k7/8/2K5/8/8/4B3/8/6N1 w - - 0 1"},
    };
    for (const auto& pair : pairs) EXPECT_GT(Value(pair.Better), Value(pair.Worse)) << pair.Better;
}

TEST(Evaluation, KnowsEndingsThatCannotBeWon) {
    for (const char* fen : {"8/8/8/4k3/8/8/2NNK3/8 w - - 0 1",   // two knights
                            "7k/8/8/7P/8/3B4/4K3/8 w - - 0 1",   // rook's pawn, wrong bishop, king in the corner
                            "8/8/8/4k3/8/4b3/3NK3/8 w - - 0 1"}) // knight against bishop
        EXPECT_LT(std::abs(Value(fen)), 30) << fen;
    for (const char* material : {"3QK3", "3RK3", "2BNK3", "2BBK3"})
        EXPECT_GT(Value(("8/8/8/4k3/8/8/" + std::string(material) + "/8 w - - 0 1").c_str()), 1500) << material;
}

/// White has won once the move is played: so the table says, or a new piece is neither lost nor stalemates.
bool WinsAfter(const Board& board, Move move) {
    Board next = board;
    next.Make(move);
    if (!move.IsPromotion())
        return next.Pieces(Pawn) != 0 &&
               KingPawnEndingIsWon(White, next.KingSquare(White), LowestSquare(next.Pieces(Pawn)),
                                   next.KingSquare(Black), next.SideToMove());
    const MoveBuffer replies = MovesOf(next);
    return (move.PromotionKind() == Queen || move.PromotionKind() == Rook) && (!replies.Empty() || next.InCheck()) &&
           std::none_of(replies.begin(), replies.end(), [&](Move reply) { return next.IsCapture(reply); });
}

TEST(Endgames, KingAndPawnTableAgreesWithItsOwnSuccessors) {
    std::mt19937 random(3);
    for (int checked = 0; checked < 6000;) {
        const Square white = static_cast<Square>(random() % 64);
        const Square black = static_cast<Square>(random() % 64);
        const Square pawn = static_cast<Square>(8 + random() % 48);
        const Color side = random() % 2 == 0 ? White : Black;
        BoardBuilder builder;
        builder.Put(white, MakePiece(White, King));
        builder.Put(black, MakePiece(Black, King));
        builder.Put(pawn, MakePiece(White, Pawn));
        builder.SetSide(side);
        const std::optional<Board> board = builder.Build();
        if (!board || pawn == white || pawn == black) continue;
        ++checked;
        const MoveBuffer moves = MovesOf(*board);
        const auto wins = [&](Move move) { return WinsAfter(*board, move); };
        const bool expected =
            side == White ? std::any_of(moves.begin(), moves.end(), wins)
                          : std::all_of(moves.begin(), moves.end(), wins) && (!moves.Empty() || board->InCheck());
        ASSERT_EQ(KingPawnEndingIsWon(White, white, pawn, black, side), expected) << WriteFen(*board);
        ASSERT_EQ(KingPawnEndingIsWon(Black, FlipRank(white), FlipRank(pawn), FlipRank(black), ~side), expected);
    }
    // A position that stands and falls with the opposition.
    EXPECT_FALSE(KingPawnEndingIsWon(White, MakeSquare(4, 4), MakeSquare(4, 3), MakeSquare(4, 6), White));
    EXPECT_TRUE(KingPawnEndingIsWon(White, MakeSquare(4, 4), MakeSquare(4, 3), MakeSquare(4, 6), Black));
}

} // namespace
} // namespace quarnel::engine
