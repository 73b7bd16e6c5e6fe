// What reads bytes from outside, each as a function that takes any bytes: for the fuzzer, and for its finds as tests.
#pragma once

#include <span>
#include <string_view>

namespace quarnel::fuzz {

struct Target {
    const char* Name; ///< also of its folder of samples
    /// Ends the process where something does not hold.
    void (*Run)(std::string_view bytes);
};

std::span<const Target> Targets();

} // namespace quarnel::fuzz
