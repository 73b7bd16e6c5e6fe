// What the lines of a whole game do not reach: levels off the menu, a search without moves, abandoning.
#include "EngineFixture.h"

namespace quarnel {
namespace {

using EngineControlTest = EngineTest;

TEST_F(EngineControlTest, WithoutLegalMovesOrRulesNoSearchStarts) {
    ListedRules missing;
    missing.Missing = true;
    EngineControl without(State, Commands, Settings, Controls, missing);
    Control.SetIdleState();
    State.ResyncEngine = True;
    without.StartEngineMove();
    for (const char16_t* fen : {u"7k/5Q2/6K1/8/8/8/8/8 b - - 0 1", u"7k/6Q1/6K1/8/8/8/8/8 b - - 0 1"}) {
        State.CurPos = PositionOf(fen);
        Control.StartEngineMove();
    }
    EXPECT_THAT(Sent(), testing::IsEmpty());
    EXPECT_TRUE(Controls.MoveNowEnabled());
    EXPECT_EQ(State.Thinking, False);
    EXPECT_EQ(State.ResyncEngine, True);
}

// Whatever makes the running search useless stops it once and has its move dropped; it stays the running one.
TEST_F(EngineControlTest, ASearchMadeUselessIsAbandoned) {
    State.PlyNow = 17;
    Settings.cs_Click(2);
    Sent();
    const struct {
        std::function<void()> Do;
        Lines Sent;
        Truth Resync;
    } cases[] = {{[this] { Control.SendNewGame(); }, {u"new", u"skill 30 5"}, False},
                 {[this] { Control.MarkResync(); }, {}, True},
                 {[this] { Control.SendPosition(PositionOf(u"4k3/8/8/8/4P3/8/8/4K3 b - e3 0 1")); },
                  {u"setboard 4k3/8/8/8/4P3/8/8/4K3 b - e3 0 1", u"black", u"movenumber 17"},
                  False}};
    for (const auto& [act, sent, resync] : cases) {
        Control.SetIdleState();
        State.DiscardNextMove = State.ResyncEngine = False;
        act();
        EXPECT_EQ(Sent(), sent);
        EXPECT_EQ(State.ResyncEngine, resync);
        EXPECT_EQ(State.DiscardNextMove, False);

        Control.SetThinkingState();
        act();
        Lines forced = sent;
        forced.insert(forced.begin(), u"force");
        EXPECT_EQ(Sent(), forced);
        EXPECT_EQ(State.DiscardNextMove, True);
        EXPECT_EQ(State.Thinking, True);
        act();
        EXPECT_EQ(Sent(), sent) << "a second force";
    }
}

// A level that the menu lacks checks nothing and keeps what it does not decide; one that is no number does nothing.
TEST_F(EngineControlTest, TheSavedLevelIsCheckedAndSent) {
    const struct {
        Text Saved, Line;
        int Checked;
    } cases[] = {{u"0", u"skill 10 5", 0},
                 {u"1", u"skill 20 5", 1},
                 {u" 2 ", u"skill 30 5", 2},
                 {u"3", u"skill 50 5", 3},
                 {u"4", u"skill 75 5", 4},
                 {u"5", u"skill 100 5", 5},
                 {u"6", u"skill 100 10", 6},
                 {u"7", u"skill 100 30", 7},
                 {u"8", u"skill 100 50", 8},
                 {u"9", u"skill 100 100", 9},
                 {u"12", u"skill 100 100", -1},
                 {u"4", u"skill 75 5", 4},
                 {u"-1", u"skill 75 5", -1},
                 {u"9", u"skill 100 100", 9},
                 {u"-1", u"skill 100 5", -1},
                 {u"3", u"skill 50 5", 3},
                 {u"3.x", u"", 3},
                 {u"70000", u"", 3}};
    for (const auto& [saved, line, checked] : cases) {
        SCOPED_TRACE(ToUtf8(saved));
        Screen.Settings["quarnel chess/settings/level"] = saved;
        Settings.SetSavedLevel();
        EXPECT_EQ(Sent(), line.empty() ? Lines() : Lines{line});
        for (int i = 0; i < 10; ++i) EXPECT_EQ(Settings.cs[static_cast<std::size_t>(i)].Checked.Get(), i == checked);
    }
}

} // namespace
} // namespace quarnel
