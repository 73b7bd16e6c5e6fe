#include "SelfPlay.h"

#include "quarnelchess/board/MoveGen.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <random>

namespace quarnel::tuning {
namespace {

using namespace engine;

constexpr int WonCp = 1000;      // both sides see this much
constexpr int WonPlies = 6;      // for so many plies: the game is won
constexpr int DeadCp = 8;        // both sides see no more than this
constexpr int DeadPlies = 16;    // for so many plies
constexpr int DeadFromPly = 70;  // and not before this one: the game is drawn
constexpr int LongestGame = 400; // plies; then it is drawn
constexpr int DecidedCp = 2500;  // beyond, a position teaches nothing
constexpr int QuietCp = 60;      // what captures may win in a quiet position

constexpr int EvenOpeningCp = 150;   // the larger side's advantage at most
constexpr int UnevenOpeningCp = 400; // in every second game
constexpr std::uint64_t PlayedOnEvery = 8;

std::mt19937_64 RandomFor(std::uint64_t seed, std::uint64_t number, std::uint64_t purpose) {
    std::seed_seq sequence{seed, seed >> 32, number, number >> 32, purpose};
    return std::mt19937_64(sequence);
}

SearchResult Think(Search& search, const SearchRoot& root, std::uint64_t nodes) {
    SearchLimits limits;
    limits.Nodes = nodes;
    return search.Run(root, limits);
}

/// Six to nine random legal moves; nothing when they end the game.
std::optional<GameSoFar> RandomMoves(std::mt19937_64& random) {
    GameSoFar game;
    const auto plies = static_cast<int>(6 + random() % 4);
    while (game.Ply < plies) {
        MoveBuffer moves;
        GenerateMoves(game.Root.Position, moves);
        if (moves.Empty()) return std::nullopt;
        game.Play(moves[random() % moves.Size()]);
    }
    if (CountMoves(game.Root.Position) == 0) return std::nullopt;
    return game;
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

/// Captures and promotions until nothing more is to be won, fail-soft.
int Settle(const Board& board, int alpha, int beta, Evaluation& evaluation) {
    int best = evaluation.Evaluate(board);
    if (best >= beta) return best;
    alpha = std::max(alpha, best);
    MoveBuffer moves;
    GenerateMoves(board, moves);
    for (const Move move : moves) {
        if (!board.IsNoisy(move) || !board.ExchangeGains(move, 0)) continue;
        Board next = board;
        next.Make(move);
        best = std::max(best, -Settle(next, -beta, -alpha, evaluation));
        if (best >= beta) return best;
        alpha = std::max(alpha, best);
    }
    return best;
}

bool NothingHangs(const Board& board, Evaluation& evaluation) {
    const int value = evaluation.Evaluate(board);
    return Settle(board, value + QuietCp, value + QuietCp + 1, evaluation) <= value + QuietCp;
}

} // namespace

void GameSoFar::Play(Move move) {
    Root.Earlier.push_back(Root.Position.PositionKey());
    Root.Position.Make(move);
    if (Root.Position.HalfmoveClock() == 0) Root.Earlier.clear();
    ++Ply;
}

bool GameSoFar::IsDrawn() const {
    const Board& board = Root.Position;
    return board.HalfmoveClock() >= 100 || board.InsufficientMaterial() || Ply >= LongestGame ||
           std::count(Root.Earlier.begin(), Root.Earlier.end(), board.PositionKey()) >= 2;
}

GameSoFar RandomOpening(Search& search, const SelfPlayOptions& options, int limitCp, std::uint64_t number) {
    std::mt19937_64 random = RandomFor(options.Seed, number, 0);
    while (true) {
        const std::optional<GameSoFar> opening = RandomMoves(random);
        if (opening && std::abs(Think(search, opening->Root, options.Nodes).Value) <= limitCp) return *opening;
    }
}

PlayedGame PlayOn(GameSoFar soFar, const Player& white, const Player& black, bool toTheEnd) {
    PlayedGame game;
    Agreement agreement;
    while (!soFar.IsDrawn()) {
        const Board& board = soFar.Root.Position;
        const bool isWhite = board.SideToMove() == White;
        if (CountMoves(board) == 0) {
            if (board.InCheck()) game.Result = isWhite ? 0.0 : 1.0;
            break;
        }
        const SearchResult result = (isWhite ? white : black)(soFar.Root);
        const int value = isWhite ? result.Value : -result.Value;
        game.Moves.push_back({board, result.Best, value, soFar.Ply});
        const std::optional<double> agreed = agreement.Add(value, soFar.Ply);
        if (agreed && !(toTheEnd && *agreed != 0.5)) {
            game.Result = *agreed;
            break;
        }
        soFar.Play(result.Best);
    }
    return game;
}

PlayedGame PlayGame(Search& search, const SelfPlayOptions& options, std::uint64_t number) {
    search.NewGame();
    const int limitCp = number % 2 == 0 ? EvenOpeningCp : UnevenOpeningCp;
    const Player player = [&](const SearchRoot& root) { return Think(search, root, options.Nodes); };
    return PlayOn(RandomOpening(search, options, limitCp, number), player, player,
                  number % PlayedOnEvery == PlayedOnEvery - 1);
}

std::vector<PackedPosition> QuietPositions(const PlayedGame& game, std::size_t most, std::uint64_t number) {
    Evaluation evaluation;
    std::vector<const PlayedMove*> quiet;
    for (const PlayedMove& move : game.Moves)
        if (!move.Before.InCheck() && !move.Before.IsNoisy(move.Played) && std::abs(move.ValueCp) < DecidedCp &&
            NothingHangs(move.Before, evaluation))
            quiet.push_back(&move);
    if (quiet.size() > most) {
        std::mt19937_64 random = RandomFor(0, number, 1);
        std::shuffle(quiet.begin(), quiet.end(), random);
        quiet.resize(most);
        std::sort(quiet.begin(), quiet.end());
    }
    std::vector<PackedPosition> packed;
    for (const PlayedMove* move : quiet) {
        const bool white = move->Before.SideToMove() == White;
        PackedPosition position = Pack(move->Before);
        position.ValueCp = static_cast<std::int16_t>(white ? move->ValueCp : -move->ValueCp);
        position.Result = static_cast<std::uint8_t>(2 * (white ? game.Result : 1 - game.Result));
        position.Ply = static_cast<std::uint8_t>(std::min(move->Ply, 255));
        packed.push_back(position);
    }
    return packed;
}

} // namespace quarnel::tuning
