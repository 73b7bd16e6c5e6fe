// Players: whoever chooses the moves. An engine process behind a pipe, or a few lines of our own.
//
// A player that fails throws Fault; it has lost the game, and NewGame() sets it up afresh. One that
// cannot even be started throws std::runtime_error: then the match makes no sense. Every wait ends with
// Interrupted soon after the stop flag is raised. Each player belongs to one thread.
#pragma once

#include "Game.h"
#include "GameClock.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <utility>

namespace quarnel::match {

struct Limit {
    enum class Kind { None, Nodes, MoveTimeMs, Depth, Clock };
    Kind What = Kind::None;
    int Value = 0; // of a kind but Clock
    ClockRules Rules = {};

    /// Nothing for other kinds.
    std::optional<ClockRules> Clock() const { return What == Kind::Clock ? std::optional(Rules) : std::nullopt; }
};

struct PlayerSetup {
    std::string Name;    // no blanks
    std::string Command; // for the shell; "builtin:random", "builtin:grabber" and "builtin:careful" are our own
    std::vector<std::pair<std::string, std::string>> Options;
    Limit Thinking;        // needed by engines; our own heed none, but the referee's clock runs for them as well
    int TimeoutMs = 60000; // for a move, beyond what the clock has left; the engine is hanging then

    bool IsBuiltin() const { return Command.starts_with("builtin:"); }
};

class Fault : public std::runtime_error {
  public:
    Fault(Ending how, const std::string& what) : std::runtime_error(what), How(how) {}
    const Ending How;
};

class Interrupted : public std::runtime_error {
  public:
    Interrupted() : std::runtime_error("interrupted") {}
};

struct Answer {
    std::string Text;           // the move
    std::optional<int> ScoreCp; // the mover's view; mates are +-30000
};

class Player {
  public:
    virtual ~Player() = default;
    /// Forgets the game before. The same `seed` makes the same choices, where the player takes a seed.
    virtual void NewGame(std::uint64_t seed) = 0;
    /// The move to play next; `times` is what the clocks show.
    virtual Answer Choose(const Game& game, const ClockTimes& times) = 0;
    /// After a fault: the next game begins with a fresh process.
    virtual void Discard() {}
};

/// Nothing is started before the first game. `stop` must outlive the player.
std::unique_ptr<Player> MakePlayer(const PlayerSetup& setup, const std::atomic<bool>& stop);

/// Raised by SIGINT and SIGTERM once the function was called; a second signal ends the program at once.
const std::atomic<bool>& WatchSignals();

} // namespace quarnel::match
