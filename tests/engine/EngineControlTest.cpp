// What the lines of a whole game do not reach: levels off the menu, a search without moves, abandoning.
#include "support/ProgramFixture.h"

namespace quarnel {
namespace {

using EngineControlTest = ProgramTest;

TEST_F(EngineControlTest, WithoutLegalMovesOrRulesNoSearchStarts) {
    Play([&] {
        ListedRules missing;
        missing.Missing = true;
        EngineControl without(State(), Game->Commands, Game->Settings, Game->Board.Moves, missing);
        State().ResyncEngine = True;
        without.StartEngineMove();
        for (const char16_t* fen : {u"7k/5Q2/6K1/8/8/8/8/8 b - - 0 1", u"7k/6Q1/6K1/8/8/8/8/8 b - - 0 1"}) {
            State().CurPos = PositionOf(fen);
            Game->Control.StartEngineMove();
        }
        EXPECT_THAT(Engine.Pull(), testing::IsEmpty());
        EXPECT_EQ(Controls(), 'i');
        EXPECT_EQ(State().Thinking, False);
        EXPECT_EQ(State().ResyncEngine, True);
    });
}

// Whatever makes the running search useless stops it once and has its move dropped; it stays the running one.
TEST_F(EngineControlTest, ASearchMadeUselessIsAbandoned) {
    const struct {
        std::function<void()> Do;
        Lines Sent;
        Truth Resync;
    } cases[] = {{[this] { Game->Control.SendNewGame(); }, {"new", "skill 100 10"}, False},
                 {[this] { Game->Control.MarkResync(); }, {}, True},
                 {[this] { Game->Control.SendPosition(PositionOf(u"4k3/8/8/8/4P3/8/8/4K3 b - e3 0 1")); },
                  {"setboard 4k3/8/8/8/4P3/8/8/4K3 b - e3 0 1", "black", "movenumber 0"},
                  False}};
    Play([&] {
        for (const auto& [act, sent, resync] : cases) {
            Game->Control.SetIdleState();
            State().DiscardNextMove = State().ResyncEngine = False;
            act();
            EXPECT_EQ(Engine.Pull(), sent);
            EXPECT_EQ(State().ResyncEngine, resync);
            EXPECT_EQ(State().DiscardNextMove, False);

            Game->Control.SetThinkingState();
            act();
            Lines forced = sent;
            forced.insert(forced.begin(), "force");
            EXPECT_EQ(Engine.Pull(), forced);
            EXPECT_EQ(State().DiscardNextMove, True);
            EXPECT_EQ(State().Thinking, True);
            act();
            EXPECT_EQ(Engine.Pull(), sent) << "a second force";
        }
    });
}

// A level that the menu lacks checks nothing and keeps what it does not decide; one that is no number does nothing.
TEST_F(EngineControlTest, TheSavedLevelIsCheckedAndSent) {
    const struct {
        Text Saved;
        const char* Line;
        int Checked;
    } cases[] = {
        {u"0", "skill 10 5", 0},   {u"1", "skill 20 5", 1},    {u" 2 ", "skill 30 5", 2},    {u"3", "skill 50 5", 3},
        {u"4", "skill 75 5", 4},   {u"5", "skill 100 5", 5},   {u"6", "skill 100 10", 6},    {u"7", "skill 100 30", 7},
        {u"8", "skill 100 50", 8}, {u"9", "skill 100 100", 9}, {u"12", "skill 100 100", -1}, {u"4", "skill 75 5", 4},
        {u"-1", "skill 75 5", -1}, {u"9", "skill 100 100", 9}, {u"-1", "skill 100 5", -1},   {u"3", "skill 50 5", 3},
        {u"3.x", "", 3},           {u"70000", "", 3}};
    Play([&] {
        for (const auto& [saved, line, checked] : cases) {
            SCOPED_TRACE(ToUtf8(saved));
            Screen.Settings["quarnel chess/settings/level"] = saved;
            Game->Settings.SetSavedLevel();
            EXPECT_EQ(Engine.Pull(), *line != '\0' ? Lines{line} : Lines());
            for (int i = 0; i < 10; ++i) {
                EXPECT_EQ(Game->Settings.cs[static_cast<std::size_t>(i)].Checked.Get(), i == checked);
            }
        }
    });
}

} // namespace
} // namespace quarnel
