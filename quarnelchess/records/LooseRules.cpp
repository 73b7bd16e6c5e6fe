#include "quarnelchess/records/LooseRules.h"

#include <initializer_list>

namespace quarnel::engine {
namespace {

enum Code : std::uint8_t { Empty = 0, FirstBlack = 7, LastPiece = 12 };
constexpr int FirstResultCode = 250;
constexpr int LastResultCode = 252;

constexpr int KnightSteps[8][2] = {{1, 2}, {2, 1}, {2, -1}, {1, -2}, {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}};
// Straight directions first, then diagonals.
constexpr int RaySteps[8][2] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {1, 1}, {1, -1}, {-1, -1}, {-1, 1}};

bool OnBoard(int file, int row) {
    return file >= 1 && file <= 8 && row >= 1 && row <= 8;
}
bool IsPiece(int code) {
    return code >= 1 && code <= LastPiece;
}
bool IsOf(int code, Color side) {
    return IsPiece(code) && (code >= FirstBlack) == (side == Black);
}
PieceKind KindOfCode(int code) {
    return static_cast<PieceKind>((code - 1) % 6);
}
std::uint8_t CodeOf(Color side, PieceKind kind) {
    return static_cast<std::uint8_t>(kind + 1 + 6 * side);
}
/// Rows count down the board: White's pawns walk towards row 1.
int Forward(Color side) {
    return side == White ? -1 : 1;
}
int HomeRow(Color side) {
    return side == White ? 8 : 1;
}

bool Attacked(const Position& position, int file, int row, Color by) {
    const auto holds = [&](int f, int r, PieceKind kind) {
        return OnBoard(f, r) && position.Board[r][f] == CodeOf(by, kind);
    };
    for (const int side : {-1, 1})
        if (holds(file + side, row - Forward(by), Pawn)) return true;
    for (const auto& step : KnightSteps)
        if (holds(file + step[0], row + step[1], Knight)) return true;
    for (int direction = 0; direction < 8; ++direction) {
        int f = file + RaySteps[direction][0];
        int r = row + RaySteps[direction][1];
        if (holds(f, r, King)) return true;
        while (OnBoard(f, r) && position.Board[r][f] == Empty) {
            f += RaySteps[direction][0];
            r += RaySteps[direction][1];
        }
        if (holds(f, r, direction < 4 ? Rook : Bishop) || holds(f, r, Queen)) return true;
    }
    return false;
}

class Lister {
  public:
    Lister(const Position& position, Color side, MoveList& list) : position_(position), side_(side), list_(list) {}

    void Run() {
        for (int row = 1; row <= 8; ++row)
            for (int file = 1; file <= 8; ++file)
                if (IsOf(position_.Board[row][file], side_)) FromSquare(file, row);
        Castling();
    }

  private:
    void FromSquare(int file, int row) {
        switch (KindOfCode(position_.Board[row][file])) {
        case Pawn:
            PawnMoves(file, row);
            break;
        case Knight:
            for (const auto& step : KnightSteps) Try(file, row, file + step[0], row + step[1]);
            break;
        case Bishop:
            Rays(file, row, 4, 8, 8);
            break;
        case Rook:
            Rays(file, row, 0, 4, 8);
            break;
        case Queen:
            Rays(file, row, 0, 8, 8);
            break;
        default:
            Rays(file, row, 0, 8, 1);
            break;
        }
    }

    void Rays(int file, int row, int first, int last, int reach) {
        for (int direction = first; direction < last; ++direction) {
            for (int n = 1; n <= reach; ++n) {
                const int f = file + n * RaySteps[direction][0];
                const int r = row + n * RaySteps[direction][1];
                Try(file, row, f, r);
                if (!OnBoard(f, r) || position_.Board[r][f] != Empty) break;
            }
        }
    }

    /// Adds the step unless its target is off the board, a wall, a king or a piece of the mover's own.
    void Try(int file, int row, int toFile, int toRow) {
        if (!OnBoard(toFile, toRow)) return;
        const int target = position_.Board[toRow][toFile];
        if (target != Empty && (!IsOf(target, ~side_) || KindOfCode(target) == King)) return;
        Add(Plain(file, row, toFile, toRow));
    }

    static MoveRec Plain(int file, int row, int toFile, int toRow) {
        MoveRec move{};
        move.FromFile = static_cast<std::uint8_t>(file);
        move.FromRow = static_cast<std::uint8_t>(row);
        move.ToFile = static_cast<std::uint8_t>(toFile);
        move.ToRow = static_cast<std::uint8_t>(toRow);
        return move;
    }

    void PawnMoves(int file, int row) {
        const int next = row + Forward(side_);
        if (!OnBoard(file, next)) return;
        if (position_.Board[next][file] == Empty) {
            AddPawnMove(Plain(file, row, file, next));
            const bool atHome = row == HomeRow(side_) + Forward(side_);
            if (atHome && position_.Board[next + Forward(side_)][file] == Empty)
                Add(Plain(file, row, file, next + Forward(side_)));
        }
        for (const int toFile : {file - 1, file + 1}) {
            if (!OnBoard(toFile, next)) continue;
            const int target = position_.Board[next][toFile];
            if (IsOf(target, ~side_) && KindOfCode(target) != King) AddPawnMove(Plain(file, row, toFile, next));
            if (target == Empty && toFile == position_.EpFile && EnPassantRow(row) &&
                position_.Board[row][toFile] == CodeOf(~side_, Pawn)) {
                MoveRec move = Plain(file, row, toFile, next);
                move.EpCapFile = static_cast<std::uint8_t>(toFile);
                move.EpCapRow = static_cast<std::uint8_t>(row);
                Add(move);
            }
        }
    }

    /// The row on which an enemy pawn lands after a double step.
    bool EnPassantRow(int row) const { return row == HomeRow(~side_) - 3 * Forward(side_); }

    void AddPawnMove(MoveRec move) {
        if (move.ToRow != HomeRow(~side_)) {
            Add(move);
            return;
        }
        for (const PieceKind kind : {Queen, Knight, Rook, Bishop}) {
            move.Promote = CodeOf(side_, kind);
            Add(move);
        }
    }

    void Castling() {
        const int rights = side_ == White ? position_.WhiteCastle : position_.BlackCastle;
        const int row = HomeRow(side_);
        if (rights > 3 || position_.Board[row][5] != CodeOf(side_, King) || Attacked(position_, 5, row, ~side_)) return;
        for (const int kind : {1, 2}) {
            const int rookFile = kind == 1 ? 8 : 1;
            const int step = kind == 1 ? 1 : -1;
            if ((rights & kind) == 0 || position_.Board[row][rookFile] != CodeOf(side_, Rook)) continue;
            bool clear = !Attacked(position_, 5 + step, row, ~side_);
            for (int file = 5 + step; file != rookFile; file += step) clear &= position_.Board[row][file] == Empty;
            if (!clear) continue;
            MoveRec move = Plain(5, row, 0, 0);
            move.Castle = static_cast<std::uint8_t>(kind);
            Add(move);
        }
    }

    void Add(const MoveRec& move) {
        if (list_.Count == 255) return;
        Position after = position_;
        PlayMove(after, move);
        if (!KingAttacked(after, side_)) list_.Moves[list_.Count++] = move;
    }

    const Position& position_;
    const Color side_;
    MoveList& list_;
};

std::uint8_t& Rights(Position& position, Color side) {
    return side == White ? position.WhiteCastle : position.BlackCastle;
}

/// A rook's corner was left or captured on: the right on that side is gone.
void LoseCorner(Position& position, int file, int row) {
    if (file != 1 && file != 8) return;
    for (const Color side : {White, Black}) {
        std::uint8_t& rights = Rights(position, side);
        if (row == HomeRow(side) && rights <= 3) rights &= file == 8 ? 2 : 1;
    }
}

void PlayCastling(Position& position, const MoveRec& move) {
    const Color side = move.FromRow == 8 ? White : Black;
    const int row = HomeRow(side);
    if (move.Castle > 2 || move.FromFile != 5 || move.FromRow != row || position.Board[row][5] != CodeOf(side, King))
        return;
    const bool kingSide = move.Castle == 1;
    const int rookFrom = kingSide ? 8 : 1;
    const std::uint8_t rook = position.Board[row][rookFrom];
    position.Board[row][5] = Empty;
    position.Board[row][rookFrom] = Empty;
    position.Board[row][kingSide ? 7 : 3] = CodeOf(side, King);
    position.Board[row][kingSide ? 6 : 4] = rook;
    Rights(position, side) = 0;
    position.EpFile = 0;
}

} // namespace

void ListLooseMoves(const Position& position, Color side, MoveList& list) {
    Lister(position, side, list).Run();
}

void PlayMove(Position& position, const MoveRec& move) {
    if (move.Promote >= FirstResultCode && move.Promote <= LastResultCode) return;
    if (move.Castle != 0) {
        PlayCastling(position, move);
        return;
    }
    if (!OnBoard(move.FromFile, move.FromRow) || !OnBoard(move.ToFile, move.ToRow)) return;
    const std::uint8_t piece = position.Board[move.FromRow][move.FromFile];
    if (piece == Empty) return;

    const bool sided = IsPiece(piece);
    const Color side = piece >= FirstBlack ? Black : White;
    const bool pawn = sided && KindOfCode(piece) == Pawn;
    position.Board[move.FromRow][move.FromFile] = Empty;
    position.Board[move.ToRow][move.ToFile] = piece;
    if (pawn && IsPiece(move.Promote)) position.Board[move.ToRow][move.ToFile] = CodeOf(side, KindOfCode(move.Promote));
    if (pawn && OnBoard(move.EpCapFile, move.EpCapRow) &&
        position.Board[move.EpCapRow][move.EpCapFile] == CodeOf(~side, Pawn))
        position.Board[move.EpCapRow][move.EpCapFile] = Empty;

    const bool doubleStep = pawn && move.FromFile == move.ToFile && move.FromRow == HomeRow(side) + Forward(side) &&
                            move.ToRow == move.FromRow + 2 * Forward(side);
    position.EpFile = doubleStep ? move.FromFile : 0;
    if (sided && KindOfCode(piece) == King && move.FromFile == 5 && move.FromRow == HomeRow(side))
        Rights(position, side) = 0;
    LoseCorner(position, move.FromFile, move.FromRow);
    LoseCorner(position, move.ToFile, move.ToRow);
}

bool KingAttacked(const Position& position, Color side) {
    for (int row = 1; row <= 8; ++row)
        for (int file = 1; file <= 8; ++file)
            if (position.Board[row][file] == CodeOf(side, King) && Attacked(position, file, row, ~side)) return true;
    return false;
}

} // namespace quarnel::engine
