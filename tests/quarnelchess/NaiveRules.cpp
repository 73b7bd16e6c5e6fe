#include "NaiveRules.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <sstream>

namespace naive {
namespace {

bool IsWhite(char piece) {
    return std::isupper(static_cast<unsigned char>(piece)) != 0;
}
char Lower(char piece) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(piece)));
}
/// Could the piece on the square go to the other one, whose turn and whose king aside?
bool Reaches(const Game& game, int file, int rank, int toFile, int toRank) {
    const int df = toFile - file;
    const int dr = toRank - rank;
    if (df == 0 && dr == 0) return false;
    const char kind = Lower(game.Squares[rank][file]);
    const bool straight = df == 0 || dr == 0;
    const bool diagonal = std::abs(df) == std::abs(dr);
    if (kind == 'n') return std::abs(df * dr) == 2;
    if (kind == 'k') return std::abs(df) <= 1 && std::abs(dr) <= 1;
    if (kind == 'p') return std::abs(df) == 1 && dr == (IsWhite(game.Squares[rank][file]) ? 1 : -1);
    if (!((straight && kind != 'b') || (diagonal && kind != 'r'))) return false;
    const int steps = std::max(std::abs(df), std::abs(dr));
    for (int i = 1; i < steps; ++i)
        if (game.Squares[rank + dr / steps * i][file + df / steps * i] != '.') return false;
    return true;
}

/// The move of the one to move, but for what becomes of the king.
bool Goes(const Game& game, int file, int rank, int toFile, int toRank) {
    const char target = game.Squares[toRank][toFile];
    if (target != '.' && IsWhite(target) == game.WhiteToMove) return false;
    const bool captures = Reaches(game, file, rank, toFile, toRank);
    if (Lower(game.Squares[rank][file]) != 'p') return captures;
    if (captures) return target != '.' || (toFile == game.EpFile && rank == (game.WhiteToMove ? 4 : 3));
    const int up = game.WhiteToMove ? 1 : -1;
    if (file != toFile || target != '.') return false;
    return toRank == rank + up ||
           (toRank == rank + 2 * up && rank == (game.WhiteToMove ? 1 : 6) && game.Squares[rank + up][file] == '.');
}

void Castling(const Game& game, std::vector<Move>& moves) {
    const int rank = game.WhiteToMove ? 0 : 7;
    for (const bool kingSide : {true, false}) {
        bool free = game.Castle[(game.WhiteToMove ? 0 : 2) + (kingSide ? 0 : 1)];
        for (int file = kingSide ? 5 : 1; file <= (kingSide ? 6 : 3); ++file)
            free = free && game.Squares[rank][file] == '.';
        for (int file = kingSide ? 4 : 2; file <= (kingSide ? 6 : 4); ++file)
            free = free && !Attacked(game, file, rank, !game.WhiteToMove);
        if (free) moves.push_back({4, rank, kingSide ? 6 : 2, rank, 0});
    }
}

} // namespace

Game Read(const std::string& fen) {
    std::istringstream stream(fen);
    std::string placement, side, castling, enPassant;
    stream >> placement >> side >> castling >> enPassant;
    Game game{};
    std::memset(game.Squares, '.', sizeof game.Squares);
    int next = 56; // the square to fill, a1 = 0
    for (const char c : placement) {
        if (std::isalpha(static_cast<unsigned char>(c)) != 0) game.Squares[next / 8][next % 8] = c;
        next += c == '/' ? -16 : std::isdigit(static_cast<unsigned char>(c)) != 0 ? c - '0' : 1;
    }
    game.WhiteToMove = side == "w";
    for (int i = 0; i < 4; ++i) game.Castle[i] = castling.find("KQkq"[i]) != std::string::npos;
    game.EpFile = enPassant.empty() || enPassant == "-" ? -1 : enPassant[0] - 'a';
    return game;
}

bool Attacked(const Game& game, int file, int rank, bool byWhite) {
    for (int i = 0; i < 64; ++i) {
        const char piece = game.Squares[i / 8][i % 8];
        if (piece != '.' && IsWhite(piece) == byWhite && Reaches(game, i % 8, i / 8, file, rank)) return true;
    }
    return false;
}

bool InCheck(const Game& game, bool white) {
    int king = 0;
    while (king < 63 && game.Squares[king / 8][king % 8] != (white ? 'K' : 'k')) ++king;
    return Attacked(game, king % 8, king / 8, !white);
}

std::vector<Move> LegalMoves(const Game& game) {
    std::vector<Move> moves;
    for (int from = 0; from < 64; ++from) {
        const char piece = game.Squares[from / 8][from % 8];
        if (piece == '.' || IsWhite(piece) != game.WhiteToMove) continue;
        for (int to = 0; to < 64; ++to) {
            if (!Goes(game, from % 8, from / 8, to % 8, to / 8)) continue;
            const bool promotes = Lower(piece) == 'p' && (to / 8 == 0 || to / 8 == 7);
            for (const char promotion : promotes ? std::string("qrbn") : std::string(1, '\0'))
                moves.push_back({from % 8, from / 8, to % 8, to / 8, promotion});
        }
    }
    Castling(game, moves);
    std::erase_if(moves, [&](const Move& move) { return InCheck(Play(game, move), game.WhiteToMove); });
    return moves;
}

Game Play(const Game& game, const Move& move) {
    Game next = game;
    const char piece = game.Squares[move.FromRank][move.FromFile];
    const char kind = Lower(piece);
    next.Squares[move.FromRank][move.FromFile] = '.';
    next.Squares[move.ToRank][move.ToFile] = piece;
    if (move.Promotion != 0)
        next.Squares[move.ToRank][move.ToFile] =
            game.WhiteToMove ? static_cast<char>(std::toupper(move.Promotion)) : move.Promotion;
    if (kind == 'p' && move.FromFile != move.ToFile && game.Squares[move.ToRank][move.ToFile] == '.')
        next.Squares[move.FromRank][move.ToFile] = '.';
    next.EpFile = kind == 'p' && std::abs(move.ToRank - move.FromRank) == 2 ? move.FromFile : -1;
    if (kind == 'k' && move.FromFile == 4 && std::abs(move.ToFile - move.FromFile) == 2) {
        const bool kingSide = move.ToFile == 6;
        std::swap(next.Squares[move.FromRank][kingSide ? 7 : 0], next.Squares[move.FromRank][kingSide ? 5 : 3]);
    }
    const auto touches = [&](int file, int rank) {
        return (move.FromFile == file && move.FromRank == rank) || (move.ToFile == file && move.ToRank == rank);
    };
    for (int i = 0; i < 4; ++i) {
        const int rank = i < 2 ? 0 : 7;
        if (touches(4, rank) || touches(i % 2 == 0 ? 7 : 0, rank)) next.Castle[i] = false;
    }
    next.WhiteToMove = !game.WhiteToMove;
    return next;
}

std::string Name(const Move& move) {
    std::string name = {static_cast<char>('a' + move.FromFile), static_cast<char>('1' + move.FromRank),
                        static_cast<char>('a' + move.ToFile), static_cast<char>('1' + move.ToRank)};
    if (move.Promotion != 0) name += move.Promotion;
    return name;
}

std::uint64_t Perft(const Game& game, int depth) {
    const std::vector<Move> moves = LegalMoves(game);
    if (depth == 1) return moves.size();
    std::uint64_t leaves = 0;
    for (const Move& move : moves) leaves += Perft(Play(game, move), depth - 1);
    return leaves;
}

} // namespace naive
