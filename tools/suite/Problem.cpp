#include "Problem.h"

#include "quarnelchess/board/Fen.h"
#include "quarnelchess/records/San.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace quarnel::suite {
namespace {

constexpr std::size_t PositionFields = 4;

/// The text of an operation, without quotes; empty when there is none.
std::string Operand(const std::string& line, const std::string& code) {
    const std::size_t begin = line.find(" " + code + " ");
    if (begin == std::string::npos) return {};
    const std::size_t first = begin + code.size() + 2;
    std::string text = line.substr(first, line.find(';', first) - first);
    std::erase(text, '"');
    return text;
}

} // namespace

bool IsSolution(const Problem& problem, engine::Move move) {
    return std::find(problem.Solutions.begin(), problem.Solutions.end(), move) != problem.Solutions.end();
}

bool IsProven(Prover& prover, const Problem& problem, std::uint64_t budget) {
    const auto exactly = [&](const Claim& claim, const std::vector<engine::Move>& wanted) {
        const auto found = prover.Solutions(problem.Position, claim, budget, wanted.size());
        return found && std::is_permutation(found->begin(), found->end(), wanted.begin(), wanted.end());
    };
    const Claim& goal = problem.Goal;
    for (int moves = 1; moves < goal.Moves; ++moves)
        if (!exactly({moves, 0}, {}) || (goal.GainCp != 0 && !exactly({moves, goal.GainCp}, {}))) return false;
    if (!exactly(goal, problem.Solutions)) return false;
    return goal.GainCp == 0 || exactly({goal.Moves + 1, goal.GainCp}, problem.Solutions);
}

std::string WriteEpd(const Problem& problem) {
    std::istringstream fields(engine::WriteFen(problem.Position));
    std::ostringstream line;
    std::string field;
    for (std::size_t i = 0; i < PositionFields && fields >> field; ++i) line << field << ' ';
    line << "bm";
    for (const engine::Move move : problem.Solutions) line << ' ' << engine::WriteSan(problem.Position, move);
    if (problem.Goal.GainCp == 0)
        line << "; dm " << problem.Goal.Moves;
    else
        line << "; c0 \"wins " << problem.Goal.GainCp << " in " << problem.Goal.Moves << '"';
    char id[32];
    std::snprintf(id, sizeof id, "; id \"quarnel.%03d\";", problem.Number);
    line << id;
    return line.str();
}

std::optional<Problem> ReadEpd(const std::string& line) {
    const std::optional<engine::Board> board = engine::ReadFen(line.substr(0, line.find(" bm ")));
    if (!board) return std::nullopt;
    Problem problem;
    problem.Position = *board;
    std::istringstream moves(Operand(line, "bm"));
    for (std::string text; moves >> text;) {
        problem.Solutions.push_back(engine::ReadSan(*board, text));
        if (!problem.Solutions.back()) return std::nullopt;
    }
    const bool mate = std::sscanf(Operand(line, "dm").c_str(), "%d", &problem.Goal.Moves) == 1;
    const bool gain =
        std::sscanf(Operand(line, "c0").c_str(), "wins %d in %d", &problem.Goal.GainCp, &problem.Goal.Moves) == 2;
    const bool numbered = std::sscanf(Operand(line, "id").c_str(), "quarnel.%d", &problem.Number) == 1;
    if (problem.Solutions.empty() || mate == gain || !numbered || problem.Goal.Moves < 1) return std::nullopt;
    return problem;
}

std::optional<std::vector<Problem>> ReadSuite(const std::string& path) {
    std::ifstream file(path);
    if (!file) return std::nullopt;
    std::vector<Problem> problems;
    for (std::string line; std::getline(file, line);) {
        const std::optional<Problem> problem = ReadEpd(line);
        if (!problem) return std::nullopt;
        problems.push_back(*problem);
    }
    return problems;
}

} // namespace quarnel::suite
