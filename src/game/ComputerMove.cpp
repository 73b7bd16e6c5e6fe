#include "game/ComputerMove.h"

#include "base/Numbers.h"

namespace quarnel {

void ComputerMove::OutputCallback(std::int32_t length) {
    const Text line = FetchLine(length);
    if (!IsMoveLine(line)) {
        if (Contains(line, u"mate")) AnnounceEnd(line);
        return;
    }
    const auto move = ReadMoveLine(line);
    if (!move) return;
    if (state_.DiscardNextMove != False) {
        DropMove();
        return;
    }
    const int fullMove = state_.PlyNow / 2 + 1;
    if (LeadingNumber(move->Number) != fullMove) return;
    if (!move->Move.empty()) Play(move->Move);
}

Text ComputerMove::FetchLine(std::int32_t length) {
    if (length < 0) return {};
    Text buffer(static_cast<std::size_t>(length) + 1, u' ');
    library_.FetchEngineOutput(buffer);
    return buffer.substr(0, static_cast<std::size_t>(length));
}

void ComputerMove::AnnounceEnd(const Text& line) {
    if (Contains(line, u"stalemate")) {
        messages_.MsgBoxXP(u"Stalemate!");
        control_.SetIdleState();
    }
    if (Contains(line, u"White mates")) ShowCheckmate();
    if (Contains(line, u"Black mates")) ShowCheckmate();
}

void ComputerMove::ShowCheckmate() {
    messages_.MsgBoxXP(u"Checkmate!");
    control_.SetIdleState();
}

// The move of an abandoned search. A user of Black waits for the new game's first move, which has its
// own search, so the controls stay as they are.
void ComputerMove::DropMove() {
    if (state_.ComputerColor == Black) {
        control_.SetIdleState();
    } else {
        state_.StopRequested = False;
    }
    state_.DiscardNextMove = False;
}

void ComputerMove::Play(const Text& token) {
    const Position before = state_.CurPos;
    MoveRec move = reader_.SanToMoveRec(state_.CurPos, token, state_.CurPos.SideToMove);
    recorder_.RecordMove(notation::MoveToLongText(state_.CurPos, move));
    library_.MakeMove(state_.CurPos, move);
    if (state_.ShowLastMove != 0) MarkMove(move);
    animation_.AnimateMove(before, move, True);
    state_.CurPos.SideToMove = Not(state_.CurPos.SideToMove);
    renderer_.RedrawBoard();
    control_.SetIdleState();
}

// Frames both ends of the move, unless the user has a piece selected.
void ComputerMove::MarkMove(const MoveRec& move) {
    state_.LastMoveFile = move.ToFile;
    state_.LastMoveRow = move.ToRow;
    if (move.Castle != NoCastle) {
        state_.LastMoveFile = static_cast<std::uint8_t>(move.Castle == KingSide ? 7 : 3);
        state_.LastMoveRow = move.FromRow;
    }
    const bool selected =
        controller_.SelFile != 0 && PieceAt(state_.CurPos, controller_.SelFile, controller_.SelRow) != NoPiece;
    if (selected) return;
    controller_.SelFile = move.FromFile;
    controller_.SelRow = move.FromRow;
}

} // namespace quarnel
