// How the program and the engine library reach each other, and what the lines of a whole game do not reach: levels
// off the menu, a search without moves.
#include "support/ProgramFixture.h"

#include <cstring>

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using EngineTest = ProgramTest;

TEST_F(EngineTest, SleepsOnlyWhenTheEngineAllowsItAndTheProgramIsIdle) {
    const std::tuple<int, bool, bool, std::vector<std::string>> cases[] = {
        {0, false, true, {"peek"}},           {0x10000, false, true, {"peek"}}, // only the low 16 bits count
        {0, true, true, {"peek", "process"}}, {-1, false, true, {"peek", "wait", "process"}},
        {1, true, true, {"peek", "process"}}, {1, false, false, {"peek"}}};
    Screen.LogEvents = true;
    Engine.Body = [&] { // by the callbacks that the engine was given
        Engine.Pull();
        for (const auto& [wait, eventWaits, idle, log] : cases) {
            Game->Board.Moves.SubMovesMenu[MoveNowItem].Enabled = idle;
            if (eventWaits) Screen.Click(Game->Settings.cs[0]);
            Screen.Script = {[this] { Screen.Click(Game->Settings.cs[0]); }};
            Screen.Log.clear();
            // A handler's line is handed over by the very call that ran it.
            EXPECT_EQ(Engine.PullOnce(wait).size(), log.back() == "process" ? 1U : 0U);
            EXPECT_EQ(Screen.Log, log) << wait << eventWaits << idle;
        }
        SayMove("e4");
        EXPECT_EQ(State().PlyNow, 1);
    };
    Start();
}

TEST_F(EngineTest, HandsOverOneLineACallInTheCodePageAndInOrder) {
    for (const TextView line : {u"setboard \u20AC\u010D", u"two\nlines"}) Game->Commands.SendCommand(line);
    for (const char* line : {"setboard \x80?", "two", "lines"}) EXPECT_THAT(Engine.PullOnce(), ElementsAre(line));
    EXPECT_THAT(Engine.PullOnce(), IsEmpty());
}

TEST_F(EngineTest, TheLibraryIsAskedByAByteAndBy32BitsAsSoonAsItIsThere) {
    EngineLibrary library(Screen);
    Position position{};
    MoveList list{};
    auto exports = std::exchange(Screen.Libraries[u"QuarnelChess"], {});
    EXPECT_FALSE(library.GetMove(position, White, list) || library.MakeMove(position, {}));
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

TEST_F(EngineTest, WithoutLegalMovesNoSearchStarts) {
    State().CurPos = PositionOf(u"7k/5Q2/6K1/8/8/8/8/8 b - - 0 1");
    EXPECT_THAT(ChooseMoves(MoveNowItem), IsEmpty());
    EXPECT_EQ(Controls(), 'i');
}

// A level that the menu lacks checks nothing and keeps what it does not decide; one that is no number does nothing.
TEST_F(EngineTest, TheSavedLevelIsCheckedAndSent) {
    const std::tuple<Text, Lines, int> cases[] = {
        {u"0", {"skill 10 5"}, 0},   {u"1", {"skill 20 5"}, 1},    {u" 2 ", {"skill 30 5"}, 2},
        {u"3", {"skill 50 5"}, 3},   {u"4", {"skill 75 5"}, 4},    {u"5", {"skill 100 5"}, 5},
        {u"6", {"skill 100 10"}, 6}, {u"7", {"skill 100 30"}, 7},  {u"8", {"skill 100 50"}, 8},
        {u"5", {"skill 100 5"}, 5},  {u"9", {"skill 100 100"}, 9}, {u"12", {"skill 100 100"}, -1},
        {u"4", {"skill 75 5"}, 4},   {u"-1", {"skill 75 5"}, -1},  {u"3.x", {}, -1}};
    for (const auto& [saved, sent, checked] : cases) {
        Saved("level") = saved;
        Game->Settings.SetSavedLevel();
        EXPECT_EQ(Engine.Pull(), sent);
        for (std::size_t i = 0; i < 10; ++i) {
            EXPECT_EQ(Game->Settings.cs[i].Checked.Get(), checked == static_cast<int>(i)) << ToUtf8(saved);
        }
    }
}

} // namespace
} // namespace quarnel
