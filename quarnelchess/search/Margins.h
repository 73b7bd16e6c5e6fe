// The numbers of the search, one line of reason each.
//
// Depths and reductions are plies, values and margins centipawns. A history score is what MovePicker orders quiet moves
// by: the move's own counter, weighed twice, and those of three continuations, about 65,000 to either side.
#pragma once

#include <cstdint>

namespace quarnel::engine::margins {

// --- Stopping and iterations ----------------------------------------------------------------------

constexpr std::uint64_t StopCheckNodes = 512;        // a power of two; the clock is too slow to be asked at every node
constexpr std::uint64_t FirstIterationNodes = 20000; // looked at before a stop, to have a move that was searched
constexpr int OnlyMoveDepth = 4;                     // an only move needs no more thought than an expected answer does
constexpr int AspirationDepth = 5;                   // before, values jump too much between iterations
constexpr int AspirationWindowCp = 14;               // to either side: about what an iteration changes
constexpr int WidestAspirationCp = 600;              // beyond, something happened that no window foresaw
constexpr int MostFailHighReductions = 2;            // a root move that fails high is confirmed a little shallower

// --- Table ----------------------------------------------------------------------------------------

constexpr int TableCutMaxClock = 89; // plies without progress; near a hundred the table does not know of the draw

// --- Cuts without a move --------------------------------------------------------------------------

constexpr int RazorMaxDepth = 3;     // deeper, quiet moves have time to mend what is missing
constexpr int RazorBaseCp = 239;     // so far below, one quiet move will not do
constexpr int RazorPerDepthCp = 187; // and so much further for each ply it could use

constexpr int ReverseFutilityMaxDepth = 8;    // deeper, an advantage can be worked against for too long
constexpr int ReverseFutilityPerDepthCp = 72; // what the opponent may win back in a ply

constexpr int NullMoveMinDepth = 3;          // below, reverse futility asks for hardly more
constexpr int NullMoveEvalBaseCp = 118;      // near the leaves the static value must be above beta itself
constexpr int NullMoveEvalPerDepthCp = 18;   // deep down it may be below, because the search makes up for it
constexpr int NullMoveReduction = 3;         // plies saved at least
constexpr int NullMoveDepthDivisor = 3;      // and one more for every three
constexpr int NullMoveEvalDivisorCp = 173;   // and one more for each such lead,
constexpr int NullMoveMostEvalReduction = 3; // as long as it is no fluke
constexpr int NullMoveVerifyDepth = 14;      // from here on a wrong pass costs more than a second look
constexpr int NullMoveVerifyQuarters = 3;    // of the reduced depth, in quarters: plies that may not pass then

constexpr int CaptureProbeMinDepth = 5;     // so that there is a search left below the probe
constexpr int CaptureProbeMarginCp = 176;   // above beta: what the reduced search may be wrong by
constexpr int CaptureProbeImprovingCp = 48; // less when things are looking up anyway
constexpr int CaptureProbeReduction = 4;    // plies
constexpr int CaptureProbeTrust = 3;        // an entry so many plies shallower is believed when it says no

// --- Depth of the node ----------------------------------------------------------------------------

constexpr int InternalReductionMinDepth = 4; // without a known move a shallower search finds one first

// --- Moves left out -------------------------------------------------------------------------------

constexpr int LateMoveBase = 6; // quiet moves searched at least: this and depth squared; half when not improving

constexpr int FutilityMaxDepth = 8;    // depth after reduction
constexpr int FutilityBaseCp = 51;     // what a quiet move gains at best at once
constexpr int FutilityPerDepthCp = 75; // and in each ply that follows

constexpr int HistoryPruningMaxDepth = 4;     // depth after reduction
constexpr int HistoryPruningBase = -4245;     // history score of moves that have mostly failed,
constexpr int HistoryPruningPerDepth = -5070; // and must have failed more often where more depth is at stake

constexpr int QuietExchangeMaxDepth = 8;      // depth after reduction
constexpr int QuietExchangePerDepth2Cp = -25; // times depth squared: what a quiet move may lose on its square
constexpr int NoisyExchangeMaxDepth = 8;      // depth of the node
constexpr int NoisyExchangePerDepthCp = -93;  // a capture may lose a pawn for each ply left to make up for it

// --- Extensions -----------------------------------------------------------------------------------

constexpr int SingularMinDepth = 7;           // the test costs a search of half the depth
constexpr int SingularTrust = 3;              // plies that the table's entry may be shallower
constexpr int SingularPerDepthCp = 2;         // by how much the others must be worse, for each ply
constexpr int SingularFormerPvPerDepthCp = 3; // and where a principal variation once went through
constexpr int DoubleExtensionCp = 17;         // so much worse again: two plies
constexpr int MostDoubleExtensions = 6;       // on one line, which would not end otherwise
constexpr int CheckExtensionMaxDepth = 11;    // deeper, the search sees the check through by itself
constexpr int ExtensionPlyFactor = 2;         // no extension beyond this many times the iteration's depth

// --- Reductions -----------------------------------------------------------------------------------

constexpr int PlyUnits = 1024;                 // a ply, where its fractions are added up
constexpr int ReductionMinDepth = 2;           // below, there is nothing to save
constexpr double QuietReductionBase = 1.00;    // plies: base + log(depth) * log(number) / divisor
constexpr double QuietReductionDivisor = 1.89; // nearly four plies for the tenth move at depth ten
constexpr double NoisyReductionBase = 0.21;    // captures are fewer and more to the point,
constexpr double NoisyReductionDivisor = 3.62; // and reduced less
constexpr int CutNodeReduction = 1063;         // PlyUnits: where another move is expected to be good enough,
constexpr int WorseningReduction = 1121;       // where the position has become worse,
constexpr int NoisyTableMoveReduction = 1120;  // where a capture is known to be best, quiet moves mean little
constexpr int FormerPvReduction = 870;         // less on what was a principal variation once,
constexpr int CheckReduction = 1204;           // for checks
constexpr int KillerReduction = 1041;          // and for moves that cut next door
constexpr int HistoryReductionDivisor = 10798; // history score worth a ply
constexpr int DeeperAgainCp = 54;              // better than the best by so much: a ply more the second time
constexpr int ShallowerAgainCp = 9;            // hardly better: a ply less

// --- Learning -------------------------------------------------------------------------------------

constexpr int HistoryBonusPerDepth2 = 17; // a cut deep down says more,
constexpr int HistoryBonusPerDepth = 122; // one near the leaves a little,
constexpr int HistoryBonusMost = 1627;    // and no single one decides
constexpr int HistoryMalusPercent = 119;  // of the bonus, for those that were tried in vain before
constexpr int RefutationPercent = 53;     // of the bonus, for the move after which nothing helped

constexpr int QuietWeight = 28;  // in sixteenths: a move's own counter in its history score,
constexpr int PawnsWeight = 16;  // that of the move with such pawns,
constexpr int AnswerWeight = 16; // that of the move as an answer to the opponent's last move,
constexpr int FollowWeight = 16; // as a sequel to the own last one,
constexpr int PlanWeight = 17;   // and to the own one before

constexpr int MinorThreat = 3505; // history score for leaving a square that a lesser piece attacks,
constexpr int RookThreat = 5834;  // and against going there
constexpr int QueenThreat = 8271;

constexpr int CorrectionErrorDivisor = 4; // of an error times the depth at which it was found
constexpr int PawnCorrectionWeight = 62;  // in 1/16384: experience with such pawns,
constexpr int PieceCorrectionWeight = 33; // with such pieces of each side,
constexpr int LineCorrectionWeight = 33;  // and after such moves

// --- Quiescence -----------------------------------------------------------------------------------

constexpr int DeltaCp = 168; // what a capture may bring beside the piece

} // namespace quarnel::engine::margins
