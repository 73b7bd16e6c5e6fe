#include "bench/quarnelchess/Signature.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace quarnel::engine {
namespace {

// A change that is not meant to change the search is caught here; one that is brings the new numbers, which
// `bench-engine --signature` prints.
TEST(Signature, IsTheOneWrittenDown) {
    std::ifstream file(QUARNEL_SIGNATURE_FILE);
    std::string word;
    int depth = 0;
    std::uint64_t nodes = 0;
    int compared = 0;
    for (; file >> word >> depth >> word >> nodes; ++compared) {
        if (depth > QUARNEL_SIGNATURE_DEPTH) continue;
        EXPECT_EQ(SignatureNodes(depth), nodes) << "depth " << depth;
    }
    EXPECT_EQ(compared, 2);
}

} // namespace
} // namespace quarnel::engine
