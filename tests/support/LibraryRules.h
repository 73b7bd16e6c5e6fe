// The rules for tests: the real engine library's, or what a test puts in their place.
#pragma once

#include "model/Rules.h"
#include "notation/PositionText.h"

#include <algorithm>
#include <vector>

namespace quarnel {

/// The record functions of the engine library that the test is linked with.
class LibraryRules : public Rules {
  public:
    std::vector<MoveRec> List; ///< the legal moves in place of the library's, whatever the position; empty: its own
    bool Missing = false;      ///< no rule service at all

    bool GetMove(const Position& position, Truth side, MoveList& list) override {
        if (!Missing) quarnel_GetMove(&position, side == Black ? 1 : 0, &list);
        if (!List.empty()) list.Count = static_cast<std::uint8_t>(std::ranges::copy(List, list.Moves).out - list.Moves);
        return !Missing;
    }
    bool MakeMove(Position& position, const MoveRec& move) override {
        if (!Missing) quarnel_MakeMove(&position, &move);
        return !Missing;
    }
    bool KingAttacked(const Position& position, Truth side, Truth& attacked) override {
        attacked = ToTruth(!Missing && quarnel_KingAttacked(&position, side) != 0);
        return !Missing;
    }
};

/// The position of a text that is whole.
inline Position PositionOf(Text fen) {
    Position position{};
    notation::FenToPosition(fen, position);
    return position;
}

} // namespace quarnel
