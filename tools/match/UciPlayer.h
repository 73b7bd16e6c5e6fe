// An engine process that speaks the universal chess interface.
//
// The process stays between games; only a fault ends it early.
#pragma once

#include "Player.h"
#include "Process.h"

namespace quarnel::match {

class UciPlayer final : public Player {
  public:
    UciPlayer(PlayerSetup setup, const std::atomic<bool>& stop) : setup_(std::move(setup)), stop_(stop) {}

    void NewGame(std::uint64_t seed) override;
    Answer Choose(const Game& game, const ClockTimes& times) override;
    void Discard() override { process_.reset(); }

  private:
    void Start();
    void SendOptions(const std::vector<std::string>& known);
    void Send(const std::string& text);
    std::string Read(Process::TimePoint deadline);
    void AwaitReady();

    const PlayerSetup setup_;
    const std::atomic<bool>& stop_;
    std::unique_ptr<Process> process_;
    bool takesSeed_ = false; // announces an option Seed that the match does not set
};

/// The command, without its end, that lets an engine think within `limit` while the clocks show `times`.
std::string GoCommand(const Limit& limit, const ClockTimes& times);

/// The score of an "info" line, the mover's view; nothing for other lines, or for lines of play but the best.
std::optional<int> ReadScore(std::string_view line);

} // namespace quarnel::match
