// quarnel-selfplay: plays the engine against itself and writes quiet positions into shards, see Positions.h.
//
// A shard depends on its number, games, nodes, positions (the most of one game) and seed alone. Those already in the
// folder are left alone, so an ended run goes on where it was; a thread plays a shard by itself.
#include "SelfPlay.h"

#include <CLI/CLI.hpp>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <thread>
#include <unordered_set>

using namespace quarnel;

namespace {

struct Options {
    std::uint64_t Shards = 10;
    std::uint64_t First = 0;
    std::uint64_t Games = 1000; // a shard
    std::uint64_t Positions = 60;
    std::uint64_t Threads = 1;
    tuning::SelfPlayOptions Play;
    std::string Folder;
};

std::string PathOf(const Options& options, std::uint64_t shard) {
    char name[40];
    std::snprintf(name, sizeof name, "positions-%06llu.qcp", static_cast<unsigned long long>(shard));
    return options.Folder + '/' + name;
}

tuning::Shard PlayShard(engine::Search& search, const Options& options, std::uint64_t number) {
    tuning::Shard shard;
    shard.Header.Seed = options.Play.Seed;
    shard.Header.FirstGame = number * options.Games;
    shard.Header.Games = static_cast<std::uint32_t>(options.Games);
    shard.Header.Nodes = static_cast<std::uint32_t>(options.Play.Nodes);
    std::unordered_set<engine::Key> seen;
    for (std::uint64_t i = 0; i < options.Games; ++i) {
        const std::uint64_t game = shard.Header.FirstGame + i;
        const tuning::PlayedGame played = tuning::PlayGame(search, options.Play, game);
        for (tuning::PackedPosition position :
             tuning::QuietPositions(played, static_cast<std::size_t>(options.Positions), game)) {
            const auto board = tuning::Unpack(position);
            if (!board || !seen.insert(board->PositionKey()).second) continue;
            position.Game = static_cast<std::uint16_t>(i);
            shard.Positions.push_back(position);
        }
    }
    return shard;
}

class Workshop {
  public:
    explicit Workshop(const Options& options) : options_(options), next_(options.First) {}

    void PlayShards() {
        engine::SteadyClock clock;
        engine::Search search(clock);
        search.SetHash(1);
        while (!failed_) {
            const std::uint64_t number = next_++;
            if (number >= options_.First + options_.Shards) return;
            const std::string path = PathOf(options_, number);
            if (std::filesystem::exists(path)) continue;
            tuning::Shard shard = PlayShard(search, options_, number);
            const std::lock_guard lock(mutex_);
            if (!tuning::WriteShard(path, shard)) {
                std::fprintf(stderr, "cannot write %s\n", path.c_str());
                failed_ = true;
                return;
            }
            positions_ += shard.Positions.size();
            std::printf("%s: %zu positions, %zu in this run\n", path.c_str(), shard.Positions.size(), positions_);
            std::fflush(stdout);
        }
    }
    bool HasFailed() const { return failed_; }

  private:
    const Options& options_;
    std::atomic<std::uint64_t> next_;
    std::atomic<bool> failed_{false};
    std::mutex mutex_;
    std::size_t positions_ = 0;
};

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Writes positions of games that the engine plays against itself.");
    app.option_defaults()->always_capture_default();
    app.add_option("--shards", options.Shards, "How many files");
    app.add_option("--first", options.First, "The number of the first file");
    app.add_option("--games", options.Games, "In a file")->check(CLI::Range(1, 65535));
    app.add_option("--nodes", options.Play.Nodes, "For a move")->check(CLI::PositiveNumber);
    app.add_option("--positions", options.Positions, "At most, of a game");
    app.add_option("--threads", options.Threads, "Files at a time")->check(CLI::PositiveNumber);
    app.add_option("--seed", options.Play.Seed, "Of the games");
    app.add_option("FOLDER", options.Folder, "Gets the files")->required()->check(CLI::ExistingDirectory);
    CLI11_PARSE(app, argc, argv);
    Workshop workshop(options);
    std::vector<std::thread> threads;
    for (std::uint64_t i = 0; i < options.Threads; ++i) threads.emplace_back([&] { workshop.PlayShards(); });
    for (std::thread& thread : threads) thread.join();
    return workshop.HasFailed() ? 1 : 0;
}
