// EmbedNet: turns the net's file into source code, so that the engine library needs nothing beside it.
#include "quarnelchess/evaluation/NetLayout.h"

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: EmbedNet NET SOURCE\n", stderr);
        return 2;
    }
    std::ifstream net(argv[1], std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(net), {}};
    if (bytes.size() != 2 * quarnel::engine::net::NumberCount) {
        std::fprintf(stderr, "EmbedNet: %s has %zu bytes, not the %zu of a net of this shape\n", argv[1], bytes.size(),
                     2 * quarnel::engine::net::NumberCount);
        return 1;
    }
    std::ofstream source(argv[2]);
    source << "#include \"quarnelchess/evaluation/Net.h\"\n"
              "alignas(64) const std::int16_t quarnel::engine::net::Numbers[NumberCount] = {";
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        const unsigned low = static_cast<unsigned char>(bytes[i]);
        const unsigned high = static_cast<unsigned char>(bytes[i + 1]);
        source << (i % 32 == 0 ? "\n" : "") << static_cast<std::int16_t>(low | high << 8) << ',';
    }
    source << "\n};\n";
    if (source.flush()) return 0;
    std::fprintf(stderr, "EmbedNet: cannot write %s\n", argv[2]);
    return 1;
}
