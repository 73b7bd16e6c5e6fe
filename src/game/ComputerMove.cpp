#include "game/ComputerMove.h"

namespace quarnel {

void ComputerMove::Play(const Text& token) {
    const Position before = state_.CurPos;
    MoveRec move = reader_.SanToMoveRec(state_.CurPos, token, state_.CurPos.SideToMove);
    recorder_.RecordMove(notation::MoveToLongText(state_.CurPos, move));
    rules_.MakeMove(state_.CurPos, move);
    if (state_.ShowLastMove != 0) MarkMove(move);
    animation_.AnimateMove(before, move, True);
    state_.CurPos.SideToMove = Not(state_.CurPos.SideToMove);
    renderer_.RedrawBoard();
}

// Frames both ends of the move, unless the user has a piece selected.
void ComputerMove::MarkMove(const MoveRec& move) {
    state_.LastMoveFile = move.ToFile;
    state_.LastMoveRow = move.ToRow;
    if (move.Castle != NoCastle) {
        state_.LastMoveFile = static_cast<std::uint8_t>(CastleFile(move.Castle));
        state_.LastMoveRow = move.FromRow;
    }
    const bool selected =
        controller_.SelFile != 0 && PieceAt(state_.CurPos, controller_.SelFile, controller_.SelRow) != NoPiece;
    if (selected) return;
    controller_.SelFile = move.FromFile;
    controller_.SelRow = move.FromRow;
}

} // namespace quarnel
