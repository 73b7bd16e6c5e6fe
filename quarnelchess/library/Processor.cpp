// Says so and ends, when the library is loaded on a processor that lacks the instructions it is built
// with. This file alone is compiled for every x86-64 processor.
#include <cstdio>
#include <cstdlib>

#if defined(__x86_64__)
namespace {

// Before everything else in the library, whose tables are filled with such instructions.
__attribute__((constructor(101))) void CheckProcessor() {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("popcnt") && __builtin_cpu_supports("sse4.2")) return;
    std::fputs("Quarnel Chess needs a processor with the SSE4.2 and POPCNT instructions (x86-64-v2, from 2009 on).\n",
               stderr);
    std::_Exit(1);
}

} // namespace
#endif
