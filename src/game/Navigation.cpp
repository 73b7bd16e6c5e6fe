#include "game/Navigation.h"

#include "model/History.h"
#include "notation/PositionText.h"

namespace quarnel {

using namespace notation;

void Navigation::MoveTAB(std::int16_t bindex, Truth silent) {
    if (navBusy_ != False) return;
    navBusy_ = True;
    struct Leave {
        Truth& Busy;
        ~Leave() { Busy = False; }
    } const leave{navBusy_};

    if (bindex == MoveNow) control_.StartEngineMove();
    if (bindex == StopThinking) control_.SendForce();
    if (state_.PlyCount == 0) return;
    switch (bindex) {
    case ToStart:
        ShowPly(SkipsStart() ? 1 : 0);
        break;
    case Back:
        if (state_.PlyNow >= 1) ShowPly(state_.PlyNow == 1 && SkipsStart() ? 1 : state_.PlyNow - 1);
        break;
    case Forward:
        if (state_.PlyCount > state_.PlyNow) StepForward(silent);
        break;
    case ToEnd:
        ShowPly(state_.PlyCount - (IsResultText(GetMove(state_, state_.PlyCount)) ? 1 : 0));
        break;
    default:
        break;
    }
}

// A game that begins with Black's move has a placeholder as ply 1 and is never shown before it.
bool Navigation::SkipsStart() const {
    return GetMove(state_, 1) == u"-";
}

// Jumps to `ply`, without marks and without animation.
void Navigation::ShowPly(int ply) {
    state_.PlyNow = static_cast<std::int16_t>(ply);
    state_.CurPos = ReplayToPly(ply, True, False);
    controller_.SelFile = 0;
    controller_.SelRow = 0;
    state_.LastMoveFile = 0;
    renderer_.RedrawBoard();
}

// Slides the next move, but never onto a final result: the position after the last move is the end.
void Navigation::StepForward(Truth silent) {
    ++state_.PlyNow;
    const bool last = state_.PlyNow == state_.PlyCount;
    if (last && silent == False && IsResultText(GetMove(state_, state_.PlyCount))) {
        --state_.PlyNow;
        return;
    }
    state_.PrevPos = state_.CurPos;
    state_.CurPos = ReplayToPly(state_.PlyNow, True, True);
    desktop_.ProcessEvents();
    animation_.AnimateMove(state_.PrevPos, state_.LastMove, False);
    renderer_.RedrawBoard();
}

void Navigation::ShowPlyText(const Text& text) {
    renderer_.ShowMoveText(text.empty() ? u"none" : text);
}

// Plays the recorded `text` on `position` and keeps it in `last`. False for a result token or "-", which
// plays nothing; a text that cannot be read plays nothing either, but is a ply.
bool Navigation::ReplayText(Position& position, const Text& text, MoveRec& last) {
    const Text longText = reader_.SanToLongText(position, text, position.SideToMove);
    if (reader_.MoveTextError != 0) return true;
    if (IsResultText(longText)) return false;
    last = LongTextToMove(position, longText);
    rules_.MakeMove(position, last);
    return true;
}

Position Navigation::ReplayToPly(int ply, Truth resync, Truth incremental) {
    Position position{};
    MoveRec last{};
    if (incremental != False) {
        position = state_.CurPos;
        const Text text = GetMove(state_, ply);
        ShowPlyText(text);
        // A placeholder passes no turn here, though it does in a full replay.
        if (ReplayText(position, text, last)) position.SideToMove = Not(position.SideToMove);
    } else {
        FenToPosition(state_.GameStartFen, position);
        position.SideToMove = White;
        for (int i = 1; i <= ply; ++i) {
            ReplayText(position, GetMove(state_, i), last);
            position.SideToMove = Not(position.SideToMove);
        }
        ShowPlyText(ply > 0 ? GetMove(state_, ply) : Text());
    }
    state_.LastMove = last;
    if (resync != False) control_.MarkResync();
    return position;
}

} // namespace quarnel
