#include "Ladder.h"

#include <cmath>
#include <iterator>
#include <sstream>

namespace quarnel::match {
namespace {

// Far more than the work of any such level takes.
constexpr int GenerousMoveTimeMs = 10000;

std::string PlayerName(int level) {
    return "level-" + std::to_string(level);
}

PlayerSetup LevelPlayer(int level, const LadderSetup& setup) {
    const Level& settings = Levels[level - 1];
    PlayerSetup player;
    player.Name = PlayerName(level);
    player.Command = setup.Command;
    player.Options = {{"Hash", std::to_string(setup.HashMb)}, {"Skill", std::to_string(settings.Skill)}};
    const int shortTimeMs = std::max(1, settings.Tenths * 100 / setup.TimeDivisor);
    player.Thinking = {Limit::Kind::MoveTimeMs, settings.DependsOnTime() ? shortTimeMs : GenerousMoveTimeMs};
    return player;
}

/// Simple players that several levels meet, so that the chain of the levels is no chain of relatives alone.
constexpr struct Outsider {
    const char* Name;
    int Level;
    Goal Target;
} Outsiders[] = {{"random", 1, {0.9, 1, false}},
                 {"grabber", 1, {0.2, 0.8, false}},
                 {"careful", 1, {}},
                 {"careful", 2, {}},
                 {"careful", 3, {}}};

Goal GoalOf(int level) {
    if (level <= 5) return {0.65, 0.95, false};
    if (level == 6) return {0.8, 1, false};
    return {0, 1, true};
}

Rung MakeRung(const std::string& name, const PlayerSetup& upper, const PlayerSetup& lower, Goal goal,
              const LadderSetup& setup) {
    Rung rung;
    rung.Name = name;
    rung.Setup.Players[0] = upper;
    rung.Setup.Players[1] = lower;
    rung.Setup.Games = setup.Games;
    rung.Setup.Concurrency = setup.Concurrency;
    rung.Setup.Opening.Seed = setup.Seed;
    if (!setup.Folder.empty()) rung.Setup.JournalPath = setup.Folder + "/rung-" + name + ".txt";
    rung.Target = goal;
    return rung;
}

std::string Percent(double share) {
    return std::to_string(std::lround(100 * share)) + " %";
}

} // namespace

const char* const TableHead =
    "| player | against | games | wins | draws | losses | score | 95 % interval | goal | holds |\n"
    "|---|---|---|---|---|---|---|---|---|---|\n";

std::string Goal::Text() const {
    if (AboveHalf) return "more than 50 %";
    if (IsNone()) return "none";
    if (High == 1) return "at least " + Percent(Low);
    return Percent(Low) + " to " + Percent(High);
}

std::vector<Rung> MakeRungs(const LadderSetup& setup) {
    std::vector<Rung> rungs;
    for (const Outsider& outsider : Outsiders) {
        PlayerSetup simple;
        simple.Name = outsider.Name;
        simple.Command = "builtin:" + simple.Name;
        const std::string name = simple.Name + (outsider.Level == 1 ? "" : "-" + std::to_string(outsider.Level));
        rungs.push_back(MakeRung(name, LevelPlayer(outsider.Level, setup), simple, outsider.Target, setup));
    }
    for (int level = 2; level <= static_cast<int>(std::size(Levels)); ++level) {
        const PlayerSetup lower = LevelPlayer(level - 1, setup);
        rungs.push_back(MakeRung(std::to_string(level), LevelPlayer(level, setup), lower, GoalOf(level), setup));
        // A weak player's score says little about who wins.
        rungs.back().Setup.Adjudication.Enabled = Levels[level - 2].DependsOnTime();
    }
    return rungs;
}

std::string TableRow(const Rung& rung, const Tally& tally) {
    const ScoreEstimate score = EstimateScore(tally.Pairs);
    const bool holds = rung.Target.Holds(score.Score);
    const bool certain = rung.Target.Holds(score.Low) == holds && rung.Target.Holds(score.High) == holds;
    std::ostringstream text;
    text.setf(std::ios::fixed);
    text.precision(1);
    text << "| " << rung.Setup.Players[0].Name << " | " << rung.Setup.Players[1].Name << " | " << tally.Games() << " | "
         << tally.Wins << " | " << tally.Draws << " | " << tally.Losses << " | ";
    if (tally.Games() == 0)
        text << "| | " << rung.Target.Text() << " | not played |\n";
    else
        text << 100 * score.Score << " % | " << 100 * score.Low << " to " << 100 * score.High << " % | "
             << rung.Target.Text() << " | "
             << (rung.Target.IsNone() ? ""
                 : holds              ? "yes"
                                      : "no")
             << (certain ? "" : ", not certain") << " |\n";
    return text.str();
}

} // namespace quarnel::match
