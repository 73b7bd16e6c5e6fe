#include "EngineFixture.h"

namespace quarnel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class EngineSettingsTest : public EngineTest {
  protected:
    using Levels = std::vector<int>;

    Levels CheckedLevels() const {
        Levels checked;
        for (std::size_t i = 0; i < Settings.cs.size(); ++i) {
            if (Settings.cs[i].Checked.Get()) checked.push_back(static_cast<int>(i));
        }
        return checked;
    }
    Text& Saved(const std::string& key) { return Screen.Settings["quarnel chess/settings/" + key]; }
};

// A level that the menu lacks checks nothing and keeps what it does not decide.
TEST_F(EngineSettingsTest, EachLevelIsCheckedAndSent) {
    const struct {
        int Index;
        Text Line;
        int Checked;
    } cases[] = {{0, u"skill 10 5", 0},   {1, u"skill 20 5", 1},    {2, u"skill 30 5", 2},      {3, u"skill 50 5", 3},
                 {4, u"skill 75 5", 4},   {5, u"skill 100 5", 5},   {6, u"skill 100 10", 6},    {7, u"skill 100 30", 7},
                 {8, u"skill 100 50", 8}, {9, u"skill 100 100", 9}, {12, u"skill 100 100", -1}, {4, u"skill 75 5", 4},
                 {-1, u"skill 75 5", -1}, {9, u"skill 100 100", 9}, {-1, u"skill 100 5", -1},   {2, u"skill 30 5", 2},
                 {12, u"skill 100 5", -1}};
    for (const auto& [index, line, checked] : cases) {
        Settings.setlevel(static_cast<std::int16_t>(index));
        EXPECT_THAT(Sent(), ElementsAre(line));
        EXPECT_THAT(CheckedLevels(), checked < 0 ? Levels() : Levels{checked}) << index;
    }
    EXPECT_THAT(Screen.Settings, IsEmpty());
}

TEST_F(EngineSettingsTest, AnEmptyStoreMeansTheSeventhLevelWithoutPondering) {
    EXPECT_THAT(CheckedLevels(), ElementsAre(6));
    EXPECT_TRUE(Settings.pnd.Checked.Get());
    Settings.ApplyEngineOptions();
    Control.SendNewGame();
    EXPECT_THAT(Sent(), ElementsAre(u"ponder off", u"mt = 1", u"adaptive 10M 4M 64M 1M 16M", u"new", u"skill 100 10"));
}

TEST_F(EngineSettingsTest, ALevelChosenIsStoredAndSentAtOnceEvenDuringASearch) {
    Think();
    Settings.cs_Click(2);
    EXPECT_THAT(Sent(), ElementsAre(u"skill 30 5"));
    EXPECT_EQ(Saved("level"), u"2");
}

TEST_F(EngineSettingsTest, TheSavedLevelIsAppliedUnlessItIsDamaged) {
    const struct {
        Text Stored;
        Lines Sent;
    } cases[] = {{u"2", {u"skill 30 5"}},
                 {u" 7 ", {u"skill 100 30"}},
                 {u"12", {u"skill 100 30"}},
                 {u"-1", {u"skill 100 5"}},
                 {u"", {}},
                 {u"six", {}},
                 {u"70000", {}}};
    for (const auto& [stored, sent] : cases) {
        Saved("level") = stored;
        Settings.SetSavedLevel();
        EXPECT_EQ(Sent(), sent) << ToUtf8(stored);
    }
    Settings.setlevel(3);
    Saved("level") = u"3.x";
    Settings.SetSavedLevel();
    EXPECT_THAT(CheckedLevels(), ElementsAre(3));
}

TEST_F(EngineSettingsTest, PonderingIsStoredAndSentWhenItIsToggled) {
    Settings.pnd.Checked = false;
    Settings.pnd_Click();
    EXPECT_EQ(Saved("ponder"), u"-1");
    EXPECT_THAT(Sent(), ElementsAre(u"ponder on"));
    Settings.pnd_Click();
    EXPECT_EQ(Saved("ponder"), u"0");
    EXPECT_THAT(Sent(), ElementsAre(u"ponder off"));
    Settings.SetCurrentPonderState();
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(EngineSettingsTest, PonderingToggledDuringASearchIsSentOnceAtItsEnd) {
    Settings.pnd.Checked = false;
    Think();
    Settings.pnd_Click();
    Settings.pnd_Click();
    Settings.pnd_Click();
    EXPECT_EQ(Saved("ponder"), u"-1");
    EXPECT_THAT(Sent(), IsEmpty());
    Control.SetIdleState();
    EXPECT_THAT(Sent(), ElementsAre(u"ponder on"));
    Control.SetIdleState();
    EXPECT_THAT(Sent(), IsEmpty());
}

TEST_F(EngineSettingsTest, StartUpTellsTheOptionsInOrderAndPonderingOnceMore) {
    Settings.EngineThreads = 4;
    const std::pair<Text, bool> cases[] = {{u"", true},     {u"-1", true},     {u"0", false},   {u"1", true},
                                           {u"True", true}, {u"false", false}, {u"maybe", true}};
    for (const auto& [stored, ponders] : cases) {
        Settings.pnd.Checked = true; // as designed, which a damaged value leaves
        Saved("ponder") = stored;
        Settings.ApplyEngineOptions();
        const Text line = ponders ? u"ponder on" : u"ponder off";
        EXPECT_THAT(Sent(), ElementsAre(line, u"mt = 4", u"adaptive 10M 4M 64M 1M 16M")) << ToUtf8(stored);
        EXPECT_EQ(Settings.pnd.Checked.Get(), ponders);
        Control.SetIdleState();
        EXPECT_THAT(Sent(), ElementsAre(line));
    }
}

} // namespace
} // namespace quarnel
