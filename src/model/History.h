// Reading and keeping the move history by ply.
//
// Ply k stands in row (k + 1) div 2, column 1 when k is odd (White) and 2 when it is even (Black).
// A cell that does not exist reads as the empty text.
#pragma once

#include "model/GameState.h"

namespace quarnel {

/// Row of ply `ply` (ply >= 1) and its column, 1 or 2.
constexpr int PlyRow(int ply) {
    return (ply + 1) / 2;
}
constexpr int PlyColumn(int ply) {
    return IsEven(ply) ? 2 : 1;
}

/// The recorded text of ply `ply`. Ply 0 is even and counts to the first row: it reads as ply 2.
Text GetMove(const GameState& state, int ply);

/// The alternative lines recorded at ply PlyNow + 1, and at ply `ply`.
Text GetVariation(const GameState& state);
Text GetVarN(const GameState& state, int ply);

/// Puts `text` in place of (`replace`) or behind the alternative lines of ply `ply`; 0 stands for
/// PlyNow. Nothing happens at ply 0 or outside the table.
void AddVariation(GameState& state, TextView text, Truth replace, int ply);

} // namespace quarnel
