// The rules for the tool: the engine library's own, linked in.
#pragma once

#include "model/Rules.h"
#include "quarnelchess/records/LooseRules.h"
#include "quarnelchess/records/Records.h"

#include <algorithm>

namespace quarnel::record {

class EngineRules final : public Rules {
  public:
    bool Reversed = false; ///< the last legal move comes first

    bool GetMove(const Position& position, Truth side, MoveList& list) override {
        engine::ListMoves(position, ColorOf(side), list);
        if (Reversed) std::reverse(list.Moves, list.Moves + list.Count);
        return true;
    }
    bool MakeMove(Position& position, const MoveRec& move) override {
        engine::PlayMove(position, move);
        return true;
    }
    bool KingAttacked(const Position& position, Truth side, Truth& attacked) override {
        attacked = ToTruth(engine::KingAttacked(position, ColorOf(side)));
        return true;
    }

  private:
    static engine::Color ColorOf(Truth side) { return side == Black ? engine::Black : engine::White; }
};

} // namespace quarnel::record
