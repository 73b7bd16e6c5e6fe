#include "quarnelchess/search/MovePicker.h"

#include "quarnelchess/search/Margins.h"

#include <utility>

namespace quarnel::engine {
namespace {

/// Squares on which a piece of each kind is attacked by a lesser one.
struct Threats {
    Bitboard To[6] = {};
};

Threats FindThreats(const Board& board) {
    const Color them = ~board.SideToMove();
    const Bitboard occupied = board.Occupied();
    const Bitboard pawns = board.Pieces(them, Pawn);
    Bitboard attacked = them == White ? Shift<7>(pawns) | Shift<9>(pawns) : Shift<-7>(pawns) | Shift<-9>(pawns);
    Threats threats;
    threats.To[Knight] = threats.To[Bishop] = attacked;
    for (Bitboard set = board.Pieces(them, Knight); set != 0;) attacked |= KnightAttacks(PopLowest(set));
    for (Bitboard set = board.Pieces(them, Bishop); set != 0;) attacked |= BishopAttacks(PopLowest(set), occupied);
    threats.To[Rook] = attacked;
    for (Bitboard set = board.Pieces(them, Rook); set != 0;) attacked |= RookAttacks(PopLowest(set), occupied);
    threats.To[Queen] = attacked;
    return threats;
}

/// To leave such a square is good, to go there is bad.
int ThreatScore(const Threats& threats, PieceKind kind, Move move) {
    const Bitboard set = threats.To[kind];
    const int worth = kind == Queen ? margins::QueenThreat : kind == Rook ? margins::RookThreat : margins::MinorThreat;
    return ((set & Bit(move.From())) != 0 ? worth : 0) - ((set & Bit(move.To())) != 0 ? worth : 0);
}

} // namespace

MovePicker::MovePicker(const Board& board, History& history, Move tableMove, const Move (&killers)[2],
                       Continuation* const (&answers)[3])
    : board_(board), history_(history), answers_{answers[0], answers[1], answers[2]},
      tableMove_(IsLegal(board, tableMove) ? tableMove : Move{}), killers_{killers[0], killers[1]} {}

MovePicker::MovePicker(const Board& board, History& history, Move tableMove, int threshold)
    : board_(board), history_(history), threshold_(threshold), quiescence_(true) {
    if (IsLegal(board, tableMove) && (board.InCheck() || board.IsNoisy(tableMove))) tableMove_ = tableMove;
}

void MovePicker::ScoreNoisy() {
    for (std::size_t i = current_; i < moves_.Size(); ++i) {
        const Move move = moves_[i];
        const PieceKind captured = board_.CapturedKind(move);
        int score =
            16 * ExchangeValue[captured] + history_.Capture(board_.At(move.From()), move.To(), captured).Value();
        if (move.IsPromotion()) score += move.PromotionKind() == Queen ? 16 * ExchangeValue[Queen] : -100000;
        scores_[i] = score;
    }
}

void MovePicker::ScoreQuiets(std::size_t first) {
    const Threats threats = FindThreats(board_);
    const int weights[3] = {margins::AnswerWeight, margins::FollowWeight, margins::PlanWeight};
    for (std::size_t i = first; i < moves_.Size(); ++i) {
        const Move move = moves_[i];
        const Piece piece = board_.At(move.From());
        int score = margins::QuietWeight * history_.Quiet(board_.SideToMove(), move).Value() +
                    margins::PawnsWeight * history_.AmongPawns(board_, move).Value();
        for (int before = 0; before < 3; ++before)
            if (answers_[before] != nullptr) score += weights[before] * (*answers_[before])[piece][move.To()].Value();
        scores_[i] = score / 16 + ThreatScore(threats, KindOf(piece), move);
    }
}

Move MovePicker::PickBest() {
    std::size_t best = current_;
    for (std::size_t i = current_ + 1; i < moves_.Size(); ++i)
        if (scores_[i] > scores_[best]) best = i;
    std::swap(scores_[best], scores_[current_]);
    std::swap(moves_[best], moves_[current_]);
    return moves_[current_++];
}

Move MovePicker::Next() {
    switch (stage_) {
    case Stage::Table:
        stage_ = quiescence_ && board_.InCheck() ? Stage::StartEvasions : Stage::StartNoisy;
        if (tableMove_) return tableMove_;
        return Next();

    case Stage::StartNoisy:
        GenerateMoves<MoveClass::Noisy>(board_, moves_);
        ScoreNoisy();
        stage_ = Stage::GoodNoisy;
        [[fallthrough]];

    case Stage::GoodNoisy:
        while (current_ < moves_.Size()) {
            const Move move = PickBest();
            if (move == tableMove_) continue;
            if (board_.ExchangeGains(move, threshold_)) return move;
            if (!quiescence_) moves_[badCount_++] = move;
        }
        stage_ = quiescence_ ? Stage::Done : Stage::Killers;
        return Next();

    case Stage::Killers:
        while (!skipQuiets_ && nextKiller_ < 2) {
            const Move killer = killers_[nextKiller_++];
            if (killer && killer != tableMove_ && !board_.IsNoisy(killer) && IsLegal(board_, killer)) return killer;
        }
        stage_ = Stage::StartQuiet;
        [[fallthrough]];

    case Stage::StartQuiet:
        if (!skipQuiets_) {
            moves_.Shrink(badCount_);
            current_ = badCount_;
            GenerateMoves<MoveClass::Quiet>(board_, moves_);
            ScoreQuiets(current_);
        }
        stage_ = Stage::Quiets;
        [[fallthrough]];

    case Stage::Quiets:
        while (!skipQuiets_ && current_ < moves_.Size()) {
            const Move move = PickBest();
            if (move != tableMove_ && !IsKiller(move)) return move;
        }
        stage_ = Stage::BadNoisy;
        [[fallthrough]];

    case Stage::BadNoisy:
        if (nextBad_ < badCount_) return moves_[nextBad_++];
        stage_ = Stage::Done;
        return {};

    case Stage::StartEvasions: {
        GenerateMoves<MoveClass::Noisy>(board_, moves_);
        ScoreNoisy();
        const std::size_t noisy = moves_.Size();
        for (std::size_t i = 0; i < noisy; ++i) scores_[i] += 1 << 20;
        GenerateMoves<MoveClass::Quiet>(board_, moves_);
        ScoreQuiets(noisy);
        stage_ = Stage::Evasions;
        [[fallthrough]];
    }

    case Stage::Evasions:
        while (current_ < moves_.Size()) {
            const Move move = PickBest();
            if (move != tableMove_) return move;
        }
        stage_ = Stage::Done;
        return {};

    case Stage::Done:
        break;
    }
    return {};
}

} // namespace quarnel::engine
