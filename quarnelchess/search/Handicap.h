// How a weaker player is made: less work for each move, oversights, and a judgement that is a little off.
//
// A weak player overlooks moves, quiet ones far more often than captures, his opponent's and his own, and
// sees only so far; what he sees he judges almost as the full engine does. Nothing here depends on
// time, so a level plays alike on every machine, and the same seed always plays alike.
#pragma once

#include "quarnelchess/board/Board.h"

#include <vector>

namespace quarnel::engine {

struct Handicap {
    int Depth = 1000;
    std::uint64_t Nodes = 0; // 0: no limit
    int Candidates = 1;      // root moves searched with exact values
    int NoiseCp = 0;         // how far the judgement of a candidate may be off
    int OverlookQuietPermille = 0;
    int OverlookNoisyPermille = 0;
    bool Careful = false; // sees every mate in one, for and against, and a queen about to be lost

    bool IsNone() const { return Nodes == 0; }
};

/// `skill` 0..100; 100 is no handicap at all. Against a bare king everybody from 30 on plays the ending
/// out as it should be.
Handicap HandicapFor(int skill, const Board& root);

/// True when the player, in this position and on this occasion, does not see the move at all.
bool Overlooks(const Handicap& handicap, const Board& board, Move move, std::uint64_t occasion);

struct Candidate {
    Move First;
    int Value = 0; // centipawns, from the mover's view
};

/// The index of the candidate to play, from values ordered best first. Only the first
/// `handicap.Candidates` are considered, and a careful player passes over those that hang mate or queen.
std::size_t ChooseCandidate(const Board& root, const std::vector<Candidate>& candidates, const Handicap& handicap,
                            std::uint64_t occasion);

/// The move mates, at once.
bool MatesAtOnce(const Board& board, Move move);
/// After the move the opponent mates at once, or wins the queen for little.
bool HangsMateOrQueen(const Board& board, Move move);

} // namespace quarnel::engine
