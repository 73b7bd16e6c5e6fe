// The universal chess interface: command lines in, answer lines out.
//
// Obey() takes one line and returns at once; a search answers from threads of its own, with "info" lines
// and one "bestmove" for each "go". Whatever a line cannot mean is left out, and an "info string" says why.
// A command that needs the search to rest (go, ucinewgame, another table size) ends a running one first.
#pragma once

#include "quarnelchess/book/Book.h"
#include "quarnelchess/search/Clock.h"
#include "quarnelchess/search/Search.h"

#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace quarnel::engine {

class Uci {
  public:
    /// Takes a line without its end. Called on the thread of Obey() and on search threads, never twice at once.
    using Output = std::function<void(std::string_view line)>;

    Uci(Clock& clock, Output output);
    /// Ends a running search, which still answers.
    ~Uci();
    Uci(const Uci&) = delete;
    Uci& operator=(const Uci&) = delete;

    /// False after "quit". Lines come from one thread.
    bool Obey(std::string_view line);
    /// Until the running search has answered, if there is one. Without an end to it ("go infinite"), never returns.
    void AwaitAnswer() { search_.Result(); }

    /// The level (0..100) that plays like `elo`, blended between the measured levels.
    static int SkillForElo(int elo);

  private:
    struct Option {
        std::string_view Name;
        std::string Declaration;                    // type, default and range, as announced
        std::function<bool(std::string_view)> Take; // false when the value does not fit
    };
    Option Spin(std::string_view name, int lowest, int highest, int& value);
    Option Check(std::string_view name, bool& value);
    void DeclareOptions();

    // The commands; `rest` is the line behind the command's word.
    void Identify(std::string_view rest);
    void Ready(std::string_view rest);
    void NewGame(std::string_view rest);
    void SetOption(std::string_view rest);
    void SetPosition(std::string_view rest);
    void Go(std::string_view rest);
    void PonderHit(std::string_view rest);
    void FinishSearch(std::string_view rest);
    void Ignore(std::string_view rest) { (void)rest; }

    bool ObeyCommand(std::string_view line);
    void StartSearch(std::string_view rest);
    SearchLimits ReadLimits(std::string_view rest);
    void ApplySettings();
    void ApplySeed();
    bool AnswerFromBook(const SearchLimits& limits);
    void ShowInfo(const SearchInfo& info);
    void ShowAnswer(const SearchResult& result);
    void ShowSummary(const SearchResult& result);
    void SayBestMove(Move best, Move reply);
    void Say(const std::string& line);
    void Complain(std::string_view what, std::string_view text);

    Clock& clock_;
    Output output_;
    std::mutex outputMutex_;
    Search search_;
    const Book& book_ = Book::Openings();
    std::uint64_t random_ = 0; // of the next choice from the book

    SearchRoot root_;
    std::vector<Option> options_;
    int hashMb_ = 64;
    int threads_ = 1;
    int multiPv_ = 1;
    int skill_ = 100;
    int elo_ = 0;
    int seed_ = 0; // 0: another one for every game
    bool limitStrength_ = false;
    bool ownBook_ = false;
    bool ponder_ = false; // the interface decides about it; kept because it is told
    bool settingsChanged_ = true;

    // Of the running search.
    std::int64_t startMs_ = 0;
    int mateWanted_ = 0; // moves; 0: none
    int linesShown_ = 1;
    Move shownBest_;
    bool inCheck_ = false;
};

} // namespace quarnel::engine
