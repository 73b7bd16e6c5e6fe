// Attack tables: where each piece reaches from each square.
//
// Sliders use one multiplication per lookup into tables filled when the library is loaded (about two
// milliseconds); everything else is a plain table. Read-only after loading, so any thread may ask.
#pragma once

#include "quarnelchess/board/Types.h"

namespace quarnel::engine {

namespace detail {

struct Magic {
    const Bitboard* Table;
    Bitboard Mask;
    Bitboard Factor;
    unsigned Shift;

    std::size_t Index(Bitboard occupied) const { return ((occupied & Mask) * Factor) >> Shift; }
};

extern Magic BishopMagics[64];
extern Magic RookMagics[64];
extern Bitboard Between[64][64];
extern Bitboard Line[64][64];

constexpr Bitboard StepAttacks(Square square, const int (&steps)[8][2]) {
    Bitboard set = 0;
    for (const auto& step : steps) {
        const int file = FileOf(square) + step[0];
        const int rank = RankOf(square) + step[1];
        if (file >= 0 && file < 8 && rank >= 0 && rank < 8) set |= Bit(MakeSquare(file, rank));
    }
    return set;
}

struct LeaperTables {
    Bitboard Knight[64];
    Bitboard King[64];
    Bitboard Pawn[2][64];
};

constexpr LeaperTables MakeLeaperTables() {
    constexpr int knightSteps[8][2] = {{1, 2}, {2, 1}, {2, -1}, {1, -2}, {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}};
    constexpr int kingSteps[8][2] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};
    LeaperTables tables{};
    for (Square square = 0; square < 64; ++square) {
        tables.Knight[square] = StepAttacks(square, knightSteps);
        tables.King[square] = StepAttacks(square, kingSteps);
        tables.Pawn[White][square] = Shift<7>(Bit(square)) | Shift<9>(Bit(square));
        tables.Pawn[Black][square] = Shift<-7>(Bit(square)) | Shift<-9>(Bit(square));
    }
    return tables;
}

inline constexpr LeaperTables Leapers = MakeLeaperTables();

} // namespace detail

inline Bitboard KnightAttacks(Square square) {
    return detail::Leapers.Knight[square];
}
inline Bitboard KingAttacks(Square square) {
    return detail::Leapers.King[square];
}
/// The squares that a pawn of `color` on `square` attacks.
inline Bitboard PawnAttacks(Color color, Square square) {
    return detail::Leapers.Pawn[color][square];
}

inline Bitboard BishopAttacks(Square square, Bitboard occupied) {
    const detail::Magic& magic = detail::BishopMagics[square];
    return magic.Table[magic.Index(occupied)];
}
inline Bitboard RookAttacks(Square square, Bitboard occupied) {
    const detail::Magic& magic = detail::RookMagics[square];
    return magic.Table[magic.Index(occupied)];
}
inline Bitboard QueenAttacks(Square square, Bitboard occupied) {
    return BishopAttacks(square, occupied) | RookAttacks(square, occupied);
}
/// Attacks of any piece but a pawn.
inline Bitboard PieceAttacks(PieceKind kind, Square square, Bitboard occupied) {
    switch (kind) {
    case Knight:
        return KnightAttacks(square);
    case Bishop:
        return BishopAttacks(square, occupied);
    case Rook:
        return RookAttacks(square, occupied);
    case Queen:
        return QueenAttacks(square, occupied);
    case King:
        return KingAttacks(square);
    default:
        return 0;
    }
}

/// All squares that the pawns of `set` attack.
template <Color Us>
constexpr Bitboard PawnSetAttacks(Bitboard set) {
    return Us == White ? Shift<7>(set) | Shift<9>(set) : Shift<-7>(set) | Shift<-9>(set);
}

/// The squares strictly between two on a common line; empty when they share none.
inline Bitboard Between(Square a, Square b) {
    return detail::Between[a][b];
}
/// The whole line through two squares, edge to edge; empty when they share none.
inline Bitboard Line(Square a, Square b) {
    return detail::Line[a][b];
}

/// King steps between two squares.
constexpr int Distance(Square a, Square b) {
    const int files = FileOf(a) > FileOf(b) ? FileOf(a) - FileOf(b) : FileOf(b) - FileOf(a);
    const int ranks = RankOf(a) > RankOf(b) ? RankOf(a) - RankOf(b) : RankOf(b) - RankOf(a);
    return files > ranks ? files : ranks;
}

} // namespace quarnel::engine
