// Finds the factors of MagicNumbers.h and prints that file: `find-magics > MagicNumbers.h`.
//
// For each square it tries sparse random factors until one maps every arrangement of blockers to a
// table entry of its own reach. Always prints the same numbers.
#include "quarnelchess/board/SlowAttacks.h"

#include <cstdio>
#include <vector>

using namespace quarnel::engine;

namespace {

std::uint64_t state = 0x9E3779B97F4A7C15ULL;

std::uint64_t Random() {
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return state;
}

Bitboard FindFactor(Square square, const int (&steps)[4][2]) {
    const Bitboard mask = RelevantSquares(square, steps);
    const int bits = PopCount(mask);
    std::vector<Bitboard> blockers;
    std::vector<Bitboard> reach;
    Bitboard subset = 0;
    do {
        blockers.push_back(subset);
        reach.push_back(WalkAttacks(square, subset, steps));
        subset = (subset - mask) & mask;
    } while (subset != 0);

    std::vector<Bitboard> table(std::size_t{1} << bits);
    std::vector<int> trialOf(table.size(), 0);
    for (int trial = 1;; ++trial) {
        const Bitboard factor = Random() & Random() & Random();
        if (PopCount((mask * factor) >> 56) < 6) continue;
        bool good = true;
        for (std::size_t i = 0; good && i < blockers.size(); ++i) {
            const std::size_t index = (blockers[i] * factor) >> (64 - bits);
            if (trialOf[index] != trial) {
                trialOf[index] = trial;
                table[index] = reach[i];
            } else {
                good = table[index] == reach[i];
            }
        }
        if (good) return factor;
    }
}

void Print(const char* name, const int (&steps)[4][2]) {
    std::printf("inline constexpr std::uint64_t %s[64] = {\n", name);
    for (Square square = 0; square < 64; ++square)
        std::printf("%s0x%016llXULL,%s", square % 4 == 0 ? "    " : " ",
                    static_cast<unsigned long long>(FindFactor(square, steps)), square % 4 == 3 ? "\n" : "");
    std::printf("};\n");
}

} // namespace

int main() {
    std::printf("// Factors that spread a slider's blockers over its attack table. Written by\n"
                "// tools/engine/FindMagics.cpp.\n"
                "#pragma once\n\n#include <cstdint>\n\nnamespace quarnel::engine {\n\n");
    Print("BishopFactors", BishopSteps);
    std::printf("\n");
    Print("RookFactors", RookSteps);
    std::printf("\n} // namespace quarnel::engine\n");
    return 0;
}
