#include "FakeClock.h"
#include "RandomGames.h"

#include "quarnelchess/San.h"
#include "quarnelchess/Search.h"

#include <gtest/gtest.h>

namespace quarnel::engine {
namespace {

SearchResult SearchFen(Search& search, const char* fen, const SearchLimits& limits) {
    SearchRoot root;
    root.Position = BoardOf(fen);
    return search.Run(root, limits);
}

SearchLimits Nodes(std::uint64_t nodes) {
    SearchLimits limits;
    limits.Nodes = nodes;
    return limits;
}

struct BestCase {
    const char* Fen;
    const char* Best;
};

TEST(Search, FindsMatesAndWonMaterial) {
    const BestCase cases[] = {
        {"6k1/5ppp/8/8/8/8/8/R3K3 w - - 0 1", "Ra8"},                                    // mate in one
        {"r1bqkb1r/pppp1ppp/2n2n2/4p2Q/2B1P3/8/PPPP1PPP/RNB1K1NR w KQkq - 4 4", "Qxf7"}, // mate in one
        {"7k/8/5K2/8/8/8/8/6R1 w - - 0 1", "Kf7"},                                       // mate in two
        {"4k3/8/8/3q4/8/8/3R4/3RK3 w - - 0 1", "Rxd5"},                                  // the queen hangs
        {"r3k3/8/8/3N4/8/8/8/4K3 w - - 0 1", "Nc7"},                                     // a fork
        {"8/P7/8/8/8/8/7k/K7 w - - 0 1", "a8=Q"},
    };
    SteadyClock clock;
    Search search(clock);
    for (const BestCase& c : cases) {
        const SearchResult result = SearchFen(search, c.Fen, Nodes(60000));
        EXPECT_EQ(WriteSan(BoardOf(c.Fen), result.Best), c.Best) << c.Fen;
    }
}

TEST(Search, CountsMatesInPlies) {
    SteadyClock clock;
    Search search(clock);
    EXPECT_EQ(SearchFen(search, "6k1/5ppp/8/8/8/8/8/R3K3 w - - 0 1", Nodes(20000)).Value, MateValue - 1);
    EXPECT_EQ(SearchFen(search, "7k/8/5K2/8/8/8/8/6R1 w - - 0 1", Nodes(20000)).Value, MateValue - 3);
    // Mated whatever is played.
    EXPECT_EQ(SearchFen(search, "7k/5K2/8/8/8/8/8/6R1 b - - 0 1", Nodes(20000)).Value, -(MateValue - 2));
}

TEST(Search, SeesDraws) {
    SteadyClock clock;
    Search search(clock);
    // A queen down, but checks without end.
    EXPECT_EQ(SearchFen(search, "6k1/6p1/8/7Q/8/8/qr4PP/7K w - - 0 1", Nodes(100000)).Value, 0);
    // The fiftieth move is about to pass.
    EXPECT_EQ(SearchFen(search, "7k/8/8/8/8/8/8/KR6 w - - 99 80", Nodes(20000)).Value, 0);
    // A position that the game has seen twice is a draw when it comes a third time.
    Board board = BoardOf("7k/8/8/8/8/1q6/8/K7 w - - 10 1");
    SearchRoot root;
    root.Position = board;
    MoveBuffer moves;
    GenerateMoves(board, moves);
    ASSERT_EQ(moves.Size(), 0U); // stalemate: nothing to play
    const SearchResult none = search.Run(root, Nodes(1000));
    EXPECT_FALSE(none.Best);
}

TEST(Search, CountsRepetitionsOfTheGameItself) {
    // White shuttles a rook about; every position after the shuttle has already stood twice on the board.
    Board board = BoardOf("6k1/8/8/8/8/8/r7/7K b - - 0 1");
    SearchRoot root;
    const auto play = [&](const char* name) {
        root.Earlier.push_back(board.PositionKey());
        const Move move = ReadSan(board, name);
        ASSERT_TRUE(move) << name;
        board.Make(move);
    };
    for (int i = 0; i < 2; ++i)
        for (const char* move : {"Rb2", "Kg1", "Ra2", "Kh1"}) play(move);
    play("Rb2");
    root.Position = board;
    SteadyClock clock;
    Search search(clock);
    SearchLimits limits = Nodes(30000);
    limits.OnlyMoves = {ReadSan(board, "Kg1")};
    EXPECT_EQ(search.Run(root, limits).Value, 0);
    root.Earlier.clear();
    search.NewGame();
    EXPECT_LT(search.Run(root, limits).Value, -200);
}

TEST(Search, PlaysTheSameWithTheSameSeedAndNodes) {
    SteadyClock clock;
    const char* fen = TestPositions[1];
    for (const int skill : {100, 30}) {
        std::vector<std::string> first;
        for (int run = 0; run < 2; ++run) {
            Search search(clock);
            search.SetSeed(5);
            std::vector<std::string> lines;
            SearchLimits limits = Nodes(6000);
            limits.Skill = skill;
            SearchRoot root;
            root.Position = BoardOf(fen);
            for (int ply = 0; ply < 4; ++ply) {
                const SearchResult result = search.Run(root, limits);
                lines.push_back(NameOf(result.Best) + std::to_string(result.Value) + "/" +
                                std::to_string(result.Nodes));
                root.Position.Make(result.Best);
            }
            if (run == 0)
                first = lines;
            else
                EXPECT_EQ(lines, first);
        }
    }
}

TEST(Search, KeepsItsDeadlineByTheClockItIsGiven) {
    FakeClock clock;
    Search search(clock);
    SearchLimits limits;
    limits.MoveTimeMs = 500;
    SearchRoot root;
    search.Start(root, limits);
    // However long it really takes: it runs while the clock stands, and ends once the clock has moved on.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    clock.Advance(499);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_TRUE(search.IsRunning());
    clock.Advance(1);
    EXPECT_TRUE(search.Result().Best);
}

TEST(Search, CountsTheTimeSpentPonderingOnceTheMoveWasGuessed) {
    for (const std::int64_t ponderedMs : {30, 100000}) {
        FakeClock clock;
        Search search(clock);
        SearchLimits limits;
        limits.MoveTimeMs = 100;
        limits.Ponder = true;
        search.Start({}, limits);
        clock.Advance(ponderedMs);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        EXPECT_TRUE(search.IsRunning());
        search.PonderHit();
        if (ponderedMs < limits.MoveTimeMs) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            EXPECT_TRUE(search.IsRunning());
            clock.Advance(limits.MoveTimeMs - ponderedMs);
        }
        EXPECT_TRUE(search.Result().Best);
    }
}

TEST(Search, StopsEndlessSearchesWithAMoveInHand) {
    SteadyClock clock;
    Search search(clock);
    SearchLimits limits;
    limits.Infinite = true;
    for (int threads = 1; threads <= 3; ++threads) {
        search.SetThreads(threads);
        search.Start({}, limits);
        search.Stop();
        EXPECT_TRUE(IsLegal(Board::Start(), search.Result().Best));
    }
}

TEST(Search, ReportsLinesOfLegalMoves) {
    SteadyClock clock;
    Search search(clock);
    SearchRoot root;
    root.Position = BoardOf(TestPositions[1]);
    SearchLimits limits = Nodes(30000);
    limits.MultiPv = 3;
    std::vector<SearchInfo> reports;
    search.Run(root, limits, [&](const SearchInfo& info) { reports.push_back(info); });
    ASSERT_GE(reports.size(), 6U);
    for (const SearchInfo& info : reports) {
        Board board = root.Position;
        ASSERT_FALSE(info.Line.Moves.empty());
        for (const Move move : info.Line.Moves) {
            ASSERT_TRUE(IsLegal(board, move));
            board.Make(move);
        }
    }
    const std::size_t whole = reports.size() / 3 * 3;
    for (std::size_t i = 0; i + 2 < whole; i += 3) {
        EXPECT_NE(reports[i].Line.Moves[0], reports[i + 1].Line.Moves[0]);
        EXPECT_GE(reports[i].Line.Value, reports[i + 1].Line.Value);
    }
}

} // namespace
} // namespace quarnel::engine
