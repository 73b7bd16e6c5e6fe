// Has the engine judge the opening book: first what it chooses how often, then each line that ends badly
// for a side that chose all its moves, and each single choice after which the engine sees the chooser worse.
//
//   check-book [nodes for a line's end] [nodes for a choice] [worst value in centipawns] [part of a line's name]
#include "quarnelchess/board/Text.h"
#include "quarnelchess/book/Book.h"
#include "quarnelchess/records/San.h"
#include "quarnelchess/search/Clock.h"
#include "quarnelchess/search/Search.h"

#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>

namespace {

using namespace quarnel::engine;

void PrintChoices(const char* title, const Board& board) {
    const auto moves = Book::Openings().Moves(board, 1000);
    int sum = 0;
    for (const BookMove& move : moves) sum += move.Weight;
    std::printf("%s:", title);
    for (const BookMove& move : moves)
        std::printf(" %s %.1f%%", WriteSan(board, move.Choice).c_str(), 100.0 * move.Weight / sum);
    std::printf("\n");
}

void PrintFirstChoices() {
    PrintChoices("first move", Board::Start());
    for (const char* first : {"e4", "d4", "c4", "Nf3"}) {
        Board board = Board::Start();
        board.Make(ReadSan(board, first));
        PrintChoices(first, board);
    }
}

class Judge {
  public:
    Judge(std::uint64_t endNodes, std::uint64_t choiceNodes, int worstCp)
        : endNodes_(endNodes), choiceNodes_(choiceNodes), worstCp_(worstCp), search_(clock_) {
        search_.SetHash(8);
    }

    void Line(const BookLine& line) {
        Board board = Board::Start();
        std::string_view rest = line.Moves;
        bool chose[2] = {true, true};
        std::string played;
        for (std::string_view word = NextWord(rest); !word.empty(); word = NextWord(rest)) {
            const Color mover = board.SideToMove();
            const bool avoided = word.back() == '?';
            if (avoided) chose[mover] = false;
            const Move move = ReadSan(board, avoided ? word.substr(0, word.size() - 1) : word);
            if (!move) return void(std::printf("illegal  %.*s in %s\n", Length(word), word.data(), line.Name.data()));
            board.Make(move);
            played += (played.empty() ? "" : " ") + std::string(word);
            if (choiceNodes_ == 0 || !chose[mover] || !seen_.insert(board.PositionKey()).second) continue;
            const int value = -Value(board, choiceNodes_);
            if (value < -worstCp_) std::printf("choice %+5d  %s\n", value, played.c_str());
        }
        const int value = Value(board, endNodes_);
        const Color side = board.SideToMove();
        if ((chose[side] && value < -worstCp_) || (chose[~side] && value > worstCp_))
            std::printf("line   %+5d  for White: %s: %s\n", side == White ? value : -value, line.Name.data(),
                        played.c_str());
    }

  private:
    static int Length(std::string_view text) { return static_cast<int>(text.size()); }

    /// For the side to move.
    int Value(const Board& board, std::uint64_t nodes) {
        SearchLimits limits;
        limits.Nodes = nodes;
        search_.NewGame(); // so that a line's value does not depend on the others
        return search_.Run({board, {}}, limits).Value;
    }

    const std::uint64_t endNodes_;
    const std::uint64_t choiceNodes_;
    const int worstCp_;
    SteadyClock clock_;
    Search search_;
    std::set<Key> seen_;
};

} // namespace

int main(int argc, char** argv) {
    const auto argument = [&](int index, int otherwise) { return argc > index ? std::atoi(argv[index]) : otherwise; };
    PrintFirstChoices();
    Judge judge(static_cast<std::uint64_t>(argument(1, 200000)), static_cast<std::uint64_t>(argument(2, 0)),
                argument(3, 80));
    const std::string_view name = argc > 4 ? argv[4] : "";
    for (const BookLine& line : Book::Lines())
        if (line.Name.find(name) != std::string_view::npos) judge.Line(line);
}
