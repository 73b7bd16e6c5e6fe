// The referee: lets two players play one game, checks every move, and ends it by the rules, by
// adjudication, or by a player's fault.
//
// Start at PlayGame().
#pragma once

#include "Player.h"

namespace quarnel::match {

/// When a game is decided before the rules decide it. Moves are counted for each side by itself.
struct AdjudicationRules {
    bool Enabled = true;   // wins and draws; the length limit holds in any case
    int WinCp = 700;       // both players see at least this for the same side,
    int WinMoves = 4;      // for so many moves of each
    int DrawCp = 10;       // both players see at most this for either side,
    int DrawMoves = 8;     // for so many moves of each,
    int DrawFromMove = 40; // all of them after this move number
    int MaxPlies = 400;
};

/// Follows the players' scores through one game.
class Adjudicator {
  public:
    explicit Adjudicator(const AdjudicationRules& rules) : rules_(rules) {}
    /// Takes the score that `mover` gave with its move, if it gave one, and the game's length with that move.
    std::optional<Outcome> Judge(Color mover, std::optional<int> scoreCp, int plies);

  private:
    const AdjudicationRules rules_;
    int winning_[2] = {}; // half-moves in a row at which White, Black was seen winning
    int drawn_ = 0;
};

/// What a game is played by.
struct GameTerms {
    AdjudicationRules Adjudication;
    std::uint64_t Seed = 1; // White's; Black's is the next one
    GameClock Clock;        // as it stands before the first move
};

/// Plays on from `game`, in which the opening has been played, to its end. The moves end up in `game`;
/// `faultText` tells what a player did wrong. A faulty player is discarded, unless he was but late. Throws
/// Interrupted and what a player throws that cannot be started.
Outcome PlayGame(Player& white, Player& black, GameTerms terms, const std::atomic<bool>& stop, Game& game,
                 std::string& faultText);

} // namespace quarnel::match
