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

LadderSpec ReadArguments(const std::vector<std::string>& arguments) {
    LadderSpec spec;
    Words words(arguments);
    while (!words.AtEnd()) {
        const std::string option = words.Next();
        if (option == "--engine")
            spec.Command = words.Value(option);
        else if (option == "--journal")
            spec.Folder = words.Value(option);
        else if (option == "--rungs")
            spec.Wanted = ReadList(words.Value(option));
        else if (option == "--games")
            spec.Games = words.Number(option, 2, 1000000);
        else if (option == "--time-divisor")
            spec.TimeDivisor = words.Number(option, 1, 1000);
        else if (option == "--concurrency")
            spec.Concurrency = words.Number(option, 1, 256);
        else if (option == "--hash")
            spec.HashMb = words.Number(option, 1, 1024);
        else if (option == "--seed")
            spec.Seed = static_cast<std::uint64_t>(words.Number(option, 0, 1000000000));
        else
            throw UsageError("There is no option \"" + option + "\".");
    }
    if (spec.Command.empty()) throw UsageError("--engine is missing.");
    if (spec.Folder.empty()) throw UsageError("--journal is missing.");
    if (spec.Games % 2 != 0) throw UsageError("--games is an even number: games come in pairs.");
    return spec;
}

ExitCode ClimbLadder(const std::vector<std::string>& arguments) {
    const LadderSpec spec = ReadArguments(arguments);
    const std::vector<Rung> rungs = MakeRungs(spec);
    for (const std::string& name : spec.Wanted)
        if (std::none_of(rungs.begin(), rungs.end(), [&](const Rung& rung) { return rung.Name == name; }))
            throw UsageError("There is no rung \"" + name + "\".");
    std::filesystem::create_directories(spec.Folder);

    const std::atomic<bool>& stop = WatchSignals();
    std::string table = TableHead;
    bool faulty = false;
    for (const Rung& rung : rungs) {
        const bool wanted =
            spec.Wanted.empty() || std::find(spec.Wanted.begin(), spec.Wanted.end(), rung.Name) != spec.Wanted.end();
        if (!wanted && !std::filesystem::exists(rung.Spec.JournalPath)) {
            table += TableRow(rung, {});
            continue;
        }
        Match match(rung.Spec, stop);
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
