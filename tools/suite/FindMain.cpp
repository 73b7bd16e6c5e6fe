// quarnel-find-problems: looks for proven mates and wins of material in careless games of the engine
// against itself.
//
// Plays games of so few nodes a move that both sides blunder, and asks the prover about every position that a
// short search values higher than it looks. Kept are mates in two to four moves and wins of at least a
// minor piece in two or three, all without a mate or such a win at once, where up to three first moves do
// it and, for a win of material, no other wins as much even a move later. At most one of a game is kept,
// and problems that a search of a thousand nodes solves are four fifths at most. They are numbered from
// --number on and added to OPEN (even ones) and HIDDEN (odd ones).
#include "Problem.h"
#include "quarnelchess/evaluation/Evaluation.h"
#include "tools/tune/SelfPlay.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <unordered_set>

using namespace quarnel;
using namespace quarnel::suite;

namespace {

constexpr int AlreadyDecidedCp = 500; // material; beyond, there is nothing to solve
constexpr int WinCp = 300;            // at least
constexpr std::size_t MostSolutions = 3;
constexpr std::uint64_t Budget = 100000; // nodes for one question to the prover
constexpr int PromisingCp = 150;         // a short search sees so much more than meets the eye
constexpr std::uint64_t PromisingNodes = 5000;
constexpr std::uint64_t EasyNodes = 1000; // an easy problem is solved by so many
constexpr std::uint64_t EasyPercent = 80; // at most, of the problems kept

struct Options {
    std::uint64_t Games = 1000;
    std::uint64_t First = 0;
    std::uint64_t Count = 240;
    std::uint64_t Number = 1;
    tuning::SelfPlayOptions Play = {100, 11};
    std::string OpenFile;
    std::string HiddenFile;
};

class Finder {
  public:
    explicit Finder(const Options& options) : options_(options), search_(clock_) {
        search_.SetHash(1);
        open_.open(options.OpenFile, std::ios::app);
        hidden_.open(options.HiddenFile, std::ios::app);
    }

    void Run() {
        const std::uint64_t end = options_.First + options_.Games;
        for (std::uint64_t game = options_.First; game < end && kept_ < options_.Count; ++game) {
            LookThrough(tuning::PlayGame(search_, options_.Play, game));
            if (game % 10 == 9) Report(game + 1);
        }
    }

  private:
    void LookThrough(const tuning::PlayedGame& game) {
        for (const tuning::PlayedMove& move : game.Moves) {
            if (!seen_.insert(move.Before.PositionKey()).second || !IsPromising(move.Before)) continue;
            ++candidates_;
            const std::optional<Problem> problem = Prove(move.Before);
            if (problem && Keep(*problem)) return;
        }
    }

    std::optional<Problem> Prove(const engine::Board& board) {
        if (std::abs(MaterialBalance(board, board.SideToMove())) > AlreadyDecidedCp || board.HalfmoveClock() > 60)
            return std::nullopt;
        for (const Claim& goal : {Claim{2, 0}, {3, 0}, {4, 0}, {2, WinCp}, {3, WinCp}}) {
            const auto solutions = prover_.Solutions(board, goal, Budget, MostSolutions);
            if (!solutions) return std::nullopt;
            if (solutions->empty()) continue;
            const Problem problem = {board, goal, *solutions, 0};
            return IsProven(prover_, problem, Budget) ? std::optional(problem) : std::nullopt;
        }
        return std::nullopt;
    }

    engine::SearchResult Think(const engine::Board& board, std::uint64_t nodes) {
        search_.NewGame();
        engine::SearchRoot root;
        root.Position = board;
        engine::SearchLimits limits;
        limits.Nodes = nodes;
        return search_.Run(root, limits);
    }

    bool IsPromising(const engine::Board& board) {
        return Think(board, PromisingNodes).Value - evaluation_.Evaluate(board) >= PromisingCp;
    }

    bool Keep(Problem problem) {
        ++proven_;
        const bool easy = IsSolution(problem, Think(problem.Position, EasyNodes).Best);
        if (easy && (easy_ + 1) * 100 > (kept_ + 1) * EasyPercent) return false;
        easy_ += easy ? 1 : 0;
        problem.Number = static_cast<int>(options_.Number + kept_++);
        (problem.Number % 2 == 0 ? open_ : hidden_) << WriteEpd(problem) << std::endl;
        return true;
    }

    void Report(std::uint64_t games) const {
        std::printf("%llu games, %llu candidates, %llu proven, %llu kept, %llu of them easy\n",
                    static_cast<unsigned long long>(games), static_cast<unsigned long long>(candidates_),
                    static_cast<unsigned long long>(proven_), static_cast<unsigned long long>(kept_),
                    static_cast<unsigned long long>(easy_));
        std::fflush(stdout);
    }

    const Options& options_;
    engine::SteadyClock clock_;
    engine::Search search_;
    engine::Evaluation evaluation_;
    Prover prover_;
    std::unordered_set<engine::Key> seen_;
    std::ofstream open_;
    std::ofstream hidden_;
    std::uint64_t candidates_ = 0;
    std::uint64_t proven_ = 0;
    std::uint64_t kept_ = 0;
    std::uint64_t easy_ = 0;
};

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Looks for proven mates and wins of material in careless games of the engine against itself.");
    app.option_defaults()->always_capture_default();
    app.add_option("--games", options.Games, "At most so many");
    app.add_option("--first", options.First, "The number of the first game");
    app.add_option("--seed", options.Play.Seed, "Of the games");
    app.add_option("--nodes", options.Play.Nodes, "For a move");
    app.add_option("--count", options.Count, "Problems to keep");
    app.add_option("--number", options.Number, "Of the first problem");
    app.add_option("OPEN", options.OpenFile, "Gets the problems with even numbers")->required();
    app.add_option("HIDDEN", options.HiddenFile, "Gets the others")->required();
    CLI11_PARSE(app, argc, argv);
    Finder(options).Run();
    return 0;
}
