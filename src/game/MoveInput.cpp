#include "game/MoveInput.h"

#include "notation/MoveTextWriter.h"

#include <cstring>

namespace quarnel {

namespace {

constexpr std::size_t SquareBytes = 4; // FromFile, FromRow, ToFile, ToRow

bool HasRight(std::uint8_t rights, CastleKind kind) {
    return rights == kind || rights == 3;
}

} // namespace

int MoveInput::SelectedPiece() const {
    return PieceAt(state_.CurPos, controller_.SelFile, controller_.SelRow);
}

void MoveInput::CancelPieceSel() {
    controller_.FloatPiece = NoPiece;
    controller_.SelFile = 0;
    controller_.SelRow = 0;
    renderer_.RedrawBoard();
}

void MoveInput::ClickOnBoard(PointerButton button, int shift, float x, float y, BoardAction action) {
    const bool gameOver = !status_.Picture4[0].Visible.Get() && !status_.Picture4[1].Visible.Get();
    if (gameOver || state_.CurPos.SideToMove == state_.ComputerColor) return;
    if (button == PointerButton::Right) {
        CancelPieceSel();
        return;
    }
    const Square square = SquareAtPixel(x, y, state_.BoardFlipped);
    if (IsOffBoard(square.File, square.Row) != False) return;
    const int piece = PieceAt(state_.CurPos, square.File, square.Row);
    if (!MaySelectOrMove(piece, action)) return;
    controller_.PressFile = static_cast<std::int16_t>(square.File);
    controller_.PressRow = static_cast<std::int16_t>(square.Row);

    const bool sameSquare = square == Square{controller_.SelFile, controller_.SelRow};
    const bool target = !sameSquare && (IsWhitePiece(piece) != state_.ComputerColor || action == BoardAction::Drop);
    if (controller_.SelFile == 0 || (piece != NoPiece && !target)) {
        Select(square, piece, button, shift, x, y, action);
        return;
    }
    controller_.FloatPiece = NoPiece;
    MoveRec move = MoveTo(square);
    if (!TakeLegalEntry(move) || state_.MoveBusy != False) return;
    state_.MoveBusy = True;
    ExecuteMove(move, action);
    state_.MoveBusy = False;
}

// The input checks: what is clicked must be a piece of the user's, or a target for one already selected.
bool MoveInput::MaySelectOrMove(int piece, BoardAction action) const {
    const int selected = SelectedPiece();
    const bool hasSelection = controller_.SelFile != 0 && selected != NoPiece;
    if (piece == NoPiece) {
        const bool ready = hasSelection && controller_.SelRow != 0;
        if (!ready || IsBlackPiece(selected) != state_.CurPos.SideToMove) return false;
    }
    if (!hasSelection && IsBlackPiece(piece) == state_.ComputerColor) return false;
    if (controller_.SelFile != 0 && action == BoardAction::Drop) {
        const bool pressedHere =
            controller_.PressFile == controller_.SelFile && controller_.PressRow == controller_.SelRow;
        if (!pressedHere || IsBlackPiece(selected) == state_.ComputerColor) return false;
    }
    return true;
}

void MoveInput::Select(Square square, int piece, PointerButton button, int shift, float x, float y,
                       BoardAction action) {
    controller_.FloatPiece = NoPiece;
    controller_.SelFile = static_cast<std::int16_t>(square.File);
    controller_.SelRow = static_cast<std::int16_t>(square.Row);
    const bool usersTurn = state_.CurPos.SideToMove != state_.ComputerColor;
    if (usersTurn && state_.Thinking == False && action == BoardAction::Press) {
        controller_.FloatPiece = static_cast<std::uint8_t>(piece);
        animation_.MovePiece(button, shift, x, y);
    } else {
        renderer_.RedrawBoard();
    }
    renderer_.RedrawBoard();
}

// The selected piece's move to `square`. A king on its file that goes to the file of a castled king is
// castling while it has the right to; rows do not matter.
MoveRec MoveInput::MoveTo(Square square) const {
    const Position& position = state_.CurPos;
    MoveRec move{};
    move.FromFile = static_cast<std::uint8_t>(controller_.SelFile);
    move.FromRow = static_cast<std::uint8_t>(controller_.SelRow);
    move.ToFile = static_cast<std::uint8_t>(square.File);
    move.ToRow = static_cast<std::uint8_t>(square.Row);

    const bool white = position.SideToMove == White;
    const int king = King + (white ? 0 : BlackOffset);
    const std::uint8_t rights = white ? position.WhiteCastle : position.BlackCastle;
    if (SelectedPiece() == king && controller_.SelFile == 5) {
        if (square.File == CastleFile(KingSide) && HasRight(rights, KingSide)) move.Castle = KingSide;
        if (square.File == CastleFile(QueenSide) && HasRight(rights, QueenSide)) move.Castle = QueenSide;
    }
    return move;
}

// Replaces `move` with the engine's own entry for it; false when it is not legal or the engine thinks.
bool MoveInput::TakeLegalEntry(MoveRec& move) {
    const MoveList list = GenerateMoves(rules_, state_.CurPos, state_.CurPos.SideToMove);
    if (state_.Thinking != False) return false;
    for (int i = 0; i < list.Count; ++i) {
        const MoveRec& entry = list.Moves[i];
        const bool taken =
            move.Castle == NoCastle ? std::memcmp(&entry, &move, SquareBytes) == 0 : entry.Castle == move.Castle;
        if (taken) {
            move = entry;
            return true;
        }
    }
    return false;
}

// The piece chosen in the menu, for a pawn that stands before its last row wherever it goes.
void MoveInput::PromoteAsChosen(MoveRec& move) const {
    const Truth side = state_.CurPos.SideToMove;
    const int chosen = controller_.PromotePiece;
    const int piece = SelectedPiece();
    if (side == White && piece == Pawn && controller_.SelRow == 2) {
        move.Promote = static_cast<std::uint8_t>(chosen);
    }
    if (side == Black && piece == Pawn + BlackOffset && controller_.SelRow == 7) {
        move.Promote = static_cast<std::uint8_t>(chosen + BlackOffset);
    }
}

void MoveInput::ExecuteMove(MoveRec move, BoardAction action) {
    PromoteAsChosen(move);

    const Text longText = notation::MoveToLongText(state_.CurPos, move);
    control_.SendUserMove(notation::LongTextToSan(rules_, state_.CurPos, longText, state_.CurPos.SideToMove));
    recorder_.RecordMove(longText);

    state_.PrevPos = state_.CurPos;
    rules_.MakeMove(state_.CurPos, move);
    // A dragged piece already lies where it was dropped.
    if (action == BoardAction::Press) animation_.AnimateMove(state_.PrevPos, move, False);

    MarkUserMove(move);
    state_.CurPos.SideToMove = Not(state_.CurPos.SideToMove);
    renderer_.RedrawBoard();
}

// The selection stays on the move's origin, so that both ends are marked.
void MoveInput::MarkUserMove(const MoveRec& move) {
    if (state_.ShowLastMove == 0) {
        controller_.SelFile = 0;
        state_.LastMoveFile = 0;
    } else if (move.Castle != NoCastle) {
        state_.LastMoveFile = static_cast<std::uint8_t>(CastleFile(move.Castle));
        state_.LastMoveRow = static_cast<std::uint8_t>(CastleRow(state_.CurPos.SideToMove));
    } else {
        state_.LastMoveFile = move.ToFile;
        state_.LastMoveRow = move.ToRow;
    }
}

} // namespace quarnel
