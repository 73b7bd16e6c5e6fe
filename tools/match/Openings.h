// Openings for matches: random legal moves from the start position that leave both sides about even.
//
// The same seed and number give the same opening, with one build of the engine library: whether a
// position is even is for a short search to say. One thread owns the object.
#pragma once

#include "Game.h"

#include "quarnelchess/search/Search.h"

namespace quarnel::match {

struct OpeningRules {
    std::uint64_t Seed = 1;
    int Plies = 8; // 0: always the start position
    int BalanceCp = 80;
};

class Openings {
  public:
    explicit Openings(const OpeningRules& rules);
    /// The opening number `index`.
    Game Opening(int index);

  private:
    bool IsBalanced(const Game& game);

    static constexpr std::uint64_t SearchNodes = 8000;

    const OpeningRules rules_;
    engine::SteadyClock clock_;
    engine::Search search_;
};

} // namespace quarnel::match
