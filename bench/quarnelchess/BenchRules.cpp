// Compares the engine's legal moves with those of the tests' naive rules, position by position, through
// whole games: every second one of random moves, the others of the engine against itself.
//
//   bench-rules [positions]     a million if not told otherwise
//
// The naive rules play along from the start of a game, so that castling rights and en passant are their own.
// Prints how many positions agreed and each that did not; fails when there is one.
#include "quarnelchess/board/Fen.h"
#include "quarnelchess/board/MoveGen.h"
#include "tests/quarnelchess/NaiveRules.h"
#include "tools/tune/SelfPlay.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <unordered_set>

using namespace quarnel;

namespace {

/// Origin, destination and promotion piece (0 for none) in one number.
int Code(const engine::Move& move) {
    return move.From() | (move.To() << 6) | ((move.IsPromotion() ? move.PromotionKind() : 0) << 12);
}

int Code(const naive::Move& move) {
    int promotion = 0;
    if (move.Promotion != 0) promotion = static_cast<int>(std::string("pnbrq").find(move.Promotion));
    return (move.FromRank * 8 + move.FromFile) | ((move.ToRank * 8 + move.ToFile) << 6) | (promotion << 12);
}

class Comparison {
  public:
    /// A game from here on.
    void Begin(const engine::Board& board) {
        board_ = board;
        game_ = naive::Read(engine::WriteFen(board));
    }

    /// Compares the position on the board and then plays the move, which must be one of the engine's.
    void CompareAndPlay(engine::Move played) {
        ++positions_;
        keys_.insert(board_.PositionKey());
        engine::MoveBuffer moves;
        engine::GenerateMoves(board_, moves);
        std::vector<int> ours;
        for (const engine::Move move : moves) ours.push_back(Code(move));
        const std::vector<naive::Move> naiveMoves = naive::LegalMoves(game_);
        std::vector<int> theirs;
        theirs.reserve(naiveMoves.size());
        for (const naive::Move& move : naiveMoves) theirs.push_back(Code(move));
        const auto next = std::find(theirs.begin(), theirs.end(), Code(played)) - theirs.begin();
        std::sort(ours.begin(), ours.end());
        std::vector<int> sorted = theirs;
        std::sort(sorted.begin(), sorted.end());
        moves_ += ours.size();
        if (ours != sorted || engine::CountMoves(board_) != static_cast<int>(ours.size()) ||
            board_.InCheck() != naive::InCheck(game_, game_.WhiteToMove)) {
            ++disagreements_;
            std::printf("disagreement: %s\n", engine::WriteFen(board_).c_str());
        }
        board_.Make(played);
        if (static_cast<std::size_t>(next) < naiveMoves.size())
            game_ = naive::Play(game_, naiveMoves[static_cast<std::size_t>(next)]);
        else
            game_ = naive::Read(engine::WriteFen(board_));
    }

    const engine::Board& Board() const { return board_; }
    std::size_t Positions() const { return positions_; }
    std::size_t Disagreements() const { return disagreements_; }
    void Print() const {
        std::printf("%zu positions (%zu different ones), %zu legal moves, %zu disagreements\n", positions_,
                    keys_.size(), moves_, disagreements_);
    }

  private:
    engine::Board board_ = engine::Board::Start();
    naive::Game game_ = {};
    std::unordered_set<engine::Key> keys_;
    std::size_t positions_ = 0;
    std::size_t moves_ = 0;
    std::size_t disagreements_ = 0;
};

void CompareRandomGame(Comparison& comparison, std::mt19937_64& random) {
    constexpr int longest = 300; // plies
    comparison.Begin(engine::Board::Start());
    for (int ply = 0; ply < longest; ++ply) {
        engine::MoveBuffer moves;
        engine::GenerateMoves(comparison.Board(), moves);
        if (moves.Empty()) return;
        comparison.CompareAndPlay(moves[random() % moves.Size()]);
    }
}

void ComparePlayedGame(Comparison& comparison, const tuning::PlayedGame& game) {
    if (game.Moves.empty()) return;
    comparison.Begin(game.Moves[0].Before);
    for (const tuning::PlayedMove& move : game.Moves) comparison.CompareAndPlay(move.Played);
}

} // namespace

int main(int argc, char** argv) {
    const std::size_t wanted = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1000000;
    engine::SteadyClock clock;
    engine::Search search(clock);
    search.SetHash(1);
    const tuning::SelfPlayOptions careless = {50, 3};
    std::mt19937_64 random(3);
    Comparison comparison;
    for (std::uint64_t game = 0; comparison.Positions() < wanted; ++game) {
        CompareRandomGame(comparison, random);
        ComparePlayedGame(comparison, tuning::PlayGame(search, careless, game));
    }
    comparison.Print();
    return comparison.Disagreements() == 0 ? 0 : 1;
}
