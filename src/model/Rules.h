// The rules of chess as the program asks for them; the engine library is their real form.
//
// Each function tells whether it could be carried out: false means that there is no rule service,
// and then nothing was changed but what the comment says. Program thread; callable at any moment.
#pragma once

#include "model/Position.h"

namespace quarnel {

class Rules {
  public:
    virtual ~Rules() = default;

    /// Fills `list` with the legal moves of `side` (Black or White), whoever is to move in `position`.
    virtual bool GetMove(const Position& position, Truth side, MoveList& list) = 0;

    /// Plays `move` on `position` in place; `SideToMove` stays as it is.
    virtual bool MakeMove(Position& position, const MoveRec& move) = 0;

    /// Sets `attacked` to whether the king of `side` is attacked.
    virtual bool KingAttacked(const Position& position, Truth side, Truth& attacked) = 0;
};

/// The legal moves of `side`; an empty list without a rule service.
MoveList GenerateMoves(Rules& rules, const Position& position, Truth side);

/// Whether the king of `side` is attacked; false without a rule service.
Truth IsKingAttacked(Rules& rules, const Position& position, Truth side);

} // namespace quarnel
