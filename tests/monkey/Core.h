// The program's core on the scripted desktop with an engine that keeps the conversation, driven step by step.
//
// Nothing is drawn and nothing is searched, so that hundreds of thousands of steps take seconds. One at a time.
#pragma once

#include "app/Program.h"
#include "platform/scripted/ScriptedDesktop.h"
#include "support/PlainEngine.h"

#include <memory>
#include <string>

namespace quarnel::monkey {

class Core {
  public:
    /// Starts the program; its first lines are still in the queue.
    Core();
    ~Core();
    Core(const Core&) = delete;
    Core& operator=(const Core&) = delete;

    ScriptedDesktop Screen;
    PlainEngine Engine;
    std::unique_ptr<Program> Game;
    std::function<bool(const std::string&)> Hears; ///< false: the line from the engine is lost; unset: all are heard
    std::function<bool()> Unasked; ///< what the user does while the program waits for him; false: let it go on

    /// The engine calls for input once: window events run, and at most one line goes over.
    void Step();
    /// Calls until no line comes and nothing is owed.
    void Drain();
    /// The engine says a line.
    void Tell(const std::string& line);
    const std::string& LastSaid() const { return said_; }
    /// The engine answers whatever it still thinks about, and all lines go over.
    void Settle();

    // What a user does; events that the next step delivers.

    /// Drags a piece from square to square ("e2", "e4").
    void Drag(const std::string& from, const std::string& to);
    /// Plays some legal move of the side to move; false when there is none.
    bool DragLegalMove(unsigned choice);
    void Choose(MenuItem& item) { Screen.Click(item); }
    MenuItem& Moves(MovesItem item) { return Game->Board.Moves.SubMovesMenu[item]; }
    std::pair<double, double> Middle(Square square);

    GameState& State() { return Game->State; }
    bool Thinking() { return Game->State.Thinking != False; }
    /// 'i'dle, 't'hinking, 's'topping, '?' anything else: what the move controls look like.
    char Controls();
    /// Both ends rest and see the same game; otherwise what is wrong.
    std::string WhatIsWrong();
    /// Two new games, the second as White, make the board playable: a move is taken and answered.
    bool HasWayOut(bool blackFirst);

  private:
    void Attend();
    void LetGo();
    static void Start(QuarnelInputCallback input, QuarnelOutputCallback output);
    static void Receive(const char* line) { current_->received_ = line; }
    static void Get(char* buffer) { std::ranges::copy(current_->said_, buffer); }

    static inline Core* current_ = nullptr;
    std::optional<std::string> received_;
    std::string said_;
};

} // namespace quarnel::monkey
