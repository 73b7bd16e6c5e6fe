#include "engine/EngineControl.h"

#include "notation/PositionText.h"

namespace quarnel {

void EngineControl::StartEngineMove() {
    if (GenerateMoves(rules_, state_.CurPos, state_.CurPos.SideToMove).Count == 0) return;
    controls_.DisableMoveControls();
    SendPositionIfStale();
    settings_.UpdateClock();
    commands_.SendCommand(u"go");
    SetThinkingState();
}

void EngineControl::SendUserMove(TextView san) {
    settings_.UpdateClock();
    SendPositionIfStale();
    commands_.SendCommand(san);
    SetThinkingState();
}

void EngineControl::SendNewGame() {
    AbandonSearch();
    commands_.SendCommand(u"new");
    settings_.SetSavedLevel();
}

void EngineControl::SendForce() {
    if (state_.Thinking == False || state_.StopRequested != False) return;
    controls_.DisableStop();
    state_.StopRequested = True;
    commands_.SendCommand(u"force");
}

void EngineControl::MarkResync() {
    AbandonSearch();
    state_.ResyncEngine = True;
}

void EngineControl::SendPosition(const Position& position) {
    AbandonSearch();
    commands_.SendCommand(u"setboard " + notation::PositionToFen(position));
    commands_.SendCommand(position.SideToMove != White ? u"black" : u"white");
    commands_.SendCommand(u"movenumber " + ToText(state_.PlyNow));
}

void EngineControl::SendPositionIfStale() {
    if (state_.ResyncEngine == False) return;
    state_.ResyncEngine = False;
    SendPosition(state_.CurPos);
}

void EngineControl::SetThinkingState() {
    controls_.ShowThinking();
    state_.Thinking = True;
}

void EngineControl::SetIdleState() {
    controls_.ShowIdle();
    state_.Thinking = False;
    state_.StopRequested = False;
    if (settings_.PonderPending != False) settings_.SetCurrentPonderState();
}

void EngineControl::AbandonSearch() {
    if (state_.Thinking == False) return;
    state_.DiscardNextMove = True;
    SendForce();
}

} // namespace quarnel
