// quarnel-tune-search: tunes margins of the search by games of the engine against itself, see Perturbation.h.
//
// Reads a list of "NAME LOW HIGH STEP" lines, keeps its state in a file after every round, and goes on from it. A
// margin is one number for the whole process, so every pair of games is played in a process of its own; the margins
// are set anew before each move.
#include "MarginList.h"
#include "Perturbation.h"
#include "SelfPlay.h"

#include <CLI/CLI.hpp>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <sstream>

using namespace quarnel;
using tuning::Margin;
using tuning::PerturbedPair;
using tuning::TunedNumber;

namespace {

constexpr int OpeningLimitCp = 150;
constexpr std::uint64_t OpeningNodes = 1000;

struct Options {
    std::uint64_t Nodes = 20000;
    std::uint64_t PairsOfGames = 4; // an iteration
    int Processes = 1;
    tuning::PerturbationOptions Learning;
    std::string ListFile;
    std::string StateFile;
};

const Margin* FindMargin(const std::string& name) {
    const auto margins = tuning::Margins();
    const auto found = std::find_if(margins.begin(), margins.end(), [&](const Margin& m) { return name == m.Name; });
    return found == margins.end() ? nullptr : &*found;
}

std::optional<std::vector<TunedNumber>> ReadList(const std::string& path) {
    std::vector<TunedNumber> numbers;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream words(line);
        TunedNumber number;
        if (!(words >> number.Name >> number.Low >> number.High >> number.Step)) {
            std::fprintf(stderr, "%s: \"%s\" is not NAME LOW HIGH STEP\n", path.c_str(), line.c_str());
            return std::nullopt;
        }
        const Margin* const margin = FindMargin(number.Name);
        if (margin == nullptr) {
            std::fprintf(stderr, "%s: there is no margin %s\n", path.c_str(), number.Name.c_str());
            return std::nullopt;
        }
        number.Value = margin->Value();
        numbers.push_back(number);
    }
    return numbers;
}

/// The first line is the number of iterations done, the others are names and values.
bool ReadState(const std::string& path, std::uint64_t& done, std::vector<TunedNumber>& numbers) {
    std::ifstream file(path);
    if (!(file >> done)) return false;
    for (TunedNumber& number : numbers) {
        std::string name;
        if (!(file >> name >> number.Value) || name != number.Name) return false;
    }
    return true;
}

bool WriteState(const std::string& path, std::uint64_t done, const std::vector<TunedNumber>& numbers) {
    const std::string unfinished = path + ".part";
    {
        std::ofstream file(unfinished);
        file.precision(17);
        file << done << '\n';
        for (const TunedNumber& number : numbers) file << number.Name << ' ' << number.Value << '\n';
        if (!file.flush()) return false;
    }
    std::error_code error;
    std::filesystem::rename(unfinished, path, error);
    return !error;
}

/// A player whose margins are `values`, rounded up or down by chance so that fractions of whole numbers count, too.
class PerturbedPlayer {
  public:
    PerturbedPlayer(const std::vector<TunedNumber>& numbers, const std::vector<double>& values, std::uint64_t nodes,
                    std::mt19937_64& random)
        : nodes_(nodes) {
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const Margin* const margin = FindMargin(numbers[i].Name);
            double value = values[i];
            if (margin->Whole != nullptr) value = std::floor(value + static_cast<double>(random() >> 11) * 0x1p-53);
            margins_.emplace_back(margin, value);
        }
        SetMargins();
        search_.emplace(clock_); // what is computed from margins beforehand is so here
        search_->SetHash(4);
    }
    engine::SearchResult Think(const engine::SearchRoot& root) {
        SetMargins();
        engine::SearchLimits limits;
        limits.Nodes = nodes_;
        return search_->Run(root, limits);
    }
    void NewGame() { search_->NewGame(); }

  private:
    void SetMargins() const {
        for (const auto& [margin, value] : margins_) margin->Set(value);
    }

    std::uint64_t nodes_;
    std::vector<std::pair<const Margin*, double>> margins_;
    engine::SteadyClock clock_;
    std::optional<engine::Search> search_;
};

/// Points of Up less those of Down, over the iteration's games.
double PlayIteration(const Options& options, const std::vector<TunedNumber>& numbers, const PerturbedPair& pair,
                     std::uint64_t iteration) {
    std::seed_seq sequence{options.Learning.Seed, iteration, std::uint64_t{7}};
    std::mt19937_64 random(sequence);
    PerturbedPlayer up(numbers, pair.Up, options.Nodes, random);
    PerturbedPlayer down(numbers, pair.Down, options.Nodes, random);
    engine::SteadyClock clock;
    engine::Search judge(clock);
    judge.SetHash(1);
    const tuning::SelfPlayOptions opening{OpeningNodes, options.Learning.Seed};
    double points = 0;
    for (std::uint64_t game = 0; game < options.PairsOfGames; ++game) {
        const tuning::GameSoFar start =
            tuning::RandomOpening(judge, opening, OpeningLimitCp, iteration * options.PairsOfGames + game);
        for (const bool upIsWhite : {true, false}) {
            up.NewGame();
            down.NewGame();
            const tuning::Player upPlays = [&](const engine::SearchRoot& root) { return up.Think(root); };
            const tuning::Player downPlays = [&](const engine::SearchRoot& root) { return down.Think(root); };
            const double result =
                tuning::PlayOn(start, upIsWhite ? upPlays : downPlays, upIsWhite ? downPlays : upPlays, false).Result;
            points += upIsWhite ? 2 * result - 1 : 1 - 2 * result;
        }
    }
    return points;
}

/// Plays an iteration in a process of its own; the points come through a pipe.
class Iteration {
  public:
    Iteration(const Options& options, const tuning::Perturbation& learning, std::uint64_t number)
        : number_(number), pair_(learning.PairOf(number)) {
        int ends[2];
        if (pipe(ends) != 0) return;
        process_ = fork();
        if (process_ == 0) {
            const double points = PlayIteration(options, learning.Numbers(), pair_, number);
            _exit(write(ends[1], &points, sizeof points) == sizeof points ? 0 : 1);
        }
        close(ends[1]);
        result_ = ends[0];
    }
    std::optional<double> Points() {
        double points = 0;
        const bool isWhole = result_ >= 0 && read(result_, &points, sizeof points) == sizeof points;
        if (result_ >= 0) close(result_);
        if (process_ > 0) waitpid(process_, nullptr, 0);
        return isWhole ? std::optional(points) : std::nullopt;
    }
    std::uint64_t Number() const { return number_; }
    const PerturbedPair& Pair() const { return pair_; }

  private:
    std::uint64_t number_;
    PerturbedPair pair_;
    pid_t process_ = -1;
    int result_ = -1;
};

/// Iterations side by side all start from the same numbers; false when one fails.
bool PlayRound(const Options& options, tuning::Perturbation& learning, std::uint64_t& done) {
    std::vector<Iteration> round;
    for (int i = 0; i < options.Processes && done + round.size() < options.Learning.Iterations; ++i)
        round.emplace_back(options, learning, done + round.size());
    bool isComplete = true;
    for (Iteration& iteration : round) {
        const std::optional<double> points = iteration.Points();
        isComplete &= points.has_value();
        if (points) learning.Learn(iteration.Number(), iteration.Pair(), *points);
    }
    done += round.size();
    return isComplete;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Tunes margins of the search by games of the engine against itself.");
    app.option_defaults()->always_capture_default();
    app.add_option("--nodes", options.Nodes, "For a move")->check(CLI::PositiveNumber);
    app.add_option("--pairs", options.PairsOfGames, "Of games, in an iteration")->check(CLI::PositiveNumber);
    app.add_option("--iterations", options.Learning.Iterations, "In all")->check(CLI::PositiveNumber);
    app.add_option("--processes", options.Processes, "Iterations at a time")->check(CLI::Range(1, 64));
    app.add_option("--seed", options.Learning.Seed, "Of directions and openings");
    app.add_option("--rate", options.Learning.LastRate, "Part of a step for a point, in the end");
    app.add_option("--state", options.StateFile, "Keeps the numbers")->required();
    app.add_option("LIST", options.ListFile, "NAME LOW HIGH STEP, a line each")->required()->check(CLI::ExistingFile);
    CLI11_PARSE(app, argc, argv);
    std::optional<std::vector<TunedNumber>> numbers = ReadList(options.ListFile);
    if (!numbers) return 1;
    std::uint64_t done = 0;
    if (std::filesystem::exists(options.StateFile) && !ReadState(options.StateFile, done, *numbers)) {
        std::fprintf(stderr, "%s is no state of these numbers\n", options.StateFile.c_str());
        return 1;
    }
    tuning::Perturbation learning(*numbers, options.Learning);
    while (done < options.Learning.Iterations) {
        if (!PlayRound(options, learning, done)) {
            std::fputs("a process that played games has failed\n", stderr);
            return 1;
        }
        if (!WriteState(options.StateFile, done, learning.Numbers())) {
            std::fprintf(stderr, "cannot write %s\n", options.StateFile.c_str());
            return 1;
        }
        std::printf("%llu iterations\n", static_cast<unsigned long long>(done));
        std::fflush(stdout);
    }
    for (const TunedNumber& number : learning.Numbers())
        std::printf("%s %g -> %g\n", number.Name.c_str(), FindMargin(number.Name)->Value(), number.Value);
    return 0;
}
