// quarnel-ladder: measures the steps between the program's levels.
#include "Ladder.h"
#include "Options.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <sstream>

namespace quarnel::match {
namespace {

constexpr const char* Usage =
    R"(quarnel-ladder --engine COMMAND --journal FOLDER [OPTION...]

Plays each level of the program against the one below, and the lowest against two simple players; then prints
the table of all that FOLDER holds. The same command goes on where it was stopped.

  --engine COMMAND     the engine, for the universal chess interface
  --journal FOLDER     a journal for each pair of players
  --rungs A,B,...      only these: random, grabber (level 1 against those), 2 to 10 (against the level below)
  --games N            for each, even (200)
  --time-divisor N     the time for a move is divided by this (50); levels 1 to 5 do not depend on time
  --concurrency N      games at a time (2)
  --hash MB            of each engine (16)
  --seed N             of the openings and the weak levels' errors (1)
)";

std::vector<std::string> ReadList(const std::string& text) {
    std::vector<std::string> list;
    std::istringstream input(text);
    for (std::string word; std::getline(input, word, ',');) list.push_back(word);
    return list;
}

LadderSetup ReadArguments(const std::vector<std::string>& arguments) {
    LadderSetup setup;
    Words words(arguments);
    while (!words.AtEnd()) {
        const std::string option = words.Next();
        if (option == "--engine")
            setup.Command = words.Value(option);
        else if (option == "--journal")
            setup.Folder = words.Value(option);
        else if (option == "--rungs")
            setup.Wanted = ReadList(words.Value(option));
        else if (option == "--games")
            setup.Games = words.Number(option, 2, 1000000);
        else if (option == "--time-divisor")
            setup.TimeDivisor = words.Number(option, 1, 1000);
        else if (option == "--concurrency")
            setup.Concurrency = words.Number(option, 1, 256);
        else if (option == "--hash")
            setup.HashMb = words.Number(option, 1, 1024);
        else if (option == "--seed")
            setup.Seed = static_cast<std::uint64_t>(words.Number(option, 0, 1000000000));
        else
            throw UsageError("There is no option \"" + option + "\".");
    }
    if (setup.Command.empty()) throw UsageError("--engine is missing.");
    if (setup.Folder.empty()) throw UsageError("--journal is missing.");
    if (setup.Games % 2 != 0) throw UsageError("--games is an even number: games come in pairs.");
    return setup;
}

ExitCode ClimbLadder(const std::vector<std::string>& arguments) {
    const LadderSetup setup = ReadArguments(arguments);
    const std::vector<Rung> rungs = MakeRungs(setup);
    for (const std::string& name : setup.Wanted)
        if (std::none_of(rungs.begin(), rungs.end(), [&](const Rung& rung) { return rung.Name == name; }))
            throw UsageError("There is no rung \"" + name + "\".");
    std::filesystem::create_directories(setup.Folder);

    const std::atomic<bool>& stop = WatchSignals();
    std::string table = TableHead;
    bool faulty = false;
    for (const Rung& rung : rungs) {
        const bool wanted = setup.Wanted.empty() ||
                            std::find(setup.Wanted.begin(), setup.Wanted.end(), rung.Name) != setup.Wanted.end();
        if (!wanted && !std::filesystem::exists(rung.Setup.JournalPath)) {
            table += TableRow(rung, {});
            continue;
        }
        Match match(rung.Setup, stop);
        if (wanted && !match.IsOver()) {
            match.Run();
            std::cerr << Summary(match);
        }
        faulty = faulty || match.Standing().Faults[0] + match.Standing().Faults[1] > 0;
        table += TableRow(rung, match.Standing());
    }
    std::cout << table;
    if (faulty) std::cout << "\nGames were lost by faults; the journals say which.\n";
    return stop ? Stopped : Done;
}

} // namespace
} // namespace quarnel::match

int main(int argc, char** argv) {
    return quarnel::match::RunProgram(argc, argv, quarnel::match::Usage, quarnel::match::ClimbLadder);
}
