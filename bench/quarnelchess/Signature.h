// The signature of the search: how many nodes it takes for a fixed set of positions.
//
// One number that changes with almost any change to search, evaluation or tables, and with nothing else: it does not
// depend on compiler, processor, clock or sanitizer. quarnelchess/signature.txt holds the number of the day.
#pragma once

#include <cstdint>

namespace quarnel::engine {

/// Nodes of one thread that searches every position to `depth` plies, endings deeper, with a small table kept from one
/// to the next, without the book.
std::uint64_t SignatureNodes(int depth);

} // namespace quarnel::engine
