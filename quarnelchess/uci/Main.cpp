// quarnel-uci: the engine as a program of its own, for chess interfaces, matches and scripts.
#include "quarnelchess/uci/Uci.h"

#include <iostream>
#include <string>

int main() {
    using namespace quarnel::engine;
    SteadyClock clock;
    Uci uci(clock, [](std::string_view line) { std::cout << line << '\n' << std::flush; });
    std::string line;
    while (std::getline(std::cin, line) && uci.Obey(line)) {
    }
}
