// A game as the referee knows it: the moves from the start position, and whether the rules have ended it.
#pragma once

#include "quarnelchess/board/MoveGen.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarnel::match {

using engine::Board;
using engine::Color;
using engine::Move;

/// Coordinate text of the protocol: e2e4, e7e8q, castling as the king's two squares.
std::string MoveText(Move move);
/// The legal move of that text, or no move.
Move FindMove(const Board& board, std::string_view text);

enum class Ending {
    Checkmate,
    Stalemate,
    Repetition,
    FiftyMoves,
    Material,
    AdjudicatedWin,
    AdjudicatedDraw,
    Length, // too long: a draw
    Crash,  // from here on faults, which lose the game
    IllegalMove,
    NoAnswer,
    LostOnTime,
    Count
};
/// One word, as in the journal.
const char* NameOf(Ending ending);
/// Ending::Count when there is none of that name.
Ending EndingOf(std::string_view name);
inline bool IsFault(Ending ending) {
    return ending >= Ending::Crash;
}

struct Outcome {
    int WhiteHalfPoints = 1; // 2 White has won, 1 draw, 0 Black has won
    Ending How = Ending::Length;
};
/// The outcome of a game that `loser` loses.
inline Outcome LostBy(Color loser, Ending how) {
    return {loser == engine::White ? 0 : 2, how};
}

class Game {
  public:
    const Board& Position() const { return board_; }
    Color SideToMove() const { return board_.SideToMove(); }
    const std::vector<Move>& Moves() const { return moves_; }
    int Plies() const { return static_cast<int>(moves_.size()); }
    /// All moves in coordinate text, each with a blank before it.
    const std::string& MovesText() const { return text_; }

    /// Plays a legal move.
    void Play(Move move);
    /// Mate and stalemate first, then the draws: third occurrence, fifty moves, insufficient material.
    std::optional<Outcome> EndByRules() const;

  private:
    Board board_ = Board::Start();
    std::vector<Move> moves_;
    std::vector<engine::Key> earlier_; // keys of the positions before this one
    std::string text_;
};

} // namespace quarnel::match
