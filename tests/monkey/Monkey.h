// A monkey at the board: random streams of all that a person and an engine can do, and what must hold after each deed.
//
// A stream is a list of deeds, and the same list always does the same. One that breaks a rule is shrunk to the few
// deeds that it takes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quarnel::monkey {

struct Deed {
    std::uint8_t Kind = 0;
    std::uint16_t A = 0; // what they mean depends on the kind
    std::uint16_t B = 0;
};
using Stream = std::vector<Deed>;

Stream RandomStream(std::uint32_t seed, std::size_t length);

/// What was wrong after which deed; empty when all was well to the end, a way out included.
std::string Play(const Stream& stream);

/// The stream without whatever the fault does not need.
Stream Shrunk(Stream stream);

/// A line a deed.
std::string Describe(const Stream& stream);

} // namespace quarnel::monkey
