// Games of the engine against itself, in this process, and the positions of them worth learning from.
//
// PlayGame() plays one game on a Search of the caller's, from a random opening. A game depends on the
// options and its number alone: not on games before it, the machine's speed or the number of threads. One
// thread for each Search.
#pragma once

#include "tools/tune/Positions.h"

#include "quarnelchess/evaluation/Evaluation.h"
#include "quarnelchess/search/Search.h"

#include <string>
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

/// The opening is about even in half of the games; in the others one side is up to four pawns better. Ends at mate,
/// stalemate, repetition, fifty moves or bare kings; earlier when both sides have agreed for a while that the game is
/// won (but every eighth game is then played on) or that it is dead. Forgets what `search` has learned.
PlayedGame PlayGame(engine::Search& search, const SelfPlayOptions& options, std::uint64_t number);

/// Up to `most` positions of the game, in its order, for which a static value makes sense: no check, no capture or
/// promotion to be played, nothing to be won by captures, no mate in sight. Drawn at random, the same ones for a
/// `number`.
std::vector<PackedPosition> QuietPositions(const PlayedGame& game, std::size_t most, std::uint64_t number);

} // namespace quarnel::tuning
