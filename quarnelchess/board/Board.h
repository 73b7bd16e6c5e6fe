// The engine's own board: bitboards, a mailbox beside them, and everything that moves keep up to date.
//
// A board always holds one king of each colour, no pawn on a first or last rank, and material that
// promotions can explain; BoardBuilder refuses everything else. Copying one is cheap, so a move is
// made on a copy and nothing is ever unmade. A value without locks: one thread at a time.
#pragma once

#include "quarnelchess/board/Attacks.h"
#include "quarnelchess/board/Material.h"
#include "quarnelchess/board/Types.h"

#include <optional>
#include <string>
#include <string_view>

namespace quarnel::engine {

class Board {
  public:
    /// The start position.
    static const Board& Start();

    Bitboard Pieces(PieceKind kind) const { return kinds_[kind]; }
    Bitboard Pieces(Color color) const { return colors_[color]; }
    Bitboard Pieces(Color color, PieceKind kind) const { return colors_[color] & kinds_[kind]; }
    Bitboard Diagonals() const { return kinds_[Bishop] | kinds_[Queen]; }
    Bitboard Orthogonals() const { return kinds_[Rook] | kinds_[Queen]; }
    Bitboard Occupied() const { return colors_[White] | colors_[Black]; }
    Piece At(Square square) const { return squares_[square]; }
    Square KingSquare(Color color) const { return LowestSquare(Pieces(color, King)); }

    Color SideToMove() const { return side_; }
    int Castling() const { return castling_; }
    bool CanCastle(CastlingRight right) const { return (castling_ & right) != 0; }
    /// The square behind a pawn that has just advanced two squares, where an enemy pawn stands ready
    /// to capture it; NoSquare otherwise.
    Square EnPassant() const { return enPassant_; }
    /// Plies since the last capture or pawn move.
    int HalfmoveClock() const { return halfmoveClock_; }
    Key PositionKey() const { return key_; }
    Key PawnKey() const { return pawnKey_; }
    /// Of one side's pieces, pawns left out.
    Key PieceKey(Color color) const { return pieceKeys_[color]; }

    /// Enemy pieces that give check to the side to move.
    Bitboard Checkers() const { return checkers_; }
    bool InCheck() const { return checkers_ != 0; }
    /// Pieces of both colours that attack `square`, sliders seen through `occupied`.
    Bitboard AttackersTo(Square square, Bitboard occupied) const;
    bool IsAttacked(Square square, Color by) const { return (AttackersTo(square, Occupied()) & Pieces(by)) != 0; }

    bool IsCapture(Move move) const { return squares_[move.To()] != NoPiece || move.Kind() == MoveKind::EnPassant; }
    /// Of the piece that the move takes; NoKind when it takes none.
    PieceKind CapturedKind(Move move) const {
        return move.Kind() == MoveKind::EnPassant ? Pawn : KindOf(squares_[move.To()]);
    }
    /// A capture or a promotion: what quiescence looks at.
    bool IsNoisy(Move move) const { return IsCapture(move) || move.IsPromotion(); }
    /// Does the legal move attack the enemy's king?
    bool GivesCheck(Move move) const;
    /// Any piece beside king and pawns.
    bool HasPieces(Color color) const { return (colors_[color] & ~kinds_[Pawn] & ~kinds_[King]) != 0; }
    /// No sequence of moves can mate: bare kings, or one minor piece in all.
    bool InsufficientMaterial() const;

    /// Plays a legal move.
    void Make(Move move);
    /// Passes the turn; not while in check.
    void MakeNull();

    /// True when the exchange that `move` starts on its target square gains at least `threshold`
    /// centipawns for the mover, both sides capturing with the least piece first.
    bool ExchangeGains(Move move, int threshold) const;

  private:
    friend class BoardBuilder;
    Board() = default;

    void Put(Square square, Piece piece);
    void Remove(Square square);
    void UpdateCheckers();

    Bitboard kinds_[6] = {};
    Bitboard colors_[2] = {};
    Bitboard checkers_ = 0;
    Key key_ = 0;
    Key pawnKey_ = 0;
    Key pieceKeys_[2] = {};
    Square enPassant_ = NoSquare;
    int halfmoveClock_ = 0;
    Color side_ = White;
    std::uint8_t castling_ = 0;
    Piece squares_[64] = {};
};

/// Collects a position piece by piece and turns it into a Board if the Board can hold it.
class BoardBuilder {
  public:
    BoardBuilder();
    void Put(Square square, Piece piece) { squares_[square] = piece; }
    void SetSide(Color side) { side_ = side; }
    /// Rights whose king or rook is not at home are dropped by Build().
    void SetCastling(int rights) { castling_ = rights; }
    /// File 0..7 of a pawn that has just advanced two squares; ignored by Build() unless it fits the board.
    void SetEnPassantFile(int file) { enPassantFile_ = file; }
    void SetHalfmoveClock(int plies) { halfmoveClock_ = plies; }

    /// Nothing when a king is missing or double, a pawn stands on a first or last rank, material exceeds
    /// what promotions can explain, or the side not to move is in check.
    std::optional<Board> Build() const;

  private:
    bool Sound() const;

    Piece squares_[64];
    Color side_ = White;
    int castling_ = 0;
    int enPassantFile_ = -1;
    int halfmoveClock_ = 0;
};

} // namespace quarnel::engine
