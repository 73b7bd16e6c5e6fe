// quarnel-selfplay: writes positions of self-played games, one a line: position;result;value.
//
// The result is 1, 0.5 or 0 and the value in centipawns, both White's view. The file depends on games,
// first (the number of the first game), nodes, positions (the most of one game) and seed alone.
#include "SelfPlay.h"
#include "quarnelchess/board/Fen.h"

#include <CLI/CLI.hpp>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_set>

using namespace quarnel;

namespace {

struct Options {
    std::uint64_t Games = 1000;
    std::uint64_t First = 0;
    std::uint64_t Positions = 20;
    std::uint64_t Threads = 1;
    tuning::SelfPlayOptions Play;
    std::string File;
};

/// Takes games as they are finished and writes them in the order of their numbers, no position twice.
class Writer {
  public:
    Writer(const std::string& path, std::uint64_t first) : file_(path), next_(first) {}
    bool IsGood() const { return file_.good(); }
    std::size_t Positions() const { return seen_.size(); }

    void Add(std::uint64_t number, double result, std::vector<tuning::PlayedMove> moves) {
        const std::lock_guard lock(mutex_);
        waiting_[number] = {result, std::move(moves)};
        while (!waiting_.empty() && waiting_.begin()->first == next_) {
            Write(waiting_.begin()->second);
            waiting_.erase(waiting_.begin());
            if (++next_ % 1000 == 0) std::printf("%llu games, %zu positions\n", Printable(next_), seen_.size());
            std::fflush(stdout);
        }
    }

  private:
    struct Finished {
        double Result = 0.5;
        std::vector<tuning::PlayedMove> Moves;
    };
    static unsigned long long Printable(std::uint64_t number) { return number; }

    void Write(const Finished& game) {
        for (const tuning::PlayedMove& move : game.Moves)
            if (seen_.insert(move.Before.PositionKey()).second)
                file_ << engine::WriteFen(move.Before, move.Ply / 2 + 1) << ';' << game.Result << ';' << move.ValueCp
                      << '\n';
    }

    std::mutex mutex_;
    std::ofstream file_;
    std::uint64_t next_;
    std::map<std::uint64_t, Finished> waiting_;
    std::unordered_set<engine::Key> seen_;
};

void PlayGames(const Options& options, std::atomic<std::uint64_t>& next, Writer& writer) {
    engine::SteadyClock clock;
    engine::Search search(clock);
    search.SetHash(1);
    while (true) {
        const std::uint64_t number = next++;
        if (number >= options.First + options.Games) return;
        const tuning::PlayedGame game = tuning::PlayGame(search, options.Play, number);
        const auto most = static_cast<std::size_t>(options.Positions);
        writer.Add(number, game.Result, tuning::QuietPositions(game, most, number));
    }
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Writes positions of games that the engine plays against itself.");
    app.option_defaults()->always_capture_default();
    app.add_option("--games", options.Games, "How many");
    app.add_option("--first", options.First, "The number of the first game");
    app.add_option("--nodes", options.Play.Nodes, "For a move")->check(CLI::PositiveNumber);
    app.add_option("--positions", options.Positions, "At most, of a game");
    app.add_option("--threads", options.Threads, "Games at a time")->check(CLI::PositiveNumber);
    app.add_option("--seed", options.Play.Seed, "Of the games");
    app.add_option("FILE", options.File, "Gets the positions")->required();
    CLI11_PARSE(app, argc, argv);
    Writer writer(options.File, options.First);
    if (!writer.IsGood()) {
        std::fprintf(stderr, "cannot write %s\n", options.File.c_str());
        return 1;
    }
    std::atomic<std::uint64_t> next = options.First;
    std::vector<std::thread> threads;
    for (std::uint64_t i = 0; i < options.Threads; ++i) threads.emplace_back([&] { PlayGames(options, next, writer); });
    for (std::thread& thread : threads) thread.join();
    std::printf("%zu positions\n", writer.Positions());
    return writer.IsGood() ? 0 : 1;
}
