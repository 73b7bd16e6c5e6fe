#include "Openings.h"

#include "quarnelchess/board/Mix.h"

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

Openings::Openings(const OpeningRules& rules) : rules_(rules), search_(clock_) {
    search_.SetHash(1);
}

Game Openings::Opening(int index) {
    if (rules_.Plies == 0) return {};
    std::mt19937_64 random(engine::Mix(engine::Mix(rules_.Seed) + static_cast<std::uint64_t>(index)));
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
