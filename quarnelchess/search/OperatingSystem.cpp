#include "quarnelchess/search/OperatingSystem.h"

#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace quarnel::engine {
namespace {

// The deepest search takes a tenth of it; with sanitizers, half.
constexpr std::size_t StackBytes = std::size_t{8} << 20;

constexpr std::align_val_t HugePage{std::size_t{1} << 21};

} // namespace

bool DeepThread::Start(void (*body)(void*), void* argument) {
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) return false;
    body_ = body;
    argument_ = argument;
    const auto run = [](void* self) -> void* {
        auto* const thread = static_cast<DeepThread*>(self);
        thread->body_(thread->argument_);
        return nullptr;
    };
    const bool started = pthread_attr_setstacksize(&attributes, StackBytes) == 0 &&
                         pthread_create(&thread_, &attributes, run, this) == 0;
    pthread_attr_destroy(&attributes);
    if (!started) body_ = nullptr;
    return started;
}

void DeepThread::Join() {
    if (!IsStarted()) return;
    pthread_join(thread_, nullptr);
    body_ = nullptr;
}

void* AllocateTableMemory(std::size_t bytes) {
    void* const memory = ::operator new(bytes, HugePage, std::nothrow);
#if defined(__linux__)
    // Entries are visited at random: large pages save a walk through the page tables at each visit.
    if (memory != nullptr) madvise(memory, bytes, MADV_HUGEPAGE);
#endif
    return memory;
}

void ReleaseTableMemory(void* memory) {
    ::operator delete(memory, HugePage);
}

} // namespace quarnel::engine
