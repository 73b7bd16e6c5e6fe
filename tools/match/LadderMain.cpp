// quarnel-ladder: measures the steps between the program's levels.
#include "Ladder.h"
#include "Options.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

namespace quarnel::match {
namespace {

ExitCode ClimbLadder(const LadderSetup& setup) {
    const std::vector<Rung> rungs = MakeRungs(setup);
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
        faulty = faulty || match.Standing().FaultsOf(0) + match.Standing().FaultsOf(1) > 0;
        table += TableRow(rung, match.Standing());
    }
    std::cout << table;
    if (faulty) std::cout << "\nGames were lost by faults; the journals say which.\n";
    return stop ? Stopped : Done;
}

} // namespace
} // namespace quarnel::match

int main(int argc, char** argv) {
    using namespace quarnel::match;
    CLI::App app("Plays each level of the program against the one below, and the lowest against simple players; then "
                 "prints the table of all that the journals hold. The same command goes on where it was stopped.");
    LadderSetup setup;
    std::vector<std::string> rungs;
    for (const Rung& rung : MakeRungs(setup)) rungs.push_back(rung.Name);
    app.add_option("--engine", setup.Command, "The engine, for the universal chess interface")->required();
    app.add_option("--journal", setup.Folder, "A folder with a journal for each pair of players")->required();
    app.add_option("--rungs", setup.Wanted,
                   "Only these: a level against the one below, or a low level against a simple player")
        ->delimiter(',')
        ->check(CLI::IsMember(rungs));
    AddCommonOptions(app, setup.Games, setup.Concurrency, setup.Seed);
    app.add_option("--time-divisor", setup.TimeDivisor,
                   "The time for a move is divided by this; levels 1 to 5 do not depend on time")
        ->check(CLI::Range(1, 1000));
    app.add_option("--hash", setup.HashMb, "Megabytes of each engine")->check(CLI::Range(1, 1024));
    return RunProgram(app, argc, argv, [&] { return ClimbLadder(setup); });
}
