// The opening book: named lines of play, looked up by position, so that every road to a position counts.
//
// Start at Book::Openings(). Reads only, so any thread may ask at any time; the caller brings the random
// number, so that the same seed plays the same openings.
#pragma once

#include "quarnelchess/board/Board.h"

#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quarnel::engine {

/// One line as it stands in Book.inc: `Moves` in standard algebraic text, a "?" behind those that the book
/// answers but does not choose.
struct BookLine {
    int Weight;
    std::string_view Name;
    std::string_view Moves;
};

struct BookMove {
    Move Choice;
    int Weight = 0; // greater than 0
};

class Book {
  public:
    /// All openings, put together on the first call.
    static const Book& Openings();
    static std::span<const BookLine> Lines();
    /// How many plies into the game a player of this level (0..100) knows the book.
    static int KnownPlies(int skill);

    /// A line is taken up to its first move that is not legal.
    explicit Book(std::span<const BookLine> lines);

    /// The moves to choose from, heaviest first; none when the position is unknown or deeper than `plies` plies in
    /// the book.
    std::span<const BookMove> Moves(const Board& board, int plies) const;
    /// A move as probable as its weight, or no move. Any `random` will do, similar ones included.
    Move Choose(const Board& board, int plies, std::uint64_t random) const;
    /// The likeliest move, or no move.
    Move Likeliest(const Board& board, int plies) const;

  private:
    struct Entry {
        int Ply = 0; // from the start of the game, by the shortest road
        std::vector<BookMove> Moves;
    };

    void AddLine(const BookLine& line);

    std::unordered_map<Key, Entry> entries_;
};

} // namespace quarnel::engine
