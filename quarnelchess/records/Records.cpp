#include "quarnelchess/records/Records.h"

#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/records/LooseRules.h"

#include <cstddef>
#include <cstring>

static_assert(sizeof(Position) == 86 && offsetof(Position, EpFile) == 81 && offsetof(Position, SideToMove) == 84);
static_assert(sizeof(MoveRec) == 8 && sizeof(MoveList) == 2049 && offsetof(MoveList, Count) == 2048);

namespace quarnel::engine {
namespace {

// The entry count is one byte.
constexpr std::size_t MaxListed = 255;

Square SquareOf(int file, int row) {
    return MakeSquare(file - 1, 8 - row);
}
std::uint8_t FileByte(Square square) {
    return static_cast<std::uint8_t>(FileOf(square) + 1);
}
std::uint8_t RowByte(Square square) {
    return static_cast<std::uint8_t>(8 - RankOf(square));
}

std::uint8_t CodeOf(Color color, PieceKind kind) {
    return static_cast<std::uint8_t>(kind + 1 + 6 * color);
}

} // namespace

std::optional<Board> BoardFromRecord(const Position& position, Color side) {
    BoardBuilder builder;
    for (int row = 1; row <= 8; ++row) {
        for (int file = 1; file <= 8; ++file) {
            const int code = position.Board[row][file];
            if (code > 12) return std::nullopt;
            if (code == 0) continue;
            builder.Put(SquareOf(file, row),
                        MakePiece(code > 6 ? Black : White, static_cast<PieceKind>((code - 1) % 6)));
        }
    }
    builder.SetSide(side);
    // Values 1, 2 and 3 are king side, queen side and both: the same bits as ours.
    builder.SetCastling((position.WhiteCastle <= 3 ? position.WhiteCastle : 0) +
                        4 * (position.BlackCastle <= 3 ? position.BlackCastle : 0));
    builder.SetEnPassantFile(position.EpFile - 1);
    return builder.Build();
}

Position RecordFromBoard(const Board& board) {
    Position position{};
    for (Square square = 0; square < 64; ++square) {
        const Piece piece = board.At(square);
        if (piece != NoPiece) position.Board[RowByte(square)][FileByte(square)] = CodeOf(ColorOf(piece), KindOf(piece));
    }
    if (board.EnPassant() != NoSquare) position.EpFile = FileByte(board.EnPassant());
    position.WhiteCastle = static_cast<std::uint8_t>(board.Castling() & 3);
    position.BlackCastle = static_cast<std::uint8_t>(board.Castling() >> 2);
    position.SideToMove = board.SideToMove() == Black ? -1 : 0;
    return position;
}

MoveRec RecordFromMove(const Board& board, Move move) {
    MoveRec record{};
    record.FromFile = FileByte(move.From());
    record.FromRow = RowByte(move.From());
    if (move.Kind() == MoveKind::Castling) {
        record.Castle = move.To() > move.From() ? 1 : 2;
        return record;
    }
    record.ToFile = FileByte(move.To());
    record.ToRow = RowByte(move.To());
    if (move.IsPromotion()) record.Promote = CodeOf(board.SideToMove(), move.PromotionKind());
    if (move.Kind() == MoveKind::EnPassant) {
        record.EpCapFile = record.ToFile;
        record.EpCapRow = record.FromRow;
    }
    return record;
}

Move MoveFromRecord(const Board& board, const MoveRec& record) {
    MoveBuffer moves;
    GenerateMoves(board, moves);
    for (const Move move : moves)
        if (SameMove(RecordFromMove(board, move), record)) return move;
    return {};
}

bool SameMove(const MoveRec& a, const MoveRec& b) {
    if (a.Castle != 0 || b.Castle != 0) return a.Castle == b.Castle;
    return std::memcmp(&a, &b, sizeof(MoveRec)) == 0;
}

void ListMoves(const Position& position, Color side, MoveList& list) {
    list.Count = 0;
    const std::optional<Board> board = BoardFromRecord(position, side);
    if (!board) {
        ListLooseMoves(position, side, list);
        return;
    }
    MoveBuffer moves;
    GenerateMoves(*board, moves);
    for (const Move move : moves) {
        if (list.Count == MaxListed) return;
        list.Moves[list.Count++] = RecordFromMove(*board, move);
    }
}

} // namespace quarnel::engine
