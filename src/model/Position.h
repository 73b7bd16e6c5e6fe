// The records exchanged with the engine library, and what can be asked of them.
//
// Position, MoveRec and MoveList come from the library's C header; their layout is an interface
// format, held here by assertions. Squares are (file, row): file 1..8 is a..h, row 1 is rank 8.
#pragma once

#include "QuarnelChess.h"
#include "base/Truth.h"

#include <cstddef>

namespace quarnel {

static_assert(sizeof(Position) == 86 && offsetof(Position, EpFile) == 81 && offsetof(Position, SideToMove) == 84);
static_assert(sizeof(MoveRec) == 8 && offsetof(MoveRec, Promote) == 5);
static_assert(sizeof(MoveList) == 2049 && offsetof(MoveList, Count) == 2048);

/// Piece codes as far as the program names them; Black's are White's plus `BlackOffset`.
enum PieceCode : std::uint8_t { NoPiece = 0, Pawn = 1, Knight = 2, Bishop = 3, Rook = 4, Queen = 5, King = 6 };
inline constexpr int BlackOffset = 6;

/// MoveRec::Castle.
enum CastleKind : std::uint8_t { NoCastle = 0, KingSide = 1, QueenSide = 2 };

/// The square's piece code; (file, row) must lie in 0..8, and file or row 0 reads as empty.
inline std::uint8_t& PieceAt(Position& position, int file, int row) {
    return position.Board[row][file];
}
inline std::uint8_t PieceAt(const Position& position, int file, int row) {
    return position.Board[row][file];
}

/// True for codes 1..6.
constexpr Truth IsWhitePiece(int piece) {
    return ToTruth(piece > 0 && piece < 7);
}

/// True for codes 7..12; an empty square answers like a white piece, which move input relies on.
constexpr Truth IsBlackPiece(int piece) {
    return ToTruth(piece > 6 && piece < 13);
}

/// True when `piece` is `whiteCode` or the same piece of Black.
constexpr bool IsPieceKind(int piece, int whiteCode) {
    return piece == whiteCode || piece == whiteCode + BlackOffset;
}

constexpr Truth IsOffBoard(int file, int row) {
    return ToTruth(file < 1 || file > 8 || row < 1 || row > 8);
}

constexpr bool IsEven(int number) {
    return number % 2 == 0;
}

/// Castling moves are the same when their kind is; other moves when all their bytes are.
bool IsSameMove(const MoveRec& a, const MoveRec& b);

/// The file (7 or 3) and row (8 White, 1 Black) on which the king lands, from the kind and the mover.
constexpr int CastleFile(int castle) {
    return castle == KingSide ? 7 : 3;
}
constexpr int CastleRow(Truth side) {
    return side == Black ? 1 : 8;
}

} // namespace quarnel
