// A match: pairs of games between two players, several at a time, until the games are played, the
// sequential test has its verdict, or somebody stops it.
//
// Start at Match::Run(). The workers are threads of the match; the caller's thread waits for them.
#pragma once

#include "Journal.h"
#include "Openings.h"
#include "Referee.h"

#include <exception>
#include <functional>
#include <mutex>

namespace quarnel::match {

struct SequentialTest {
    double Elo0 = 0;
    double Elo1 = 5;
};

struct MatchSetup {
    PlayerSetup Players[2];
    int Games = 200; // at most; even
    int Concurrency = 2;
    OpeningRules Opening;
    AdjudicationRules Adjudication;
    int ClockMarginMs = 0;                    // that players with a clock may overdraw it
    GameClock::Source ClockSource = AwakeNow; // asked by all workers at a time
    std::optional<SequentialTest> Test;
    std::string JournalPath; // empty: none
    std::string PgnPath;     // finished games are added to this file; empty: none
};

class Match {
  public:
    /// Called after every finished game, by a worker, one at a time.
    using Progress = std::function<void(const Match&, const GameResult&)>;

    /// Opens the journal. Throws std::runtime_error. `stop` must outlive the match.
    Match(MatchSetup setup, const std::atomic<bool>& stop);

    /// Plays what the journal lacks. Returns early when `stop` is raised; the games under way are lost
    /// then. Throws std::runtime_error when a player cannot be started or a file not be written.
    void Run(const Progress& progress = {});

    const MatchSetup& Setup() const { return setup_; }
    const Tally& Standing() const { return tally_; }
    /// Of the sequential test, Undecided without one. A verdict once reached stays.
    Verdict TestVerdict() const { return verdict_; }
    bool IsOver() const { return verdict_ != Verdict::Undecided || tally_.Games() >= setup_.Games; }

  private:
    void Work(const Progress& progress);
    std::optional<int> NextPair();
    void PlayPair(int pair, Openings& openings, Player& first, Player& second, const Progress& progress);
    GameTerms TermsOf(int pair, int leg) const;
    Game OpeningOf(int pair, Openings& openings) const;
    static std::size_t GameIndex(int pair, int leg) {
        return 2 * static_cast<std::size_t>(pair) + static_cast<std::size_t>(leg);
    }
    bool IsPlayed(int pair, int leg) const { return played_[GameIndex(pair, leg)]; }
    void Count(const GameResult& result);
    void WritePgn(const GameResult& result, const Game& game, const std::string& faultText) const;

    const MatchSetup setup_;
    const std::atomic<bool>& stop_;
    const std::string names_[2];
    Journal journal_;
    std::map<int, std::string> openings_; // of the pairs in the journal

    mutable std::mutex mutex_; // guards what follows while the match runs
    std::vector<bool> played_; // by pair and leg
    int nextPair_ = 0;
    Tally tally_;
    Verdict verdict_ = Verdict::Undecided;
    std::exception_ptr failure_;
};

/// What the match has shown so far, several lines.
std::string Summary(const Match& match);

} // namespace quarnel::match
