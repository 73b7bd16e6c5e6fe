#include "model/History.h"

#include "base/Step.h"

namespace quarnel {

namespace {

template <class Table>
auto* CellOf(Table& table, int ply) {
    auto* row = ElementAt(table, ply < 1 ? -1 : PlyRow(ply));
    return row != nullptr ? &(*row)[static_cast<std::size_t>(PlyColumn(ply))] : nullptr;
}

template <class Table>
Text ReadCell(const Table& table, int ply) {
    const Text* cell = CellOf(table, ply);
    return cell != nullptr ? *cell : Text();
}

} // namespace

Text GetMove(const GameState& state, int ply) {
    return ReadCell(state.MoveText, ply);
}

Text GetVariation(const GameState& state) {
    return GetVarN(state, state.PlyNow + 1);
}

Text GetVarN(const GameState& state, int ply) {
    return ReadCell(state.Variations, ply);
}

void AddVariation(GameState& state, TextView text, Truth replace, int ply) {
    if (ply == 0) ply = state.PlyNow;
    if (ply == 0) return;
    Step(CellOf(state.Variations, ply), [&](Text& cell) {
        if (replace != False) cell.clear();
        cell += text;
    });
}

} // namespace quarnel
