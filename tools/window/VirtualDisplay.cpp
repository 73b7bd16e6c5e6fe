#include "window/VirtualDisplay.h"

#include "window/WindowDriver.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration): not every system declares it

namespace quarnel::xdriver {

namespace {

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

// Reads the number that the server writes once it listens; ends at the end of the file when the server dies.
std::string ReadDisplayNumber(int descriptor) {
    std::string number;
    char c = 0;
    while (read(descriptor, &c, 1) == 1 && c != '\n') number += c;
    return number;
}

// Windows are framed, moved and closed as usual. Only a click inside of one is left alone: for raising it the window
// manager would hold the click back, and now and then lose one that comes less than a millisecond after another.
constexpr const char* WindowManagerSettings = R"(<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew></focus>
  <placement><policy>Smart</policy><center>yes</center></placement>
  <theme><name>Clearlooks</name><titleLayout>NLIMC</titleLayout></theme>
  <desktops><number>1</number></desktops>
  <mouse>
    <context name="Titlebar">
      <mousebind button="Left" action="Drag"><action name="Move"/></mousebind>
    </context>
    <context name="Close">
      <mousebind button="Left" action="Click"><action name="Close"/></mousebind>
    </context>
  </mouse>
</openbox_config>
)";

std::string VariableName(const std::string& variable) {
    return variable.substr(0, variable.find('='));
}

} // namespace

pid_t StartProgram(const std::vector<std::string>& arguments, const std::vector<std::string>& environment,
                   int keptDescriptor) {
    const std::vector<char*> argv = Pointers(arguments);
    const std::vector<char*> envp = Pointers(environment);
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0) throw std::system_error(errno, std::generic_category(), arguments[0]);
    if (child > 0) return child;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);
    if (keptDescriptor >= 0) fcntl(keptDescriptor, F_SETFD, 0);
    dup2(open("/dev/null", O_RDWR), STDIN_FILENO);
    execvpe(argv[0], argv.data(), envp.data());
    std::perror(argv[0]);
    _exit(127);
}

void EndProgram(pid_t& process) {
    if (process <= 0) return;
    kill(process, SIGTERM);
    waitpid(process, nullptr, 0);
    process = 0;
}

bool StillRuns(pid_t process, int& status) {
    return waitpid(process, &status, WNOHANG) == 0;
}

VirtualDisplay::VirtualDisplay() {
    std::string folder = (std::filesystem::temp_directory_path() / "quarnel-display-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) throw std::system_error(errno, std::generic_category(), folder);
    home_ = folder;
}

VirtualDisplay::~VirtualDisplay() {
    EndProgram(windowManager_);
    EndProgram(server_);
    std::error_code ignored;
    std::filesystem::remove_all(home_, ignored);
}

std::unique_ptr<VirtualDisplay> VirtualDisplay::Start(int width, int height) {
    std::unique_ptr<VirtualDisplay> display(new VirtualDisplay);
    int number[2];
    if (pipe2(number, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    const std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x24";
    display->server_ = StartProgram({"Xvfb", "-displayfd", std::to_string(number[1]), "-screen", "0", screen,
                                     "-nolisten", "tcp", "-noreset", "-dpi", "96"},
                                    display->Environment(), number[1]);
    close(number[1]);
    const std::string name = ReadDisplayNumber(number[0]);
    close(number[0]);
    if (name.empty()) throw std::runtime_error("Xvfb is missing or ended before its display was ready.");
    display->name_ = ":" + name;
    const std::string settings = (display->home_ / "openbox.xml").string();
    std::ofstream(settings) << WindowManagerSettings;
    display->windowManager_ =
        StartProgram({"openbox", "--sm-disable", "--config-file", settings}, display->Environment());
    WindowDriver driver(display->name_);
    if (!driver.WaitForWindowManager()) throw std::runtime_error("openbox did not get ready.");
    return display;
}

std::vector<std::string> VirtualDisplay::Environment() const {
    const std::string replaced =
        " DISPLAY WAYLAND_DISPLAY XAUTHORITY HOME XDG_CONFIG_HOME XDG_CACHE_HOME XDG_DATA_HOME "
        "XDG_STATE_HOME SESSION_MANAGER QT_QPA_PLATFORM QT_SCALE_FACTOR "
        "QT_SCREEN_SCALE_FACTORS QT_QPA_PLATFORMTHEME QT_STYLE_OVERRIDE DESKTOP_SESSION "
        "XDG_CURRENT_DESKTOP ";
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        if (replaced.find(" " + VariableName(*variable) + " ") == replaced.npos) variables.emplace_back(*variable);
    }
    const std::string home = home_.string();
    variables.push_back("DISPLAY=" + name_);
    variables.push_back("HOME=" + home);
    variables.push_back("XDG_CONFIG_HOME=" + home + "/config");
    variables.push_back("XDG_CACHE_HOME=" + home + "/cache");
    variables.push_back("XDG_DATA_HOME=" + home + "/data");
    variables.push_back("XDG_STATE_HOME=" + home + "/state");
    variables.emplace_back("QT_QPA_PLATFORM=xcb");
    return variables;
}

void VirtualDisplay::EnterEnvironment() const {
    const std::vector<std::string> variables = Environment();
    clearenv();
    for (const std::string& variable : variables) {
        const std::string name = VariableName(variable);
        const std::string value = name.size() < variable.size() ? variable.substr(name.size() + 1) : std::string();
        setenv(name.c_str(), value.c_str(), 1);
    }
}

} // namespace quarnel::xdriver
