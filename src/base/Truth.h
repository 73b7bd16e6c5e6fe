// Truth values as the program's state keeps them: 16 bits, all set for true.
//
// They are compared with each other and with the engine records' own (a side to move is a truth
// value, and so is "this is a black piece"), and negated bitwise.
#pragma once

#include <cstdint>

namespace quarnel {

using Truth = std::int16_t;

inline constexpr Truth True = -1;
inline constexpr Truth False = 0;

/// The colours, coded so that a side to move, a piece's colour and "is Black" are one thing.
inline constexpr Truth White = False;
inline constexpr Truth Black = True;

constexpr Truth ToTruth(bool value) {
    return value ? True : False;
}

/// The bitwise NOT: true becomes false and false becomes true.
constexpr Truth Not(Truth value) {
    return static_cast<Truth>(~value);
}

} // namespace quarnel
