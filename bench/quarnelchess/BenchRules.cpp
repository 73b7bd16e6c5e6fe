// Compares the moves of the engine's board with those of the plain rules for position records, which look at every
// square and share nothing with it, through whole games: every second one of random moves, the others of the engine
// against itself.
//
//   bench-rules [positions]     a million if not told otherwise
//
// The plain rules play along from the start of a game, so that castling rights and en passant are their own. The
// evaluation for every processor follows the game, too, and says the same as this processor's fastest afresh.
// Prints how many positions agreed and each that did not; fails when there is one.
#include "quarnelchess/board/Fen.h"
#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/evaluation/Evaluation.h"
#include "quarnelchess/records/LooseRules.h"
#include "quarnelchess/records/Records.h"
#include "tools/tune/SelfPlay.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <unordered_set>

using namespace quarnel;

namespace {

std::vector<std::array<std::uint8_t, sizeof(MoveRec)>> SortedBytes(const MoveList& list) {
    std::vector<std::array<std::uint8_t, sizeof(MoveRec)>> moves(list.Count);
    for (std::size_t i = 0; i < moves.size(); ++i) std::memcpy(moves[i].data(), &list.Moves[i], sizeof(MoveRec));
    std::sort(moves.begin(), moves.end());
    return moves;
}

class Comparison {
  public:
    /// A game from here on.
    void Begin(const engine::Board& board) {
        board_ = board;
        record_ = engine::RecordFromBoard(board);
        following_.Begin(board);
        ply_ = 0;
    }

    /// Compares the position on the board and then plays the move, which must be one of the engine's.
    void CompareAndPlay(engine::Move played) {
        ++positions_;
        keys_.insert(board_.PositionKey());
        const engine::Color side = board_.SideToMove();
        MoveList ours, theirs;
        engine::ListMoves(engine::RecordFromBoard(board_), side, ours);
        theirs.Count = 0;
        engine::ListLooseMoves(record_, side, theirs);
        moves_ += ours.Count;
        if (SortedBytes(ours) != SortedBytes(theirs) || engine::CountMoves(board_) != ours.Count ||
            board_.InCheck() != engine::KingAttacked(record_, side)) {
            ++disagreements_;
            std::printf("disagreement: %s\n", engine::WriteFen(board_).c_str());
        }
        CompareValues();
        engine::PlayMove(record_, engine::RecordFromMove(board_, played));
        following_.Played(board_, played, ply_++);
        board_.Make(played);
        if (ply_ < engine::MaxPly - 1) return;
        following_.Begin(board_);
        ply_ = 0;
    }

    const engine::Board& Board() const { return board_; }
    std::size_t Positions() const { return positions_; }
    std::size_t Disagreements() const { return disagreements_; }
    void Print() const {
        std::printf("%zu positions (%zu different ones), %zu legal moves, %zu values, %zu disagreements\n", positions_,
                    keys_.size(), moves_, values_, disagreements_);
    }

  private:
    void CompareValues() {
        if (board_.InCheck()) return;
        ++values_;
        const int followed = following_.Evaluate(board_, ply_);
        const int afresh = fastest_.Evaluate(board_);
        if (followed == afresh) return;
        ++disagreements_;
        std::printf("values %d and %d: %s\n", followed, afresh, engine::WriteFen(board_).c_str());
    }

    engine::Evaluation following_{engine::net::BaseOperations};
    engine::Evaluation fastest_;
    int ply_ = 0; // since the line followed began
    std::size_t values_ = 0;
    engine::Board board_ = engine::Board::Start();
    Position record_ = {};
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
