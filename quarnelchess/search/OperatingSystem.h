// What the search asks of the operating system beyond the standard library: threads with a stack of a size of their
// own, and memory for tables that are visited at random.
//
// Whatever differs from system to system stands in OperatingSystem.cpp. Nothing throws; what the system refuses is
// said in the result.
#pragma once

#include <cstddef>
#include <pthread.h>

namespace quarnel::engine {

/// A thread that is deep enough for the search, whatever the process's own limit for stacks is.
class DeepThread {
  public:
    DeepThread() = default;
    ~DeepThread() { Join(); }
    DeepThread(const DeepThread&) = delete;
    DeepThread& operator=(const DeepThread&) = delete;

    /// Runs `body(argument)` on a new thread; false when the system grants none. Not while one runs.
    bool Start(void (*body)(void*), void* argument);
    bool IsStarted() const { return body_ != nullptr; }
    /// Waits for the thread to end, if one was started.
    void Join();

  private:
    pthread_t thread_{};
    void (*body_)(void*) = nullptr;
    void* argument_ = nullptr;
};

/// Memory in large pages where the system has them, its content undefined; null when it is short.
void* AllocateTableMemory(std::size_t bytes);
void ReleaseTableMemory(void* memory);

} // namespace quarnel::engine
