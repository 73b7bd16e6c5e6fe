// A problem of the suite and its text: one a line, the first four fields of a position and then operations.
//
//   ... bm Nf7; dm 3; id "quarnel.012";                      a mate in three moves
//   ... bm Qxh7 Rd8; c0 "wins 300 in 2"; id "quarnel.013";   centipawns of material, the attacker's moves
#pragma once

#include "Prover.h"

#include <optional>
#include <string>
#include <vector>

namespace quarnel::suite {

struct Problem {
    engine::Board Position = engine::Board::Start();
    Claim Goal;
    std::vector<engine::Move> Solutions; // all first moves that reach the goal
    int Number = 0;                      // even ones are open, odd ones hidden
};

bool IsSolution(const Problem& problem, engine::Move move);

/// The prover finds exactly the solutions, no mate or win of as much in fewer moves and, for a win of material, no
/// other first move that wins as much one move later. False too when a question takes more than `budget` nodes.
bool IsProven(Prover& prover, const Problem& problem, std::uint64_t budget);

std::string WriteEpd(const Problem& problem);
/// Nothing when the line does not read, or a move is not legal.
std::optional<Problem> ReadEpd(const std::string& line);
/// Every line of the file; nothing when it cannot be read or one of its lines does not.
std::optional<std::vector<Problem>> ReadSuite(const std::string& path);

} // namespace quarnel::suite
