// Basic vocabulary of the engine: colours, pieces, squares, bitboards and moves.
//
// Squares run from a1 = 0 over h1 = 7 to h8 = 63, so bit s of a bitboard is square s. Everything
// here is a plain value; nothing allocates, throws or locks.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace quarnel::engine {

using Bitboard = std::uint64_t;
using Key = std::uint64_t;
using Square = int; // 0..63

enum Color : std::uint8_t { White, Black };
constexpr Color operator~(Color color) {
    return static_cast<Color>(color ^ 1);
}

enum PieceKind : std::uint8_t { Pawn, Knight, Bishop, Rook, Queen, King, NoKind };

/// A piece on the board: its kind in the low three bits, its colour in bit 3.
using Piece = std::uint8_t;
constexpr Piece NoPiece = NoKind;
constexpr Piece MakePiece(Color color, PieceKind kind) {
    return static_cast<Piece>(kind | (color << 3));
}
constexpr PieceKind KindOf(Piece piece) {
    return static_cast<PieceKind>(piece & 7);
}
constexpr Color ColorOf(Piece piece) {
    return static_cast<Color>(piece >> 3);
}

constexpr Square MakeSquare(int file, int rank) {
    return rank * 8 + file;
} // both 0..7
constexpr int FileOf(Square square) {
    return square & 7;
}
constexpr int RankOf(Square square) {
    return square >> 3;
}
constexpr Square FlipRank(Square square) {
    return square ^ 56;
}
/// The square as its owner sees it: the first rank is always one's own.
constexpr Square Relative(Color color, Square square) {
    return color == White ? square : FlipRank(square);
}
constexpr int RelativeRank(Color color, Square square) {
    return RankOf(Relative(color, square));
}
constexpr Square NoSquare = 64;

constexpr Bitboard Bit(Square square) {
    return Bitboard{1} << square;
}
constexpr Bitboard FileA = 0x0101010101010101ULL;
constexpr Bitboard FileH = FileA << 7;
constexpr Bitboard Rank1 = 0xFF;
constexpr Bitboard FileMask(int file) {
    return FileA << file;
}
constexpr Bitboard RankMask(int rank) {
    return Rank1 << (8 * rank);
}
constexpr Bitboard LightSquares = 0x55AA55AA55AA55AAULL;

constexpr int PopCount(Bitboard set) {
    return std::popcount(set);
}
constexpr Square LowestSquare(Bitboard set) {
    return std::countr_zero(set);
}
constexpr bool MoreThanOne(Bitboard set) {
    return (set & (set - 1)) != 0;
}
constexpr Square PopLowest(Bitboard& set) {
    const Square square = LowestSquare(set);
    set &= set - 1;
    return square;
}

/// Moves every square of `set` by `Delta` (in square numbers); files never wrap.
template <int Delta>
constexpr Bitboard Shift(Bitboard set) {
    constexpr int fileStep = ((Delta % 8) + 12) % 8 - 4; // -1, 0 or 1
    if constexpr (fileStep == 1) set &= ~FileH;
    if constexpr (fileStep == -1) set &= ~FileA;
    if constexpr (Delta > 0)
        return set << Delta;
    else
        return set >> -Delta;
}

/// Castling rights as bits; a set of them is the sum.
enum CastlingRight : std::uint8_t {
    WhiteKingSide = 1,
    WhiteQueenSide = 2,
    BlackKingSide = 4,
    BlackQueenSide = 8,
    AllCastling = 15
};

enum class MoveKind : std::uint8_t { Normal, Promotion, EnPassant, Castling };

/// A move in 16 bits: origin, destination, promotion piece and kind. Castling names the king's own
/// two squares. The default move is "no move" and is never legal.
class Move {
  public:
    constexpr Move() = default;
    constexpr Move(Square from, Square to, MoveKind kind = MoveKind::Normal, PieceKind promotion = Knight)
        : bits_(static_cast<std::uint16_t>(from | (to << 6) | ((promotion - Knight) << 12) |
                                           (static_cast<int>(kind) << 14))) {}
    static constexpr Move FromBits(std::uint16_t bits) {
        Move move;
        move.bits_ = bits;
        return move;
    }

    constexpr Square From() const { return bits_ & 63; }
    constexpr Square To() const { return (bits_ >> 6) & 63; }
    constexpr MoveKind Kind() const { return static_cast<MoveKind>(bits_ >> 14); }
    /// Meaningful for promotions only.
    constexpr PieceKind PromotionKind() const { return static_cast<PieceKind>(((bits_ >> 12) & 3) + Knight); }
    constexpr bool IsPromotion() const { return Kind() == MoveKind::Promotion; }
    constexpr std::uint16_t Bits() const { return bits_; }
    constexpr explicit operator bool() const { return bits_ != 0; }
    constexpr bool operator==(const Move&) const = default;

  private:
    std::uint16_t bits_ = 0;
};

/// A list of at most `Room` moves.
template <std::size_t Room>
class MoveArray {
  public:
    static constexpr std::size_t Capacity = Room;

    MoveArray() {}
    void Add(Move move) { moves_[count_++] = move; }
    std::size_t Size() const { return count_; }
    bool Empty() const { return count_ == 0; }
    Move operator[](std::size_t index) const { return moves_[index]; }
    Move& operator[](std::size_t index) { return moves_[index]; }
    const Move* begin() const { return moves_; }
    const Move* end() const { return moves_ + count_; }
    /// Keeps the first `count` moves.
    void Shrink(std::size_t count) { count_ = count; }

  private:
    // A union leaves the moves unset, which saves writing a kilobyte at every node: only the first count_ are ever
    // read.
    union {
        Move moves_[Capacity];
    };
    std::size_t count_ = 0;
};

/// Room for every position whose material pawns and promotions can explain: nine queens and the rest of one side reach
/// at most 9 * 27 + 2 * 14 + 2 * 13 + 2 * 8 + 8 + 2 = 323 squares, and each pawn in a queen's stead reaches fewer (12
/// with promotions).
using MoveBuffer = MoveArray<384>;

/// Search values, in centipawns from the side to move's view. A mate in n plies is MateValue - n.
constexpr int MaxPly = 128;
constexpr int MateValue = 32000;
constexpr int MateInMaxPly = MateValue - MaxPly;
constexpr int InfiniteValue = 32001;
constexpr int NoValue = 32002;

} // namespace quarnel::engine
