// quarnel-uci: the engine as a program of its own, for chess interfaces, matches and scripts.
#include "quarnelchess/uci/Uci.h"

#include <iostream>
#include <string>

namespace {

constexpr std::string_view HelpText = "Usage: quarnel-uci\n\n"
                                      "The engine of Quarnel Chess for programs that speak the Universal Chess\n"
                                      "Interface: commands on standard input, answers on standard output. \"uci\"\n"
                                      "lists its options, \"quit\" ends it.\n\n"
                                      "  --help     show this\n"
                                      "  --version  show the version\n";

// What the command line asks for in the place of a conversation; the exit status.
int Answer(std::string_view option) {
    if (option == "--help") {
        std::cout << HelpText;
    } else if (option == "--version") {
        std::cout << "quarnel-uci (Quarnel Chess) " QUARNEL_VERSION "\n";
    } else {
        std::cerr << "quarnel-uci: there is no option \"" << option << "\"\nTry \"quarnel-uci --help\".\n";
        return 2;
    }
    return std::cout.flush() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    using namespace quarnel::engine;
    if (argc > 1) return Answer(argv[1]);
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
