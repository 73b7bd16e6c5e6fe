// The six exported functions: thin doors to the rules over records and to the one Session.
#include "quarnelchess/library/Session.h"
#include "quarnelchess/records/LooseRules.h"
#include "quarnelchess/records/Records.h"
#include "quarnelchess/search/Clock.h"

#include <QuarnelChess.h>

#include <cstring>

using namespace quarnel::engine;

namespace {

// One engine for each process, never destroyed: the process may end while its search runs.
Session* session = nullptr;

} // namespace

void QUARNEL_CALL quarnel_EngineStart(QuarnelInputCallback input, QuarnelOutputCallback output) {
    if (session != nullptr || input == nullptr || output == nullptr) return;
    try {
        static SteadyClock* const clock = new SteadyClock;
        session = new Session(
            *clock, [input](bool mayWait) { input(mayWait ? 1 : 0); }, [output](int length) { output(length); });
        session->Run();
    } catch (...) {
        // Without memory to begin with, the program goes on without an engine.
    }
}

void QUARNEL_CALL quarnel_ReceiveTxt(const char* line) {
    if (session == nullptr || line == nullptr) return;
    try {
        session->Receive(line);
    } catch (...) {
        // Longer than any line of a game, and no memory for it.
    }
}

void QUARNEL_CALL quarnel_GetTxt(char* buffer) {
    if (session == nullptr || buffer == nullptr) return;
    std::memcpy(buffer, session->Text().c_str(), session->Text().size() + 1);
}

void QUARNEL_CALL quarnel_GetMove(const Position* position, uint8_t colour, MoveList* list) {
    ListMoves(*position, colour != 0 ? Black : White, *list);
}

void QUARNEL_CALL quarnel_MakeMove(Position* position, const MoveRec* move) {
    PlayMove(*position, *move);
}

int16_t QUARNEL_CALL quarnel_KingAttacked(const Position* position, int32_t colour) {
    return KingAttacked(*position, colour != 0 ? Black : White) ? -1 : 0;
}
