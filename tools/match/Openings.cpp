#include "Openings.h"

#include <cstdlib>
#include <random>

namespace quarnel::match {
namespace {

/// Ends early when a random move ends the game.
Game RandomGame(std::mt19937_64& random, int plies) {
    Game game;
    while (game.Plies() < plies && !game.EndByRules()) {
        engine::MoveBuffer moves;
        engine::GenerateMoves(game.Position(), moves);
        game.Play(moves[random() % moves.Size()]);
    }
    return game;
}

} // namespace

// The steps of a splittable generator by Steele, Lea and Flood (2014).
std::uint64_t Scramble(std::uint64_t value) {
    value += 0x9E3779B97F4A7C15ULL;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9ULL;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBULL;
    return value ^ (value >> 31);
}

Openings::Openings(const OpeningRules& rules) : rules_(rules), search_(clock_) {
    search_.SetHash(1);
}

Game Openings::Opening(int index) {
    if (rules_.Plies == 0) return {};
    std::mt19937_64 random(Scramble(Scramble(rules_.Seed) + static_cast<std::uint64_t>(index)));
    for (;;) {
        Game game = RandomGame(random, rules_.Plies);
        if (!game.EndByRules() && IsBalanced(game)) return game;
    }
}

bool Openings::IsBalanced(const Game& game) {
    engine::SearchLimits limits;
    limits.Nodes = SearchNodes;
    search_.NewGame();
    return std::abs(search_.Run({game.Position(), {}}, limits).Value) <= rules_.BalanceCp;
}

} // namespace quarnel::match
