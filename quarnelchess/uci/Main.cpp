// quarnel-uci: the engine as a program of its own, for chess interfaces, matches and scripts.
#include "quarnelchess/uci/Uci.h"

#include <iostream>
#include <string>

int main() {
    using namespace quarnel::engine;
    try {
        SteadyClock clock;
        Uci uci(clock, [](std::string_view line) { std::cout << line << '\n' << std::flush; });
        std::string line;
        while (!std::cin.eof()) {
            // A line that there is no memory for is passed over.
            if (!std::getline(std::cin, line))
                std::cin.clear(std::cin.rdstate() & std::ios::eofbit);
            else if (!uci.Obey(line))
                break;
        }
    } catch (const std::exception& error) {
        std::cerr << "quarnel-uci cannot start: " << error.what() << '\n';
        return 1;
    }
}
