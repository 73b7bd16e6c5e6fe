#include "quarnelchess/evaluation/Endgames.h"

#include "quarnelchess/board/Attacks.h"
#include "quarnelchess/board/Material.h"

#include <algorithm>
#include <bitset>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <vector>

namespace quarnel::engine {
namespace {

constexpr int KnownWin = 2000; // far above any ordinary advantage, far below a mate

// --- King and pawn against king -------------------------------------------------------------------

/// All positions with a white pawn on files a to d; solved by going back from promotions and captures.
class KingPawnTable {
  public:
    KingPawnTable() : won_(Size) {
        std::vector<State> states(Size);
        for (int index = 0; index < Size; ++index) states[static_cast<std::size_t>(index)] = Initial(index);
        bool changed = true;
        while (changed) {
            changed = false;
            for (int index = 0; index < Size; ++index) {
                State& state = states[static_cast<std::size_t>(index)];
                if (state != State::Unknown) continue;
                state = Classify(index, states);
                changed |= state != State::Unknown;
            }
        }
        for (int index = 0; index < Size; ++index)
            won_[static_cast<std::size_t>(index)] = states[static_cast<std::size_t>(index)] == State::Win;
    }

    bool IsWon(Square whiteKing, Square pawn, Square blackKing, Color side) const {
        return won_[static_cast<std::size_t>(IndexOf(whiteKing, pawn, blackKing, side))];
    }

  private:
    enum class State : std::uint8_t { Invalid, Unknown, Draw, Win };
    static constexpr int Size = 24 * 64 * 64 * 2;

    static int IndexOf(Square whiteKing, Square pawn, Square blackKing, Color side) {
        const int pawnIndex = (RankOf(pawn) - 1) * 4 + FileOf(pawn);
        return ((pawnIndex * 64 + whiteKing) * 64 + blackKing) * 2 + side;
    }
    static void Split(int index, Square& whiteKing, Square& pawn, Square& blackKing, Color& side) {
        side = static_cast<Color>(index & 1);
        blackKing = (index >> 1) & 63;
        whiteKing = (index >> 7) & 63;
        const int pawnIndex = index >> 13;
        pawn = MakeSquare(pawnIndex % 4, pawnIndex / 4 + 1);
    }

    static State Initial(int index) {
        Square whiteKing = 0, pawn = 0, blackKing = 0;
        Color side = White;
        Split(index, whiteKing, pawn, blackKing, side);
        if (Distance(whiteKing, blackKing) <= 1 || whiteKing == pawn || blackKing == pawn) return State::Invalid;
        if (side == White && (PawnAttacks(White, pawn) & Bit(blackKing)) != 0) return State::Invalid;
        // A promotion that cannot be answered by taking the new piece wins.
        const Square ahead = pawn + 8;
        if (side == White && RankOf(pawn) == 6 && whiteKing != ahead && blackKing != ahead &&
            (Distance(blackKing, ahead) > 1 || Distance(whiteKing, ahead) == 1))
            return State::Win;
        return State::Unknown;
    }

    static State Classify(int index, const std::vector<State>& states) {
        Square whiteKing = 0, pawn = 0, blackKing = 0;
        Color side = White;
        Split(index, whiteKing, pawn, blackKing, side);
        const auto look = [&](Square wk, Square p, Square bk) {
            return states[static_cast<std::size_t>(IndexOf(wk, p, bk, ~side))];
        };
        bool unknown = false;
        bool any = false;
        if (side == White) {
            const auto consider = [&](State next) {
                any |= next != State::Invalid;
                unknown |= next == State::Unknown;
                return next == State::Win;
            };
            for (Bitboard targets = KingAttacks(whiteKing) & ~Bit(pawn); targets != 0;)
                if (consider(look(PopLowest(targets), pawn, blackKing))) return State::Win;
            const Square ahead = pawn + 8;
            if (RankOf(pawn) < 6 && ahead != whiteKing && ahead != blackKing) {
                if (consider(look(whiteKing, ahead, blackKing))) return State::Win;
                const Square twice = ahead + 8;
                if (RankOf(pawn) == 1 && twice != whiteKing && twice != blackKing &&
                    consider(look(whiteKing, twice, blackKing)))
                    return State::Win;
            }
            return unknown ? State::Unknown : State::Draw;
        }
        for (Bitboard targets = KingAttacks(blackKing); targets != 0;) {
            const Square to = PopLowest(targets);
            if (Distance(to, whiteKing) <= 1 || (PawnAttacks(White, pawn) & Bit(to)) != 0) continue;
            any = true;
            if (to == pawn) return State::Draw;
            const State next = look(whiteKing, pawn, to);
            if (next == State::Draw) return State::Draw;
            unknown |= next == State::Unknown;
        }
        if (!any) return (PawnAttacks(White, pawn) & Bit(blackKing)) != 0 ? State::Win : State::Draw; // mate, stalemate
        return unknown ? State::Unknown : State::Win;
    }

    std::vector<bool> won_;
};

const KingPawnTable& TheKingPawnTable() {
    // Never destroyed: a search may still run when the process ends.
    static const KingPawnTable* const table = new KingPawnTable;
    return *table;
}

// --- Mating a bare king ---------------------------------------------------------------------------

/// 0 in the centre, up to 6 in a corner.
int CornerDistance(Square square) {
    const int file = FileOf(square) < 4 ? 3 - FileOf(square) : FileOf(square) - 4;
    const int rank = RankOf(square) < 4 ? 3 - RankOf(square) : RankOf(square) - 4;
    return file + rank;
}

int DriveToTheEdge(const Board& board, Color strong) {
    const Square weakKing = board.KingSquare(~strong);
    return 20 * CornerDistance(weakKing) + 10 * (7 - Distance(board.KingSquare(strong), weakKing));
}

/// Bishop and knight mate in a corner of the bishop's colour only.
int DriveToTheRightCorner(const Board& board, Color strong) {
    const Square weakKing = board.KingSquare(~strong);
    const bool light = (board.Pieces(strong, Bishop) & LightSquares) != 0;
    const Square corners[2] = {light ? MakeSquare(0, 7) : MakeSquare(0, 0),
                               light ? MakeSquare(7, 0) : MakeSquare(7, 7)};
    int nearest = 14;
    for (const Square corner : corners)
        nearest = std::min(nearest,
                           std::abs(FileOf(corner) - FileOf(weakKing)) + std::abs(RankOf(corner) - RankOf(weakKing)));
    return 30 * (14 - nearest) + 8 * CornerDistance(weakKing) +
           10 * (7 - Distance(board.KingSquare(strong), weakKing)) +
           4 * (7 - Distance(LowestSquare(board.Pieces(strong, Knight)), weakKing));
}

bool BothBishopColors(const Board& board, Color color) {
    const Bitboard bishops = board.Pieces(color, Bishop);
    return (bishops & LightSquares) != 0 && (bishops & ~LightSquares) != 0;
}

int MaterialCp(const Board& board, Color color) {
    int sum = 0;
    for (const PieceKind kind : {Pawn, Knight, Bishop, Rook, Queen})
        sum += ExchangeValue[kind] * PopCount(board.Pieces(color, kind));
    return sum;
}

/// Against a bare king, without pawns of either side.
int EvaluateAgainstBareKing(const Board& board, Color strong) {
    const int knights = PopCount(board.Pieces(strong, Knight));
    const bool heavy = (board.Pieces(strong) & board.Orthogonals()) != 0;
    if (heavy || BothBishopColors(board, strong) || knights >= 3)
        return KnownWin + DriveToTheEdge(board, strong) + MaterialCp(board, strong) / 2;
    if (board.Pieces(strong, Bishop) != 0 && knights >= 1) return KnownWin + DriveToTheRightCorner(board, strong);
    return 0; // knights or bishops of one colour alone cannot force mate
}

/// What is worth more than a pawn, in minor pieces' worth: minor 3, rook 5, queen 9.
int PieceWorth(const Board& board, Color color) {
    return 3 * PopCount(board.Pieces(color, Knight) | board.Pieces(color, Bishop)) +
           5 * PopCount(board.Pieces(color, Rook)) + 9 * PopCount(board.Pieces(color, Queen));
}

} // namespace

bool KingPawnEndingIsWon(Color strong, Square strongKing, Square pawn, Square weakKing, Color sideToMove) {
    const int mirror = FileOf(pawn) > 3 ? 7 : 0;
    const auto place = [&](Square square) { return Relative(strong, square) ^ mirror; };
    return TheKingPawnTable().IsWon(place(strongKing), place(pawn), place(weakKing),
                                    sideToMove == strong ? White : Black);
}

bool EvaluateKnownEnding(const Board& board, int& value) {
    const Bitboard pawns = board.Pieces(Pawn);
    for (const Color strong : {White, Black}) {
        const Color weak = ~strong;
        if (MoreThanOne(board.Pieces(weak)) || !MoreThanOne(board.Pieces(strong))) continue;
        const int sign = strong == White ? 1 : -1;
        if (pawns == 0) {
            value = sign * EvaluateAgainstBareKing(board, strong);
            return true;
        }
        if (PopCount(board.Occupied()) == 3) {
            const Square pawn = LowestSquare(pawns);
            const bool won =
                KingPawnEndingIsWon(strong, board.KingSquare(strong), pawn, board.KingSquare(weak), board.SideToMove());
            value = won ? sign * (600 + 30 * RelativeRank(strong, pawn)) : 0;
            return true;
        }
    }
    return false;
}

int EndgameScale(const Board& board, Color strong) {
    const Color weak = ~strong;
    const Bitboard strongPawns = board.Pieces(strong, Pawn);
    if (strongPawns == 0) {
        // Without pawns a minor piece more does not win.
        const int worth = PieceWorth(board, strong);
        const int lead = worth - PieceWorth(board, weak);
        if (worth <= 3) return 0;
        if (lead <= 3) return worth == 6 && PopCount(board.Pieces(strong, Knight)) == 2 ? 2 : 8;
        return FullScale;
    }

    // A rook's pawn and a bishop of the wrong colour: the bare king in the corner holds.
    const bool oneFile = (strongPawns & ~FileA) == 0 || (strongPawns & ~FileH) == 0;
    const Bitboard bishops = board.Pieces(strong, Bishop);
    const bool onlyBishops = (board.Pieces(strong) & ~strongPawns & ~bishops & ~board.Pieces(King)) == 0;
    if (oneFile && onlyBishops && !board.HasPieces(weak)) {
        const Square corner = Relative(strong, MakeSquare((strongPawns & FileA) != 0 ? 0 : 7, 7));
        const Bitboard cornerColor = (Bit(corner) & LightSquares) != 0 ? LightSquares : ~LightSquares;
        if ((bishops & cornerColor) == 0 && Distance(board.KingSquare(weak), corner) <= 1) return 0;
    }

    return FullScale;
}

void PrepareEndings() {
    TheKingPawnTable();
}

} // namespace quarnel::engine
