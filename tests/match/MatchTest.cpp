#include "match/Options.h"
#include "match/UciPlayer.h"

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
            const Outcome outcome = PlayGame(*white, *black, {}, Running, game, fault);
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
    EXPECT_TRUE(match.Standing().FaultsOf(0) == 3 && match.Standing().FaultsOf(1) == 3);
    setup.Players[1].Command = "/nowhere/engine 2>/dev/null";
    EXPECT_THROW(Match(setup, Running).Run(), std::runtime_error);
}

TEST(UciPlayer, SetsTheOptionsThatTheEngineHas) {
    PlayerSetup setup = Scripted("tell").Players[0];
    setup.Options = {{"odd book", "a b"}};
    const std::unique_ptr<Player> player = MakePlayer(setup, Running);
    for (int game = 0; game < 2; ++game) { // once for all games
        player->NewGame(1);
        EXPECT_EQ(player->Choose({}, {}).Text, "name-odd-book-value-a-b");
    }
    setup.Options = {{"Odd", "1"}};
    EXPECT_THROW(MakePlayer(setup, Running)->NewGame(1), std::runtime_error);
}

TEST(Match, ACarefulPlayerTakesAsMuchAsAGrabberAndLosesLess) {
    MatchSetup setup = Read("--player cmd=builtin:careful --player cmd=builtin:grabber --games 20 --concurrency 1");
    setup.Adjudication.Enabled = false;
    Match match(setup, Running);
    match.Run();
    EXPECT_EQ(match.Standing().Losses, 0);
    EXPECT_GT(match.Standing().Wins, 0);
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

/// A time that somebody moves on by hand.
struct HandMovedTime {
    GameClock::TimePoint Now{};
    GameClock::Source Source() {
        return [this] { return Now; };
    }
};

TEST(GameClock, TakesWhatWasUsedAndGivesTheIncrement) {
    using std::chrono::microseconds;
    const struct {
        int MarginMs;
        std::vector<int> UsedUs; // by White's moves
        std::int64_t LeftMs;     // after them
        std::string Fault;       // at the last one
    } cases[] = {{0, {0}, 1050, ""},
                 {0, {300000, 1000}, 799, ""},
                 {0, {300400}, 749, ""}, // shown rounded down
                 {0, {1000000}, 50, ""},
                 {0, {1000001}, 0, "thought for 1.001 s with 1 s left"},
                 {0, {1000000, 50001}, 0, "thought for 0.051 s with 0.05 s left"},
                 {20, {1020000}, 50, ""}, // the margin is no gift
                 {20, {1020001}, 0, "thought for 1.021 s with 1 s left"}};
    for (const auto& [marginMs, used, leftMs, fault] : cases) {
        HandMovedTime time;
        GameClock clock(ClockRules{1000, 50}, std::nullopt, marginMs, time.Source());
        std::optional<std::string> overdrawn;
        for (const int us : used) {
            EXPECT_FALSE(overdrawn);
            clock.Start(engine::White);
            time.Now += microseconds(us);
            overdrawn = clock.Stop();
            clock.Start(engine::Black); // who has no clock
            time.Now += std::chrono::hours(1);
            EXPECT_FALSE(clock.Stop());
        }
        EXPECT_EQ(overdrawn.value_or(""), fault);
        EXPECT_TRUE(overdrawn || clock.Times().LeftMs[engine::White] == leftMs) << leftMs;
        EXPECT_FALSE(clock.Times().LeftMs[engine::Black]);
    }
    // Nothing left is still shown as a clock.
    HandMovedTime time;
    GameClock clock(std::nullopt, ClockRules{1000, 0}, 0, time.Source());
    clock.Start(engine::Black);
    time.Now += std::chrono::seconds(1);
    EXPECT_FALSE(clock.Stop());
    EXPECT_EQ(clock.Times().LeftMs[engine::Black], 1);
}

TEST(AwakeTime, PassesOverTheTimeThatNobodyLooked) {
    const auto at = [](int ms) { return AwakeTime::TimePoint(std::chrono::milliseconds(ms)); };
    AwakeTime time(at(0));
    const struct {
        int NowMs, AwakeMs;
        bool IsLook; // or is the time only asked for?
    } cases[] = {{7, 7, false},      {10, 10, true},    {25, 25, true},     {60025, 55, false},
                 {60030, 55, false}, {60031, 55, true}, {60032, 56, false}, {60041, 65, true}};
    for (const auto& [nowMs, awakeMs, isLook] : cases) {
        if (isLook) time.Look(at(nowMs));
        EXPECT_EQ(time.At(at(nowMs)), at(awakeMs)) << nowMs;
    }
}

TEST(GameClock, IsToldToTheEngine) {
    const Limit clock{Limit::Kind::Clock, 0, {1000, 50}};
    const auto times = [](std::optional<ClockRules> white, std::optional<ClockRules> black) {
        return GameClock(white, black, 0).Times();
    };
    EXPECT_EQ(GoCommand(clock, times(ClockRules{1000, 50}, ClockRules{700, 0})),
              "go wtime 1000 btime 700 winc 50 binc 0");
    EXPECT_EQ(GoCommand(clock, times(std::nullopt, ClockRules{700, 9})), "go btime 700 binc 9");
    EXPECT_EQ(GoCommand({Limit::Kind::Depth, 3}, times(ClockRules{1000, 50}, std::nullopt)), "go depth 3");
}

TEST(GameClock, LosesTheGameForWhoeverOverdrawsIt) {
    // Every look at the time finds it 10 ms later, so a move takes so long.
    std::int64_t looks = 0;
    MatchSetup setup = Scripted("e2e4 e7e5 e1e3");
    setup.ClockSource = [&looks] { return GameClock::TimePoint(std::chrono::milliseconds(10 * ++looks)); };
    for (const auto& [secondMs, how, plies] : {std::tuple{9, Ending::LostOnTime, 1}, {20, Ending::IllegalMove, 2}}) {
        setup.Players[1].Thinking = {Limit::Kind::Clock, 0, {secondMs, 0}};
        setup.Games = 2;
        std::vector<GameResult> results;
        Match match(setup, Running);
        match.Run([&results](const Match&, const GameResult& result) { results.push_back(result); });
        ASSERT_EQ(results.size(), 2U);
        EXPECT_STREQ(NameOf(results[0].How), NameOf(how));
        EXPECT_EQ(results[0].Plies, plies);
        EXPECT_EQ(results[0].FirstHalfPoints, how == Ending::LostOnTime ? 2 : 0);
        const bool late = how == Ending::LostOnTime;
        const std::string summary = Summary(match);
        const std::string own = late ? "losses on time 2, illegal moves 0" : "losses on time 0, illegal moves 1";
        EXPECT_NE(summary.find("faults of second: " + own + ", crashes 0, hangs 0\n"), std::string::npos) << summary;
    }
}

TEST(MatchArguments, AreReadOrRefused) {
    const std::string words = "--both nodes=5 --player cmd=a \"option.Clear Hash=x\" --player \"cmd=b -c\" movetime=9 "
                              "name=me --sprt -1.5,5 --draw 0,3 ";
    const MatchSetup setup = Read(words);
    EXPECT_TRUE(setup.Players[0].Options[0].first == "Clear Hash" && setup.Players[0].Thinking.Value == 5);
    EXPECT_TRUE(setup.Players[1].Command == "b -c" && setup.Players[1].Thinking.Value == 9);
    EXPECT_TRUE(setup.Test->Elo0 == -1.5 && setup.Adjudication.DrawMoves == 3);
    const MatchSetup clocked = Read("--both clock=5+0.05 --clock-margin 7 --player cmd=a --player cmd=b clock=90");
    EXPECT_EQ(WriteClockRules(*clocked.Players[0].Thinking.Clock()), "5+0.05");
    EXPECT_EQ(clocked.Players[1].Thinking.Clock()->BaseMs, 90000);
    EXPECT_EQ(clocked.ClockMarginMs, 7);
    for (const char* clock : {"", "0", "0+1", "5+", "+1", "5.", "-5", "5+-1", "5.1234", "5 +1", "5s", "100001"})
        EXPECT_FALSE(ReadClockRules(clock)) << clock;
    for (const char* more : {"--games=3", "--win=700", "--both=name=", "--both=nodes=0", "--both=x",
                             "--both=clock=soon", "--player=cmd=c"})
        EXPECT_THROW(Read(words + more), CLI::ParseError) << more;
}

} // namespace
} // namespace quarnel::match
