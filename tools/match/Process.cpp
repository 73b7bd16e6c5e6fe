#include "Process.h"

#include "AwakeTime.h"
#include "Player.h"

#include <algorithm>
#include <cerrno>
#include <thread>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quarnel::match {
namespace {

constexpr int StopCheckMs = 100;
constexpr int FarewellMs = 300;

int RemainingMs(Process::TimePoint deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - AwakeNow());
    return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, StopCheckMs));
}

/// In the child, between fork and exec: nothing but calls that are safe there.
[[noreturn]] void Become(const char* command, int input, int output) {
    setpgid(0, 0);
    std::signal(SIGPIPE, SIG_DFL);
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    execl("/bin/sh", "sh", "-c", command, nullptr);
    _exit(127);
}

} // namespace

Process::Process(const std::string& command, const std::atomic<bool>& stop) : stop_(stop) {
    std::signal(SIGPIPE, SIG_IGN);
    const std::string shellLine = "exec " + command;
    int toChild[2];
    int fromChild[2];
    if (pipe2(toChild, O_CLOEXEC) != 0) throw std::runtime_error("No pipe is left for an engine.");
    if (pipe2(fromChild, O_CLOEXEC) != 0) {
        close(toChild[0]);
        close(toChild[1]);
        throw std::runtime_error("No pipe is left for an engine.");
    }
    pid_ = fork();
    if (pid_ == 0) Become(shellLine.c_str(), toChild[0], fromChild[1]);
    close(toChild[0]);
    close(fromChild[1]);
    input_ = toChild[1];
    output_ = fromChild[0];
    if (pid_ < 0) {
        close(input_);
        close(output_);
        throw std::runtime_error("No process is left for an engine.");
    }
    setpgid(pid_, pid_); // here too, so that it holds whoever comes first
}

Process::~Process() {
    if (input_ >= 0) close(input_);
    input_ = -1;
    if (pid_ > 0) WaitForEnd(FarewellMs);
    Kill();
    close(output_);
}

bool Process::Write(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(input_, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool Process::TakeLine(std::string& line) {
    const std::size_t end = buffer_.find('\n', taken_);
    if (end == std::string::npos) {
        buffer_.erase(0, taken_);
        taken_ = 0;
        return false;
    }
    line.assign(buffer_, taken_, end - taken_);
    if (line.ends_with('\r')) line.pop_back();
    taken_ = end + 1;
    return true;
}

Process::ReadStatus Process::ReadLine(std::string& line, TimePoint deadline) {
    while (!TakeLine(line)) {
        if (stop_.load(std::memory_order_relaxed)) throw Interrupted();
        pollfd waiting{output_, POLLIN, 0};
        if (poll(&waiting, 1, RemainingMs(deadline)) <= 0) {
            if (AwakeNow() >= deadline) return ReadStatus::TimedOut;
            continue;
        }
        char chunk[4096];
        const ssize_t count = read(output_, chunk, sizeof chunk);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return ReadStatus::Ended;
        buffer_.append(chunk, static_cast<std::size_t>(count));
    }
    return ReadStatus::Line;
}

bool Process::WaitForEnd(int patienceMs) {
    for (int waited = 0;; ++waited) {
        if (waitpid(pid_, &status_, WNOHANG) == pid_) break;
        if (waited >= patienceMs) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    kill(-pid_, SIGKILL); // whatever the child has left behind
    pid_ = -1;
    return true;
}

std::string Process::Kill() {
    // One whose output has ended is about to end itself, and how it does is worth knowing.
    if (pid_ > 0 && !WaitForEnd(20)) {
        kill(-pid_, SIGKILL);
        while (waitpid(pid_, &status_, 0) < 0 && errno == EINTR) {
        }
        pid_ = -1;
    }
    return WIFSIGNALED(status_) ? "was killed by signal " + std::to_string(WTERMSIG(status_))
                                : "ended with status " + std::to_string(WEXITSTATUS(status_));
}

} // namespace quarnel::match
