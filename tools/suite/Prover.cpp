#include "Prover.h"

#include "quarnelchess/board/Mix.h"
#include "quarnelchess/board/MoveGen.h"

#include <algorithm>

namespace quarnel::suite {
namespace {

using namespace engine;

constexpr std::size_t MemorySize = 1 << 20; // a power of two

// What the attacker is allowed after the moves of the claim.
constexpr int MostLaterMoves = 8;
constexpr int MostQuietMoves = 1;     // of these, evasions apart
constexpr int FirstSettledStage = 16; // more than any claim has moves

/// Adds captures and promotions to an empty list: the most valuable victims first, of their captors the least.
void NoisyMoves(const Board& board, MoveBuffer& moves) {
    GenerateMoves<MoveClass::Noisy>(board, moves);
    const auto rank = [&](Move move) {
        const Piece victim = board.At(move.To());
        return (victim == NoPiece ? 0 : 8 * KindOf(victim)) - KindOf(board.At(move.From()));
    };
    std::sort(&moves[0], &moves[0] + moves.Size(),
              [&](Move a, Move b) { return rank(a) != rank(b) ? rank(a) > rank(b) : a.Bits() < b.Bits(); });
}

/// All moves, those first that decide most often: `first`, then captures and promotions.
void OrderedMoves(const Board& board, Move first, MoveBuffer& moves) {
    NoisyMoves(board, moves);
    GenerateMoves<MoveClass::Quiet>(board, moves);
    for (std::size_t i = 0; i < moves.Size(); ++i)
        if (moves[i] == first) std::swap(moves[0], moves[i]);
}

bool IsMate(const Board& board) {
    return board.InCheck() && CountMoves(board) == 0;
}

} // namespace

int MaterialBalance(const Board& board, Color side) {
    constexpr int values[] = {100, 300, 300, 500, 900};
    int balance = 0;
    for (int kind = Pawn; kind <= Queen; ++kind) {
        const auto pieces = static_cast<PieceKind>(kind);
        balance += values[kind] * (PopCount(board.Pieces(side, pieces)) - PopCount(board.Pieces(~side, pieces)));
    }
    return balance;
}

Prover::Prover() : memory_(MemorySize) {}

std::optional<bool> Prover::Proves(const Board& board, Move move, const Claim& claim, std::uint64_t budget) {
    attacker_ = board.SideToMove();
    mateOnly_ = claim.GainCp == 0;
    neededCp_ = MaterialBalance(board, attacker_) + claim.GainCp;
    nodes_ = 0;
    budget_ = budget;
    Board next = board;
    next.Make(move);
    const bool proved = DefenderIsLost(next, claim.Moves - 1, 1);
    if (OutOfBudget()) return std::nullopt;
    return proved;
}

std::optional<std::vector<Move>> Prover::Solutions(const Board& board, const Claim& claim, std::uint64_t budget,
                                                   std::size_t most) {
    MoveBuffer moves;
    GenerateMoves(board, moves);
    std::vector<Move> solutions;
    for (const Move move : moves) {
        const std::optional<bool> proved = Proves(board, move, claim, budget);
        if (!proved) return std::nullopt;
        if (*proved) solutions.push_back(move);
        if (solutions.size() > most) return std::nullopt;
    }
    return solutions;
}

/// Answers from memory or asks `search` and remembers; nothing is remembered once the budget is spent.
template <class SearchNode>
bool Prover::Remember(const Board& board, int stage, const SearchNode& search) {
    // What was found out holds for every question with the same goal.
    const Key goal = mateOnly_ ? 1 : static_cast<Key>(neededCp_ + 100000);
    const Key key = board.PositionKey() ^ Mix(goal * 64 + static_cast<Key>(stage));
    Remembered& slot = memory_[key & (MemorySize - 1)];
    if (slot.Key == key) return slot.Proved;
    const bool proved = search();
    if (!OutOfBudget()) slot = {key, proved};
    return proved;
}

/// Defender to move; the attacker has `movesLeft` moves left.
bool Prover::DefenderIsLost(const Board& board, int movesLeft, int ply) {
    ++nodes_;
    if (OutOfBudget()) return false;
    if (movesLeft == 0) return mateOnly_ ? IsMate(board) : Settled(board, {MostLaterMoves, MostQuietMoves});
    MoveBuffer replies;
    OrderedMoves(board, good_[ply], replies);
    if (replies.Empty()) return board.InCheck();
    for (const Move reply : replies) {
        Board next = board;
        next.Make(reply);
        if (!AttackerWins(next, movesLeft, ply + 1)) {
            good_[ply] = reply;
            return false;
        }
    }
    return true;
}

bool Prover::AttackerWins(const Board& board, int movesLeft, int ply) {
    return Remember(board, movesLeft, [&] {
        const bool enough = !mateOnly_ && MaterialBalance(board, attacker_) >= neededCp_;
        MoveBuffer moves;
        OrderedMoves(board, good_[ply], moves);
        for (const Move move : moves) {
            // The last move must bring what is missing, or mate.
            const bool brings = enough || (!mateOnly_ && board.IsNoisy(move)) || board.GivesCheck(move);
            if (movesLeft == 1 && !brings) continue;
            Board next = board;
            next.Make(move);
            if (DefenderIsLost(next, movesLeft - 1, ply + 1)) {
                good_[ply] = move;
                return true;
            }
        }
        return false;
    });
}

/// Defender to move after the last of the attacker's moves: can he win anything back by force?
bool Prover::Settled(const Board& board, Allowance left) {
    ++nodes_;
    const bool enough = MaterialBalance(board, attacker_) >= neededCp_;
    if (!enough) return IsMate(board);
    if (CountMoves(board) == 0) return board.InCheck();
    if (left.Moves == 0 || OutOfBudget()) return false;
    MoveBuffer replies;
    NoisyMoves(board, replies);
    if (board.InCheck()) GenerateMoves<MoveClass::Quiet>(board, replies);
    for (const Move reply : replies) {
        Board next = board;
        next.Make(reply);
        if (!StaysSettled(next, left)) return false;
    }
    return true;
}

/// Attacker to move.
bool Prover::StaysSettled(const Board& board, Allowance left) {
    // Beyond the stages of AttackerWins(), one for each allowance.
    return Remember(board, FirstSettledStage + 2 * left.Moves + left.Quiet, [&] {
        const bool check = board.InCheck();
        // A quiet move does not win back what is missing.
        const bool quietToo = check || (left.Quiet > 0 && MaterialBalance(board, attacker_) >= neededCp_);
        MoveBuffer moves;
        NoisyMoves(board, moves);
        if (quietToo) GenerateMoves<MoveClass::Quiet>(board, moves);
        for (const Move move : moves) {
            const bool free = !check && !board.IsNoisy(move); // neither forced nor forcing
            if (free && board.GivesCheck(move)) continue;
            Board next = board;
            next.Make(move);
            if (Settled(next, {left.Moves - 1, left.Quiet - (free ? 1 : 0)})) return true;
        }
        return false;
    });
}

} // namespace quarnel::suite
