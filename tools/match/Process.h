// A child process spoken to by lines, on pipes.
//
// The child leads a process group of its own, so that an interrupt typed at the referee does not reach
// it, and is dead when the object is. One thread owns it.
#pragma once

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace quarnel::match {

class Process {
  public:
    using TimePoint = std::chrono::steady_clock::time_point;

    /// Runs `command` by the shell. Throws std::runtime_error when there is no room for a process. From the
    /// first one on this program ignores SIGPIPE: Write() tells of a broken pipe.
    Process(const std::string& command, const std::atomic<bool>& stop);
    /// Closes the child's input, gives it a moment to end, and kills what is left.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Writes `text`, line ends included; false when the child is gone.
    bool Write(std::string_view text);

    enum class ReadStatus { Line, Ended, TimedOut };
    /// The next line, without its end, until the awake time `deadline`, into `line`. Throws Interrupted when the stop
    /// flag is raised.
    ReadStatus ReadLine(std::string& line, TimePoint deadline);

    /// Ends it at once and tells how it ended: "ended with status 3", "was killed by signal 11".
    std::string Kill();

  private:
    bool TakeLine(std::string& line);
    bool WaitForEnd(int patienceMs);

    const std::atomic<bool>& stop_;
    pid_t pid_ = -1; // -1 once it is collected
    int status_ = 0;
    int input_ = -1;  // ours to write
    int output_ = -1; // ours to read
    std::string buffer_;
    std::size_t taken_ = 0; // bytes of the buffer that were handed out
};

} // namespace quarnel::match
