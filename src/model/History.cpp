#include "model/History.h"

#include "base/Step.h"

namespace quarnel {

namespace {

template <class Table>
auto* CellOf(Table& table, int row, int ply) {
    auto* cells = row < 1 ? nullptr : ElementAt(table, row);
    return cells != nullptr ? &(*cells)[static_cast<std::size_t>(PlyColumn(ply))] : nullptr;
}

template <class Table>
Text ReadCell(const Table& table, int row, int ply) {
    const Text* cell = CellOf(table, row, ply);
    return cell != nullptr ? *cell : Text();
}

} // namespace

Text GetMove(const GameState& state, int ply) {
    return ReadCell(state.MoveText, (ply - 1) / 2 + 1, ply);
}

Text GetVariation(const GameState& state) {
    return GetVarN(state, state.PlyNow + 1);
}

Text GetVarN(const GameState& state, int ply) {
    return ReadCell(state.Variations, PlyRow(ply), ply);
}

void AddVariation(GameState& state, TextView text, Truth replace, int ply) {
    if (ply == 0) ply = state.PlyNow;
    if (ply == 0) return;
    Step(CellOf(state.Variations, PlyRow(ply), ply), [&](Text& cell) {
        if (replace != False) cell.clear();
        cell += text;
    });
}

} // namespace quarnel
