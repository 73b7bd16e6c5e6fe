#include "match/Options.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace quarnel::match {
namespace {

const std::atomic<bool> Running{false};

/// What quarnel-match makes of these words; throws CLI::ParseError.
MatchSetup Read(const std::string& words) {
    CLI::App app;
    MatchSetup setup;
    AddMatchOptions(app, setup);
    app.parse(words);
    return setup;
}

/// Both players read their moves from one script.
MatchSetup Scripted(const std::string& script) {
    const std::string player = " --player \"cmd=" FAKE_ENGINE " " + script + "\"";
    // Nobody answers in vain but the one who hangs.
    const std::string timeoutMs = script == "hang" ? "20" : "60000";
    return Read("--both nodes=1 --games 6 --opening-plies 0 --concurrency 1 --timeout " + timeoutMs + player + player);
}

TEST(Referee, EndsGamesByTheRulesAndForFaults) {
    const std::string shuffle = "g1f3 g8f6 f3g1 f6g8 ";
    const struct {
        std::string Script;
        int WhiteHalfPoints;
        Ending How;
        int Plies;
    } cases[] = {
        {"f2f3 e7e5 g2g4 d8h4", 0, Ending::Checkmate, 4},
        {shuffle + shuffle, 1, Ending::Repetition, 8},
        {"e2e4 e7e5 e1e3", 0, Ending::IllegalMove, 2},
        {"e2e4 0000", 2, Ending::IllegalMove, 1},
        {"e2e4 crash", 2, Ending::Crash, 1},
        {"hang", 0, Ending::NoAnswer, 0},
        {"g1f3:700 g8f6:-700 h1g1:700 h8g8:-700 g1h1:700 g8h8:-700 b1c3:700 b8c6:-700", 2, Ending::AdjudicatedWin, 8},
    };
    for (const auto& [script, points, how, plies] : cases) {
        const MatchSetup setup = Scripted(script);
        const std::unique_ptr<Player> white = MakePlayer(setup.Players[0], Running);
        const std::unique_ptr<Player> black = MakePlayer(setup.Players[1], Running);
        for (int round = 0; round < 2; ++round) { // the second one with the same processes, or fresh ones
            Game game;
            std::string fault;
            const Outcome outcome = PlayGame(*white, *black, {}, 1, Running, game, fault);
            EXPECT_EQ(outcome.WhiteHalfPoints, points) << script;
            EXPECT_STREQ(NameOf(outcome.How), NameOf(how)) << script;
            EXPECT_EQ(game.Plies(), plies) << script;
            EXPECT_EQ(fault.empty(), !IsFault(how)) << fault;
        }
    }
}

TEST(Referee, AdjudicatesWhatBothPlayersSee) {
    const struct {
        int FirstPly, White, Black; // each side's score of itself
        int Moves;                  // of each
        std::optional<Ending> How;
    } cases[] = {{20, 700, -700, 4, Ending::AdjudicatedWin},
                 {20, 900, -900, 3, std::nullopt}, // not for long enough
                 {20, 699, -900, 9, std::nullopt},
                 {20, 900, 900, 9, std::nullopt}, // each sees himself winning
                 {80, 10, 10, 8, Ending::AdjudicatedDraw},
                 {79, 0, 0, 8, std::nullopt}, // a ply too early
                 {80, 11, -11, 9, std::nullopt}};
    for (const auto& [firstPly, white, black, moves, how] : cases) {
        Adjudicator adjudicator({});
        std::optional<Outcome> outcome;
        for (int move = 0; move < moves; ++move) {
            EXPECT_FALSE(adjudicator.Judge(engine::White, white, firstPly + 2 * move + 1));
            EXPECT_FALSE(outcome);
            outcome = adjudicator.Judge(engine::Black, black, firstPly + 2 * move + 2);
        }
        EXPECT_EQ(outcome ? std::optional(outcome->How) : std::nullopt, how) << white << " at " << firstPly;
    }
}

TEST(Match, GoesOnAfterFaultsAndCountsThem) {
    MatchSetup setup = Scripted("e2e4 e7e5 g1f3 crash");
    Match match(setup, Running);
    match.Run();
    EXPECT_EQ(match.Standing().Pairs, (PairCounts{0, 0, 3, 0, 0})); // Black crashes, whoever it is
    EXPECT_TRUE(match.Standing().Faults[0] == 3 && match.Standing().Faults[1] == 3);
    setup.Players[1].Command = "/nowhere/engine 2>/dev/null";
    EXPECT_THROW(Match(setup, Running).Run(), std::runtime_error);
}

TEST(Match, ResumesFromItsJournalAsIfNeverStopped) {
    const std::string journal = testing::TempDir() + "journal" + std::to_string(getpid());
    const auto content = [&] {
        std::ifstream file(journal);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    MatchSetup setup = Read("--player cmd=builtin:grabber --player cmd=builtin:random --games 12 --concurrency 1 "
                            "--journal " +
                            journal);
    {
        Match match(setup, Running);
        match.Run();
        EXPECT_THROW(Match(setup, Running), std::runtime_error); // in use
    }
    const std::string whole = content();
    const std::size_t games = whole.find("\n1.1") + 1;
    // Cut off in the header, after it, within a game, between the games of a pair.
    for (const std::size_t kept : {std::size_t{70}, games, games + 20, whole.find("\n3.2") + 1, whole.size()}) {
        std::filesystem::resize_file(journal, kept);
        Match match(setup, Running);
        match.Run();
        EXPECT_EQ(content(), whole) << kept;
        EXPECT_EQ(match.Standing().Games(), 12);
    }
    setup.Opening.Seed = 2;
    EXPECT_THROW(Match(setup, Running), std::runtime_error); // another match's
    std::filesystem::remove(journal);
}

TEST(MatchArguments, AreReadOrRefused) {
    const std::string words = "--both nodes=5 --player cmd=a \"option.Clear Hash=x\" --player \"cmd=b -c\" movetime=9 "
                              "name=me --sprt -1.5,5 --draw 0,3 ";
    const MatchSetup setup = Read(words);
    EXPECT_TRUE(setup.Players[0].Options[0].first == "Clear Hash" && setup.Players[0].PerMove.Value == 5);
    EXPECT_TRUE(setup.Players[1].Command == "b -c" && setup.Players[1].PerMove.Value == 9);
    EXPECT_TRUE(setup.Test->Elo0 == -1.5 && setup.Adjudication.DrawMoves == 3);
    for (const char* more : {"--games=3", "--win=700", "--both=name=", "--both=nodes=0", "--both=x", "--player=cmd=c"})
        EXPECT_THROW(Read(words + more), CLI::ParseError) << more;
}

} // namespace
} // namespace quarnel::match
