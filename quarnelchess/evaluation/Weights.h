// Every weight of the evaluation, in one table that a tuner can write.
//
// Weights.inc holds one line for each index of this file: a middlegame and an endgame value in
// centipawns, from the owner's view. The evaluation is linear in them: it adds up weights times counts,
// blends the two halves by the material left and scales the endgame half (see EvaluationTrace).
#pragma once

#include "quarnelchess/board/Types.h"

namespace quarnel::engine {

/// First index of each group and, by the next one, its size.
enum WeightIndex : int {
    MaterialWeight = 0,                               // pawn, knight, bishop, rook, queen
    SquareWeight = MaterialWeight + 5,                // [kind 6][rank 8][file 4]: files mirrored, a = h
    MobilityWeight = SquareWeight + 6 * 32,           // knight 9, bishop 14, rook 15, queen 28 counts
    PawnIsolated = MobilityWeight + 9 + 14 + 15 + 28, // on a half-open file, else
    PawnDoubled = PawnIsolated + 2,
    PawnBackward = PawnDoubled + 1,      // on a half-open file, else
    PawnPhalanx = PawnBackward + 2,      // [rank 8]: a neighbour beside it
    PawnSupported = PawnPhalanx + 8,     // [rank 8]: a neighbour guards it
    PassedRank = PawnSupported + 8,      // [rank 8]
    PassedFree = PassedRank + 8,         // [rank 8]: the square ahead is empty
    PassedSafe = PassedFree + 8,         // [rank 8]: and no square ahead is attacked
    PassedOwnKing = PassedSafe + 8,      // [distance 8] of the own king to the square ahead, ranks 4 up
    PassedEnemyKing = PassedOwnKing + 8, // [distance 8] of the enemy king
    BishopPair = PassedEnemyKing + 8,
    BishopOwnPawns = BishopPair + 1, // each pawn on squares of its colour
    OutpostKnight = BishopOwnPawns + 1,
    OutpostBishop = OutpostKnight + 1,
    MinorBehindPawn = OutpostBishop + 1,
    RookOpenFile = MinorBehindPawn + 1,
    RookHalfOpenFile = RookOpenFile + 1,
    RookBehindPasser = RookHalfOpenFile + 1,
    ThreatByPawn = RookBehindPasser + 1, // [victim kind 6]
    ThreatByMinor = ThreatByPawn + 6,    // [victim kind 6]
    ThreatByRook = ThreatByMinor + 6,    // [victim kind 6]
    ThreatByKing = ThreatByRook + 6,
    ThreatByPush = ThreatByKing + 1,     // a safe pawn push would attack a piece
    HangingPiece = ThreatByPush + 1,     // attacked and unguarded
    KingShelter = HangingPiece + 1,      // [rank 8] of the own pawn on each of three files, 0 for none
    KingStorm = KingShelter + 8,         // [rank 8] of the enemy pawn there, as the king sees it
    KingOpenFile = KingStorm + 8,        // each of the three files without pawns
    KingRingAttack = KingOpenFile + 1,   // [knight, bishop, rook, queen]: each square hit next to the enemy king
    KingAttackers = KingRingAttack + 4,  // [count 8] of pieces that do so
    KingSafeCheck = KingAttackers + 8,   // [knight, bishop, rook, queen]: a safe check is possible
    KingWeakSquares = KingSafeCheck + 4, // each square beside the king attacked and guarded by it alone
    SpaceWeight = KingWeakSquares + 1,   // each safe square on the inner files behind the pawns
    TempoWeight = SpaceWeight + 1,
    WeightCount = TempoWeight + 1
};

inline constexpr Score Weights[WeightCount] = {
#include "quarnelchess/evaluation/Weights.inc"
};

/// Where a piece stands in the square tables: rank by rank from its owner's side, files mirrored.
constexpr int SquareWeightIndex(Color color, PieceKind kind, Square square) {
    const int file = FileOf(square) < 4 ? FileOf(square) : 7 - FileOf(square);
    return SquareWeight + kind * 32 + RelativeRank(color, square) * 4 + file;
}

} // namespace quarnel::engine
