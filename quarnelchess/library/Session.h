// The engine's conversation with the program: command lines in, move lines and announcements out.
//
// Everything happens on the thread that calls Step(); only the search runs elsewhere. Step() calls the
// input callback once, obeys the lines it brought, and answers when a search has ended; Run() repeats
// it for ever. No step holds the thread for more than a few milliseconds.
//
// The move line is "White(n): move " or "Black(n): move ", blank at the end, n = plies / 2 + 1. No other
// text holds "White(", "Black(" or "mate", but for the announcements "White mates", "Black mates" and
// "stalemate".
//
//   state      line                        does                                             next state
//   ---------  --------------------------  -----------------------------------------------  ----------
//   idle or    user's move                 play it; without a reply announce the end        idle
//   pondering                              play it; search for the other side               thinking
//              go                          search for the side to move                      thinking
//              go, no legal move           announce the end                                 idle
//              force                       "White(0): - ", a line that plays nothing        idle
//              new, setboard               change the board; owe that line, too             idle
//              white, black, movenumber    change the side or the number                    idle
//              ponder on                   think about the expected move, if there is one   pondering
//              ponder off                                                                   idle
//   thinking   (search ends)               move line, then mate or stalemate if it is so    idle, pondering
//              force                       the same at once, with the best move so far      idle, pondering
//              new, setboard               end without a move line, then as when idle       idle
//              white, black, movenumber    the same as force, then as when idle             idle
//              go                          nothing: the running search answers it           thinking
//              user's move                 "Illegal now."                                   thinking
//   any        sync                        the next search counts its time from here        same
//              skill, mt, adaptive         settings, from the next search on; pondering     same
//                                          starts anew at another skill
//              ponder (while thinking)     kept for when the search ends                    same
//              anything else               "I do not understand."                           same
//
// So every search has exactly one move line, or the line that is owed in its place, and "force" is always answered by
// exactly one. What is owed is said at the first callback that brings no line: a program that abandoned a search and
// waits to drop its move is released by it, even if that move was already on its way, while a "force" that still waits
// in the program's queue is answered first. A position that the opening book knows needs no search; its answer is held
// back for a moment like every other.
//
// When memory is short the conversation goes on: it needs none for the lines of a game, and a search that cannot begin
// is answered by a plain legal move.
#pragma once

#include "quarnelchess/book/Book.h"
#include "quarnelchess/search/Clock.h"
#include "quarnelchess/search/Search.h"

#include <QuarnelChess.h>

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace quarnel::engine {

class Session {
  public:
    /// `mayWait` is true when the program may keep the callback until the user acts.
    using InputCallback = std::function<void(bool mayWait)>;
    /// The text stays until the next one; CopyText() fetches it.
    using OutputCallback = std::function<void(int length)>;

    Session(Clock& clock, InputCallback input, OutputCallback output);

    /// Takes one command line; obeyed when the input callback returns.
    void Receive(std::string_view line) { inbox_.append(line).push_back('\n'); }
    /// The text last announced.
    const std::string& Text() const { return text_; }

    /// One input callback and what follows from it.
    void Step();
    [[noreturn]] void Run();

    bool IsThinking() const { return thinking_; }
    bool IsPondering() const { return pondering_; }

  private:
    void Obey(std::string_view line);
    bool ObeyPositionCommand(std::string_view word, std::string_view rest);
    bool ObeySetting(std::string_view word, std::string_view rest);
    bool TakeSetting(std::string_view word, std::string_view rest);
    void ApplySettings();
    bool SetBoard(std::string_view fen);
    bool SetSide(Color side);
    bool UserMove(std::string_view text);
    void Go();
    void StartSearch(Move expected, const SearchLimits& limits);
    void Force();
    void Abandon();
    void Ponder();
    void StopPondering();

    bool ReplyIsDue();
    void Answer();
    SearchResult TakeResult();
    void PlayRecord(const MoveRec& move);
    bool AnnounceEnd();
    void ResetPosition(const Position& position, int plies);
    void Say(std::initializer_list<std::string_view> parts);
    void Say(std::string_view text) { Say({text}); }
    void SayNoMove() { Say("White(0): - "); }

    Color SideToMove() const { return record_.SideToMove != 0 ? Black : White; }
    MoveList LegalMoves() const;
    SearchLimits Limits() const;
    bool InBook() const;
    void SetSeed();
    std::int64_t BudgetMs() const { return tenths_ * 100; }

    Clock& clock_;
    InputCallback input_;
    OutputCallback output_;
    Search search_;
    const Book& book_ = Book::Openings();
    std::uint64_t random_ = 0; // of the next choice from the book

    // The game: the record always, the board whenever it can hold the position.
    Position record_;
    std::optional<Board> board_;
    std::vector<Key> earlier_;
    int plies_ = 0;

    std::string inbox_; // lines, each with its end
    std::string obeyed_;
    std::string text_;
    bool quiet_ = false; // the last input callback brought no line and nothing was said since
    bool owesNoMove_ = false;
    bool thinking_ = false;
    bool searchFailed_ = false; // to begin
    bool pondering_ = false;
    bool ponderWanted_ = false;
    Move expected_; // the user's move that the last answer expects
    Move bookMove_; // the answer owed, when the book has one and nothing is searched
    std::int64_t searchStartMs_ = 0;
    std::int64_t deadlineMs_ = 0;
    std::optional<std::int64_t> clockMarkMs_;
    int skill_ = 100;
    int tenths_ = 10;
    int threads_ = 1;
    std::size_t hashMb_ = 64;
    bool settingsChanged_ = true;
};

} // namespace quarnel::engine
