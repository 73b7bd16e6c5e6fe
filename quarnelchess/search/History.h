// What a search thread remembers about moves and positions, to try the promising moves first and to
// correct the evaluation where it keeps being wrong.
#pragma once

#include "quarnelchess/board/Board.h"
#include "quarnelchess/search/Margins.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <memory>

namespace quarnel::engine {

/// A bounded counter: bonuses shrink as it nears the limit, so old news fades.
template <int Limit>
class HistoryCounter {
  public:
    void Add(int bonus) {
        const int clamped = std::clamp(bonus, -Limit, Limit);
        value_ = static_cast<std::int16_t>(value_ + clamped - value_ * std::abs(clamped) / Limit);
    }
    int Value() const { return value_; }

  private:
    std::int16_t value_ = 0;
};

/// How well a piece's move to a square did as an answer to one particular earlier move.
using Continuation = HistoryCounter<16384>[16][64];

class History {
  public:
    History() : tables_(std::make_unique<Tables>()) {}
    void Clear() { std::construct_at(tables_.get()); }

    auto& Quiet(Color side, Move move) { return tables_->Quiet[side][move.From()][move.To()]; }
    /// How well a piece's move to a square did where the pawns stood like this.
    auto& AmongPawns(const Board& board, Move move) {
        return tables_->AmongPawns[board.PawnKey() & (PawnSlots - 1)][board.At(move.From())][move.To()];
    }
    auto& Capture(Piece piece, Square to, PieceKind captured) { return tables_->Capture[piece][to][captured]; }
    /// The table of answers to `piece` arriving on `to`.
    Continuation& After(Piece piece, Square to) { return tables_->After[piece][to]; }
    /// Answers to nothing: the start of the line, or a passed turn.
    Continuation& AfterNothing() { return tables_->After[NoPiece][0]; }

    /// What the evaluation of such positions has been wrong by, in centipawns.
    /// `line` tells the last moves from others.
    int Correction(const Board& board, std::uint32_t line) const {
        const Tables& t = *tables_;
        const Color side = board.SideToMove();
        const int pieces = t.PieceCorrection[side][White][Slot(board.PieceKey(White))].Value() +
                           t.PieceCorrection[side][Black][Slot(board.PieceKey(Black))].Value();
        const int sum = margins::PawnCorrectionWeight * t.PawnCorrection[side][Slot(board.PawnKey())].Value() +
                        margins::PieceCorrectionWeight * pieces +
                        margins::LineCorrectionWeight * t.LineCorrection[side][line & (CorrectionSlots - 1)].Value();
        return sum / 16384;
    }
    /// A search of `depth` found the corrected evaluation wrong by `errorCp`.
    void Correct(const Board& board, std::uint32_t line, int depth, int errorCp) {
        const int bonus =
            std::clamp(errorCp * depth / margins::CorrectionErrorDivisor, -CorrectionLimit / 4, CorrectionLimit / 4);
        const Color side = board.SideToMove();
        tables_->PawnCorrection[side][Slot(board.PawnKey())].Add(bonus);
        tables_->LineCorrection[side][line & (CorrectionSlots - 1)].Add(bonus);
        for (const Color color : {White, Black})
            tables_->PieceCorrection[side][color][Slot(board.PieceKey(color))].Add(bonus);
    }

  private:
    static constexpr std::size_t PawnSlots = 512;
    static constexpr int CorrectionLimit = 8192;
    static constexpr std::size_t CorrectionSlots = 1 << 14;
    static std::size_t Slot(Key key) { return key & (CorrectionSlots - 1); }

    struct Tables {
        HistoryCounter<8192> Quiet[2][64][64];   // side, from, to
        HistoryCounter<8192> Capture[16][64][7]; // piece, to, captured kind
        Continuation After[16][64];
        HistoryCounter<8192> AmongPawns[PawnSlots][16][64];
        HistoryCounter<CorrectionLimit> LineCorrection[2][CorrectionSlots];
        HistoryCounter<CorrectionLimit> PawnCorrection[2][CorrectionSlots];
        HistoryCounter<CorrectionLimit> PieceCorrection[2][2][CorrectionSlots];
    };
    std::unique_ptr<Tables> tables_;
};

} // namespace quarnel::engine
