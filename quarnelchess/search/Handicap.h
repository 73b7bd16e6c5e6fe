// How a weaker player is made: less work for each move, oversights, and a judgement that is a little off.
//
// A weak player overlooks moves, quiet ones far more often than captures, his opponent's and his own, and
// sees only so far; what he sees he judges almost as the full engine does, and a mate that he sees he plays.
// Whoever is no beginner does not leave a piece to a plain capture. Nothing here depends on time, so a level
// plays alike on every machine, and the same seed always plays alike.
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
    int OverlookMatePermille = 0; // of mates in one that he could play
    int KeepsCp = 0;              // leaves nothing worth so much to a plain capture that he could save; 0: no such care
    bool FearsMate = false;       // sees every mate in one against him

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

/// The index of the candidate to play, from values ordered best first. A mate in one that is not overlooked is played;
/// otherwise the first `handicap.Candidates` are considered, and the rest only where those are careless. No doubt is
/// cast on a value that is a proven mate.
std::size_t ChooseCandidate(const Board& root, const std::vector<Candidate>& candidates, const Handicap& handicap,
                            std::uint64_t occasion);

/// The move mates, at once.
bool MatesAtOnce(const Board& board, Move move);
/// After the move the opponent mates at once.
bool HangsMate(const Board& board, Move move);
/// After the move a capture gains by exchange at least `leastCp` more than the move itself took.
bool LosesToCapture(const Board& board, Move move, int leastCp);

} // namespace quarnel::engine
