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
};

} // namespace quarnel
