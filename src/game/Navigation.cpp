#include "game/CtrlPanel.h"

#include "model/History.h"
#include "notation/PositionText.h"

namespace quarnel {

using namespace notation;

void CtrlPanel::MoveTAB(std::int16_t bindex, Truth silent) {
    if (navBusy_ != False) return;
    navBusy_ = True;
    struct Leave {
        Truth& Busy;
        ~Leave() { Busy = False; }
    } const leave{navBusy_};

    GameState& state = p_.State;
    if (bindex == MoveNow) p_.Control.StartEngineMove();
    if (bindex == StopThinking) p_.Control.SendForce();
    if (state.PlyCount == 0) return;
    switch (bindex) {
    case ToStart:
        ShowPly(SkipsStart() ? 1 : 0);
        break;
    case Back:
        if (state.PlyNow >= 1) ShowPly(state.PlyNow == 1 && SkipsStart() ? 1 : state.PlyNow - 1);
        break;
    case Forward:
        if (state.PlyCount > state.PlyNow) StepForward(silent);
        break;
    case ToEnd:
        ShowPly(state.PlyCount - (IsResultText(GetMove(state, state.PlyCount)) ? 1 : 0));
        break;
    default:
        break;
    }
}

// A game that begins with Black's move has a placeholder as ply 1 and is never shown before it.
bool CtrlPanel::SkipsStart() const {
    return GetMove(p_.State, 1) == u"-";
}

// Jumps to `ply`, without marks and without animation.
void CtrlPanel::ShowPly(int ply) {
    p_.State.PlyNow = static_cast<std::int16_t>(ply);
    p_.State.CurPos = ReplayToPly(ply, True, False);
    p_.Controller.SelFile = 0;
    p_.Controller.SelRow = 0;
    p_.State.LastMoveFile = 0;
    p_.Renderer.RedrawBoard();
}

// Slides the next move, but never onto a final result: the position after the last move is the end.
void CtrlPanel::StepForward(Truth silent) {
    GameState& state = p_.State;
    ++state.PlyNow;
    const bool last = state.PlyNow == state.PlyCount;
    if (last && silent == False && IsResultText(GetMove(state, state.PlyCount))) {
        --state.PlyNow;
        return;
    }
    state.PrevPos = state.CurPos;
    state.CurPos = ReplayToPly(state.PlyNow, True, True);
    p_.Screen.ProcessEvents();
    p_.Animation.AnimateMove(state.PrevPos, state.LastMove, False);
    p_.Renderer.RedrawBoard();
}

void CtrlPanel::ShowPlyText(const Text& text) {
    p_.Renderer.ShowMoveText(text.empty() ? u"none" : text);
}

// Plays the recorded `text` on `position` and keeps it in `last`. False for a result token or "-", which
// plays nothing; a text that cannot be read plays nothing either, but is a ply.
bool CtrlPanel::ReplayText(Position& position, const Text& text, MoveRec& last) {
    const Text longText = p_.Reader.SanToLongText(position, text, position.SideToMove);
    if (p_.Reader.MoveTextError != 0) return true;
    if (IsResultText(longText)) return false;
    last = LongTextToMove(position, longText);
    p_.Library.MakeMove(position, last);
    return true;
}

Position CtrlPanel::ReplayToPly(int ply, Truth resync, Truth incremental) {
    GameState& state = p_.State;
    Position position{};
    MoveRec last{};
    if (incremental != False) {
        position = state.CurPos;
        const Text text = GetMove(state, ply);
        ShowPlyText(text);
        // A placeholder passes no turn here, though it does in a full replay.
        if (ReplayText(position, text, last)) position.SideToMove = Not(position.SideToMove);
    } else {
        FenToPosition(state.GameStartFen, position);
        position.SideToMove = White;
        for (int i = 1; i <= ply; ++i) {
            ReplayText(position, GetMove(state, i), last);
            position.SideToMove = Not(position.SideToMove);
        }
        ShowPlyText(GetMove(state, ply));
    }
    state.LastMove = last;
    if (resync != False) p_.Control.MarkResync();
    return position;
}

} // namespace quarnel
