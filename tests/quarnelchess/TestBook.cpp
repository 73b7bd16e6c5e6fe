#include "RandomGames.h"

#include "quarnelchess/board/Text.h"
#include "quarnelchess/book/Book.h"
#include "quarnelchess/records/San.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace quarnel::engine {
namespace {

Board After(std::string_view moves) {
    Board board = Board::Start();
    for (std::string_view word = NextWord(moves); !word.empty(); word = NextWord(moves)) {
        const Move move = ReadSan(board, word);
        EXPECT_TRUE(move) << word;
        board.Make(move);
    }
    return board;
}

/// "Nf3 2 e4 1", as the book orders them.
std::string Choices(const Book& book, std::string_view moves, int plies) {
    const Board board = After(moves);
    std::string text;
    for (const BookMove& move : book.Moves(board, plies))
        text += (text.empty() ? "" : " ") + WriteSan(board, move.Choice) + " " + std::to_string(move.Weight);
    return text;
}

TEST(Book, HoldsLegalLinesThatSayEachThingOnceAndAnswersToEveryFirstMove) {
    std::set<std::string> names;
    std::vector<std::string> lines;
    for (const BookLine& line : Book::Lines()) {
        EXPECT_GT(line.Weight, 0) << line.Name;
        EXPECT_TRUE(names.insert(std::string(line.Name)).second) << line.Name;
        Board board = Board::Start();
        std::string played;
        std::string_view rest = line.Moves;
        for (std::string_view word = NextWord(rest); !word.empty(); word = NextWord(rest)) {
            if (word.back() == '?') word.remove_suffix(1);
            const Move move = ReadSan(board, word);
            ASSERT_TRUE(move) << line.Name << ": " << word;
            EXPECT_EQ(WriteSan(board, move), word) << line.Name;
            board.Make(move);
            played += std::string(word) + " ";
        }
        lines.push_back(played);
    }
    std::sort(lines.begin(), lines.end());
    for (std::size_t i = 1; i < lines.size(); ++i)
        EXPECT_FALSE(lines[i].starts_with(lines[i - 1])) << lines[i - 1] << "is all in " << lines[i];
    for (const Move move : MovesOf(Board::Start())) {
        const std::string first = WriteSan(Board::Start(), move);
        EXPECT_TRUE(Book::Openings().Likeliest(After(first), Book::KnownPlies(0))) << first;
    }
}

TEST(Book, AddsUpWhatEachRoadToAPositionBrings) {
    constexpr BookLine lines[] = {{3, "a", "d4 Nf6 c4 g6"},
                                  {2, "b", "c4 Nf6 d4 e6"},
                                  {2, "c", "c4 Nf6 d4 g6"},
                                  {9, "d", "g4? d5 h3 e5?"},
                                  {1, "e", "Nf3 d5 Ng1 Nf6 d4 d5 e4"}, // d5 is taken: what follows is dropped
                                  {1, "f", "Nf3 Nf6 Ng1 Ng8 b3"}};     // back at the start, by a longer road
    const Book book(lines);
    const struct {
        const char* Moves;
        int Plies; // as deep as the player knows the book
        const char* Choices;
    } cases[] = {
        {"", 1, "c4 4 d4 3 Nf3 2 b3 1"}, {"d4 Nf6 c4", 4, "g6 5 e6 2"}, {"d4 Nf6 c4", 3, ""}, {"g4", 100, "d5 9"},
        {"g4 d5 h3", 100, ""},           {"Nf3 d5 Ng1 Nf6 d4", 100, ""}};
    for (const auto& c : cases) EXPECT_EQ(Choices(book, c.Moves, c.Plies), c.Choices) << c.Moves;

    // Each as often as it weighs, from seeds that hardly differ.
    int counts[2] = {};
    const Board board = After("d4 Nf6 c4");
    for (std::uint64_t random = 0; random < 700; ++random) {
        const std::string move = WriteSan(board, book.Choose(board, 100, random));
        EXPECT_TRUE(move == "g6" || move == "e6");
        ++counts[move == "e6"];
    }
    EXPECT_NEAR(counts[0], 500, 50);
    EXPECT_FALSE(book.Choose(After("h3"), 100, 1));
    EXPECT_EQ(WriteSan(board, book.Likeliest(board, 100)), "g6");
    EXPECT_FALSE(book.Likeliest(board, 2));
}

} // namespace
} // namespace quarnel::engine
