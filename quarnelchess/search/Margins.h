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
constexpr int AspirationWindowCp = 12;               // to either side: about what an iteration changes
constexpr int WidestAspirationCp = 600;              // beyond, something happened that no window foresaw
constexpr int MostFailHighReductions = 2;            // a root move that fails high is confirmed a little shallower

// --- Table ----------------------------------------------------------------------------------------

constexpr int TableCutMaxClock = 89; // plies without progress; near a hundred the table does not know of the draw
constexpr int FadeClock = 256;       // plies without progress at which an advantage would be worth nothing

// --- Cuts without a move --------------------------------------------------------------------------

constexpr int RazorMaxDepth = 3;     // deeper, quiet moves have time to mend what is missing
constexpr int RazorBaseCp = 258;     // so far below, one quiet move will not do
constexpr int RazorPerDepthCp = 211; // and so much further for each ply it could use

constexpr int ReverseFutilityMaxDepth = 9;    // deeper, an advantage can be worked against for too long
constexpr int ReverseFutilityPerDepthCp = 58; // what the opponent may win back in a ply

constexpr int NullMoveMinDepth = 3;          // below, reverse futility asks for hardly more
constexpr int NullMoveEvalBaseCp = 100;      // near the leaves the static value must be above beta itself
constexpr int NullMoveEvalPerDepthCp = 14;   // deep down it may be below, because the search makes up for it
constexpr int NullMoveReduction = 3;         // plies saved at least
constexpr int NullMoveDepthDivisor = 3;      // and one more for every three
constexpr int NullMoveEvalDivisorCp = 152;   // and one more for each such lead,
constexpr int NullMoveMostEvalReduction = 3; // as long as it is no fluke
constexpr int NullMoveVerifyDepth = 14;      // from here on a wrong pass costs more than a second look
constexpr int NullMoveVerifyQuarters = 3;    // of the reduced depth, in quarters: plies that may not pass then

constexpr int CaptureProbeMinDepth = 5;     // so that there is a search left below the probe
constexpr int CaptureProbeMarginCp = 197;   // above beta: what the reduced search may be wrong by
constexpr int CaptureProbeImprovingCp = 55; // less when things are looking up anyway
constexpr int CaptureProbeReduction = 4;    // plies
constexpr int CaptureProbeTrust = 3;        // an entry so many plies shallower is believed when it says no

// --- Depth of the node ----------------------------------------------------------------------------

constexpr int InternalReductionMinDepth = 4; // without a known move a shallower search finds one first
constexpr int HindsightDeeperPlies = 3;      // reduced by so many, though the opponent did not gain by it: a ply back
constexpr int HindsightShallowerPlies = 2;   // reduced by so many and
constexpr int HindsightShallowerCp = 178;    // the opponent lost so much by his move: a ply less still

// --- Moves left out -------------------------------------------------------------------------------

constexpr int LateMoveBase = 6; // quiet moves searched at least: this and depth squared; half when not improving

constexpr int FutilityMaxDepth = 8;    // depth after reduction
constexpr int FutilityBaseCp = 21;     // what a quiet move gains at best at once
constexpr int FutilityPerDepthCp = 80; // and in each ply that follows

constexpr int HistoryPruningMaxDepth = 4;     // depth after reduction
constexpr int HistoryPruningBase = -4385;     // history score of moves that have mostly failed,
constexpr int HistoryPruningPerDepth = -5451; // and must have failed more often where more depth is at stake

constexpr int QuietExchangeMaxDepth = 8;      // depth after reduction
constexpr int QuietExchangePerDepth2Cp = -24; // times depth squared: what a quiet move may lose on its square
constexpr int NoisyFutilityMaxDepth = 7;      // depth of the node
constexpr int NoisyFutilityBaseCp = 189;      // what a capture gains beside the piece
constexpr int NoisyFutilityPerDepthCp = 160;  // and in each ply that follows
constexpr int NoisyExchangeMaxDepth = 8;      // depth of the node
constexpr int NoisyExchangePerDepthCp = -92;  // a capture may lose a pawn for each ply left to make up for it

// --- Extensions -----------------------------------------------------------------------------------

constexpr int SingularMinDepth = 7;           // the test costs a search of half the depth
constexpr int SingularTrust = 3;              // plies that the table's entry may be shallower
constexpr int SingularPerDepthCp = 2;         // by how much the others must be worse, for each ply
constexpr int SingularFormerPvPerDepthCp = 3; // and where a principal variation once went through
constexpr int DoubleExtensionCp = 19;         // so much worse again: two plies
constexpr int MostDoubleExtensions = 6;       // on one line, which would not end otherwise
constexpr int CheckExtensionMaxDepth = 13;    // deeper, the search sees the check through by itself
constexpr int ExtensionPlyFactor = 2;         // no extension beyond this many times the iteration's depth

// --- Reductions -----------------------------------------------------------------------------------

constexpr int PlyUnits = 1024;                      // a ply, where its fractions are added up
constexpr int ReductionMinDepth = 2;                // below, there is nothing to save
constexpr double QuietReductionBase = 0.98;         // plies: base + log(depth) * log(number) / divisor
constexpr double QuietReductionDivisor = 1.92;      // nearly four plies for the tenth move at depth ten
constexpr double NoisyReductionBase = 0.24;         // captures are fewer and more to the point,
constexpr double NoisyReductionDivisor = 3.47;      // and reduced less
constexpr int CutNodeReduction = 1031;              // PlyUnits: where another move is expected to be good enough,
constexpr int WorseningReduction = 889;             // where the position has become worse,
constexpr int NoisyTableMoveReduction = 1125;       // where a capture is known to be best, quiet moves mean little
constexpr int FormerPvReduction = 911;              // less on what was a principal variation once,
constexpr int CheckReduction = 1219;                // for checks
constexpr int KillerReduction = 1168;               // and for moves that cut next door
constexpr int UnknownCutReduction = 791;            // more where the move that cuts is not known,
constexpr int OftenCutReduction = 620;              // or where the opponent's replies keep cutting,
constexpr int OftenCutCount = 4;                    // so often,
constexpr int PvReduction = 248;                    // less on the principal variation itself
constexpr int HistoryReductionDivisor = 10413;      // history score worth a ply
constexpr int NoisyHistoryReductionDivisor = 10282; // the same of a capture's own counter
constexpr int RaisedReduction = 1;                  // plies less for the rest once a move is better than hoped,
constexpr int RaisedMaxDepth = 12;                  // as long as the rest is not the larger part
constexpr int DeeperAgainCp = 60;                   // better than the best by so much: a ply more the second time
constexpr int ShallowerAgainCp = 8;                 // hardly better: a ply less

// --- Learning -------------------------------------------------------------------------------------

constexpr int HistoryBonusPerDepth2 = 17; // a cut deep down says more,
constexpr int HistoryBonusPerDepth = 161; // one near the leaves a little,
constexpr int HistoryBonusMost = 1604;    // and no single one decides
constexpr int HistoryMalusPercent = 124;  // of the bonus, for those that were tried in vain before
constexpr int RefutationPercent = 59;     // of the bonus, for the move after which nothing helped
constexpr int TableCutPercent = 43;       // of the bonus, for a move that the table lets cut off
constexpr int SecondLookPercent = 54;     // of the bonus, for a late move looked at a second time
constexpr int GainBonusPerCp = 6;         // for each centipawn that a quiet move gains at once by the static value,
constexpr int GainBonusMost = 843;        // at most

constexpr int QuietWeight = 19;  // in sixteenths: a move's own counter in its history score,
constexpr int PawnsWeight = 11;  // that of the move with such pawns,
constexpr int AnswerWeight = 17; // that of the move as an answer to the opponent's last move,
constexpr int FollowWeight = 16; // as a sequel to the own last one,
constexpr int PlanWeight = 13;   // and to the own one before

constexpr int MinorThreat = 3983; // history score for leaving a square that a lesser piece attacks,
constexpr int RookThreat = 5945;  // and against going there
constexpr int QueenThreat = 9029;

constexpr int CorrectionErrorDivisor = 3; // of an error times the depth at which it was found
constexpr int PawnCorrectionWeight = 62;  // in 1/16384: experience with such pawns,
constexpr int PieceCorrectionWeight = 32; // with such pieces of each side,
constexpr int LineCorrectionWeight = 29;  // and after such moves

// --- Quiescence -----------------------------------------------------------------------------------

constexpr int DeltaCp = 167;     // what a capture may bring beside the piece
constexpr int EvenTradeCp = 114; // what a trade of equal pieces may bring
constexpr int LeafMostMoves = 4; // captures looked at before only a recapture is

} // namespace quarnel::engine::margins
