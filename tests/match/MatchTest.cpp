#include "match/Options.h"
#include "match/UciPlayer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace quarnel::match {
namespace {

namespace fs = std::filesystem;

const std::atomic<bool> Running{false};

/// Both players read their moves from one script.
MatchSetup Scripted(const std::string& script, int games) {
    MatchSetup setup;
    for (PlayerSetup& player : setup.Players) {
        player.Name = &player == setup.Players ? "first" : "second";
        player.Command = FAKE_ENGINE " " + script;
        player.PerMove = {Limit::Kind::Nodes, 1};
        // Nobody answers in vain but the one who hangs.
        player.TimeoutMs = script.find("hang") == std::string::npos ? 60000 : 20;
    }
    setup.Games = games;
    setup.Concurrency = 1;
    setup.Opening.Plies = 0;
    return setup;
}

std::string ReadFile(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

/// A file name of the test's own, nothing there yet.
class MatchFile {
  public:
    explicit MatchFile(const char* name)
        : Path((fs::temp_directory_path() / (name + std::to_string(getpid()))).string()) {
        fs::remove(Path);
    }
    ~MatchFile() { fs::remove(Path); }
    MatchFile(const MatchFile&) = delete;
    MatchFile& operator=(const MatchFile&) = delete;
    const std::string Path;
};

TEST(Referee, EndsGamesByTheRulesAndForFaults) {
    const std::string shuffle = "g1f3 g8f6 f3g1 f6g8 ";
    std::string slowWin; // White says he wins, Black agrees
    for (const char* move : {"g1f3", "g8f6", "h1g1", "h8g8", "g1h1", "g8h8", "b1c3", "b8c6"})
        slowWin += std::string(move) + (slowWin.size() / 9 % 2 == 0 ? ":700 " : ":-700 ");
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
        {"f2f3:-30000 e7e5:30000 g2g4:-30000 d8h4:30000", 0, Ending::Checkmate, 4},
        {slowWin, 2, Ending::AdjudicatedWin, 8},
    };
    for (const auto& [script, points, how, plies] : cases) {
        const MatchSetup setup = Scripted(script, 2);
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
    constexpr int none = 99999; // no score
    const struct {
        const char* What;
        int FirstPly;
        int White, Black; // each side's score of itself, in each of its moves
        int Moves;        // of each, before one odd score
        int OddWhite;
        int MovesAfter;
        std::optional<Outcome> Expected;
    } cases[] = {
        {"White wins", 20, 700, -700, 4, 0, 0, Outcome{2, Ending::AdjudicatedWin}},
        {"Black wins", 20, -700, 700, 4, 0, 0, Outcome{0, Ending::AdjudicatedWin}},
        {"almost enough", 20, 699, -900, 9, 0, 9, std::nullopt},
        {"not long enough", 20, 900, -900, 3, 500, 3, std::nullopt},
        {"both see themselves winning", 20, 900, 900, 9, 0, 9, std::nullopt},
        {"a mate in sight", 20, 30000, -30000, 4, 0, 0, Outcome{2, Ending::AdjudicatedWin}},
        {"only one tells a score", 20, 900, none, 9, 0, 9, std::nullopt},
        {"even", 80, 10, 10, 8, 0, 0, Outcome{1, Ending::AdjudicatedDraw}},
        {"even for the only one who tells", 80, 0, none, 9, 0, 9, std::nullopt},
        {"even, but too early", 64, 0, 0, 8, 0, 0, std::nullopt},
        {"even with a gap", 80, 0, 0, 7, 11, 7, std::nullopt},
        {"nearly even", 80, 11, -11, 9, 0, 7, std::nullopt},
    };
    for (const auto& row : cases) {
        Adjudicator adjudicator({});
        std::optional<Outcome> outcome;
        int ply = row.FirstPly;
        const auto judge = [&](Color mover, int score) {
            EXPECT_FALSE(outcome) << row.What;
            outcome = adjudicator.Judge(mover, score == none ? std::nullopt : std::optional(score), ++ply);
        };
        for (int move = 0; move <= row.Moves + row.MovesAfter; ++move) {
            if (move == row.Moves && row.MovesAfter == 0) break;
            judge(engine::White, move == row.Moves ? row.OddWhite : row.White);
            judge(engine::Black, row.Black);
        }
        ASSERT_EQ(outcome.has_value(), row.Expected.has_value()) << row.What;
        if (outcome) {
            EXPECT_EQ(outcome->WhiteHalfPoints, row.Expected->WhiteHalfPoints) << row.What;
            EXPECT_EQ(outcome->How, row.Expected->How) << row.What;
        }
    }
}

TEST(Match, GoesOnAfterFaultsAndCountsThem) {
    MatchSetup setup = Scripted("e2e4 e7e5 g1f3 crash", 6);
    const MatchFile pgn("games");
    setup.PgnPath = pgn.Path;
    Match match(setup, Running);
    match.Run();
    EXPECT_EQ(match.Standing().Wins, 3); // Black crashes, whoever it is
    EXPECT_EQ(match.Standing().Losses, 3);
    EXPECT_EQ(match.Standing().Faults[0], 3);
    EXPECT_EQ(match.Standing().Faults[1], 3);
    EXPECT_EQ(match.Standing().Pairs, (PairCounts{0, 0, 3, 0, 0}));
    EXPECT_NE(ReadFile(pgn.Path).find("1. e4 e5 2. Nf3 {the process ended with status 3} 1-0"), std::string::npos);

    setup.Players[1].Options = {{"Contempt", "1"}};
    EXPECT_THROW(Match(setup, Running).Run(), std::runtime_error); // it has no such option
    setup.Players[1].Command = "/nowhere/engine 2>/dev/null";
    EXPECT_THROW(Match(setup, Running).Run(), std::runtime_error);
}

MatchSetup Simple(const std::string& journal) {
    return ReadMatchArguments({"--player", "cmd=builtin:grabber", "--player", "cmd=builtin:random", "--games", "12",
                               "--concurrency", "1", "--journal", journal});
}

TEST(Match, ResumesFromItsJournalAsIfNeverStopped) {
    const MatchFile journal("journal");
    const MatchSetup setup = Simple(journal.Path);
    {
        Match match(setup, Running);
        match.Run();
        EXPECT_TRUE(match.IsOver());
        EXPECT_THROW(Match(setup, Running), std::runtime_error); // in use
    }
    const std::string whole = ReadFile(journal.Path);
    const std::size_t games = whole.find("\n1.1") + 1;
    // Cut off in the header, after it, within a game, between the games of a pair.
    for (const std::size_t kept : {std::size_t{70}, games, games + 20, whole.find("\n3.2") + 1, whole.size()}) {
        fs::resize_file(journal.Path, kept);
        int played = 0;
        Match match(setup, Running);
        const int before = match.Standing().Games();
        match.Run([&](const Match&, const GameResult&) { ++played; });
        EXPECT_EQ(ReadFile(journal.Path), whole) << kept;
        EXPECT_EQ(played, 12 - before);
        EXPECT_EQ(match.Standing().Games(), 12);
    }
    EXPECT_EQ(Match(setup, Running).Standing().Games(), 12);

    MatchSetup other = setup;
    other.Opening.Seed = 2;
    EXPECT_THROW(Match(other, Running), std::runtime_error);
    std::ofstream(journal.Path, std::ios::app) << "4.1 nonsense\n";
    EXPECT_THROW(Match(setup, Running), std::runtime_error);
}

TEST(Match, TheVerdictEndsItAndAStopLeavesItOpen) {
    MatchSetup setup = Scripted("", 40);
    setup.Players[0].Command = "builtin:random";
    setup.Players[1].Command = FAKE_ENGINE " crash crash"; // as White and as Black
    setup.Test = SequentialTest{0, 200};
    Match match(setup, Running);
    match.Run();
    EXPECT_EQ(match.TestVerdict(), Verdict::Accepted);
    EXPECT_LT(match.Standing().Games(), 40);
    EXPECT_TRUE(match.IsOver());

    const std::atomic<bool> stopped{true};
    Match early(setup, stopped);
    early.Run();
    EXPECT_EQ(early.Standing().Games(), 0);
    EXPECT_FALSE(early.IsOver());
}

TEST(Openings, ComeFromTheSeedAndTheNumberAlone) {
    Openings one({7, 6, 80});
    Openings other({7, 6, 80});
    std::vector<std::string> seen;
    for (const int index : {3, 1, 2, 3}) seen.push_back(one.Opening(index).MovesText());
    EXPECT_EQ(seen[0], seen[3]);
    EXPECT_NE(seen[0], seen[1]);
    EXPECT_EQ(other.Opening(2).MovesText(), seen[2]);
    EXPECT_EQ(other.Opening(2).Plies(), 6);
    EXPECT_NE(Openings({8, 6, 80}).Opening(2).MovesText(), seen[2]);
}

TEST(Uci, ScoresAreReadFromTheBestLineOnly) {
    const struct {
        const char* Line;
        std::optional<int> Score;
    } cases[] = {
        {"info depth 9 seldepth 12 score cp -35 nodes 5000 pv e2e4 e7e5", -35},
        {"info score cp 12 upperbound depth 3", 12},
        {"info depth 5 multipv 1 score mate 3 pv a1a8", 30000},
        {"info depth 5 score mate -2", -30000},
        {"info depth 5 multipv 2 score cp 80", std::nullopt},
        {"info string score cp 80", std::nullopt},
        {"bestmove e2e4", std::nullopt},
    };
    for (const auto& [line, score] : cases) EXPECT_EQ(ReadScore(line), score) << line;
}

TEST(MatchArguments, AreReadOrRefused) {
    const std::vector<std::string> good = {"--player", "cmd=a",    "nodes=5",    "option.Clear Hash=x",
                                           "--player", "cmd=b -c", "movetime=9", "name=me",
                                           "--sprt",   "-1.5,5"};
    const MatchSetup setup = ReadMatchArguments(good);
    EXPECT_EQ(setup.Players[0].Options[0].first, "Clear Hash");
    EXPECT_EQ(setup.Players[1].Command, "b -c");
    EXPECT_EQ(setup.Players[1].PerMove.Value, 9);
    EXPECT_EQ(setup.Test->Elo0, -1.5);
    const std::vector<std::string> bad[] = {{"--games", "3"},     {"--games"},         {"--games", "many"},
                                            {"--sprt", "5"},      {"--sprt", "5,0"},   {"--win", "700"},
                                            {"--both", "name=x"}, {"--both", "name="}, {"--both", "nodes=0"},
                                            {"--both", "x"},      {"--player"},        {"--what"}};
    for (const std::vector<std::string>& more : bad) {
        std::vector<std::string> arguments = good;
        arguments.insert(arguments.end(), more.begin(), more.end());
        EXPECT_THROW(ReadMatchArguments(arguments), UsageError) << more[0];
    }
    EXPECT_THROW(ReadMatchArguments({"--player", "cmd=a", "nodes=1"}), UsageError);
    EXPECT_THROW(ReadMatchArguments({"--player", "cmd=a", "--player", "cmd=b", "nodes=1"}), UsageError);
}

} // namespace
} // namespace quarnel::match
