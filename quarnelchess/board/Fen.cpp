#include "quarnelchess/board/Fen.h"

#include "quarnelchess/board/Text.h"

namespace quarnel::engine {
namespace {

constexpr std::string_view WhiteLetters = "PNBRQK";
constexpr std::string_view BlackLetters = "pnbrqk";

bool ReadPlacement(std::string_view field, BoardBuilder& builder) {
    int rank = 7;
    int file = 0;
    for (const char c : field) {
        if (c == '/') {
            if (file != 8 || rank == 0) return false;
            --rank;
            file = 0;
        } else if (c >= '1' && c <= '8') {
            file += c - '0';
        } else {
            const std::size_t white = WhiteLetters.find(c);
            const std::size_t black = BlackLetters.find(c);
            if (file > 7 || (white == std::string_view::npos && black == std::string_view::npos)) return false;
            const Color color = white != std::string_view::npos ? White : Black;
            builder.Put(MakeSquare(file, rank),
                        MakePiece(color, static_cast<PieceKind>(color == White ? white : black)));
            ++file;
        }
        if (file > 8) return false;
    }
    return rank == 0 && file == 8;
}

int ReadCastling(std::string_view field) {
    int rights = 0;
    for (const char c : field) {
        if (c == 'K') rights |= WhiteKingSide;
        if (c == 'Q') rights |= WhiteQueenSide;
        if (c == 'k') rights |= BlackKingSide;
        if (c == 'q') rights |= BlackQueenSide;
    }
    return rights;
}

} // namespace

std::optional<Board> ReadFen(std::string_view text) {
    BoardBuilder builder;
    if (!ReadPlacement(NextWord(text), builder)) return std::nullopt;
    const std::string_view side = NextWord(text);
    if (side != "w" && side != "b") return std::nullopt;
    builder.SetSide(side == "w" ? White : Black);
    builder.SetCastling(ReadCastling(NextWord(text)));
    const std::string_view enPassant = NextWord(text);
    if (!enPassant.empty()) builder.SetEnPassantFile(enPassant[0] - 'a');
    const std::optional<int> clock = ReadNumber(NextWord(text), 0, 1000);
    builder.SetHalfmoveClock(clock.value_or(0));
    return builder.Build();
}

std::string WriteFen(const Board& board, int fullmove) {
    std::string text;
    for (int rank = 7; rank >= 0; --rank) {
        int empty = 0;
        for (int file = 0; file < 8; ++file) {
            const Piece piece = board.At(MakeSquare(file, rank));
            if (piece == NoPiece) {
                ++empty;
                continue;
            }
            if (empty > 0) text += static_cast<char>('0' + empty);
            empty = 0;
            text += (ColorOf(piece) == White ? WhiteLetters : BlackLetters)[KindOf(piece)];
        }
        if (empty > 0) text += static_cast<char>('0' + empty);
        if (rank > 0) text += '/';
    }
    text += board.SideToMove() == White ? " w " : " b ";
    if (board.Castling() == 0) text += '-';
    for (int i = 0; i < 4; ++i)
        if ((board.Castling() & (1 << i)) != 0) text += "KQkq"[i];
    text += ' ';
    if (board.EnPassant() == NoSquare) {
        text += '-';
    } else {
        text += static_cast<char>('a' + FileOf(board.EnPassant()));
        text += static_cast<char>('1' + RankOf(board.EnPassant()));
    }
    return text + " " + std::to_string(board.HalfmoveClock()) + " " + std::to_string(fullmove);
}

} // namespace quarnel::engine
