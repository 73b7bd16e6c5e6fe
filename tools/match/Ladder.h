// The ladder: every level of the program against the one below, and the lowest against simple players.
//
// A rung is one match with a journal of its own, so rungs can be played one by one, in any order.
#pragma once

#include "Match.h"

namespace quarnel::match {

/// A level as the program sets it.
struct Level {
    int Skill = 100;
    int Tenths = 10; // of a second for a move

    /// Skills below 100 are limited by work, not by time.
    bool DependsOnTime() const { return Skill >= 100; }
};
constexpr Level Levels[] = {{10, 5},  {20, 5},   {30, 5},   {50, 5},   {75, 5},
                            {100, 5}, {100, 10}, {100, 30}, {100, 50}, {100, 100}};

/// What the upper player should score, 0..1; the limits count as reached, but for `AboveHalf`.
struct Goal {
    double Low = 0;
    double High = 1;
    bool AboveHalf = false; // more than a half instead

    bool IsNone() const { return Low == 0 && High == 1 && !AboveHalf; }
    bool Holds(double score) const { return AboveHalf ? score > 0.5 : score >= Low && score <= High; }
    std::string Text() const;
};

struct Rung {
    std::string Name; // "2" to "10" for a level against the one below; "random", "grabber" and "careful" for level 1
                      // against those, "careful-2" and "careful-3" for the next two
    MatchSetup Setup;
    Goal Target;
};

struct LadderSetup {
    std::string Command;             // the engine
    std::string Folder;              // of the journals
    std::vector<std::string> Wanted; // names of rungs to play; empty: all
    int Games = 200;
    int TimeDivisor = 50;
    int Concurrency = 2;
    int HashMb = 16;
    std::uint64_t Seed = 1;
};

/// All rungs, from the lowest up, whether they are wanted or not.
std::vector<Rung> MakeRungs(const LadderSetup& setup);

/// One line of a Markdown table, after TableHead.
extern const char* const TableHead;
std::string TableRow(const Rung& rung, const Tally& tally);

} // namespace quarnel::match
