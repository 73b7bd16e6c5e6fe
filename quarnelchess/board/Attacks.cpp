#include "quarnelchess/board/Attacks.h"

#include "quarnelchess/board/MagicNumbers.h"
#include "quarnelchess/board/SlowAttacks.h"

namespace quarnel::engine {
namespace detail {

Magic BishopMagics[64];
Magic RookMagics[64];
Bitboard Between[64][64];
Bitboard Line[64][64];

namespace {

// One entry for each arrangement of blockers: 2 to the number of relevant squares, summed over the board.
constexpr std::size_t TableSize(const int (&steps)[4][2]) {
    std::size_t size = 0;
    for (Square square = 0; square < 64; ++square) size += std::size_t{1} << PopCount(RelevantSquares(square, steps));
    return size;
}

Bitboard bishopTable[TableSize(BishopSteps)];
Bitboard rookTable[TableSize(RookSteps)];

void FillSlider(Magic (&magics)[64], Bitboard* table, const std::uint64_t (&factors)[64], const int (&steps)[4][2]) {
    for (Square square = 0; square < 64; ++square) {
        const Bitboard mask = RelevantSquares(square, steps);
        const int bits = PopCount(mask);
        magics[square] = {table, mask, factors[square], static_cast<unsigned>(64 - bits)};
        Bitboard subset = 0;
        do {
            table[magics[square].Index(subset)] = WalkAttacks(square, subset, steps);
            subset = (subset - mask) & mask;
        } while (subset != 0);
        table += std::size_t{1} << bits;
    }
}

void FillLines(const int (&steps)[4][2]) {
    for (Square a = 0; a < 64; ++a) {
        Bitboard reached = WalkAttacks(a, 0, steps);
        while (reached != 0) {
            const Square b = PopLowest(reached);
            Between[a][b] = WalkAttacks(a, Bit(b), steps) & WalkAttacks(b, Bit(a), steps);
            Line[a][b] = (WalkAttacks(a, 0, steps) & WalkAttacks(b, 0, steps)) | Bit(a) | Bit(b);
        }
    }
}

struct TableFiller {
    TableFiller() {
        FillSlider(BishopMagics, bishopTable, BishopFactors, BishopSteps);
        FillSlider(RookMagics, rookTable, RookFactors, RookSteps);
        FillLines(BishopSteps);
        FillLines(RookSteps);
    }
};
const TableFiller filler;

} // namespace
} // namespace detail
} // namespace quarnel::engine
