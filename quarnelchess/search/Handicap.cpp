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
    int OverlookMatePermille;
};

// Between these a skill is blended from its neighbours.
constexpr Level Levels[] = {
    {0, 1, 300, 40, 1200, 900, 700, 350}, //
    {10, 1, 300, 22, 560, 760, 450, 250}, //
    {20, 2, 700, 10, 160, 500, 140, 120}, //
    {30, 3, 1400, 6, 70, 300, 55, 40},    //
    {50, 5, 3000, 6, 28, 140, 14, 0},     //
    {75, 8, 8000, 6, 18, 50, 4, 0},       //
    {84, 11, 14000, 3, 8, 18, 1, 0},      //
    {92, 14, 25000, 2, 5, 8, 0, 0},       //
    {99, 60, 120000, 1, 0, 0, 0, 0},
};

constexpr int KeepsQueenFromSkill = 30;
constexpr int CarefulFromSkill = 50;
constexpr int FarsightedFromSkill = 84; // sees so much that rules of thumb would only forbid him to sacrifice
constexpr int EndingsFromSkill = 30;
constexpr int QueenCp = 600; // by exchange: more than a rook
constexpr int PieceCp = 250;

int Between(int low, int high, int part, int whole) {
    return low + (high - low) * part / whole;
}

/// The same for a move, a position and an occasion; the more often the higher `permille`, and then in every case in
/// which it happens for a lower one.
bool Happens(int permille, const Board& board, Move move, std::uint64_t occasion) {
    if (permille == 0) return false;
    const std::uint64_t draw = Mix(board.PositionKey() ^ Mix(occasion ^ (std::uint64_t{move.Bits()} << 20)));
    return static_cast<int>(draw % 1000) < permille;
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
    handicap.OverlookMatePermille = Between(below.OverlookMatePermille, above.OverlookMatePermille, part, whole);
    handicap.FearsMate = clamped >= CarefulFromSkill && clamped < FarsightedFromSkill;
    if (clamped >= KeepsQueenFromSkill && clamped < FarsightedFromSkill)
        handicap.KeepsCp = handicap.FearsMate ? PieceCp : QueenCp;
    if (clamped >= EndingsFromSkill && !MoreThanOne(root.Pieces(~root.SideToMove()))) {
        handicap.Depth = std::max(handicap.Depth, 14);
        handicap.Nodes = std::max<std::uint64_t>(handicap.Nodes, 30000);
        handicap.Candidates = 1;
        handicap.NoiseCp = handicap.OverlookQuietPermille = handicap.OverlookNoisyPermille = 0;
    }
    return handicap;
}

bool Overlooks(const Handicap& handicap, const Board& board, Move move, std::uint64_t occasion) {
    const int permille = board.IsNoisy(move) ? handicap.OverlookNoisyPermille : handicap.OverlookQuietPermille;
    return Happens(permille, board, move, occasion);
}

bool MatesAtOnce(const Board& board, Move move) {
    Board next = board;
    next.Make(move);
    return next.InCheck() && CountMoves(next) == 0;
}

bool HangsMate(const Board& board, Move move) {
    Board next = board;
    next.Make(move);
    MoveBuffer replies;
    GenerateMoves(next, replies);
    return std::any_of(replies.begin(), replies.end(),
                       [&](Move reply) { return next.GivesCheck(reply) && MatesAtOnce(next, reply); });
}

bool LosesToCapture(const Board& board, Move move, int leastCp) {
    const int taken = ExchangeValue[board.CapturedKind(move)];
    Board next = board;
    next.Make(move);
    MoveBuffer replies;
    GenerateMoves<MoveClass::Noisy>(next, replies);
    return std::any_of(replies.begin(), replies.end(),
                       [&](Move reply) { return next.IsCapture(reply) && next.ExchangeGains(reply, taken + leastCp); });
}

std::size_t ChooseCandidate(const Board& root, const std::vector<Candidate>& candidates, const Handicap& handicap,
                            std::uint64_t occasion) {
    if (handicap.IsNone() || candidates.empty()) return 0;
    const std::size_t count = std::min(candidates.size(), static_cast<std::size_t>(handicap.Candidates));
    std::vector<std::pair<int, std::size_t>> ranking;
    std::uint64_t draw = occasion;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const auto [move, value] = candidates[i];
        draw = Mix(draw);
        const bool overlooked = MatesAtOnce(root, move);
        if (overlooked && !Happens(handicap.OverlookMatePermille, root, move, occasion)) return i;
        const bool doubtful = handicap.NoiseCp != 0 && std::abs(value) < MateInMaxPly;
        const int noise = doubtful ? static_cast<int>(draw % static_cast<std::uint64_t>(handicap.NoiseCp)) : 0;
        // The rest stay in their order behind, should all candidates be careless ones.
        ranking.emplace_back(i < count && !overlooked ? value + noise : -1000000 - static_cast<int>(i), i);
    }
    std::stable_sort(ranking.begin(), ranking.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    for (const bool keeping : {true, false}) {
        for (const auto& [value, index] : ranking) {
            const Move move = candidates[index].First;
            if (value >= MateInMaxPly) return index;
            if (handicap.FearsMate && HangsMate(root, move)) continue;
            if (keeping && handicap.KeepsCp != 0 && LosesToCapture(root, move, handicap.KeepsCp)) continue;
            return index;
        }
    }
    return ranking[0].second;
}

} // namespace quarnel::engine
