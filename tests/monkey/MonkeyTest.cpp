// Some thousands of deeds from fixed seeds; with QUARNEL_MONKEY_STEPS=1000000 as many as wanted, from
// QUARNEL_MONKEY_SEED.
#include "Monkey.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

namespace quarnel::monkey {
namespace {

long NumberFrom(const char* variable, long otherwise) {
    const char* const text = std::getenv(variable);
    return text != nullptr ? std::atol(text) : otherwise;
}

TEST(Monkey, FindsNothingThatBreaksTheGame) {
    constexpr long length = 100;
    const long steps = NumberFrom("QUARNEL_MONKEY_STEPS", 4000);
    const long seed = NumberFrom("QUARNEL_MONKEY_SEED", 1);
    const auto start = std::chrono::steady_clock::now();
    for (long done = 0; done < steps; done += length) {
        const auto number = static_cast<std::uint32_t>(seed + done / length);
        const Stream stream = RandomStream(number, length);
        if (Play(stream).empty()) continue;
        const Stream fault = Shrunk(stream);
        FAIL() << Play(fault) << ", seed " << number << ":\n" << Describe(fault);
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%ld deeds, %.0f a second\n", steps, static_cast<double>(steps) / seconds);
}

} // namespace
} // namespace quarnel::monkey
