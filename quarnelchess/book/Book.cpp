#include "quarnelchess/book/Book.h"

#include "quarnelchess/board/Mix.h"
#include "quarnelchess/board/Text.h"
#include "quarnelchess/records/San.h"

#include <algorithm>

namespace quarnel::engine {
namespace {

constexpr BookLine AllLines[] = {
#include "quarnelchess/book/Book.inc"
};

constexpr int AllPlies = 1000;

} // namespace

const Book& Book::Openings() {
    static const Book book(AllLines);
    return book;
}

std::span<const BookLine> Book::Lines() {
    return AllLines;
}

/// A beginner knows how to begin, and each level a little more.
int Book::KnownPlies(int skill) {
    return skill >= 100 ? AllPlies : std::max(2, skill / 10 * 2);
}

Book::Book(std::span<const BookLine> lines) {
    for (const BookLine& line : lines) AddLine(line);
    for (auto& [key, entry] : entries_)
        std::stable_sort(entry.Moves.begin(), entry.Moves.end(),
                         [](const BookMove& a, const BookMove& b) { return a.Weight > b.Weight; });
}

void Book::AddLine(const BookLine& line) {
    Board board = Board::Start();
    std::string_view rest = line.Moves;
    int ply = 0;
    for (std::string_view word = NextWord(rest); !word.empty(); word = NextWord(rest), ++ply) {
        const bool avoided = word.back() == '?';
        if (avoided) word.remove_suffix(1);
        const Move move = ReadSan(board, word);
        if (!move) return;
        if (!avoided) {
            Entry& entry = entries_.try_emplace(board.PositionKey(), Entry{ply, {}}).first->second;
            entry.Ply = std::min(entry.Ply, ply);
            const auto known = std::find_if(entry.Moves.begin(), entry.Moves.end(),
                                            [move](const BookMove& known) { return known.Choice == move; });
            if (known != entry.Moves.end())
                known->Weight += line.Weight;
            else
                entry.Moves.push_back({move, line.Weight});
        }
        board.Make(move);
    }
}

std::span<const BookMove> Book::Moves(const Board& board, int plies) const {
    const auto found = entries_.find(board.PositionKey());
    if (found == entries_.end() || found->second.Ply >= plies) return {};
    return found->second.Moves;
}

Move Book::Choose(const Board& board, int plies, std::uint64_t random) const {
    const std::span<const BookMove> moves = Moves(board, plies);
    std::uint64_t sum = 0;
    for (const BookMove& move : moves) sum += static_cast<std::uint64_t>(move.Weight);
    if (sum == 0) return {};
    std::uint64_t left = Mix(random) % sum;
    for (const BookMove& move : moves) {
        if (left < static_cast<std::uint64_t>(move.Weight)) return move.Choice;
        left -= static_cast<std::uint64_t>(move.Weight);
    }
    return {};
}

Move Book::Likeliest(const Board& board, int plies) const {
    const std::span<const BookMove> moves = Moves(board, plies);
    return moves.empty() ? Move{} : moves[0].Choice;
}

} // namespace quarnel::engine
