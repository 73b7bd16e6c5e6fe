#include "Player.h"

#include "UciPlayer.h"

#include <random>

namespace quarnel::match {
namespace {

using engine::MoveBuffer;

/// Any legal move, all alike.
class RandomMover final : public Player {
  public:
    void NewGame(std::uint64_t seed) override { random_.seed(seed); }
    Answer Choose(const Game& game) override {
        MoveBuffer moves;
        engine::GenerateMoves(game.Position(), moves);
        return {MoveText(moves[random_() % moves.Size()]), std::nullopt};
    }

  private:
    std::mt19937_64 random_;
};

/// Takes the most valuable piece in sight, anything at all when there is none.
class Grabber final : public Player {
  public:
    void NewGame(std::uint64_t seed) override { random_.seed(seed); }
    Answer Choose(const Game& game) override {
        MoveBuffer moves;
        engine::GenerateMoves(game.Position(), moves);
        std::vector<Move> best;
        int bestPrey = 0;
        for (const Move move : moves) {
            const int prey = Prey(game.Position(), move);
            if (prey > bestPrey) best.clear();
            if (prey >= bestPrey) best.push_back(move);
            bestPrey = std::max(bestPrey, prey);
        }
        return {MoveText(best[random_() % best.size()]), std::nullopt};
    }

  private:
    /// Kinds are numbered from the pawn to the queen by their worth.
    static int Prey(const Board& board, Move move) {
        if (!board.IsCapture(move)) return 0;
        return move.Kind() == engine::MoveKind::EnPassant ? 1 : 1 + engine::KindOf(board.At(move.To()));
    }

    std::mt19937_64 random_;
};

} // namespace

std::unique_ptr<Player> MakePlayer(const PlayerSpec& spec, const std::atomic<bool>& stop) {
    if (spec.Command == "builtin:random") return std::make_unique<RandomMover>();
    if (spec.Command == "builtin:grabber") return std::make_unique<Grabber>();
    if (spec.IsBuiltin()) throw std::runtime_error("There is no player \"" + spec.Command + "\".");
    return std::make_unique<UciPlayer>(spec, stop);
}

} // namespace quarnel::match
