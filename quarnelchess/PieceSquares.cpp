#include "PieceSquares.h"

#include "Weights.h"

#include <initializer_list>

namespace quarnel::engine {
namespace {

constexpr PieceSquareTable MakeTable() {
    PieceSquareTable table{};
    for (const Color color : {White, Black}) {
        for (int k = Pawn; k <= King; ++k) {
            const auto kind = static_cast<PieceKind>(k);
            for (Square square = 0; square < 64; ++square) {
                const Score material = kind == King ? Score{} : Weights[MaterialWeight + k];
                const Score value = material + Weights[SquareWeightIndex(color, kind, square)];
                table.Value[MakePiece(color, kind)][square] = color == White ? value : -value;
            }
        }
    }
    return table;
}

} // namespace

constinit const PieceSquareTable PieceSquares = MakeTable();

} // namespace quarnel::engine
