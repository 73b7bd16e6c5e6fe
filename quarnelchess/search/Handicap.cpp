#include "quarnelchess/search/Handicap.h"

#include "quarnelchess/board/Mix.h"
#include "quarnelchess/board/MoveGen.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quarnel::engine {
namespace {

struct Level {
    int Skill;
    int Depth;
    int Nodes;
    int Candidates;
    int NoiseCp;
    int OverlookQuietPermille;
    int OverlookNoisyPermille;
};

// Between these a skill is blended from its neighbours.
constexpr Level Levels[] = {
    {0, 1, 300, 40, 1200, 900, 700}, //
    {10, 1, 300, 24, 750, 820, 560}, //
    {20, 2, 500, 10, 210, 570, 190}, //
    {30, 3, 1300, 6, 80, 360, 66},   //
    {50, 4, 1700, 6, 46, 240, 28},   //
    {75, 6, 4200, 6, 30, 100, 9},    //
    {100, 10, 10000, 6, 12, 25, 0},
};

constexpr int CarefulFromSkill = 50;
constexpr int EndingsFromSkill = 30;

int Between(int low, int high, int part, int whole) {
    return low + (high - low) * part / whole;
}

} // namespace

Handicap HandicapFor(int skill, const Board& root) {
    if (skill >= 100) return {};
    const int clamped = std::max(skill, 0);
    const Level* high = std::find_if(std::begin(Levels) + 1, std::end(Levels) - 1,
                                     [clamped](const Level& level) { return level.Skill >= clamped; });
    const Level& above = *high;
    const Level& below = *(high - 1);
    const int part = clamped - below.Skill;
    const int whole = above.Skill - below.Skill;

    Handicap handicap;
    handicap.Depth = Between(below.Depth, above.Depth, part, whole);
    handicap.Nodes = static_cast<std::uint64_t>(Between(below.Nodes, above.Nodes, part, whole));
    handicap.Candidates = Between(below.Candidates, above.Candidates, part, whole);
    handicap.NoiseCp = Between(below.NoiseCp, above.NoiseCp, part, whole);
    handicap.OverlookQuietPermille = Between(below.OverlookQuietPermille, above.OverlookQuietPermille, part, whole);
    handicap.OverlookNoisyPermille = Between(below.OverlookNoisyPermille, above.OverlookNoisyPermille, part, whole);
    handicap.Careful = clamped >= CarefulFromSkill;
    if (clamped >= EndingsFromSkill && !MoreThanOne(root.Pieces(~root.SideToMove()))) {
        handicap.Depth = 14;
        handicap.Nodes = 30000;
        handicap.Candidates = 1;
        handicap.NoiseCp = handicap.OverlookQuietPermille = handicap.OverlookNoisyPermille = 0;
    }
    return handicap;
}

bool Overlooks(const Handicap& handicap, const Board& board, Move move, std::uint64_t occasion) {
    const int permille = board.IsNoisy(move) ? handicap.OverlookNoisyPermille : handicap.OverlookQuietPermille;
    if (permille == 0) return false;
    const std::uint64_t draw = Mix(board.PositionKey() ^ Mix(occasion ^ (std::uint64_t{move.Bits()} << 20)));
    return static_cast<int>(draw % 1000) < permille;
}

bool MatesAtOnce(const Board& board, Move move) {
    Board next = board;
    next.Make(move);
    return next.InCheck() && CountMoves(next) == 0;
}

bool HangsMateOrQueen(const Board& board, Move move) {
    Board next = board;
    next.Make(move);
    MoveBuffer replies;
    GenerateMoves(next, replies);
    const Bitboard queens = next.Pieces(board.SideToMove(), Queen);
    for (const Move reply : replies) {
        if (next.GivesCheck(reply) && MatesAtOnce(next, reply)) return true;
        // The exchange loses more than a rook, and the move itself did not win as much.
        if ((queens & Bit(reply.To())) != 0 && next.ExchangeGains(reply, 600) && !board.ExchangeGains(move, 300))
            return true;
    }
    return false;
}

std::size_t ChooseCandidate(const Board& root, const std::vector<Candidate>& candidates, const Handicap& handicap,
                            std::uint64_t occasion) {
    if (handicap.IsNone() || candidates.empty()) return 0;
    if (handicap.Careful)
        for (std::size_t i = 0; i < candidates.size(); ++i)
            if (MatesAtOnce(root, candidates[i].First)) return i;

    const std::size_t count = std::min(candidates.size(), static_cast<std::size_t>(handicap.Candidates));
    std::vector<std::pair<int, std::size_t>> ranking;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        occasion = Mix(occasion);
        const int noise =
            handicap.NoiseCp == 0 ? 0 : static_cast<int>(occasion % static_cast<std::uint64_t>(handicap.NoiseCp));
        // The rest stay in their order behind, should all candidates be careless ones.
        ranking.emplace_back(i < count ? candidates[i].Value + noise : -1000000 - static_cast<int>(i), i);
    }
    std::stable_sort(ranking.begin(), ranking.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    if (handicap.Careful)
        for (const auto& [value, index] : ranking)
            if (!HangsMateOrQueen(root, candidates[index].First)) return index;
    return ranking[0].second;
}

} // namespace quarnel::engine
