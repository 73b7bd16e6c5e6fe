#include "Player.h"

#include "UciPlayer.h"

#include "quarnelchess/search/Handicap.h"

#include <csignal>
#include <limits>
#include <random>

namespace quarnel::match {
namespace {

std::atomic<bool> stopRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void RequestStop(int signal) {
    stopRequested.store(true, std::memory_order_relaxed);
    std::signal(signal, SIG_DFL);
}

using engine::MoveBuffer;

/// Kinds are numbered from the pawn to the queen by their worth.
int Prey(const Board& board, Move move) {
    if (!board.IsCapture(move)) return 0;
    return move.Kind() == engine::MoveKind::EnPassant ? 1 : 1 + engine::KindOf(board.At(move.To()));
}

int AllAlike(const Board&, Move) {
    return 0;
}

/// Takes what he can, but leaves nothing to a capture.
int PreyWithCare(const Board& board, Move move) {
    constexpr int pieceCp = 200;
    return engine::LosesToCapture(board, move, pieceCp) ? -1 : Prey(board, move);
}

/// Plays any of the moves that his judgement likes best.
class SimplePlayer final : public Player {
  public:
    using Judgement = int (*)(const Board&, Move);

    explicit SimplePlayer(Judgement judge) : judge_(judge) {}
    void NewGame(std::uint64_t seed) override { random_.seed(seed); }
    Answer Choose(const Game& game, const ClockTimes&) override {
        MoveBuffer moves;
        engine::GenerateMoves(game.Position(), moves);
        std::vector<Move> best;
        int bestValue = std::numeric_limits<int>::min();
        for (const Move move : moves) {
            const int value = judge_(game.Position(), move);
            if (value > bestValue) best.clear();
            if (value >= bestValue) best.push_back(move);
            bestValue = std::max(bestValue, value);
        }
        return {MoveText(best[random_() % best.size()]), std::nullopt};
    }

  private:
    Judgement judge_;
    std::mt19937_64 random_;
};

} // namespace

std::unique_ptr<Player> MakePlayer(const PlayerSetup& setup, const std::atomic<bool>& stop) {
    if (setup.Command == "builtin:random") return std::make_unique<SimplePlayer>(AllAlike);
    if (setup.Command == "builtin:grabber") return std::make_unique<SimplePlayer>(Prey);
    if (setup.Command == "builtin:careful") return std::make_unique<SimplePlayer>(PreyWithCare);
    if (setup.IsBuiltin()) throw std::runtime_error("There is no player \"" + setup.Command + "\".");
    return std::make_unique<UciPlayer>(setup, stop);
}

const std::atomic<bool>& WatchSignals() {
    std::signal(SIGINT, RequestStop);
    std::signal(SIGTERM, RequestStop);
    return stopRequested;
}

} // namespace quarnel::match
