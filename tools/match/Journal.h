// The journal of a match: a text file with one line for every finished game.
//
// It begins with the settings as lines of "#", so that nobody mixes two matches by mistake, and each line
// is written at once, so that a match may be killed at any moment and goes on from where it was.
#pragma once

#include "Game.h"
#include "Statistics.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quarnel::match {

/// One game of a match between a first and a second player.
struct GameResult {
    int Pair = 0;            // from 0; the games of a pair share their opening
    int Leg = 0;             // 0: the first player is White, 1: the second is
    int FirstHalfPoints = 1; // the first player's, 0..2
    Ending How = Ending::Length;
    int Plies = 0;
    std::string Opening; // coordinate moves, each with a blank before it

    int WhiteHalfPoints() const { return Leg == 0 ? FirstHalfPoints : 2 - FirstHalfPoints; }
};

/// "1-0", "1/2-1/2" or "0-1".
const char* ResultText(int whiteHalfPoints);

/// "7.2 second first 1-0 checkmate 83 e2e4,e7e5": pair and leg from 1, White, Black, result, ending,
/// plies, opening ("-" for none).
std::string WriteResult(const GameResult& result, const std::string (&names)[2]);
/// Nothing when the line is none of those.
std::optional<GameResult> ReadResult(std::string_view line);

/// The sum of the games so far, the first player's view.
class Tally {
  public:
    /// True when the game completes a pair.
    bool Add(const GameResult& result);

    int Games() const { return Wins + Draws + Losses; }

    int Wins = 0;
    int Draws = 0;
    int Losses = 0;
    PairCounts Pairs = {};
    int FaultsOf(std::size_t player) const;
    /// Games that the first, the second player lost by each kind of fault; none for other endings.
    int Faults[2][static_cast<std::size_t>(Ending::Count)] = {};
    int Endings[static_cast<std::size_t>(Ending::Count)] = {};

  private:
    std::map<int, int> halfPairs_; // half points of the pairs with one game so far
};

class Journal {
  public:
    /// Opens or begins the journal `path`; no file when it is empty. `settings` is lines without "#".
    /// Throws std::runtime_error when the file cannot be used, is in use, belongs to other settings or
    /// holds something else. A last line that was cut off is dropped.
    Journal(const std::string& path, const std::string& settings, const std::string (&names)[2]);
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    /// The games found when it was opened.
    const std::vector<GameResult>& Earlier() const { return earlier_; }
    void Append(const GameResult& result);

  private:
    std::string ReadAll() const;
    void Load(std::string_view text, const std::string& header);
    void Write(std::string_view text) const;

    const std::string path_;
    const std::string names_[2];
    int file_ = -1;
    std::vector<GameResult> earlier_;
};

} // namespace quarnel::match
