#include "engine/EngineBridge.h"

#include "base/Step.h"

namespace quarnel {

EngineBridge* EngineBridge::running_ = nullptr;

void EngineBridge::Run() {
    if (library_.EngineLib == 0) return;
    struct Running {
        explicit Running(EngineBridge* bridge) { running_ = bridge; }
        ~Running() { running_ = nullptr; }
    } const running(this);
    library_.EngineStart([](std::int32_t wait) { running_->InputCallback(static_cast<std::int16_t>(wait)); },
                         [](std::int32_t length) { running_->output_(length); });
}

void EngineBridge::InputCallback(std::int16_t wait) {
    bool waiting = desktop_.PeekEvent();
    if (wait != 0 && !waiting && controls_.MoveNowEnabled()) {
        desktop_.WaitEvent();
        waiting = true;
    }
    if (waiting) desktop_.ProcessEvents();
    Step(commands_.TakeLine(), [&](const Text& line) { library_.ReceiveTxt(line); });
}

} // namespace quarnel
