// The fuzzer's entry. QUARNEL_FUZZ_TARGET names what is to be tried.
#include "Targets.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const quarnel::fuzz::Target* const target = [] {
        const char* const wanted = std::getenv("QUARNEL_FUZZ_TARGET");
        for (const quarnel::fuzz::Target& known : quarnel::fuzz::Targets())
            if (wanted != nullptr && std::string_view(known.Name) == wanted) return &known;
        std::fprintf(stderr, "QUARNEL_FUZZ_TARGET names no target\n");
        std::exit(2);
    }();
    target->Run({reinterpret_cast<const char*>(data), size});
    return 0;
}
