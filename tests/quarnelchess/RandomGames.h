// Positions for tests: random games from a few starting points, the same ones every time.
#pragma once

#include "quarnelchess/board/Fen.h"
#include "quarnelchess/board/MoveGen.h"

#include <functional>
#include <random>
#include <string>

namespace quarnel::engine {

inline const char* const TestPositions[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
    "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1",
    "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8",
    "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10",
    "4k3/1P1P1P1P/8/8/8/8/p1p1p1p1/4K3 b - - 0 1",
};

/// Throws when the text is no position the board can hold.
inline Board BoardOf(const char* fen) {
    return ReadFen(fen).value();
}

inline MoveBuffer MovesOf(const Board& board) {
    MoveBuffer moves;
    GenerateMoves(board, moves);
    return moves;
}

/// Plays `games` random games of at most `plies` plies from every test position and shows each position.
inline void ForRandomPositions(int games, int plies, const std::function<void(const Board&)>& visit) {
    std::mt19937 random(20);
    for (const char* fen : TestPositions) {
        for (int game = 0; game < games; ++game) {
            Board board = BoardOf(fen);
            for (int ply = 0; ply < plies; ++ply) {
                visit(board);
                const MoveBuffer moves = MovesOf(board);
                if (moves.Empty()) break;
                board.Make(moves[random() % moves.Size()]);
            }
        }
    }
}

inline std::string NameOf(Move move) {
    std::string name;
    for (const Square square : {move.From(), move.To()}) {
        name += static_cast<char>('a' + FileOf(square));
        name += static_cast<char>('1' + RankOf(square));
    }
    if (move.IsPromotion()) name += "pnbrq"[move.PromotionKind()];
    return name;
}

} // namespace quarnel::engine
