// How the program and the engine library reach each other.
#include "support/ProgramFixture.h"

#include <cstring>

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using EngineBridgeTest = ProgramTest;

TEST_F(EngineBridgeTest, SleepsOnlyWhenTheEngineAllowsItAndTheProgramIsIdle) {
    const struct {
        int Wait;
        bool EventWaits, Idle;
        std::vector<std::string> Log;
    } cases[] = {{0, false, true, {"peek"}},
                 {0x10000, false, true, {"peek"}}, // only the low 16 bits count
                 {0, true, true, {"peek", "process"}},
                 {1, false, true, {"peek", "wait", "process"}},
                 {-1, false, true, {"peek", "wait", "process"}},
                 {1, true, true, {"peek", "process"}},
                 {1, false, false, {"peek"}},
                 {1, true, false, {"peek", "process"}}};
    Play([&] {
        Screen.LogEvents = true;
        for (const auto& [wait, eventWaits, idle, log] : cases) {
            Game->Board.Moves.SubMovesMenu[MoveNowItem].Enabled = idle;
            if (eventWaits) Screen.Click(Game->Settings.cs[0]);
            Screen.Script = {[this] { Screen.Click(Game->Settings.cs[0]); }};
            Screen.Log.clear();
            // A handler's line is handed over by the very call that ran it.
            EXPECT_EQ(Engine.PullOnce(wait).size(), log.back() == "process" ? 1U : 0U);
            EXPECT_EQ(Screen.Log, log) << wait << eventWaits << idle;
        }
    });
}

TEST_F(EngineBridgeTest, HandsOverOneLineACallInTheCodePageAndInOrder) {
    Play([&] {
        for (const TextView line : {u"new", u"setboard \u20AC\u010D", u"two\nlines"}) Game->Commands.SendCommand(line);
        for (const char* line : {"new", "setboard \x80?", "two", "lines"}) {
            EXPECT_THAT(Engine.PullOnce(), ElementsAre(line));
        }
        EXPECT_THAT(Engine.PullOnce(), IsEmpty());
    });
}

TEST_F(EngineBridgeTest, TheLibraryIsAskedByAByteAndBy32BitsAsSoonAsItIsThere) {
    EngineLibrary library(Screen);
    const MoveRec move{6, 0, 0, 0, 0, 0, 0, 0};
    Position position{};
    MoveList list{};
    auto exports = std::exchange(Screen.Libraries[u"QuarnelChess"], {});
    EXPECT_FALSE(library.GetMove(position, White, list));
    EXPECT_FALSE(library.MakeMove(position, move));
    EXPECT_EQ(IsKingAttacked(library, position, White), False);

    static std::vector<int> asked;
    exports["quarnel_GetMove"] =
        reinterpret_cast<void*>(+[](const Position*, std::uint8_t colour, MoveList*) { asked.push_back(colour); });
    exports["quarnel_KingAttacked"] = reinterpret_cast<void*>(+[](const Position*, std::int32_t colour) {
        asked.push_back(colour);
        return std::int16_t{1};
    });
    exports["quarnel_GetTxt"] = reinterpret_cast<void*>(+[](char* buffer) { std::strcpy(buffer, "e4 \x80"); });
    Screen.Libraries[u"QuarnelChess"] = exports;
    for (const Truth side : {White, Black}) {
        EXPECT_TRUE(library.GetMove(position, side, list));
        EXPECT_EQ(IsKingAttacked(library, position, side), True);
    }
    EXPECT_THAT(asked, ElementsAre(0, 0, 1, -1));

    Text buffer(6, u' ');
    library.FetchEngineOutput(buffer);
    EXPECT_EQ(buffer, Text(6, u' ')) << "fetched though the library was never found";
    library.Probe();
    EXPECT_FALSE(Screen.ReleaseLibrary(library.EngineLib)) << "the probe keeps the handle, not the library";
    library.FetchEngineOutput(buffer);
    EXPECT_EQ(buffer, Text(u"e4 \u20AC\0 ", 6));
}

} // namespace
} // namespace quarnel
