// Where the engine, running on the program's thread, meets the program: its two callbacks.
//
// The engine's loop carries the program: window events run inside InputCallback(). The callbacks
// carry no user data, so one static pointer leads them here while Run() is on the stack.
#pragma once

#include "engine/CommandQueue.h"
#include "engine/EngineLibrary.h"
#include "engine/MoveControls.h"

#include <functional>
#include <utility>

namespace quarnel {

class EngineBridge {
  public:
    /// `output` hears the length of every text that the engine announces.
    EngineBridge(EngineLibrary& library, CommandQueue& commands, const MoveControls& controls, Desktop& desktop,
                 std::function<void(std::int32_t)> output)
        : library_(library), commands_(commands), controls_(controls), desktop_(desktop), output_(std::move(output)) {}

    /// Starts the engine if the library is there and returns when the engine does.
    void Run();

    /// Lets window events run and hands over at most one command line. Sleeps until a window event
    /// comes when the engine allows it (`wait` nonzero) and the program is idle.
    void InputCallback(std::int16_t wait);

  private:
    EngineLibrary& library_;
    CommandQueue& commands_;
    const MoveControls& controls_;
    Desktop& desktop_;
    std::function<void(std::int32_t)> output_;

    static EngineBridge* running_;
};

} // namespace quarnel
