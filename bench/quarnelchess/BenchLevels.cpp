// What the levels limited by judgement see: mates in one, and pieces that a plain capture would lose.
//
//   bench-levels                     each of the levels on the positions of levels/
//   bench-levels --collect FOLDER    writes such positions from games of the engine against itself
//
// A level's answer depends on the position and a seed alone, so a run gives the same table everywhere.
#include "quarnelchess/board/Fen.h"
#include "quarnelchess/board/MoveGen.h"
#include "quarnelchess/search/Handicap.h"
#include "tools/tune/SelfPlay.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

using namespace quarnel::engine;
using quarnel::tuning::PlayedGame;
using quarnel::tuning::PlayedMove;

namespace {

constexpr int LevelSkills[] = {10, 20, 30, 50, 75};
constexpr std::size_t MatePositions = 400;
constexpr std::size_t EvenPositions = 200;
constexpr int EvenCp = 100;  // an even position is no further from a draw
constexpr int PieceCp = 250; // whoever loses so much has lost a piece,
constexpr int QueenCp = 600; // or the queen
constexpr int FirstPly = 16; // before, the book plays
constexpr std::uint64_t CollectSeed = 20261126;

bool HasMateInOne(const Board& board) {
    MoveBuffer moves;
    GenerateMoves(board, moves);
    return std::any_of(moves.begin(), moves.end(), [&](Move move) { return MatesAtOnce(board, move); });
}

/// He loses it though another move would not have.
bool Drops(const Board& board, Move move, int leastCp) {
    if (!LosesToCapture(board, move, leastCp)) return false;
    MoveBuffer moves;
    GenerateMoves(board, moves);
    return std::any_of(moves.begin(), moves.end(), [&](Move other) { return !LosesToCapture(board, other, leastCp); });
}

/// At most one position of a game each, so that they differ.
int Collect(const std::string& folder) {
    SteadyClock clock;
    Search search(clock);
    std::vector<std::string> mates;
    std::vector<std::string> even;
    quarnel::tuning::SelfPlayOptions options;
    options.Seed = CollectSeed;
    for (std::uint64_t game = 0; mates.size() < MatePositions || even.size() < EvenPositions; ++game) {
        const PlayedGame played = PlayGame(search, options, game);
        const auto mate = std::find_if(played.Moves.begin(), played.Moves.end(),
                                       [](const PlayedMove& move) { return HasMateInOne(move.Before); });
        if (mate != played.Moves.end() && mates.size() < MatePositions) mates.push_back(WriteFen(mate->Before));
        // Another ply of each game, where it is even.
        const int from = FirstPly + static_cast<int>(game * 7 % 40);
        const auto level = std::find_if(played.Moves.begin(), played.Moves.end(), [from](const PlayedMove& move) {
            return move.Ply >= from && std::abs(move.ValueCp) <= EvenCp;
        });
        if (level != played.Moves.end() && even.size() < EvenPositions) even.push_back(WriteFen(level->Before));
    }
    for (const auto& [name, fens] : {std::pair{"mates.fen", &mates}, std::pair{"even.fen", &even}}) {
        std::ofstream file(folder + "/" + name);
        for (const std::string& fen : *fens) file << fen << '\n';
        if (!file.flush()) {
            std::fprintf(stderr, "%s/%s cannot be written\n", folder.c_str(), name);
            return 1;
        }
    }
    return 0;
}

std::vector<Board> ReadPositions(const std::string& name) {
    std::ifstream file(std::string(QUARNEL_LEVELS_DIR) + "/" + name);
    std::vector<Board> boards;
    for (std::string line; std::getline(file, line);)
        if (const std::optional<Board> board = ReadFen(line)) boards.push_back(*board);
    return boards;
}

Move Answer(Search& search, const Board& board, int skill, std::uint64_t seed) {
    search.NewGame();
    search.SetSeed(seed);
    SearchLimits limits;
    limits.Skill = skill;
    SearchRoot root;
    root.Position = board;
    return search.Run(root, limits).Best;
}

/// Of `all`, with Wilson's 95 % interval (E. B. Wilson, 1927).
std::string Share(std::size_t some, std::size_t all) {
    constexpr double z = 1.96;
    const double n = static_cast<double>(all);
    const double p = static_cast<double>(some) / n;
    const double middle = (p + z * z / (2 * n)) / (1 + z * z / n);
    const double half = z / (1 + z * z / n) * std::sqrt(p * (1 - p) / n + z * z / (4 * n * n));
    char text[80];
    std::snprintf(text, sizeof text, "%zu of %zu, %.1f %% (%.1f to %.1f)", some, all, 100 * p,
                  100 * std::max(middle - half, 0.0), 100 * (middle + half));
    return text;
}

int Measure() {
    const std::vector<Board> mates = ReadPositions("mates.fen");
    const std::vector<Board> even = ReadPositions("even.fen");
    if (mates.empty() || even.empty()) {
        std::fprintf(stderr, "There are no positions in %s.\n", QUARNEL_LEVELS_DIR);
        return 1;
    }
    SteadyClock clock;
    Search search(clock);
    std::printf("| level | mates in one played | pieces dropped | queens dropped |\n|---|---|---|---|\n");
    for (std::size_t level = 0; level < std::size(LevelSkills); ++level) {
        const int skill = LevelSkills[level];
        std::size_t mated = 0;
        std::size_t pieces = 0;
        std::size_t queens = 0;
        for (std::size_t i = 0; i < mates.size(); ++i)
            mated += MatesAtOnce(mates[i], Answer(search, mates[i], skill, i)) ? 1 : 0;
        for (std::size_t i = 0; i < even.size(); ++i) {
            const Move move = Answer(search, even[i], skill, i);
            pieces += Drops(even[i], move, PieceCp) ? 1 : 0;
            queens += Drops(even[i], move, QueenCp) ? 1 : 0;
        }
        std::printf("| %zu | %s | %s | %s |\n", level + 1, Share(mated, mates.size()).c_str(),
                    Share(pieces, even.size()).c_str(), Share(queens, even.size()).c_str());
        std::fflush(stdout);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 1) return Measure();
    if (argc == 3 && std::strcmp(argv[1], "--collect") == 0) return Collect(argv[2]);
    std::fprintf(stderr, "usage: bench-levels [--collect FOLDER]\n");
    return 2;
}
