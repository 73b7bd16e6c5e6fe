#include "quarnelchess/board/Board.h"

#include "quarnelchess/board/Mix.h"

#include <algorithm>
#include <array>

namespace quarnel::engine {
namespace {

struct ZobristTable {
    Key Piece[16][64];
    Key Castling[16];
    Key EnPassantFile[8];
    Key BlackToMove;
};

constexpr ZobristTable MakeZobrist() {
    // A counter, mixed: every 64-bit value once, in scrambled order.
    std::uint64_t counter = 0x51A7E5EEDULL;
    const auto next = [&counter] {
        const Key key = Mix(counter);
        counter += MixStep;
        return key;
    };
    ZobristTable table{};
    for (auto& squares : table.Piece)
        for (Key& key : squares) key = next();
    for (Key& key : table.Castling) key = next();
    for (Key& key : table.EnPassantFile) key = next();
    table.BlackToMove = next();
    return table;
}

constexpr ZobristTable Zobrist = MakeZobrist();

/// The rights that survive a move from or to each square.
constexpr std::array<std::uint8_t, 64> MakeCastlingMasks() {
    std::array<std::uint8_t, 64> masks{};
    masks.fill(AllCastling);
    masks[MakeSquare(0, 0)] = AllCastling & ~WhiteQueenSide;
    masks[MakeSquare(4, 0)] = AllCastling & ~(WhiteKingSide | WhiteQueenSide);
    masks[MakeSquare(7, 0)] = AllCastling & ~WhiteKingSide;
    masks[MakeSquare(0, 7)] = AllCastling & ~BlackQueenSide;
    masks[MakeSquare(4, 7)] = AllCastling & ~(BlackKingSide | BlackQueenSide);
    masks[MakeSquare(7, 7)] = AllCastling & ~BlackKingSide;
    return masks;
}

constexpr std::array<std::uint8_t, 64> CastlingMasks = MakeCastlingMasks();

} // namespace

const Board& Board::Start() {
    static const Board start = [] {
        BoardBuilder builder;
        constexpr PieceKind backRank[8] = {Rook, Knight, Bishop, Queen, King, Bishop, Knight, Rook};
        for (int file = 0; file < 8; ++file) {
            for (const Color color : {White, Black}) {
                builder.Put(Relative(color, MakeSquare(file, 0)), MakePiece(color, backRank[file]));
                builder.Put(Relative(color, MakeSquare(file, 1)), MakePiece(color, Pawn));
            }
        }
        builder.SetCastling(AllCastling);
        return *builder.Build();
    }();
    return start;
}

Bitboard Board::AttackersTo(Square square, Bitboard occupied) const {
    return (PawnAttacks(White, square) & Pieces(Black, Pawn)) | (PawnAttacks(Black, square) & Pieces(White, Pawn)) |
           (KnightAttacks(square) & kinds_[Knight]) | (KingAttacks(square) & kinds_[King]) |
           (BishopAttacks(square, occupied) & Diagonals()) | (RookAttacks(square, occupied) & Orthogonals());
}

bool Board::InsufficientMaterial() const {
    return (kinds_[Pawn] | Orthogonals()) == 0 && !MoreThanOne(kinds_[Knight] | kinds_[Bishop]);
}

void Board::Put(Square square, Piece piece) {
    const Bitboard bit = Bit(square);
    kinds_[KindOf(piece)] |= bit;
    colors_[ColorOf(piece)] |= bit;
    squares_[square] = piece;
    key_ ^= Zobrist.Piece[piece][square];
    (KindOf(piece) == Pawn ? pawnKey_ : pieceKeys_[ColorOf(piece)]) ^= Zobrist.Piece[piece][square];
}

void Board::Remove(Square square) {
    const Piece piece = squares_[square];
    const Bitboard bit = Bit(square);
    kinds_[KindOf(piece)] ^= bit;
    colors_[ColorOf(piece)] ^= bit;
    squares_[square] = NoPiece;
    key_ ^= Zobrist.Piece[piece][square];
    (KindOf(piece) == Pawn ? pawnKey_ : pieceKeys_[ColorOf(piece)]) ^= Zobrist.Piece[piece][square];
}

void Board::UpdateCheckers() {
    checkers_ = AttackersTo(KingSquare(side_), Occupied()) & Pieces(~side_);
}

void Board::Make(Move move) {
    const Color us = side_;
    const Square from = move.From();
    const Square to = move.To();
    const Piece piece = squares_[from];

    if (enPassant_ != NoSquare) key_ ^= Zobrist.EnPassantFile[FileOf(enPassant_)];
    enPassant_ = NoSquare;
    ++halfmoveClock_;

    if (squares_[to] != NoPiece) {
        Remove(to);
        halfmoveClock_ = 0;
    }
    Remove(from);
    Put(to, move.IsPromotion() ? MakePiece(us, move.PromotionKind()) : piece);

    if (KindOf(piece) == Pawn) {
        halfmoveClock_ = 0;
        if (move.Kind() == MoveKind::EnPassant) {
            Remove(to ^ 8); // the captured pawn stands beside the origin, one rank behind the target
        } else if ((from ^ to) == 16) {
            const Square behind = (from + to) / 2;
            if ((PawnAttacks(us, behind) & Pieces(~us, Pawn)) != 0) {
                enPassant_ = behind;
                key_ ^= Zobrist.EnPassantFile[FileOf(behind)];
            }
        }
    } else if (move.Kind() == MoveKind::Castling) {
        const bool kingSide = to > from;
        const Square rookFrom = kingSide ? from + 3 : from - 4;
        const Piece rook = squares_[rookFrom];
        Remove(rookFrom);
        Put(kingSide ? from + 1 : from - 1, rook);
    }

    const std::uint8_t rights = castling_ & CastlingMasks[from] & CastlingMasks[to];
    key_ ^= Zobrist.Castling[castling_] ^ Zobrist.Castling[rights] ^ Zobrist.BlackToMove;
    castling_ = rights;
    side_ = ~us;
    UpdateCheckers();
}

void Board::MakeNull() {
    if (enPassant_ != NoSquare) key_ ^= Zobrist.EnPassantFile[FileOf(enPassant_)];
    enPassant_ = NoSquare;
    ++halfmoveClock_;
    key_ ^= Zobrist.BlackToMove;
    side_ = ~side_;
    checkers_ = 0;
}

bool Board::GivesCheck(Move move) const {
    if (move.Kind() == MoveKind::EnPassant || move.Kind() == MoveKind::Castling) {
        Board next = *this;
        next.Make(move);
        return next.InCheck();
    }
    const Square king = KingSquare(~side_);
    const Bitboard occupied = (Occupied() ^ Bit(move.From())) | Bit(move.To());
    const PieceKind kind = move.IsPromotion() ? move.PromotionKind() : KindOf(squares_[move.From()]);
    const Bitboard reach = kind == Pawn ? PawnAttacks(side_, move.To()) : PieceAttacks(kind, move.To(), occupied);
    if ((reach & Bit(king)) != 0) return true;
    // A slider behind the piece that leaves.
    if (Line(king, move.From()) == 0) return false;
    const Bitboard sliders =
        ((BishopAttacks(king, occupied) & Diagonals()) | (RookAttacks(king, occupied) & Orthogonals())) &
        colors_[side_] & ~Bit(move.From());
    return sliders != 0;
}

bool Board::ExchangeGains(Move move, int threshold) const {
    if (move.Kind() == MoveKind::Castling) return threshold <= 0;
    const Square to = move.To();
    const bool enPassant = move.Kind() == MoveKind::EnPassant;

    // What the mover wins at once, and what it risks on the target square.
    int balance = ExchangeValue[enPassant ? Pawn : KindOf(squares_[to])] - threshold;
    PieceKind next = KindOf(squares_[move.From()]);
    if (move.IsPromotion()) {
        next = move.PromotionKind();
        balance += ExchangeValue[next] - ExchangeValue[Pawn];
    }
    if (balance < 0) return false;
    balance -= ExchangeValue[next];
    if (balance >= 0) return true;

    Bitboard occupied = (Occupied() ^ Bit(move.From())) | Bit(to);
    if (enPassant) occupied ^= Bit(to ^ 8);
    Bitboard attackers = AttackersTo(to, occupied) & occupied;
    Color side = ~side_;
    // The two sides recapture in turn; whoever cannot, or would only lose by it, has lost the exchange.
    while (true) {
        attackers &= occupied;
        const Bitboard own = attackers & colors_[side];
        if (own == 0) break;
        int kind = Pawn;
        while ((own & kinds_[kind]) == 0) ++kind;
        side = ~side;
        // A king may only recapture when nothing can take it back.
        if (kind == King && (attackers & colors_[side]) != 0) {
            side = ~side;
            break;
        }
        balance = -balance - 1 - ExchangeValue[kind];
        if (balance >= 0) break;
        occupied ^= Bit(LowestSquare(own & kinds_[kind]));
        if (kind == Pawn || kind == Bishop || kind == Queen) attackers |= BishopAttacks(to, occupied) & Diagonals();
        if (kind == Rook || kind == Queen) attackers |= RookAttacks(to, occupied) & Orthogonals();
    }
    return side != side_;
}

BoardBuilder::BoardBuilder() {
    std::fill(std::begin(squares_), std::end(squares_), NoPiece);
}

bool BoardBuilder::Sound() const {
    int count[16] = {};
    for (Square square = 0; square < 64; ++square) {
        ++count[squares_[square]];
        const int rank = RankOf(square);
        if (KindOf(squares_[square]) == Pawn && (rank == 0 || rank == 7)) return false;
    }
    for (const Color color : {White, Black}) {
        const auto of = [&](PieceKind kind) { return count[MakePiece(color, kind)]; };
        const int promoted = std::max(0, of(Knight) - 2) + std::max(0, of(Bishop) - 2) + std::max(0, of(Rook) - 2) +
                             std::max(0, of(Queen) - 1);
        if (of(King) != 1 || of(Pawn) + promoted > 8) return false;
    }
    return true;
}

std::optional<Board> BoardBuilder::Build() const {
    if (!Sound()) return std::nullopt;
    Board board;
    std::fill(std::begin(board.squares_), std::end(board.squares_), NoPiece);
    for (Square square = 0; square < 64; ++square)
        if (squares_[square] != NoPiece) board.Put(square, squares_[square]);
    board.side_ = side_;
    board.halfmoveClock_ = halfmoveClock_;
    if (side_ == Black) board.key_ ^= Zobrist.BlackToMove;

    for (const Color color : {White, Black}) {
        const Square home = Relative(color, MakeSquare(4, 0));
        if (board.squares_[home] != MakePiece(color, King)) continue;
        const Piece rook = MakePiece(color, Rook);
        if (board.squares_[home + 3] == rook) board.castling_ |= color == White ? WhiteKingSide : BlackKingSide;
        if (board.squares_[home - 4] == rook) board.castling_ |= color == White ? WhiteQueenSide : BlackQueenSide;
    }
    board.castling_ &= static_cast<std::uint8_t>(castling_);
    board.key_ ^= Zobrist.Castling[board.castling_];

    if (enPassantFile_ >= 0 && enPassantFile_ < 8) {
        const Square behind = Relative(side_, MakeSquare(enPassantFile_, 5));
        const Square pawn = Relative(side_, MakeSquare(enPassantFile_, 4));
        const Square origin = Relative(side_, MakeSquare(enPassantFile_, 6));
        if (board.squares_[pawn] == MakePiece(~side_, Pawn) && board.squares_[behind] == NoPiece &&
            board.squares_[origin] == NoPiece && (PawnAttacks(~side_, behind) & board.Pieces(side_, Pawn)) != 0) {
            board.enPassant_ = behind;
            board.key_ ^= Zobrist.EnPassantFile[enPassantFile_];
        }
    }
    board.UpdateCheckers();
    if (board.IsAttacked(board.KingSquare(~side_), side_)) return std::nullopt;
    return board;
}

} // namespace quarnel::engine
