// A game between its two forms: what a game record and PGN both can say.
//
// Every move in it is legal. It begins at the standard start position, with Black's move perhaps. Plies are counted as
// the program counts them, from a White move: where Black begins, ply 1 is a placeholder and Black's move is ply 2.
#pragma once

#include "base/Text.h"
#include "model/Position.h"
#include "notation/MoveTextReader.h"

#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace quarnel::record {

/// Why something cannot be had, and the line of its file, from 1, that is the reason. UTF-8.
struct Fault : std::runtime_error {
    Fault(std::size_t line, const std::string& reason) : std::runtime_error(reason), Line(line) {}
    std::size_t Line;
};

/// Whether a terminal would obey the character in place of showing it.
constexpr bool IsControl(char16_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

/// `text` in quotes for a message: without control characters, and cut where it is long.
std::string Quoted(TextView text);

/// What a result text says: "1-0", "0-1", "1/2-1/2" or "*"; nothing for any other text.
std::optional<Text> ResultOf(TextView text);

/// The tags that a game carries; `Result` is apart.
enum Tag { EventTag, SiteTag, DateTag, RoundTag, WhiteTag, BlackTag, TagCount };
inline constexpr std::array<TextView, TagCount> TagNames{u"Event", u"Site", u"Date", u"Round", u"White", u"Black"};

inline constexpr TextView UserName = u"You";
inline constexpr TextView ProgramName = u"Quarnel Chess";

/// A move as long text and as it is written in a record, with its check or mate mark.
struct Move {
    Text Long;
    Text San;
};

enum class Reading {
    AsTheProgram, ///< of several moves that a text may mean, the one that the program plays
    Strict        ///< a text must have the form of a move in English letters, and mean one only
};

class Game {
  public:
    static constexpr std::size_t MostPlies = 32766; // more than the program counts

    std::array<Text, TagCount> Tags{u"?", u"?", u"????.??.??", u"?", u"?", u"?"};
    Text Result = u"*"; ///< as ResultOf() gives them

    /// Only before the first move.
    void LetBlackBegin();
    bool BlackBegins() const { return first_ == Black; }

    /// Plays a move in standard algebraic notation. Throws a Fault at `line` that says why it cannot be.
    void Play(TextView text, Reading reading, std::size_t line);

    const std::vector<Move>& Moves() const { return moves_; }
    std::size_t Plies() const { return moves_.size() + (BlackBegins() ? 1 : 0); }
    /// The result as far as the last position tells it; "*" where nobody is mated or stalemated.
    Text Outcome() const;
    /// The position after `ply` plies, at most Plies(), as text with its counters.
    Text FenAt(std::size_t ply) const;

  private:
    Position position_ = StartPosition(White);
    Truth first_ = White;
    std::vector<Move> moves_;

    static Position StartPosition(Truth side);
};

} // namespace quarnel::record
