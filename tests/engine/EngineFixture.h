// The engine side of the program on the scripted desktop, with the lines it has queued.
#pragma once

#include "engine/EngineControl.h"
#include "platform/scripted/ScriptedDesktop.h"
#include "support/LibraryRules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quarnel {

class EngineTest : public testing::Test {
  protected:
    using Lines = std::vector<Text>;

    ScriptedDesktop Screen;
    GameState State;
    CommandQueue Commands;
    MoveControls Controls;
    LibraryRules RealRules;
    EngineSettings Settings{State, Commands, Screen};
    EngineControl Control{State, Commands, Settings, Controls, RealRules};

    /// Takes everything out of the queue.
    Lines Sent() {
        Lines lines;
        while (auto line = Commands.TakeLine()) lines.push_back(*line);
        return lines;
    }
    /// "1111110 111110": which of the Moves menu's items are enabled and which buttons are shown.
    std::string Looks() const {
        std::string looks;
        for (const MenuItem& item : Controls.SubMovesMenu) looks += item.Enabled.Get() ? '1' : '0';
        looks += ' ';
        for (const quarnel::Control& button : Controls.poke) looks += button.Visible.Get() ? '1' : '0';
        return looks;
    }
    void Think() {
        Control.SetThinkingState();
        Sent();
    }
};

inline constexpr const char* IdleLooks = "1111110 111110";
inline constexpr const char* ThinkingLooks = "0000001 000001";
inline constexpr const char* NothingLooks = "0000000 000000";

} // namespace quarnel
