// The lines waiting for the engine, which pulls them one at a time.
//
// Nothing checks whether an engine runs: without one, lines pile up. Program thread only.
#pragma once

#include "base/Text.h"

#include <optional>

namespace quarnel {

class CommandQueue {
  public:
    /// Appends `line`. A line feed inside it makes two lines of it.
    void SendCommand(TextView line);

    /// Takes the oldest line out; nothing when none waits.
    std::optional<Text> TakeLine();

    /// Lines sent less lines taken. Nothing decides on it.
    std::int32_t CommandCount = 0;

  private:
    Text lines_; // each ended by a line feed
};

} // namespace quarnel
