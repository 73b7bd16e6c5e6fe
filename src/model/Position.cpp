#include "model/Position.h"

#include <cstring>

namespace quarnel {

bool IsSameMove(const MoveRec& a, const MoveRec& b) {
    if (a.Castle != NoCastle || b.Castle != NoCastle) return a.Castle == b.Castle;
    return std::memcmp(&a, &b, sizeof(MoveRec)) == 0;
}

} // namespace quarnel
