#include "engine/EngineSettings.h"

#include "base/Numbers.h"
#include "base/Step.h"
#include "platform/SavedSettings.h"

namespace quarnel {

namespace {

constexpr std::size_t DesignedLevel = 6;
constexpr std::array<std::int16_t, 5> LowSkills{10, 20, 30, 50, 75};
constexpr std::array<int, 4> LongTimes{10, 30, 50, 100}; // levels 7 to 10
constexpr std::int16_t FirstLongTime = 6;

Text OnOff(Truth value) {
    return value != False ? u"on" : u"off";
}

} // namespace

EngineSettings::EngineSettings(GameState& state, CommandQueue& commands, Desktop& desktop)
    : cs{{{"cs(0)", u"Level 1 - 0.5 sec"},
          {"cs(1)", u"Level 2 - 0.5 sec"},
          {"cs(2)", u"Level 3 - 0.5 sec"},
          {"cs(3)", u"Level 4 - 0.5 sec"},
          {"cs(4)", u"Level 5 - 0.5 sec"},
          {"cs(5)", u"Level 6 - 0.5 sec"},
          {"cs(6)", u"Level 7 - 1 sec"},
          {"cs(7)", u"Level 8 - 3 sec"},
          {"cs(8)", u"Level 9 - 5 sec"},
          {"cs(9)", u"Level 10 - 10 sec"}}},
      state_(state), commands_(commands), desktop_(desktop) {
    for (MenuItem& item : cs) StrengthSubmenu.Add(item);
    cs[DesignedLevel].Checked = true;
    pnd.Checked = true;
    ConnectEach(cs, [this](int index) { cs_Click(static_cast<std::int16_t>(index)); });
    pnd.OnClick = [this] { pnd_Click(); };
}

void EngineSettings::setlevel(std::int16_t index) {
    for (MenuItem& item : cs) item.Checked = false;
    Step(ElementAt(cs, index), [](MenuItem& item) { item.Checked = true; });

    if (index > 4) EngineSkill = 100;
    Step(ElementAt(LowSkills, index), [&](std::int16_t skill) { EngineSkill = skill; });

    if (index < FirstLongTime) MoveTime = 5;
    Step(ElementAt(LongTimes, index - FirstLongTime), [&](int time) { MoveTime = time; });

    commands_.SendCommand(u"skill " + ToText(EngineSkill) + u" " + ToText(MoveTime));
}

void EngineSettings::SetSavedLevel() {
    const Text saved = SavedSetting(desktop_, u"Level", ToText(DesignedLevel));
    Step(ToInteger16(saved), [&](std::int16_t index) { setlevel(index); });
}

void EngineSettings::cs_Click(std::int16_t index) {
    setlevel(index);
    SaveSetting(desktop_, u"Level", ToText(index));
}

void EngineSettings::pnd_Click() {
    pnd.Checked = !pnd.Checked.Get();
    SaveSetting(desktop_, u"Ponder", ToText(ToTruth(pnd.Checked.Get())));
    pnd_C();
}

void EngineSettings::pnd_C() {
    PonderWanted = ToTruth(pnd.Checked.Get());
    PonderPending = True;
    if (state_.Thinking == False) SetCurrentPonderState();
}

void EngineSettings::SetCurrentPonderState() {
    if (PonderPending == False) return;
    commands_.SendCommand(u"ponder " + OnOff(PonderWanted));
    PonderPending = False;
}

void EngineSettings::UpdateClock() {
    commands_.SendCommand(u"sync");
}

void EngineSettings::ApplyEngineOptions() {
    const Text saved = SavedSetting(desktop_, u"Ponder", u"0");
    Step(ToTruthValue(saved), [&](Truth value) { pnd.Checked = value != False; });
    pnd_C();
    PonderPending = True;
    commands_.SendCommand(u"mt = " + ToText(EngineThreads));
    commands_.SendCommand(u"adaptive 10M 4M 64M 1M 16M");
}

} // namespace quarnel
