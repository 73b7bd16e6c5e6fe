#include "model/Rules.h"

namespace quarnel {

MoveList GenerateMoves(Rules& rules, const Position& position, Truth side) {
    MoveList list{};
    rules.GetMove(position, side, list);
    return list;
}

Truth IsKingAttacked(Rules& rules, const Position& position, Truth side) {
    Truth attacked = False;
    rules.KingAttacked(position, side, attacked);
    return attacked;
}

} // namespace quarnel
