// Laid before the system's library, it lets one call fail: QUARNEL_FAIL is "memory 17", "thread 2", "write 1" or
// "rename 1" (whatever puts a file in its place), counted from StartToFail() on.
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

namespace {

char wantedKind[16];
std::atomic<long> left{-1}; // calls until the one that fails; below 1 none does any more

bool Fails(const char* kind, int error) {
    if (left.load() <= 0 || std::strcmp(wantedKind, kind) != 0 || left.fetch_sub(1) != 1) return false;
    errno = error;
    return true;
}

template <class Function>
Function* Real(Function*, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

void StartToFail() {
    long number = 0;
    const char* const wanted = std::getenv("QUARNEL_FAIL");
    if (wanted != nullptr && std::sscanf(wanted, "%15s %ld", wantedKind, &number) == 2) left = number;
}

void* __libc_malloc(std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
void* malloc(std::size_t size) noexcept {
    return Fails("memory", ENOMEM) ? nullptr : __libc_malloc(size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return Fails("memory", ENOMEM) ? nullptr : __libc_memalign(alignment, size);
}
int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument) noexcept {
    if (Fails("thread", EAGAIN)) return EAGAIN;
    return Real(&pthread_create, "pthread_create")(thread, attributes, run, argument);
}
ssize_t write(int file, const void* bytes, std::size_t size) {
    return Fails("write", ENOSPC) ? -1 : Real(&write, "write")(file, bytes, size);
}
int fsync(int file) {
    return Fails("write", EIO) ? -1 : Real(&fsync, "fsync")(file);
}
int linkat(int from, const char* path, int to, const char* name, int flags) noexcept {
    return Fails("rename", EIO) ? -1 : Real(&linkat, "linkat")(from, path, to, name, flags);
}
int renameat(int from, const char* path, int to, const char* name) noexcept {
    return Fails("rename", EIO) ? -1 : Real(&renameat, "renameat")(from, path, to, name);
}
}
