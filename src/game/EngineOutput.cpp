#include "game/EngineOutput.h"

#include "base/Numbers.h"
#include "engine/OutputLine.h"

namespace quarnel {

void EngineOutput::OutputCallback(std::int32_t length) {
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
    if (move->Move.empty()) return;
    computer_.Play(move->Move);
    control_.SetIdleState();
}

Text EngineOutput::FetchLine(std::int32_t length) {
    if (length < 0) return {};
    Text buffer(static_cast<std::size_t>(length) + 1, u' ');
    library_.FetchEngineOutput(buffer);
    return buffer.substr(0, static_cast<std::size_t>(length));
}

void EngineOutput::AnnounceEnd(const Text& line) {
    if (Contains(line, u"stalemate")) {
        messages_.MsgBoxXP(u"Stalemate!");
        control_.SetIdleState();
    }
    if (Contains(line, u"White mates")) ShowCheckmate();
    if (Contains(line, u"Black mates")) ShowCheckmate();
}

void EngineOutput::ShowCheckmate() {
    messages_.MsgBoxXP(u"Checkmate!");
    control_.SetIdleState();
}

// The move of an abandoned search. A user of Black waits for the new game's first move, which has its
// own search, so the controls stay as they are.
void EngineOutput::DropMove() {
    if (state_.ComputerColor == Black) {
        control_.SetIdleState();
    } else {
        state_.StopRequested = False;
    }
    state_.DiscardNextMove = False;
}

} // namespace quarnel
