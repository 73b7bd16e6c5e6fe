// quarnel-match: lets two players play a match and tells the score.
#include "Options.h"

#include <iostream>

namespace quarnel::match {
namespace {

/// A line now and then, and one for every fault.
void ReportProgress(const Match& match, const GameResult& result) {
    const Tally& tally = match.Standing();
    if (IsFault(result.How))
        std::cerr << "game " << result.Pair + 1 << '.' << result.Leg + 1 << ": "
                  << match.Setup().Players[result.FirstHalfPoints == 0 ? 0 : 1].Name << " lost by "
                  << NameOf(result.How) << "\n";
    if (tally.Games() % 20 == 0)
        std::cerr << tally.Games() << " games: +" << tally.Wins << " =" << tally.Draws << " -" << tally.Losses << "\n";
}

ExitCode PlayMatch(const MatchSetup& setup) {
    Match match(setup, WatchSignals());
    match.Run(ReportProgress);
    std::cout << Summary(match);
    if (match.IsOver()) return Done;
    std::cout << "stopped; the same command goes on"
              << (match.Setup().JournalPath.empty() ? " with a journal only" : "") << "\n";
    return Stopped;
}

} // namespace
} // namespace quarnel::match

int main(int argc, char** argv) {
    using namespace quarnel::match;
    CLI::App app("Plays games in pairs, colours changed, between two players.");
    MatchSetup setup;
    AddMatchOptions(app, setup);
    return RunProgram(app, argc, argv, [&] { return PlayMatch(setup); });
}
