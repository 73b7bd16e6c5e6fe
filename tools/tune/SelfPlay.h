// Games of the engine against itself, in this process, and the positions of them worth learning from.
//
// PlayGame() plays one game on a Search of the caller's, from a random opening. A game depends on the
// options and its number alone: not on games before it, the machine's speed or the number of threads. One
// thread for each Search. PlayOn() does it for any two players.
#pragma once

#include "tools/tune/Positions.h"

#include "quarnelchess/evaluation/Evaluation.h"
#include "quarnelchess/search/Search.h"

#include <functional>
#include <vector>

namespace quarnel::tuning {

struct SelfPlayOptions {
    std::uint64_t Nodes = 1000; // a move
    std::uint64_t Seed = 1;
};

struct PlayedMove {
    engine::Board Before = engine::Board::Start();
    engine::Move Played;
    int ValueCp = 0; // of the search for this move, White's view
    int Ply = 0;     // from the start position
};

struct PlayedGame {
    std::vector<PlayedMove> Moves; // after the opening
    double Result = 0.5;           // 1, 0.5 or 0, White's view
};

/// A game as far as it has come: the position and what repetitions need.
struct GameSoFar {
    engine::SearchRoot Root;
    int Ply = 0; // from the start position

    void Play(engine::Move move);
    /// By repetition, fifty moves, material, or because it is too long.
    bool IsDrawn() const;
};

/// Six to nine random moves after which `search` sees no more than `limitCp` for either side.
GameSoFar RandomOpening(engine::Search& search, const SelfPlayOptions& options, int limitCp, std::uint64_t number);

/// Asked for the side to move's best move.
using Player = std::function<engine::SearchResult(const engine::SearchRoot&)>;

/// Ends at mate, stalemate and draws; earlier when both sides have agreed for a while that the game is dead or, unless
/// `toTheEnd`, won.
PlayedGame PlayOn(GameSoFar game, const Player& white, const Player& black, bool toTheEnd);

/// The opening is about even in half of the games; in the others one side is up to four pawns better. Every eighth game
/// is played to the end. Forgets what `search` has learned.
PlayedGame PlayGame(engine::Search& search, const SelfPlayOptions& options, std::uint64_t number);

/// Up to `most` positions of the game, in its order, for which a static value makes sense: no check, no capture or
/// promotion to be played, nothing to be won by captures, no mate in sight. Drawn at random, the same ones for a
/// `number`.
std::vector<PackedPosition> QuietPositions(const PlayedGame& game, std::size_t most, std::uint64_t number);

} // namespace quarnel::tuning
