#include "engine/EngineBridge.h"

#include "EngineFixture.h"

#include <cstring>

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A library that notes what it is called with and says one text.
struct SmallLibrary {
    static inline std::vector<std::string> Calls;
    static inline std::string Said;
    static inline std::function<void(QuarnelInputCallback, QuarnelOutputCallback)> Body;

    static void Start(QuarnelInputCallback input, QuarnelOutputCallback output) { Body(input, output); }
    static void Receive(const char* line) { Calls.emplace_back(line); }
    static void Get(char* buffer) { std::memcpy(buffer, Said.c_str(), Said.size() + 1); }
    static void GetMove(const Position*, std::uint8_t colour, MoveList* list) {
        Calls.push_back("moves of " + std::to_string(colour));
        list->Count = 1;
    }
    static void MakeMove(Position* position, const MoveRec* move) { position->EpFile = move->FromFile; }
    static std::int16_t KingAttacked(const Position*, std::int32_t colour) {
        Calls.push_back("king of " + std::to_string(colour));
        return 1;
    }
    static std::map<std::string, void*> Exports() {
        return {{"quarnel_EngineStart", reinterpret_cast<void*>(&Start)},
                {"quarnel_ReceiveTxt", reinterpret_cast<void*>(&Receive)},
                {"quarnel_GetTxt", reinterpret_cast<void*>(&Get)},
                {"quarnel_GetMove", reinterpret_cast<void*>(&GetMove)},
                {"quarnel_MakeMove", reinterpret_cast<void*>(&MakeMove)},
                {"quarnel_KingAttacked", reinterpret_cast<void*>(&KingAttacked)}};
    }
};

class EngineBridgeTest : public EngineTest {
  protected:
    EngineBridgeTest() {
        SmallLibrary::Calls.clear();
        Screen.Libraries[u"QuarnelChess"] = SmallLibrary::Exports();
        Screen.LogEvents = true;
        Window.AddMenu(Item);
        Item.OnClick = [this] { Commands.SendCommand(u"clicked"); };
    }
    std::vector<std::string> Called() { return std::exchange(SmallLibrary::Calls, {}); }

    Form Window{"Window", FormBorder::Framed};
    MenuItem Item{u"Item"};
    EngineLibrary Library{Screen};
    EngineBridge Bridge{Library, Commands, Controls, Screen};
};

TEST_F(EngineBridgeTest, SleepsOnlyWhenTheEngineAllowsItAndTheProgramIsIdle) {
    const struct {
        std::int16_t Wait;
        bool EventWaits;
        bool Idle;
        std::vector<std::string> Log;
    } cases[] = {{0, false, true, {"peek"}},
                 {0, true, true, {"peek", "process"}},
                 {1, false, true, {"peek", "wait", "process"}},
                 {-1, false, true, {"peek", "wait", "process"}},
                 {1, true, true, {"peek", "process"}},
                 {1, false, false, {"peek"}},
                 {1, true, false, {"peek", "process"}}};
    for (const auto& [wait, eventWaits, idle, log] : cases) {
        Controls.SubMovesMenu[MoveNowItem].Enabled = idle;
        if (eventWaits) Screen.Click(Item);
        Screen.Script = {[this] { Screen.Click(Item); }};
        Screen.Log.clear();
        Bridge.InputCallback(wait);
        EXPECT_EQ(Screen.Log, log) << wait << eventWaits << idle;
        // A handler's line is handed over by the very call that ran it.
        EXPECT_EQ(Called().size(), log.back() == "process" ? 1U : 0U);
    }
}

TEST_F(EngineBridgeTest, HandsOverOneLineACallInTheCodePageAndInOrder) {
    for (const TextView line : {u"new", u"setboard \u20AC\u010D", u"two\nlines"}) Commands.SendCommand(line);
    EXPECT_EQ(Commands.CommandCount, 3);
    for (const char* line : {"new", "setboard \x80?", "two", "lines"}) {
        Bridge.InputCallback(0);
        EXPECT_THAT(Called(), ElementsAre(line));
    }
    Bridge.InputCallback(0);
    EXPECT_THAT(Called(), IsEmpty());
    EXPECT_EQ(Commands.CommandCount, -1);
}

TEST_F(EngineBridgeTest, TheEngineReachesTheProgramWhileItRuns) {
    SmallLibrary::Body = [](QuarnelInputCallback input, QuarnelOutputCallback output) {
        input(0x10000); // only the low 16 bits count
        output(7);
        output(-1);
    };
    SmallLibrary::Said = "e4 \x80";
    std::vector<std::int32_t> lengths;
    const auto listen = [&](std::int32_t length) { lengths.push_back(length); };
    Text buffer(6, u' ');
    Commands.SendCommand(u"new");
    Bridge.Run(listen);
    Library.FetchEngineOutput(buffer);
    EXPECT_THAT(lengths, IsEmpty()) << "started though the library was never found";
    EXPECT_EQ(buffer, Text(6, u' '));

    Library.Probe();
    EXPECT_FALSE(Screen.ReleaseLibrary(Library.EngineLib)) << "the probe keeps the handle, not the library";
    Bridge.Run(listen);
    Library.FetchEngineOutput(buffer);
    EXPECT_THAT(lengths, ElementsAre(7, -1));
    EXPECT_THAT(Called(), ElementsAre("new"));
    EXPECT_THAT(Screen.Log, ElementsAre("peek"));
    EXPECT_EQ(buffer, Text(u"e4 \u20AC\0 ", 6));
}

TEST_F(EngineBridgeTest, RulesAreAskedByAByteAndBy32BitsAsSoonAsTheLibraryIsThere) {
    const MoveRec move{6, 0, 0, 0, 0, 0, 0, 0};
    Position position{};
    const auto exports = std::exchange(Screen.Libraries, {});
    MoveList list{};
    EXPECT_FALSE(Library.GetMove(position, White, list));
    EXPECT_EQ(IsKingAttacked(Library, position, White), False);
    EXPECT_FALSE(Library.MakeMove(position, move));
    Commands.SendCommand(u"lost");
    Bridge.InputCallback(0);
    EXPECT_EQ(Commands.CommandCount, 0);

    Screen.Libraries = exports;
    for (const Truth side : {White, Black}) {
        EXPECT_EQ(GenerateMoves(Library, position, side).Count, 1);
        EXPECT_EQ(IsKingAttacked(Library, position, side), True);
    }
    EXPECT_THAT(Called(), ElementsAre("moves of 0", "king of 0", "moves of 1", "king of -1"));
    EXPECT_TRUE(Library.MakeMove(position, move));
    EXPECT_EQ(position.EpFile, 6);
}

} // namespace
} // namespace quarnel
