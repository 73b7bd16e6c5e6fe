#include "FakeClock.h"
#include "RandomGames.h"

#include "quarnelchess/records/San.h"
#include "quarnelchess/search/Search.h"

#include <gtest/gtest.h>

namespace quarnel::engine {
namespace {

SearchLimits Nodes(std::uint64_t nodes) {
    SearchLimits limits;
    limits.Nodes = nodes;
    return limits;
}

TEST(Search, FindsMatesWonMaterialAndDraws) {
    const struct {
        const char* Fen;
        const char* Best;
        std::optional<int> Value;
    } cases[] = {
        {"6k1/5ppp/8/8/8/8/8/R3K3 w - - 0 1", "Ra8", MateValue - 1},
        {"r1bqkb1r/pppp1ppp/2n2n2/4p2Q/2B1P3/8/PPPP1PPP/RNB1K1NR w KQkq - 4 4", "Qxf7", MateValue - 1},
        {"7k/8/5K2/8/8/8/8/6R1 w - - 0 1", "Kf7", MateValue - 3},
        {"7k/5K2/8/8/8/8/8/6R1 b - - 0 1", "Kh7", 2 - MateValue}, // mated whatever is played
        {"4k3/8/8/3q4/8/8/3R4/3RK3 w - - 0 1", "Rxd5", {}},       // the queen hangs
        {"r3k3/8/8/3N4/8/8/8/4K3 w - - 0 1", "Nc7", {}},          // a fork
        {"8/P7/8/8/8/8/7k/K7 w - - 0 1", "a8=Q", {}},
        {"6k1/6p1/8/7Q/8/8/qr4PP/7K w - - 0 1", "Qe8", 0}, // a queen down, but checks without end
        {"7k/8/8/8/8/8/8/KR6 w - - 99 80", "", 0},         // the fiftieth move is about to pass
    };
    SteadyClock clock;
    Search search(clock);
    for (const auto& c : cases) {
        const Board board = BoardOf(c.Fen);
        const SearchResult result = search.Run({board, {}}, Nodes(60000));
        EXPECT_TRUE(*c.Best == 0 || WriteSan(board, result.Best) == c.Best) << c.Fen << NameOf(result.Best);
        EXPECT_TRUE(!c.Value || result.Value == *c.Value) << c.Fen << result.Value;
    }
    // Stalemate: nothing to play.
    EXPECT_FALSE(search.Run({BoardOf("7k/8/8/8/8/1q6/8/K7 w - - 10 1"), {}}, Nodes(1000)).Best);
}

TEST(Search, KeepsItsDeadlineByTheClockItIsGiven) {
    // From Start() without pondering; from the beginning of the pondering once the move was guessed.
    for (const std::int64_t ponderedMs : {0, 30, 100000}) {
        FakeClock clock;
        Search search(clock);
        SearchLimits limits;
        limits.MoveTimeMs = 100;
        limits.Ponder = ponderedMs != 0;
        search.Start({}, limits);
        // However long it really takes: it runs while the clock stands, and ends once the clock has moved on.
        clock.Advance(ponderedMs);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_TRUE(search.IsRunning());
        if (limits.Ponder) search.PonderHit();
        if (ponderedMs < limits.MoveTimeMs) {
            clock.Advance(limits.MoveTimeMs - ponderedMs - 1);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            EXPECT_TRUE(search.IsRunning());
            clock.Advance(1);
        }
        EXPECT_TRUE(search.Result().Best);
    }
}

TEST(Search, ReportsLinesOfLegalMovesBestFirst) {
    SteadyClock clock;
    Search search(clock);
    SearchLimits limits = Nodes(30000);
    limits.MultiPv = 3;
    std::vector<SearchLine> lines;
    const Board root = BoardOf(TestPositions[1]);
    search.Run({root, {}}, limits, [&](const SearchInfo& info) { lines.push_back(info.Line); });
    ASSERT_GE(lines.size(), 6U);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        Board board = root;
        ASSERT_FALSE(lines[i].Moves.empty());
        for (const Move move : lines[i].Moves) {
            ASSERT_TRUE(IsLegal(board, move));
            board.Make(move);
        }
        if (i % 3 == 0 || i >= lines.size() / 3 * 3) continue;
        EXPECT_NE(lines[i - 1].Moves[0], lines[i].Moves[0]);
        EXPECT_GE(lines[i - 1].Value, lines[i].Value);
    }
}

TEST(Search, BelievesAHelperThatGotAsFarWithABetterMoveOrFurtherWithNoWorseOne) {
    const struct {
        std::vector<WorkerResult> Results;
        std::size_t Best;
    } cases[] = {{{{9, 10, true}, {9, 10, true}, {9, 30, true}, {8, 99, true}}, 2},
                 {{{9, 10, true}, {10, 10, true}, {11, 5, true}}, 1},
                 {{{9, 10, true}, {9, -10, true}, {12, 50, false}}, 0}};
    for (const auto& c : cases) EXPECT_EQ(BestResult(c.Results), c.Best);
}

} // namespace
} // namespace quarnel::engine
