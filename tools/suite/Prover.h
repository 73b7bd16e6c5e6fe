// Proves mates and wins of material by trying everything.
//
// No pruning on suspicion, no evaluation but counting material: the attacker must have an answer to
// every legal defence. What is proved for "wins 300 in n moves" is this, and all moves in it are real ones:
//
//   The attacker moves n times, the defender between them as he likes. Then, each time it is the
//   defender's turn, the attacker is at least 300 centipawns of material better off than at the start,
//   or has mated, however long the defender goes on to capture, promote or step out of check. The
//   defender may stop whenever he likes and keeps what he has.
//
// Stalemate and mate against the attacker disprove. After his n moves the attacker is held to less than he could
// do (one quiet move, no quiet checks, eight moves in all), which can only make the proof harder.
// Nodes are remembered by their 64-bit keys; two positions with one key are taken to be the same.
#pragma once

#include "quarnelchess/board/Board.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace quarnel::suite {

/// Pawn 100, knight and bishop 300, rook 500, queen 900: the side's less its enemy's.
int MaterialBalance(const engine::Board& board, engine::Color side);

struct Claim {
    int Moves = 1;  // of the attacker, the last one counted
    int GainCp = 0; // 0: mate, exactly by the last move at the latest
};

class Prover {
  public:
    Prover();

    /// Does `move`, the first of claim.Moves, fulfil the claim? Nothing when it takes more than `budget` nodes.
    std::optional<bool> Proves(const engine::Board& board, engine::Move move, const Claim& claim, std::uint64_t budget);

    /// Every first move that fulfils the claim; nothing when one of them takes more than `budget` nodes, or when
    /// there are more than `most`.
    std::optional<std::vector<engine::Move>> Solutions(const engine::Board& board, const Claim& claim,
                                                       std::uint64_t budget, std::size_t most);

    /// Of the last question.
    std::uint64_t Nodes() const { return nodes_; }

  private:
    static constexpr int MostPlies = 64;
    struct Remembered {
        engine::Key Key = 0;
        bool Proved = false;
    };
    /// What the attacker may still do after the moves of the claim.
    struct Allowance {
        int Moves = 0;
        int Quiet = 0; // of these
    };

    bool OutOfBudget() const { return nodes_ > budget_; }
    template <class SearchNode>
    bool Remember(const engine::Board& board, int stage, const SearchNode& search);
    bool DefenderIsLost(const engine::Board& board, int movesLeft, int ply);
    bool AttackerWins(const engine::Board& board, int movesLeft, int ply);
    bool Settled(const engine::Board& board, Allowance left);
    bool StaysSettled(const engine::Board& board, Allowance left);

    std::vector<Remembered> memory_;
    engine::Move good_[MostPlies]; // by ply: the move that decided a node there before
    engine::Color attacker_ = engine::White;
    int neededCp_ = 0; // balance to reach
    bool mateOnly_ = false;
    std::uint64_t nodes_ = 0;
    std::uint64_t budget_ = 0;
};

} // namespace quarnel::suite
