#include "SelfPlay.h"

#include "quarnelchess/board/MoveGen.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <random>

namespace quarnel::tuning {
namespace {

using namespace engine;

constexpr int WonCp = 1000;       // both sides see this much
constexpr int WonPlies = 6;       // for so many plies: the game is won
constexpr int DeadCp = 8;         // both sides see no more than this
constexpr int DeadPlies = 16;     // for so many plies
constexpr int DeadFromPly = 70;   // and not before this one: the game is drawn
constexpr int LongestGame = 400;  // plies; then it is drawn
constexpr int DecidedCp = 1200;   // beyond, a position teaches nothing
constexpr int FirstQuietPly = 11; // before, the pieces still stand as random moves have left them

std::mt19937_64 RandomFor(std::uint64_t seed, std::uint64_t number, std::uint64_t purpose) {
    std::seed_seq sequence{seed, seed >> 32, number, number >> 32, purpose};
    return std::mt19937_64(sequence);
}

/// The game as far as it has come: the position and what repetitions need.
struct Progress {
    SearchRoot Root;
    int Ply = 0;

    void Play(Move move) {
        Root.Earlier.push_back(Root.Position.PositionKey());
        Root.Position.Make(move);
        if (Root.Position.HalfmoveClock() == 0) Root.Earlier.clear();
        ++Ply;
    }
    bool IsDrawn() const {
        const Board& board = Root.Position;
        const Key key = board.PositionKey();
        return board.HalfmoveClock() >= 100 || board.InsufficientMaterial() || Ply >= LongestGame ||
               std::count(Root.Earlier.begin(), Root.Earlier.end(), key) >= 2;
    }
};

SearchResult Think(Search& search, const Progress& progress, std::uint64_t nodes) {
    SearchLimits limits;
    limits.Nodes = nodes;
    return search.Run(progress.Root, limits);
}

/// Six to nine random legal moves; nothing when they end the game.
std::optional<Progress> RandomOpening(std::mt19937_64& random) {
    Progress progress;
    const auto plies = static_cast<int>(6 + random() % 4);
    while (progress.Ply < plies) {
        MoveBuffer moves;
        GenerateMoves(progress.Root.Position, moves);
        if (moves.Empty()) return std::nullopt;
        progress.Play(moves[random() % moves.Size()]);
    }
    if (CountMoves(progress.Root.Position) == 0) return std::nullopt;
    return progress;
}

Progress EvenOpening(Search& search, const SelfPlayOptions& options, std::mt19937_64& random) {
    while (true) {
        const std::optional<Progress> opening = RandomOpening(random);
        if (opening && std::abs(Think(search, *opening, options.Nodes).Value) <= options.OpeningLimitCp)
            return *opening;
    }
}

/// Counts for how long both sides have agreed.
class Agreement {
  public:
    std::optional<double> Add(int valueCp, int ply) {
        white_ = valueCp >= WonCp ? white_ + 1 : 0;
        black_ = valueCp <= -WonCp ? black_ + 1 : 0;
        dead_ = std::abs(valueCp) <= DeadCp && ply >= DeadFromPly ? dead_ + 1 : 0;
        if (white_ >= WonPlies) return 1.0;
        if (black_ >= WonPlies) return 0.0;
        if (dead_ >= DeadPlies) return 0.5;
        return std::nullopt;
    }

  private:
    int white_ = 0;
    int black_ = 0;
    int dead_ = 0;
};

} // namespace

PlayedGame PlayGame(Search& search, const SelfPlayOptions& options, std::uint64_t number) {
    std::mt19937_64 random = RandomFor(options.Seed, number, 0);
    search.NewGame();
    Progress progress = EvenOpening(search, options, random);
    PlayedGame game;
    Agreement agreement;
    while (!progress.IsDrawn()) {
        const Board& board = progress.Root.Position;
        const bool white = board.SideToMove() == White;
        if (CountMoves(board) == 0) {
            if (board.InCheck()) game.Result = white ? 0.0 : 1.0;
            break;
        }
        const SearchResult result = Think(search, progress, options.Nodes);
        const int value = white ? result.Value : -result.Value;
        game.Moves.push_back({board, result.Best, value, progress.Ply});
        if (const std::optional<double> agreed = agreement.Add(value, progress.Ply)) {
            game.Result = *agreed;
            break;
        }
        progress.Play(result.Best);
    }
    return game;
}

std::vector<PlayedMove> QuietPositions(const PlayedGame& game, std::size_t most, std::uint64_t number) {
    std::vector<PlayedMove> quiet;
    for (const PlayedMove& move : game.Moves)
        if (move.Ply >= FirstQuietPly && !move.Before.InCheck() && !move.Before.IsNoisy(move.Played) &&
            std::abs(move.ValueCp) < DecidedCp)
            quiet.push_back(move);
    if (quiet.size() > most) {
        std::mt19937_64 random = RandomFor(0, number, 1);
        std::shuffle(quiet.begin(), quiet.end(), random);
        quiet.resize(most);
        std::sort(quiet.begin(), quiet.end(), [](const PlayedMove& a, const PlayedMove& b) { return a.Ply < b.Ply; });
    }
    return quiet;
}

} // namespace quarnel::tuning
