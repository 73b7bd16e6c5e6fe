// Runs every sample of the fuzzer's through its target, whoever found it.
#include "Targets.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace quarnel::fuzz {
namespace {

TEST(FuzzSamples, AreTakenAsTheyAre) {
    for (const Target& target : Targets()) {
        int samples = 0;
        for (const auto& file : std::filesystem::directory_iterator(std::string(QUARNEL_SAMPLES) + "/" + target.Name)) {
            SCOPED_TRACE(file.path().string());
            std::ifstream in(file.path(), std::ios::binary);
            target.Run(std::string(std::istreambuf_iterator<char>(in), {}));
            ++samples;
        }
        EXPECT_GT(samples, 0) << target.Name;
    }
}

} // namespace
} // namespace quarnel::fuzz
