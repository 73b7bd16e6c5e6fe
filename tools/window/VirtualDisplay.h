// A display in memory with a window manager, for windows that nobody has to look at.
//
// Start at Start(). The server (Xvfb) and the window manager (openbox) belong to this object: they end with it, and
// with this process however it ends. They use a folder of their own instead of the user's settings.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

namespace quarnel::xdriver {

class VirtualDisplay {
  public:
    /// Returns when windows can be shown and are managed; throws std::runtime_error with a sentence for people when
    /// a program is missing or does not get ready.
    static std::unique_ptr<VirtualDisplay> Start(int width = 1280, int height = 1024);
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    /// Such as ":7".
    const std::string& Name() const { return name_; }

    /// An empty folder that lives as long as the display, for the settings of what runs on it.
    const std::filesystem::path& Home() const { return home_; }

    /// "NAME=value" for a program that is to run on this display: the caller's variables, but with this display and
    /// folder, and without what would lead it to another one.
    std::vector<std::string> Environment() const;

    /// Gives this process the same environment.
    void EnterEnvironment() const;

  private:
    VirtualDisplay();

    std::string name_;
    std::filesystem::path home_;
    pid_t server_ = 0;
    pid_t windowManager_ = 0;
};

/// Starts a program (looked for in PATH) with `environment`; the process ends when this one does, and at once, with
/// status 127 and a line on stderr, when there is no such program. `keptDescriptor` stays open in it unless it is -1.
pid_t StartProgram(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
                   int keptDescriptor = -1);

/// Asks the process to end, waits for it, and clears `process`.
void EndProgram(pid_t& process);

/// Whether the process still runs; collects it and sets `status` (as waitpid() does) once it has ended.
bool StillRuns(pid_t process, int& status);

} // namespace quarnel::xdriver
