// What a search is asked and what it answers: plain values.
#pragma once

#include "quarnelchess/board/Board.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace quarnel::engine {

/// What is to be searched: a position and the keys of the positions before it since the last capture or
/// pawn move (older ones do no harm), oldest first, so that repetitions of the game itself count.
struct SearchRoot {
    Board Position = Board::Start();
    std::vector<Key> Earlier;
};

/// A limit that is left alone does not limit.
struct SearchLimits {
    int Depth = MaxPly - 2;
    std::uint64_t Nodes = 0;       // 0: none
    std::int64_t MoveTimeMs = -1;  // from StartMs
    std::int64_t StartMs = -1;     // clock reading that time counts from; -1: the moment of Start()
    std::int64_t RemainingMs = -1; // tournament clock of the side to move
    std::int64_t IncrementMs = 0;
    int MovesToGo = 0;     // 0: for the rest of the game
    bool Infinite = false; // only Stop() ends the search
    bool Ponder = false;   // no deadline holds before PonderHit()
    int MultiPv = 1;
    int Skill = 100;             // 0..100, below 100 plays weaker; does not depend on the machine's speed
    std::vector<Move> OnlyMoves; // empty: all
};

/// One line of play with its value, from the root side's view.
struct SearchLine {
    int Value = 0;
    int Depth = 0;
    int SelectiveDepth = 0;
    std::vector<Move> Moves;
};

struct SearchInfo {
    SearchLine Line;
    int MultiPvIndex = 0;
    std::uint64_t Nodes = 0;
    std::int64_t ElapsedMs = 0;
    int HashPermille = 0;
};

/// Called on a search thread.
using SearchInfoCallback = std::function<void(const SearchInfo&)>;

struct SearchResult {
    Move Best;  // no move when the root has none
    Move Reply; // the expected answer, if known
    int Value = 0;
    int Depth = 0;
    std::uint64_t Nodes = 0;
};

} // namespace quarnel::engine
