#include "EngineFixture.h"

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class EngineControlTest : public EngineTest {
  protected:
    EngineControlTest() {
        State.CurPos = PositionOf(u"4k3/8/8/8/8/5N2/8/4K3 b - - 0 1");
        State.PlyNow = 17;
        Control.SetIdleState();
    }
};

TEST_F(EngineControlTest, StatesOfTheMoveControls) {
    EXPECT_EQ(Looks(), IdleLooks);
    Controls.DisableMoveControls();
    EXPECT_EQ(Looks(), NothingLooks);
    EXPECT_EQ(State.Thinking, False);
    Control.SetThinkingState();
    EXPECT_EQ(Looks(), ThinkingLooks);
    EXPECT_EQ(State.Thinking, True);
    Control.SendForce();
    EXPECT_EQ(Looks(), NothingLooks);
    EXPECT_EQ(State.Thinking, True);
    EXPECT_EQ(State.StopRequested, True);
    Control.SetIdleState();
    EXPECT_EQ(Looks(), IdleLooks);
    EXPECT_EQ(State.Thinking, False);
    EXPECT_EQ(State.StopRequested, False);
}

TEST_F(EngineControlTest, AStalePositionGoesBeforeTheSearchAndOnlyOnce) {
    Control.MarkResync();
    Control.StartEngineMove();
    EXPECT_THAT(Sent(),
                ElementsAre(u"setboard 4k3/8/8/8/8/5N2/8/4K3 b - - 0 1", u"black", u"movenumber 17", u"sync", u"go"));
    EXPECT_EQ(State.ResyncEngine, False);
    EXPECT_EQ(State.DiscardNextMove, False);
    EXPECT_EQ(Looks(), ThinkingLooks);
    EXPECT_EQ(State.Thinking, True);
    Control.SetIdleState();
    Control.StartEngineMove();
    EXPECT_THAT(Sent(), ElementsAre(u"sync", u"go"));
}

TEST_F(EngineControlTest, WithoutLegalMovesOrRulesNoSearchStarts) {
    ListedRules missing;
    missing.Missing = true;
    EngineControl without(State, Commands, Settings, Controls, missing);
    State.ResyncEngine = True;
    without.StartEngineMove();
    for (const char16_t* fen : {u"7k/5Q2/6K1/8/8/8/8/8 b - - 0 1", u"7k/6Q1/6K1/8/8/8/8/8 b - - 0 1"}) {
        State.CurPos = PositionOf(fen);
        Control.StartEngineMove();
    }
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_EQ(Looks(), IdleLooks);
    EXPECT_EQ(State.Thinking, False);
    EXPECT_EQ(State.ResyncEngine, True);
}

TEST_F(EngineControlTest, ForceIsSentOnceASearch) {
    Control.SendForce();
    EXPECT_THAT(Sent(), IsEmpty());
    EXPECT_EQ(State.StopRequested, False);
    for (int search = 0; search < 2; ++search) {
        Think();
        Control.SendForce();
        Control.SendForce();
        EXPECT_THAT(Sent(), ElementsAre(u"force"));
        EXPECT_EQ(State.DiscardNextMove, False);
        Control.SetIdleState();
    }
}

// Whatever makes the running search useless stops it and has its move dropped; it stays the running one.
TEST_F(EngineControlTest, ASearchMadeUselessIsAbandoned) {
    Settings.cs_Click(2);
    Sent();
    const struct {
        std::function<void()> Do;
        Lines Sent;
        Truth Resync;
    } cases[] = {{[this] { Control.SendNewGame(); }, {u"new", u"skill 30 5"}, False},
                 {[this] { Control.MarkResync(); }, {}, True},
                 {[this] { Control.SendPosition(PositionOf(u"4k3/8/8/8/4P3/8/8/4K3 w - e3 0 1")); },
                  {u"setboard 4k3/8/8/8/4P3/8/8/4K3 w - e6 0 1", u"white", u"movenumber 17"},
                  False}};
    for (const auto& [act, sent, resync] : cases) {
        act();
        EXPECT_EQ(Sent(), sent);
        EXPECT_EQ(State.ResyncEngine, resync);
        EXPECT_EQ(State.DiscardNextMove, False);

        Think();
        act();
        Lines forced = sent;
        forced.insert(forced.begin(), u"force");
        EXPECT_EQ(Sent(), forced);
        EXPECT_EQ(State.DiscardNextMove, True);
        EXPECT_EQ(State.Thinking, True);

        act();
        EXPECT_EQ(Sent(), sent) << "a second force";
        Control.SetIdleState();
        State.DiscardNextMove = False;
        State.ResyncEngine = False;
    }
}

} // namespace
} // namespace quarnel
