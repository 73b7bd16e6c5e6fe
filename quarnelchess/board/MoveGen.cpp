#include "quarnelchess/board/MoveGen.h"

namespace quarnel::engine {
namespace {

/// Takes what the generator finds: writes it to a buffer, or counts it.
class ListSink {
  public:
    explicit ListSink(MoveBuffer& moves) : moves_(moves) {}
    void Targets(Square from, Bitboard targets) {
        while (targets != 0) moves_.Add(Move(from, PopLowest(targets)));
    }
    template <int Delta>
    void PawnTargets(Bitboard targets) {
        while (targets != 0) {
            const Square to = PopLowest(targets);
            moves_.Add(Move(to - Delta, to));
        }
    }
    template <int Delta>
    void Promotions(Bitboard targets) {
        while (targets != 0) {
            const Square to = PopLowest(targets);
            for (const PieceKind kind : {Queen, Knight, Rook, Bishop})
                moves_.Add(Move(to - Delta, to, MoveKind::Promotion, kind));
        }
    }
    void One(Move move) { moves_.Add(move); }

  private:
    MoveBuffer& moves_;
};

class CountSink {
  public:
    void Targets(Square, Bitboard targets) { Count += PopCount(targets); }
    template <int Delta>
    void PawnTargets(Bitboard targets) {
        Count += PopCount(targets);
    }
    template <int Delta>
    void Promotions(Bitboard targets) {
        Count += 4 * PopCount(targets);
    }
    void One(Move) { ++Count; }

    int Count = 0;
};

template <Color Us, MoveClass Class, class Sink>
class Generator {
  public:
    Generator(const Board& board, Sink& sink)
        : board_(board), sink_(sink), occupied_(board.Occupied()), ours_(board.Pieces(Us)), theirs_(board.Pieces(Them)),
          king_(board.KingSquare(Us)) {}

    void Run() {
        constexpr bool captures = Class != MoveClass::Quiet;
        constexpr bool quiets = Class != MoveClass::Noisy;
        classMask_ = (captures ? theirs_ : 0) | (quiets ? ~occupied_ : 0);
        King_();
        const Bitboard checkers = board_.Checkers();
        if (MoreThanOne(checkers)) return;

        // In check, a move must capture the checker or step between.
        evasionMask_ = checkers == 0 ? ~Bitboard{0} : checkers | Between(king_, LowestSquare(checkers));
        FindPins();
        Pawns();
        Pieces();
        if (quiets && checkers == 0) Castling();
    }

  private:
    static constexpr Color Them = ~Us;
    static constexpr int Up = Us == White ? 8 : -8;
    static constexpr int UpLeft = Us == White ? 7 : -9;
    static constexpr int UpRight = Us == White ? 9 : -7;

    void King_() {
        Bitboard targets = KingAttacks(king_) & classMask_ & ~ours_;
        targets &= ~PawnSetAttacks<Them>(board_.Pieces(Them, Pawn)) & ~KingAttacks(board_.KingSquare(Them));
        Bitboard safe = 0;
        while (targets != 0) {
            const Square to = PopLowest(targets);
            if (!SeenByPieces(to)) safe |= Bit(to);
        }
        sink_.Targets(king_, safe);
    }

    /// Attacked by a knight or a slider, the moving king itself out of the way.
    bool SeenByPieces(Square square) const {
        const Bitboard occupied = occupied_ ^ Bit(king_);
        return ((KnightAttacks(square) & board_.Pieces(Knight)) |
                (BishopAttacks(square, occupied) & board_.Diagonals()) |
                (RookAttacks(square, occupied) & board_.Orthogonals())) &
               theirs_;
    }

    void FindPins() {
        Bitboard snipers = ((BishopAttacks(king_, theirs_) & board_.Diagonals()) |
                            (RookAttacks(king_, theirs_) & board_.Orthogonals())) &
                           theirs_;
        while (snipers != 0) {
            const Bitboard between = Between(king_, PopLowest(snipers)) & ours_;
            if (between != 0 && !MoreThanOne(between)) pinned_ |= between;
        }
    }

    void Pieces() {
        const Bitboard targets = evasionMask_ & classMask_ & ~ours_;
        // A pinned knight never moves.
        Bitboard knights = board_.Pieces(Us, Knight) & ~pinned_;
        while (knights != 0) {
            const Square from = PopLowest(knights);
            sink_.Targets(from, KnightAttacks(from) & targets);
        }
        Bitboard diagonals = ours_ & board_.Diagonals();
        Bitboard orthogonals = ours_ & board_.Orthogonals();
        Bitboard pinnedDiagonals = diagonals & pinned_;
        Bitboard pinnedOrthogonals = orthogonals & pinned_;
        diagonals ^= pinnedDiagonals;
        orthogonals ^= pinnedOrthogonals;
        while (diagonals != 0) {
            const Square from = PopLowest(diagonals);
            sink_.Targets(from, BishopAttacks(from, occupied_) & targets);
        }
        while (orthogonals != 0) {
            const Square from = PopLowest(orthogonals);
            sink_.Targets(from, RookAttacks(from, occupied_) & targets);
        }
        while (pinnedDiagonals != 0) {
            const Square from = PopLowest(pinnedDiagonals);
            sink_.Targets(from, BishopAttacks(from, occupied_) & targets & Line(king_, from));
        }
        while (pinnedOrthogonals != 0) {
            const Square from = PopLowest(pinnedOrthogonals);
            sink_.Targets(from, RookAttacks(from, occupied_) & targets & Line(king_, from));
        }
    }

    void Pawns() {
        const Bitboard pawns = board_.Pieces(Us, Pawn);
        const Bitboard free = pawns & ~pinned_;
        SomePawns(free, ~Bitboard{0});
        Bitboard pinned = pawns & pinned_;
        while (pinned != 0) {
            const Square from = PopLowest(pinned);
            SomePawns(Bit(from), Line(king_, from));
        }
        if constexpr (Class != MoveClass::Quiet)
            if (board_.EnPassant() != NoSquare) EnPassant();
    }

    void SomePawns(Bitboard pawns, Bitboard allowed) {
        constexpr Bitboard lastRank = RankMask(Us == White ? 7 : 0);
        constexpr Bitboard thirdRank = RankMask(Us == White ? 2 : 5);
        const Bitboard mask = allowed & evasionMask_;
        const Bitboard once = Shift<Up>(pawns) & ~occupied_;
        const Bitboard pushes = once & mask;
        if constexpr (Class != MoveClass::Noisy) {
            sink_.template PawnTargets<Up>(pushes & ~lastRank);
            sink_.template PawnTargets<2 * Up>(Shift<Up>(once & thirdRank) & ~occupied_ & mask);
        }
        if constexpr (Class != MoveClass::Quiet) {
            const Bitboard left = Shift<UpLeft>(pawns) & theirs_ & mask;
            const Bitboard right = Shift<UpRight>(pawns) & theirs_ & mask;
            sink_.template PawnTargets<UpLeft>(left & ~lastRank);
            sink_.template PawnTargets<UpRight>(right & ~lastRank);
            if (((pushes | left | right) & lastRank) != 0) {
                sink_.template Promotions<UpLeft>(left & lastRank);
                sink_.template Promotions<UpRight>(right & lastRank);
                sink_.template Promotions<Up>(pushes & lastRank);
            }
        }
    }

    // Two pawns leave the rank at once, so the king's safety is looked at afresh.
    void EnPassant() {
        const Square to = board_.EnPassant();
        const Bitboard captured = Bit(to - Up);
        Bitboard pawns = PawnAttacks(Them, to) & board_.Pieces(Us, Pawn);
        while (pawns != 0) {
            const Square from = PopLowest(pawns);
            const Bitboard occupied = (occupied_ ^ Bit(from) ^ captured) | Bit(to);
            if ((board_.AttackersTo(king_, occupied) & theirs_ & ~captured) == 0)
                sink_.One(Move(from, to, MoveKind::EnPassant));
        }
    }

    void Castling() {
        constexpr CastlingRight kingSide = Us == White ? WhiteKingSide : BlackKingSide;
        constexpr CastlingRight queenSide = Us == White ? WhiteQueenSide : BlackQueenSide;
        constexpr Square home = Us == White ? 4 : 60;
        if (board_.CanCastle(kingSide) && (occupied_ & (Bit(home + 1) | Bit(home + 2))) == 0 &&
            !board_.IsAttacked(home + 1, Them) && !board_.IsAttacked(home + 2, Them))
            sink_.One(Move(home, home + 2, MoveKind::Castling));
        if (board_.CanCastle(queenSide) && (occupied_ & (Bit(home - 1) | Bit(home - 2) | Bit(home - 3))) == 0 &&
            !board_.IsAttacked(home - 1, Them) && !board_.IsAttacked(home - 2, Them))
            sink_.One(Move(home, home - 2, MoveKind::Castling));
    }

    const Board& board_;
    Sink& sink_;
    const Bitboard occupied_;
    const Bitboard ours_;
    const Bitboard theirs_;
    const Square king_;
    Bitboard classMask_ = 0;
    Bitboard evasionMask_ = 0;
    Bitboard pinned_ = 0;
};

template <MoveClass Class, class Sink>
void Generate(const Board& board, Sink& sink) {
    if (board.SideToMove() == White)
        Generator<White, Class, Sink>(board, sink).Run();
    else
        Generator<Black, Class, Sink>(board, sink).Run();
}

} // namespace

template <MoveClass Class>
void GenerateMoves(const Board& board, MoveBuffer& moves) {
    ListSink sink(moves);
    Generate<Class>(board, sink);
}
template void GenerateMoves<MoveClass::All>(const Board&, MoveBuffer&);
template void GenerateMoves<MoveClass::Noisy>(const Board&, MoveBuffer&);
template void GenerateMoves<MoveClass::Quiet>(const Board&, MoveBuffer&);

int CountMoves(const Board& board) {
    CountSink sink;
    Generate<MoveClass::All>(board, sink);
    return sink.Count;
}

bool IsLegal(const Board& board, Move move) {
    const Color us = board.SideToMove();
    const Square from = move.From();
    const Square to = move.To();
    const Piece piece = board.At(from);
    if (piece == NoPiece || ColorOf(piece) != us || from == to) return false;

    // Rare kinds are looked up in the full list.
    if (move.Kind() == MoveKind::EnPassant || move.Kind() == MoveKind::Castling) {
        MoveBuffer moves;
        GenerateMoves<MoveClass::All>(board, moves);
        for (const Move legal : moves)
            if (legal == move) return true;
        return false;
    }

    const Bitboard occupied = board.Occupied();
    const Bitboard target = Bit(to);
    if ((board.Pieces(us) & target) != 0) return false;
    if (!move.IsPromotion() && move != Move(from, to)) return false; // stray promotion bits
    if (KindOf(piece) == Pawn) {
        if (move.IsPromotion() != (RelativeRank(us, to) == 7)) return false;
        const int up = us == White ? 8 : -8;
        const bool capture = (PawnAttacks(us, from) & board.Pieces(~us) & target) != 0;
        const bool push = to == from + up && (occupied & target) == 0;
        const bool doublePush =
            to == from + 2 * up && RelativeRank(us, from) == 1 && (occupied & (target | Bit(from + up))) == 0;
        if (!capture && !push && !doublePush) return false;
    } else {
        if (move.IsPromotion() || (PieceAttacks(KindOf(piece), from, occupied) & target) == 0) return false;
    }
    // The king must be safe once the move has been made.
    const Square king = KindOf(piece) == King ? to : board.KingSquare(us);
    const Bitboard after = (occupied ^ Bit(from)) | target;
    return (board.AttackersTo(king, after) & board.Pieces(~us) & ~target) == 0;
}

std::uint64_t Perft(const Board& board, int depth) {
    if (depth == 0) return 1;
    if (depth == 1) return static_cast<std::uint64_t>(CountMoves(board));
    MoveBuffer moves;
    GenerateMoves<MoveClass::All>(board, moves);
    std::uint64_t leaves = 0;
    for (const Move move : moves) {
        Board next = board;
        next.Make(move);
        leaves += Perft(next, depth - 1);
    }
    return leaves;
}

} // namespace quarnel::engine
