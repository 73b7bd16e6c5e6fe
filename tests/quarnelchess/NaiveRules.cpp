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
bool Inside(int file, int rank) {
    return file >= 0 && file < 8 && rank >= 0 && rank < 8;
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

void PawnMoves(const Game& game, int file, int rank, std::vector<Move>& moves) {
    const int up = game.WhiteToMove ? 1 : -1;
    const auto add = [&](int toFile, int toRank) {
        if (toRank != 0 && toRank != 7) {
            moves.push_back({file, rank, toFile, toRank, 0});
            return;
        }
        for (const char promotion : std::string("qrbn")) moves.push_back({file, rank, toFile, toRank, promotion});
    };
    if (game.Squares[rank + up][file] == '.') {
        add(file, rank + up);
        if (rank == (game.WhiteToMove ? 1 : 6) && game.Squares[rank + 2 * up][file] == '.') add(file, rank + 2 * up);
    }
    for (const int toFile : {file - 1, file + 1}) {
        if (!Inside(toFile, rank + up)) continue;
        const char target = game.Squares[rank + up][toFile];
        const bool enPassant = target == '.' && toFile == game.EpFile && rank == (game.WhiteToMove ? 4 : 3);
        if (enPassant || (target != '.' && IsWhite(target) != game.WhiteToMove)) add(toFile, rank + up);
    }
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
        if (c == '/') {
            next -= 16;
        } else if (std::isdigit(static_cast<unsigned char>(c)) != 0) {
            next += c - '0';
        } else {
            game.Squares[next / 8][next % 8] = c;
            ++next;
        }
    }
    game.WhiteToMove = side == "w";
    for (int i = 0; i < 4; ++i) game.Castle[i] = castling.find("KQkq"[i]) != std::string::npos;
    game.EpFile = enPassant.empty() || enPassant == "-" ? -1 : enPassant[0] - 'a';
    return game;
}

bool Attacked(const Game& game, int file, int rank, bool byWhite) {
    for (int r = 0; r < 8; ++r)
        for (int f = 0; f < 8; ++f)
            if (game.Squares[r][f] != '.' && IsWhite(game.Squares[r][f]) == byWhite && Reaches(game, f, r, file, rank))
                return true;
    return false;
}

bool InCheck(const Game& game, bool white) {
    for (int r = 0; r < 8; ++r)
        for (int f = 0; f < 8; ++f)
            if (game.Squares[r][f] == (white ? 'K' : 'k')) return Attacked(game, f, r, !white);
    return false;
}

std::vector<Move> LegalMoves(const Game& game) {
    std::vector<Move> moves;
    for (int rank = 0; rank < 8; ++rank) {
        for (int file = 0; file < 8; ++file) {
            const char piece = game.Squares[rank][file];
            if (piece == '.' || IsWhite(piece) != game.WhiteToMove) continue;
            if (Lower(piece) == 'p') {
                PawnMoves(game, file, rank, moves);
                continue;
            }
            for (int r = 0; r < 8; ++r)
                for (int f = 0; f < 8; ++f)
                    if (Reaches(game, file, rank, f, r) &&
                        (game.Squares[r][f] == '.' || IsWhite(game.Squares[r][f]) != game.WhiteToMove))
                        moves.push_back({file, rank, f, r, 0});
        }
    }
    Castling(game, moves);
    std::vector<Move> legal;
    for (const Move& move : moves)
        if (!InCheck(Play(game, move), game.WhiteToMove)) legal.push_back(move);
    return legal;
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
