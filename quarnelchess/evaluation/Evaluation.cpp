#include "quarnelchess/evaluation/Evaluation.h"

#include "quarnelchess/evaluation/Endgames.h"
#include "quarnelchess/evaluation/PieceSquares.h"

#include <algorithm>
#include <array>
#include <bit>
#include <initializer_list>

namespace quarnel::engine {
namespace {

constexpr Bitboard CenterFiles = FileMask(2) | FileMask(3) | FileMask(4) | FileMask(5);

constexpr std::array<int, 4> MobilityOffset = {0, 9, 9 + 14, 9 + 14 + 15};

struct PawnMasks {
    Bitboard Adjacent[8];        // files beside
    Bitboard Ahead[2][64];       // own file, ranks ahead
    Bitboard PassedSpan[2][64];  // own and adjacent files, ranks ahead
    Bitboard SupportSpan[2][64]; // adjacent files, own rank and behind
};

constexpr PawnMasks MakePawnMasks() {
    PawnMasks masks{};
    for (int file = 0; file < 8; ++file)
        masks.Adjacent[file] = (file > 0 ? FileMask(file - 1) : 0) | (file < 7 ? FileMask(file + 1) : 0);
    for (Square square = 0; square < 64; ++square) {
        const int file = FileOf(square);
        const int rank = RankOf(square);
        const Bitboard above = rank == 7 ? 0 : ~Bitboard{0} << (8 * (rank + 1));
        const Bitboard below = (Bitboard{1} << (8 * rank)) - 1;
        for (const Color color : {White, Black}) {
            const Bitboard ahead = color == White ? above : below;
            masks.Ahead[color][square] = ahead & FileMask(file);
            masks.PassedSpan[color][square] = ahead & (FileMask(file) | masks.Adjacent[file]);
            masks.SupportSpan[color][square] = ~ahead & masks.Adjacent[file];
        }
    }
    return masks;
}

constexpr PawnMasks Masks = MakePawnMasks();

template <Color Us>
constexpr Bitboard Forward(Bitboard set) {
    return Shift < Us == White ? 8 : -8 > (set);
}

/// The most advanced own (or the nearest enemy) pawn of a file, seen from the king's side of the board.
Square NearestTo(Color side, Bitboard pawns) {
    return side == White ? LowestSquare(pawns) : 63 - std::countl_zero(pawns);
}

} // namespace

/// One evaluation. With Traced it also counts how often each weight was used.
template <bool Traced>
class Evaluator {
  public:
    Evaluator(const Board& board, Evaluation::PawnEntry* cache, EvaluationTrace* trace)
        : board_(board), cache_(cache), trace_(trace) {}

    /// White's view, without tempo.
    Score Run() {
        Prepare<White>();
        Prepare<Black>();
        const Evaluation::PawnEntry pawns = PawnStructure();
        passed_ = pawns.Passed;
        PiecesOf<White>();
        PiecesOf<Black>();
        PassedPawns<White>();
        PassedPawns<Black>();
        Threats<White>();
        Threats<Black>();
        KingSafety<White>();
        KingSafety<Black>();
        Space<White>();
        Space<Black>();
        return pawns.Value + sum_[White] - sum_[Black];
    }

  private:
    template <Color Us>
    void Add(int weight, int count = 1) {
        const Score& value = Weights[weight];
        sum_[Us].Mg += value.Mg * count;
        sum_[Us].Eg += value.Eg * count;
        if constexpr (Traced) trace_->Counts[weight] += Us == White ? count : -count;
    }

    /// Adds what a piece is worth on its square.
    template <Color Us, PieceKind Kind>
    void Stand(Square square) {
        sum_[Us] += PieceSquares.Value[Kind][Relative(Us, square)];
        if constexpr (Traced) {
            const int sign = Us == White ? 1 : -1;
            if (Kind != King) trace_->Counts[MaterialWeight + int{Kind}] += sign;
            trace_->Counts[SquareWeightIndex(Us, Kind, square)] += sign;
        }
    }

    template <Color Us>
    void Prepare() {
        const Bitboard pawns = board_.Pieces(Us, Pawn);
        const Square king = board_.KingSquare(Us);
        attacks_[Us][Pawn] = PawnSetAttacks<Us>(pawns);
        attacks_[Us][King] = KingAttacks(king);
        all_[Us] = attacks_[Us][Pawn] | attacks_[Us][King];
        twice_[Us] = attacks_[Us][Pawn] & attacks_[Us][King];
        ring_[Us] = KingAttacks(king) | Bit(king);
        Stand<Us, King>(king);
    }

    Evaluation::PawnEntry PawnStructure() {
        if (cache_ != nullptr && cache_->PawnKey == board_.PawnKey()) return *cache_;
        const Score before[2] = {sum_[White], sum_[Black]};
        Evaluation::PawnEntry entry;
        entry.PawnKey = board_.PawnKey();
        entry.Passed = PawnsOf<White>() | PawnsOf<Black>();
        entry.Value = (sum_[White] - before[White]) - (sum_[Black] - before[Black]);
        sum_[White] = before[White];
        sum_[Black] = before[Black];
        if (cache_ != nullptr) *cache_ = entry;
        return entry;
    }

    template <Color Us>
    Bitboard PawnsOf() {
        constexpr Color Them = ~Us;
        const Bitboard ours = board_.Pieces(Us, Pawn);
        const Bitboard theirs = board_.Pieces(Them, Pawn);
        Bitboard passed = 0;
        for (Bitboard rest = ours; rest != 0;) {
            const Square square = PopLowest(rest);
            const int file = FileOf(square);
            const int rank = RelativeRank(Us, square);
            Stand<Us, Pawn>(square);
            const bool halfOpen = (theirs & Masks.Ahead[Us][square]) == 0;
            const bool doubled = (ours & Masks.Ahead[Us][square]) != 0;
            const bool supported = (PawnAttacks(Them, square) & ours) != 0;
            const bool phalanx = (ours & Masks.Adjacent[file] & RankMask(RankOf(square))) != 0;
            if (doubled) Add<Us>(PawnDoubled);
            if (supported) Add<Us>(PawnSupported + rank);
            if (phalanx) Add<Us>(PawnPhalanx + rank);
            if ((ours & Masks.Adjacent[file]) == 0) {
                Add<Us>(PawnIsolated + (halfOpen ? 0 : 1));
            } else if (!supported && (ours & Masks.SupportSpan[Us][square]) == 0 &&
                       (PawnAttacks(Us, square + (Us == White ? 8 : -8)) & theirs) != 0) {
                Add<Us>(PawnBackward + (halfOpen ? 0 : 1));
            }
            if ((theirs & Masks.PassedSpan[Us][square]) == 0 && !doubled) {
                passed |= Bit(square);
                Add<Us>(PassedRank + rank);
            }
        }
        return passed;
    }

    template <Color Us, PieceKind Kind>
    void PiecesOfKind() {
        constexpr Color Them = ~Us;
        const Bitboard ownPawns = board_.Pieces(Us, Pawn);
        const Bitboard enemyPawns = board_.Pieces(Them, Pawn);
        constexpr Bitboard outpostRanks =
            Us == White ? RankMask(3) | RankMask(4) | RankMask(5) : RankMask(4) | RankMask(3) | RankMask(2);
        for (Bitboard rest = board_.Pieces(Us, Kind); rest != 0;) {
            const Square square = PopLowest(rest);
            Stand<Us, Kind>(square);
            // Sliders see through their own batteries.
            Bitboard occupied = board_.Occupied();
            if constexpr (Kind == Bishop) occupied ^= board_.Pieces(Us, Queen);
            if constexpr (Kind == Rook) occupied ^= board_.Pieces(Us, Queen) | board_.Pieces(Us, Rook);
            const Bitboard reach = PieceAttacks(Kind, square, occupied);
            twice_[Us] |= all_[Us] & reach;
            all_[Us] |= reach;
            attacks_[Us][Kind] |= reach;
            Add<Us>(MobilityWeight + MobilityOffset[Kind - Knight] + PopCount(reach & mobilityArea_[Us]));

            const Bitboard ringHits = reach & ring_[Them];
            if (ringHits != 0) {
                ++attackers_[Us];
                Add<Us>(KingRingAttack + (Kind - Knight), PopCount(ringHits));
            }
            if constexpr (Kind == Knight || Kind == Bishop) {
                if ((Bit(square) & outpostRanks & attacks_[Us][Pawn]) != 0 &&
                    (Masks.PassedSpan[Us][square] & Masks.Adjacent[FileOf(square)] & enemyPawns) == 0)
                    Add<Us>(Kind == Knight ? OutpostKnight : OutpostBishop);
                if ((Forward<Us>(Bit(square)) & board_.Pieces(Pawn)) != 0) Add<Us>(MinorBehindPawn);
            }
            if constexpr (Kind == Bishop) {
                const Bitboard sameColor = (LightSquares & Bit(square)) != 0 ? LightSquares : ~LightSquares;
                Add<Us>(BishopOwnPawns, PopCount(ownPawns & sameColor));
            }
            if constexpr (Kind == Rook) {
                const Bitboard file = FileMask(FileOf(square));
                if ((ownPawns & file) == 0) Add<Us>((enemyPawns & file) == 0 ? RookOpenFile : RookHalfOpenFile);
                if ((Masks.Ahead[Us][square] & passed_ & ownPawns) != 0) Add<Us>(RookBehindPasser);
            }
        }
    }

    template <Color Us>
    void PiecesOf() {
        constexpr Color Them = ~Us;
        // Blocked pawns, pawns at home, the king and what enemy pawns guard are no room to move to.
        const Bitboard pawns = board_.Pieces(Us, Pawn);
        const Bitboard blocked = pawns & Forward<Them>(board_.Occupied());
        mobilityArea_[Us] = ~(blocked | board_.Pieces(Us, King) | attacks_[Them][Pawn]);
        PiecesOfKind<Us, Knight>();
        PiecesOfKind<Us, Bishop>();
        PiecesOfKind<Us, Rook>();
        PiecesOfKind<Us, Queen>();
        if ((board_.Pieces(Us, Bishop) & LightSquares) != 0 && (board_.Pieces(Us, Bishop) & ~LightSquares) != 0)
            Add<Us>(BishopPair);
    }

    template <Color Us>
    void PassedPawns() {
        constexpr Color Them = ~Us;
        for (Bitboard rest = passed_ & board_.Pieces(Us, Pawn); rest != 0;) {
            const Square square = PopLowest(rest);
            const Square ahead = square + (Us == White ? 8 : -8);
            const int rank = RelativeRank(Us, square);
            if (rank >= 3) {
                Add<Us>(PassedOwnKing + Distance(board_.KingSquare(Us), ahead));
                Add<Us>(PassedEnemyKing + Distance(board_.KingSquare(Them), ahead));
            }
            if (board_.At(ahead) == NoPiece) {
                Add<Us>(PassedFree + rank);
                if ((Masks.Ahead[Us][square] & (all_[Them] | board_.Pieces(Them))) == 0) Add<Us>(PassedSafe + rank);
            }
        }
    }

    template <Color Us>
    void Threats() {
        constexpr Color Them = ~Us;
        const Bitboard enemies = board_.Pieces(Them);
        const auto count = [&](int weight, Bitboard victims) {
            while (victims != 0) Add<Us>(weight + KindOf(board_.At(PopLowest(victims))));
        };
        const Bitboard guarded = attacks_[Them][Pawn] | (twice_[Them] & ~twice_[Us]);
        const Bitboard weak = enemies & ~guarded & all_[Us] & ~board_.Pieces(King);
        const Bitboard pieces = enemies & ~board_.Pieces(Pawn) & ~board_.Pieces(King);
        count(ThreatByPawn, attacks_[Us][Pawn] & pieces);
        count(ThreatByMinor, (attacks_[Us][Knight] | attacks_[Us][Bishop]) & (pieces | weak) & ~board_.Pieces(Us));
        count(ThreatByRook, attacks_[Us][Rook] & (weak | board_.Pieces(Them, Queen)));
        if ((attacks_[Us][King] & weak) != 0) Add<Us>(ThreatByKing);
        Add<Us>(HangingPiece, PopCount(weak & ~all_[Them]));

        constexpr Bitboard thirdRank = RankMask(Us == White ? 2 : 5);
        const Bitboard empty = ~board_.Occupied();
        Bitboard pushes = Forward<Us>(board_.Pieces(Us, Pawn)) & empty;
        pushes |= Forward<Us>(pushes & thirdRank) & empty;
        pushes &= ~attacks_[Them][Pawn] & (all_[Us] | ~all_[Them]);
        Add<Us>(ThreatByPush, PopCount(PawnSetAttacks<Us>(pushes) & pieces));
    }

    template <Color Us>
    void KingSafety() {
        constexpr Color Them = ~Us;
        const Square king = board_.KingSquare(Us);
        const Bitboard ownPawns = board_.Pieces(Us, Pawn);
        const Bitboard enemyPawns = board_.Pieces(Them, Pawn);
        // The king's own rank and all ranks before it.
        const Bitboard notBehind =
            Us == White ? ~Bitboard{0} << (8 * RankOf(king & 63)) : ~Bitboard{0} >> (8 * (7 - RankOf(king & 63)));
        const int center = std::clamp(FileOf(king), 1, 6);
        for (int file = center - 1; file <= center + 1; ++file) {
            const Bitboard own = ownPawns & FileMask(file) & notBehind;
            const Bitboard enemy = enemyPawns & FileMask(file) & notBehind;
            Add<Us>(KingShelter + (own != 0 ? RelativeRank(Us, NearestTo(Us, own)) : 0));
            Add<Us>(KingStorm + (enemy != 0 ? RelativeRank(Us, NearestTo(Us, enemy)) : 0));
            if ((board_.Pieces(Pawn) & FileMask(file)) == 0) Add<Us>(KingOpenFile);
        }

        // What the enemy's pieces do around the king counts for the enemy.
        Add<Them>(KingAttackers + std::min(attackers_[Them], 7));
        const Bitboard weak = attacks_[Us][King] & all_[Them] & ~twice_[Us] & ~attacks_[Us][Pawn];
        Add<Them>(KingWeakSquares, PopCount(weak & ~board_.Pieces(Them)));
        const Bitboard safe = ~board_.Pieces(Them) & (~all_[Us] | (weak & twice_[Them]));
        const Bitboard straight = RookAttacks(king, board_.Occupied());
        const Bitboard diagonal = BishopAttacks(king, board_.Occupied());
        if ((KnightAttacks(king) & attacks_[Them][Knight] & safe) != 0) Add<Them>(KingSafeCheck);
        if ((diagonal & attacks_[Them][Bishop] & safe) != 0) Add<Them>(KingSafeCheck + 1);
        if ((straight & attacks_[Them][Rook] & safe) != 0) Add<Them>(KingSafeCheck + 2);
        if (((straight | diagonal) & attacks_[Them][Queen] & safe) != 0) Add<Them>(KingSafeCheck + 3);
    }

    template <Color Us>
    void Space() {
        constexpr Color Them = ~Us;
        const Bitboard pawns = board_.Pieces(Us, Pawn);
        constexpr Bitboard ownRanks =
            Us == White ? RankMask(1) | RankMask(2) | RankMask(3) : RankMask(6) | RankMask(5) | RankMask(4);
        const Bitboard safe = CenterFiles & ownRanks & ~pawns & ~attacks_[Them][Pawn];
        Bitboard behind = pawns;
        behind |= Forward<Them>(behind);
        behind |= Forward<Them>(behind);
        Add<Us>(SpaceWeight, PopCount(safe) + PopCount(safe & behind & ~all_[Them]));
    }

    const Board& board_;
    Evaluation::PawnEntry* cache_;
    EvaluationTrace* trace_;
    Score sum_[2];
    Bitboard attacks_[2][6] = {};
    Bitboard all_[2] = {};
    Bitboard twice_[2] = {};
    Bitboard ring_[2] = {};
    Bitboard mobilityArea_[2] = {};
    Bitboard passed_ = 0;
    int attackers_[2] = {};
};

namespace {

/// White's view.
int Blend(const Board& board, Score score, int scale) {
    const int phase = std::min(board.Phase(), FullPhase);
    return (score.Mg * phase + score.Eg * scale / 64 * (FullPhase - phase)) / FullPhase;
}

} // namespace

void Evaluation::ResizePawnCache(std::size_t bytes) {
    pawns_.assign(std::bit_floor(std::max<std::size_t>(bytes / sizeof(PawnEntry), 1)), {});
}

int Evaluation::Evaluate(const Board& board) {
    int value = 0;
    if (!EvaluateKnownEnding(board, value)) {
        PawnEntry* entry = &pawns_[board.PawnKey() & (pawns_.size() - 1)];
        Score score = Evaluator<false>(board, entry, nullptr).Run();
        score += board.SideToMove() == White ? Weights[TempoWeight] : -Weights[TempoWeight];
        value = Blend(board, score, EndgameScale(board, score.Eg > 0 ? White : Black));
    }
    return board.SideToMove() == White ? value : -value;
}

int Evaluation::Explain(const Board& board, EvaluationTrace& trace) {
    trace = {};
    trace.Phase = std::min(board.Phase(), FullPhase);
    int value = 0;
    trace.Special = EvaluateKnownEnding(board, value);
    if (trace.Special) return value;
    Score score = Evaluator<true>(board, nullptr, &trace).Run();
    const int sign = board.SideToMove() == White ? 1 : -1;
    score += Weights[TempoWeight] * sign;
    trace.Counts[TempoWeight] += sign;
    trace.EndgameScale = EndgameScale(board, score.Eg > 0 ? White : Black);
    return Blend(board, score, trace.EndgameScale);
}

} // namespace quarnel::engine
