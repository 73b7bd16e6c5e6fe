// A second set of rules, written as plainly as possible and only for comparison with the engine's.
//
// A letter for each square; moves are tried out and taken back by copying. Shares no code with the engine.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace naive {

struct Game {
    char Squares[8][8]; // [rank][file], FEN letters, '.' for empty
    bool WhiteToMove;
    bool Castle[4]; // K, Q, k, q
    int EpFile;     // of a pawn that has just advanced two squares, or -1
};

struct Move {
    int FromFile, FromRank, ToFile, ToRank;
    char Promotion; // lower case, or 0
};

Game Read(const std::string& fen);
bool Attacked(const Game& game, int file, int rank, bool byWhite);
bool InCheck(const Game& game, bool white);
std::vector<Move> LegalMoves(const Game& game);
Game Play(const Game& game, const Move& move);
/// e2e4, e7e8q; castling as the king's move.
std::string Name(const Move& move);
std::uint64_t Perft(const Game& game, int depth);

} // namespace naive
