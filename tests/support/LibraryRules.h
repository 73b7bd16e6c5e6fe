// Rules for tests: the real engine library's, and a list that a test writes down itself.
#pragma once

#include "model/Rules.h"
#include "notation/PositionText.h"

#include <vector>

namespace quarnel {

/// The record functions of the engine library that the test is linked with.
class LibraryRules : public Rules {
  public:
    bool GetMove(const Position& position, Truth side, MoveList& list) override {
        quarnel_GetMove(&position, side == Black ? 1 : 0, &list);
        return true;
    }
    bool MakeMove(Position& position, const MoveRec& move) override {
        quarnel_MakeMove(&position, &move);
        return true;
    }
    bool KingAttacked(const Position& position, Truth side, Truth& attacked) override {
        attacked = ToTruth(quarnel_KingAttacked(&position, side) != 0);
        return true;
    }
};

/// Answers with the moves of `List` in their order, whatever the position; no rule service at all
/// while `Missing`.
class ListedRules : public Rules {
  public:
    std::vector<MoveRec> List;
    bool Missing = false;

    bool GetMove(const Position&, Truth, MoveList& list) override {
        for (std::size_t i = 0; i < List.size(); ++i) list.Moves[i] = List[i];
        list.Count = static_cast<std::uint8_t>(List.size());
        return !Missing;
    }
    bool MakeMove(Position&, const MoveRec&) override { return !Missing; }
    bool KingAttacked(const Position&, Truth, Truth&) override { return !Missing; }
};

/// The position of a text that is whole.
inline Position PositionOf(Text fen) {
    Position position{};
    notation::FenToPosition(fen, position);
    return position;
}

} // namespace quarnel
