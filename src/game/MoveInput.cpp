#include "game/CtrlPanel.h"

#include "notation/MoveTextWriter.h"

#include <cstring>

namespace quarnel {

namespace {

constexpr std::size_t SquareBytes = 4; // FromFile, FromRow, ToFile, ToRow

bool HasRight(std::uint8_t rights, CastleKind kind) {
    return rights == kind || rights == 3;
}

} // namespace

int CtrlPanel::SelectedPiece() const {
    return PieceAt(p_.State.CurPos, p_.Controller.SelFile, p_.Controller.SelRow);
}

void CtrlPanel::CancelPieceSel() {
    p_.Controller.FloatPiece = NoPiece;
    p_.Controller.SelFile = 0;
    p_.Controller.SelRow = 0;
    p_.Renderer.RedrawBoard();
}

void CtrlPanel::ClickOnBoard(PointerButton button, int shift, float x, float y, BoardAction action) {
    GameState& state = p_.State;
    ControllerState& controller = p_.Controller;
    const bool gameOver = !p_.Status.Picture4[0].Visible.Get() && !p_.Status.Picture4[1].Visible.Get();
    if (gameOver || state.CurPos.SideToMove == state.ComputerColor) return;
    if (button == PointerButton::Right) {
        CancelPieceSel();
        return;
    }
    const Square square = SquareAtPixel(x, y, state.BoardFlipped);
    if (IsOffBoard(square.File, square.Row) != False) return;
    const int piece = PieceAt(state.CurPos, square.File, square.Row);
    if (!MaySelectOrMove(piece, action)) return;
    controller.PressFile = static_cast<std::int16_t>(square.File);
    controller.PressRow = static_cast<std::int16_t>(square.Row);

    const bool sameSquare = square == Square{controller.SelFile, controller.SelRow};
    const bool target = !sameSquare && (IsWhitePiece(piece) != state.ComputerColor || action == BoardAction::Drop);
    if (controller.SelFile == 0 || (piece != NoPiece && !target)) {
        Select(square, piece, button, shift, x, y, action);
        return;
    }
    controller.FloatPiece = NoPiece;
    MoveRec move = MoveTo(square);
    if (!TakeLegalEntry(move) || state.MoveBusy != False) return;
    state.MoveBusy = True;
    ExecuteMove(move, action);
    state.MoveBusy = False;
}

// The input checks: what is clicked must be a piece of the user's, or a target for one already selected.
bool CtrlPanel::MaySelectOrMove(int piece, BoardAction action) const {
    const GameState& state = p_.State;
    const ControllerState& controller = p_.Controller;
    const int selected = SelectedPiece();
    const bool hasSelection = controller.SelFile != 0 && selected != NoPiece;
    if (piece == NoPiece) {
        const bool ready = hasSelection && controller.SelRow != 0;
        if (!ready || IsBlackPiece(selected) != state.CurPos.SideToMove) return false;
    }
    if (!hasSelection && IsBlackPiece(piece) == state.ComputerColor) return false;
    if (controller.SelFile != 0 && action == BoardAction::Drop) {
        const bool pressedHere = controller.PressFile == controller.SelFile && controller.PressRow == controller.SelRow;
        if (!pressedHere || IsBlackPiece(selected) == state.ComputerColor) return false;
    }
    return true;
}

void CtrlPanel::Select(Square square, int piece, PointerButton button, int shift, float x, float y,
                       BoardAction action) {
    ControllerState& controller = p_.Controller;
    controller.FloatPiece = NoPiece;
    controller.SelFile = static_cast<std::int16_t>(square.File);
    controller.SelRow = static_cast<std::int16_t>(square.Row);
    const bool usersTurn = p_.State.CurPos.SideToMove != p_.State.ComputerColor;
    if (usersTurn && p_.State.Thinking == False && action == BoardAction::Press) {
        controller.FloatPiece = static_cast<std::uint8_t>(piece);
        p_.Animation.MovePiece(button, shift, x, y);
    } else {
        p_.Renderer.RedrawBoard();
    }
    p_.Renderer.RedrawBoard();
}

// The selected piece's move to `square`. A king on its file that goes to the file of a castled king is
// castling while it has the right to; rows do not matter.
MoveRec CtrlPanel::MoveTo(Square square) const {
    const Position& position = p_.State.CurPos;
    MoveRec move{};
    move.FromFile = static_cast<std::uint8_t>(p_.Controller.SelFile);
    move.FromRow = static_cast<std::uint8_t>(p_.Controller.SelRow);
    move.ToFile = static_cast<std::uint8_t>(square.File);
    move.ToRow = static_cast<std::uint8_t>(square.Row);

    const bool white = position.SideToMove == White;
    const int king = King + (white ? 0 : BlackOffset);
    const std::uint8_t rights = white ? position.WhiteCastle : position.BlackCastle;
    if (SelectedPiece() == king && p_.Controller.SelFile == 5) {
        if (square.File == CastleFile(KingSide) && HasRight(rights, KingSide)) move.Castle = KingSide;
        if (square.File == CastleFile(QueenSide) && HasRight(rights, QueenSide)) move.Castle = QueenSide;
    }
    return move;
}

// Replaces `move` with the engine's own entry for it; false when it is not legal or the engine thinks.
bool CtrlPanel::TakeLegalEntry(MoveRec& move) {
    const MoveList list = GenerateMoves(p_.Library, p_.State.CurPos, p_.State.CurPos.SideToMove);
    if (p_.State.Thinking != False) return false;
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
void CtrlPanel::PromoteAsChosen(MoveRec& move) const {
    const Truth side = p_.State.CurPos.SideToMove;
    const int chosen = p_.Controller.PromotePiece;
    const int piece = SelectedPiece();
    if (side == White && piece == Pawn && p_.Controller.SelRow == 2) {
        move.Promote = static_cast<std::uint8_t>(chosen);
    }
    if (side == Black && piece == Pawn + BlackOffset && p_.Controller.SelRow == 7) {
        move.Promote = static_cast<std::uint8_t>(chosen + BlackOffset);
    }
}

void CtrlPanel::ExecuteMove(MoveRec move, BoardAction action) {
    GameState& state = p_.State;
    PromoteAsChosen(move);

    const Text longText = notation::MoveToLongText(state.CurPos, move);
    p_.Settings.UpdateClock();
    p_.Control.SendPositionIfStale();
    const Truth side = state.CurPos.SideToMove;
    p_.Commands.SendCommand(notation::LongTextToSan(p_.Library, state.CurPos, longText, side));
    p_.Control.SetThinkingState();

    p_.Recorder.RecordMove(longText);

    state.PrevPos = state.CurPos;
    p_.Library.MakeMove(state.CurPos, move);
    // A dragged piece already lies where it was dropped.
    if (action == BoardAction::Press) p_.Animation.AnimateMove(state.PrevPos, move, False);

    MarkUserMove(move);
    state.CurPos.SideToMove = Not(state.CurPos.SideToMove);
    p_.Renderer.RedrawBoard();
}

// The selection stays on the move's origin, so that both ends are marked.
void CtrlPanel::MarkUserMove(const MoveRec& move) {
    GameState& state = p_.State;
    if (state.ShowLastMove == 0) {
        p_.Controller.SelFile = 0;
        state.LastMoveFile = 0;
    } else if (move.Castle != NoCastle) {
        state.LastMoveFile = static_cast<std::uint8_t>(CastleFile(move.Castle));
        state.LastMoveRow = static_cast<std::uint8_t>(CastleRow(state.CurPos.SideToMove));
    } else {
        state.LastMoveFile = move.ToFile;
        state.LastMoveRow = move.ToRow;
    }
}

} // namespace quarnel
