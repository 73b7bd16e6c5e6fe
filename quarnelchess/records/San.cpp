#include "quarnelchess/records/San.h"

#include "quarnelchess/records/Records.h"

namespace quarnel::engine {
namespace {

constexpr std::string_view Letters = "PNBRQK";

int KindAt(const Position& position, int file, int row) {
    const int code = position.Board[row][file];
    return code == 0 ? NoKind : (code - 1) % 6;
}

char FileLetter(int file) {
    return static_cast<char>('a' + file - 1);
}
char RankDigit(int row) {
    return static_cast<char>('0' + 9 - row);
}
bool IsFile(char c) {
    return c >= 'a' && c <= 'h';
}
bool IsRank(char c) {
    return c >= '1' && c <= '8';
}

std::string Disambiguation(const Position& position, const MoveRec& move, const MoveList& legal) {
    const int kind = KindAt(position, move.FromFile, move.FromRow);
    bool ambiguous = false;
    bool sameFile = false;
    bool sameRank = false;
    for (int i = 0; i < legal.Count; ++i) {
        const MoveRec& other = legal.Moves[i];
        if (other.Castle != 0 || other.ToFile != move.ToFile || other.ToRow != move.ToRow ||
            KindAt(position, other.FromFile, other.FromRow) != kind ||
            (other.FromFile == move.FromFile && other.FromRow == move.FromRow))
            continue;
        ambiguous = true;
        sameFile |= other.FromFile == move.FromFile;
        sameRank |= other.FromRow == move.FromRow;
    }
    std::string text;
    if (ambiguous && (!sameFile || sameRank)) text += FileLetter(move.FromFile);
    if (ambiguous && sameFile) text += RankDigit(move.FromRow);
    return text;
}

/// What a move text says, each part that is missing left at 0 (or Pawn).
struct SanParts {
    int Kind = Pawn;
    int FromFile = 0;
    int FromRow = 0;
    int ToFile = 0;
    int ToRow = 0;
    int Promotion = 0; // letter index, 0 (a pawn) for none
};

/// Reads backwards: promotion, target square, capture mark, origin, piece letter.
bool ReadParts(std::string_view text, SanParts& parts) {
    if (text.size() >= 2 && text[text.size() - 2] == '=') {
        const std::size_t letter = Letters.find(text.back());
        if (letter == std::string_view::npos || letter < Knight || letter > Queen) return false;
        parts.Promotion = static_cast<int>(letter);
        text.remove_suffix(2);
    }
    if (text.size() < 2 || !IsRank(text.back()) || !IsFile(text[text.size() - 2])) return false;
    parts.ToRow = 9 - (text.back() - '0');
    parts.ToFile = text[text.size() - 2] - 'a' + 1;
    text.remove_suffix(2);
    if (text.size() >= 2 && (text.back() == 'x' || text.back() == '-')) text.remove_suffix(1);
    if (!text.empty() && IsRank(text.back())) {
        parts.FromRow = 9 - (text.back() - '0');
        text.remove_suffix(1);
    }
    if (!text.empty() && IsFile(text.back())) {
        parts.FromFile = text.back() - 'a' + 1;
        text.remove_suffix(1);
    }
    if (text.empty()) return true;
    const std::size_t letter = Letters.find(text[0]);
    parts.Kind = static_cast<int>(letter);
    return letter != std::string_view::npos && text.size() == 1;
}

bool Fits(const Position& position, const MoveRec& move, const SanParts& parts) {
    if (move.Castle != 0 || move.ToFile != parts.ToFile || move.ToRow != parts.ToRow) return false;
    if (KindAt(position, move.FromFile, move.FromRow) != parts.Kind) return false;
    if (parts.FromFile != 0 && move.FromFile != parts.FromFile) return false;
    if (parts.FromRow != 0 && move.FromRow != parts.FromRow) return false;
    // A pawn that names no origin file pushes.
    if (parts.Kind == Pawn && parts.FromFile == 0 && move.FromFile != move.ToFile) return false;
    const int promotion = parts.Promotion != 0 ? parts.Promotion : static_cast<int>(Queen);
    return move.Promote == 0 ? parts.Promotion == 0 : (move.Promote - 1) % 6 == promotion;
}

} // namespace

std::string WriteSan(const Position& position, const MoveRec& move, const MoveList& legal) {
    if (move.Castle != 0) return move.Castle == 1 ? "O-O" : "O-O-O";
    const int kind = KindAt(position, move.FromFile, move.FromRow);
    const bool capture = position.Board[move.ToRow][move.ToFile] != 0 || move.EpCapFile != 0;
    std::string text;
    if (kind == Pawn) {
        if (capture) text += FileLetter(move.FromFile);
    } else if (kind != NoKind) {
        text += Letters[static_cast<std::size_t>(kind)];
        text += Disambiguation(position, move, legal);
    }
    if (capture) text += 'x';
    text += FileLetter(move.ToFile);
    text += RankDigit(move.ToRow);
    if (move.Promote != 0) {
        text += '=';
        text += Letters[static_cast<std::size_t>((move.Promote - 1) % 6)];
    }
    return text;
}

int FindSan(const Position& position, std::string_view text, const MoveList& legal) {
    while (!text.empty() && (text.back() == '+' || text.back() == '#')) text.remove_suffix(1);
    const int castle = text == "O-O" ? 1 : text == "O-O-O" ? 2 : 0;
    SanParts parts;
    if (castle == 0 && !ReadParts(text, parts)) return -1;
    for (int i = 0; i < legal.Count; ++i)
        if (castle != 0 ? legal.Moves[i].Castle == castle : Fits(position, legal.Moves[i], parts)) return i;
    return -1;
}

std::string WriteSan(const Board& board, Move move) {
    const Position position = RecordFromBoard(board);
    MoveList legal;
    ListMoves(position, board.SideToMove(), legal);
    return WriteSan(position, RecordFromMove(board, move), legal);
}

Move ReadSan(const Board& board, std::string_view text) {
    const Position position = RecordFromBoard(board);
    MoveList legal;
    ListMoves(position, board.SideToMove(), legal);
    const int index = FindSan(position, text, legal);
    return index < 0 ? Move{} : MoveFromRecord(board, legal.Moves[index]);
}

} // namespace quarnel::engine
