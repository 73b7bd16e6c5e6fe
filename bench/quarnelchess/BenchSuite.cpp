// How many problems of the tactical suite the engine solves.
//
//   bench-suite [--nodes N] [--seed N]     one thread, a million nodes for each problem; under ten minutes
//   bench-suite --check                    proves every problem again instead; minutes
//
// The open half names what stays unsolved. Of the hidden half only the sum is told, so that nobody can mend
// the engine for one of its positions.
#include "quarnelchess/records/San.h"
#include "quarnelchess/search/Search.h"
#include "tools/suite/Problem.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace quarnel;
using namespace quarnel::suite;

namespace {

constexpr std::uint64_t ProofBudget = 100000000; // nodes for one move, far more than a problem needs

engine::SearchResult Think(engine::Search& search, const Problem& problem, std::uint64_t nodes) {
    search.NewGame();
    engine::SearchRoot root;
    root.Position = problem.Position;
    engine::SearchLimits limits;
    limits.Nodes = nodes;
    return search.Run(root, limits);
}

void Solve(const char* title, const std::vector<Problem>& problems, bool open, std::uint64_t nodes,
           std::uint64_t seed) {
    engine::SteadyClock clock;
    engine::Search search(clock);
    search.SetSeed(seed);
    std::size_t solved = 0;
    std::size_t mates = 0;
    std::size_t solvedMates = 0;
    for (const Problem& problem : problems) {
        const engine::SearchResult result = Think(search, problem, nodes);
        const bool right = IsSolution(problem, result.Best);
        const bool mate = problem.Goal.GainCp == 0;
        solved += right ? 1 : 0;
        mates += mate ? 1 : 0;
        solvedMates += right && mate ? 1 : 0;
        if (!right && open)
            std::printf("  played %s (%d): %s\n", engine::WriteSan(problem.Position, result.Best).c_str(), result.Value,
                        WriteEpd(problem).c_str());
        std::fflush(stdout);
    }
    std::printf("%s: %zu of %zu solved at %llu nodes (mates %zu of %zu, material %zu of %zu)\n", title, solved,
                problems.size(), static_cast<unsigned long long>(nodes), solvedMates, mates, solved - solvedMates,
                problems.size() - mates);
}

bool Check(const char* title, const std::vector<Problem>& problems) {
    Prover prover;
    std::size_t proved = 0;
    for (const Problem& problem : problems) {
        const bool stands = IsProven(prover, problem, ProofBudget);
        if (!stands) std::printf("  not proved: quarnel.%03d\n", problem.Number);
        proved += stands ? 1 : 0;
    }
    std::printf("%s: %zu of %zu proved\n", title, proved, problems.size());
    return proved == problems.size();
}

} // namespace

int main(int argc, char** argv) {
    std::uint64_t nodes = 1000000;
    std::uint64_t seed = 1;
    bool check = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--check") == 0)
            check = true;
        else if (std::strcmp(argv[i], "--nodes") == 0 && i + 1 < argc)
            nodes = std::strtoull(argv[++i], nullptr, 10);
        else if (std::strcmp(argv[i], "--seed") == 0 && i + 1 < argc)
            seed = std::strtoull(argv[++i], nullptr, 10);
        else
            return std::fputs("bench-suite [--nodes N] [--seed N] [--check]\n", stderr), 2;
    }
    bool good = true;
    for (const bool open : {true, false}) {
        const char* title = open ? "open half" : "hidden half";
        const std::string path = std::string(QUARNEL_SUITE_DIR) + (open ? "/open.epd" : "/hidden.epd");
        const std::optional<std::vector<Problem>> problems = ReadSuite(path);
        if (!problems) return std::fprintf(stderr, "%s does not read\n", path.c_str()), 1;
        if (check)
            good = Check(title, *problems) && good;
        else
            Solve(title, *problems, open, nodes, seed);
    }
    return good ? 0 : 1;
}
