// Prints the engine's speeds: perft nodes, rule calls and search nodes a second.
//
//   bench-engine                              everything but the billion-node counts, under a minute
//   bench-engine --benchmark_filter=Perft     legal move counting only; a wrong count is an error
//   bench-engine --deep                       the well-known counts up to billions of leaves as well
//   bench-engine --signature [DEPTH...]       only the nodes of a fixed set of searches, for quarnelchess/signature.txt
#include "Signature.h"
#include "quarnelchess/board/Fen.h"
#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/records/Records.h"
#include "quarnelchess/search/Search.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace quarnel::engine;

namespace {

constexpr const char* StartFen = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";
constexpr const char* TwoCastlesFen = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1";
constexpr const char* RookEndingFen = "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1";
constexpr const char* PromotionsFen = "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1";
constexpr const char* DiscoveryFen = "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8";
constexpr const char* SymmetryFen = "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10";

void CountLeaves(benchmark::State& state, const char* fen, int depth, std::uint64_t expected) {
    const Board board = ReadFen(fen).value();
    std::uint64_t leaves = 0;
    while (state.KeepRunning()) {
        const std::uint64_t found = Perft(board, depth);
        if (found != expected) state.SkipWithError("wrong number of leaves");
        leaves += found;
    }
    state.counters["nodes/s"] = benchmark::Counter(static_cast<double>(leaves), benchmark::Counter::kIsRate);
}

void ListLegalMoves(benchmark::State& state) {
    const Position position = RecordFromBoard(ReadFen(TwoCastlesFen).value());
    MoveList list;
    while (state.KeepRunning()) {
        ListMoves(position, White, list);
        benchmark::DoNotOptimize(list);
    }
    state.counters["calls/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void SearchNodes(benchmark::State& state) {
    SteadyClock clock;
    Search search(clock);
    search.SetThreads(static_cast<int>(state.range(0)));
    SearchLimits limits;
    limits.Nodes = 1000000;
    std::uint64_t nodes = 0;
    while (state.KeepRunning()) {
        for (const char* fen : {StartFen, TwoCastlesFen, RookEndingFen, SymmetryFen}) {
            search.NewGame();
            SearchRoot root;
            root.Position = ReadFen(fen).value();
            nodes += search.Run(root, limits).Nodes;
        }
    }
    state.counters["nodes/s"] = benchmark::Counter(static_cast<double>(nodes), benchmark::Counter::kIsRate);
}

void Register(bool deep) {
    const struct {
        const char* Name;
        const char* Fen;
        std::uint64_t Leaves;
        int Depth;
        bool Deep;
    } counts[] = {
        {"Perft/Start/6", StartFen, 119060324, 6, false},
        {"Perft/Start/7", StartFen, 3195901860ULL, 7, true},
        {"Perft/TwoCastles/5", TwoCastlesFen, 193690690, 5, false},
        {"Perft/RookEnding/7", RookEndingFen, 178633661, 7, false},
        {"Perft/Promotions/5", PromotionsFen, 15833292, 5, false},
        {"Perft/Promotions/6", PromotionsFen, 706045033, 6, true},
        {"Perft/Discovery/5", DiscoveryFen, 89941194, 5, false},
        {"Perft/Symmetry/5", SymmetryFen, 164075551, 5, false},
    };
    for (const auto& c : counts)
        if (deep || !c.Deep)
            benchmark::RegisterBenchmark(c.Name, CountLeaves, c.Fen, c.Depth, c.Leaves)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("GetMove/TwoCastles", ListLegalMoves);
    benchmark::RegisterBenchmark("Search", SearchNodes)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime();
}

/// A line for each depth, as they stand in quarnelchess/signature.txt.
int PrintSignature(std::vector<int> depths) {
    if (depths.empty()) depths = {8, 13};
    for (const int depth : depths) {
        if (depth < 1) return std::fputs("bench-engine: a depth is a number from 1 on\n", stderr), 2;
        std::printf("depth %d nodes %llu\n", depth, static_cast<unsigned long long>(SignatureNodes(depth)));
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::strcmp(argv[1], "--signature") == 0) {
        std::vector<int> depths;
        for (int i = 2; i < argc; ++i) depths.push_back(std::atoi(argv[i]));
        return PrintSignature(depths);
    }
    bool deep = false;
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--deep") == 0)
            deep = true;
        else
            argv[kept++] = argv[i];
    }
    argc = kept;
    Register(deep);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
