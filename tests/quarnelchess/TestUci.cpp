#include "FakeClock.h"

#include "quarnelchess/uci/Uci.h"

#include <gtest/gtest.h>

#include <regex>
#include <sstream>

namespace quarnel::engine {
namespace {

/// The interface's side: says lines and writes down the answers.
class Conversation {
  public:
    Conversation() { Say({"setoption name Hash value 1"}); }

    /// False when the engine wants to end.
    bool Say(const std::vector<std::string>& lines) {
        bool goesOn = true;
        for (const std::string& line : lines) goesOn = uci_.Obey(line);
        return goesOn;
    }
    /// The answers to `lines`, the search's included.
    std::vector<std::string> Ask(const std::vector<std::string>& lines) {
        Take();
        Say(lines);
        uci_.AwaitAnswer();
        return Take();
    }
    std::vector<std::string> Take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(answers_, {});
    }
    void AwaitAnswer() { uci_.AwaitAnswer(); }

    FakeClock Time;

  private:
    std::mutex mutex_;
    std::vector<std::string> answers_;
    Uci uci_{Time, [this](std::string_view line) {
                 const std::lock_guard lock(mutex_);
                 answers_.emplace_back(line);
             }};
};

std::size_t CountMatches(const std::vector<std::string>& lines, const std::string& pattern) {
    const std::regex regex(pattern);
    return static_cast<std::size_t>(
        std::count_if(lines.begin(), lines.end(), [&](const auto& line) { return std::regex_match(line, regex); }));
}

/// Answers beside these are broken.
const char* const Shapes =
    "id (name|author) .+|option name .+ type (spin|check|button|string).*|uciok|readyok|info string .+|"
    "info depth \\d+ seldepth \\d+ multipv \\d+ score (cp|mate) -?\\d+ nodes \\d+ nps \\d+ hashfull \\d+ time \\d+"
    " pv( [a-h][1-8][a-h][1-8][nbrq]?)+|"
    "info( depth \\d+ score (cp|mate) -?\\d+)?( nodes \\d+ nps \\d+ time \\d+)?( pv( [a-h][1-8][a-h][1-8][nbrq]?)+)?|"
    "bestmove (0000|[a-h][1-8][a-h][1-8][nbrq]?( ponder [a-h][1-8][a-h][1-8][nbrq]?)?)";

TEST(Uci, AnswersEachCommandAsTheProtocolHasIt) {
    const char* const mateInOne = "position fen 6k1/5ppp/8/8/8/8/8/R3K3 w - - 0 1";
    const char* const mateInTwo = "position fen 7k/8/5K2/8/8/8/8/6R1 w - - 0 1";
    const struct {
        std::vector<std::string> Lines;
        std::vector<std::string> Patterns; // each matches some answer, the last one the last answer
    } cases[] = {
        {{"uci"},
         {"id name Quarnel Chess [0-9.]+", "option name Hash type spin default 64 min 1 max 1024",
          "option name Clear Hash type button", "uciok"}},
        {{"isready"}, {"readyok"}},
        {{"go nodes 3000"}, {"info depth 4 .*", "bestmove .{4} ponder .{4}"}},
        {{"go depth 3"}, {"info depth 3 .*", "info nodes \\d+ .*", "bestmove .*"}},
        {{"go movetime 1", "stop"}, {"bestmove .*"}},
        {{"go wtime -20 btime 5 winc 1 binc 1 movestogo 3", "stop"}, {"bestmove .*"}},
        {{"go nodes 500 searchmoves a2a3"}, {"bestmove a2a3.*"}},
        {{"position startpos moves e2e4", "go searchmoves e7e5 x9 depth 2"}, {"info string .*x9", "bestmove e7e5.*"}},
        {{mateInOne, "go depth 5"}, {"info .* score mate 1 .*", "bestmove a1a8"}},
        {{mateInTwo, "go mate 2"}, {"info .* score mate 2 .*", "bestmove f6f7.*"}},
        {{std::string(mateInTwo) + " moves f6f7", "go depth 6"}, {"info .* score mate -1 .*", "bestmove h8h7.*"}},
        {{std::string(mateInOne) + " moves a1a8", "go depth 5"}, {"info depth 0 score mate 0", "bestmove 0000"}},
        {{"position fen 7k/5Q2/6K1/8/8/8/8/8 b - -", "go nodes 9"}, {"info depth 0 score cp 0", "bestmove 0000"}},
        {{"setoption name multipv value 3", "go depth 2"}, {"info depth 2 .* multipv 3 .*", "bestmove .*"}},
        {{"setoption name Threads value 3", "go infinite", "stop"}, {"bestmove .{4}.*"}},
        {{"setoption name Threads value 2", "setoption name Clear Hash", "go nodes 5000"}, {"bestmove .*"}},
        // Castling, en passant and promotion on the way.
        {{"position startpos moves e2e4 a7a6 e4e5 d7d5 e5d6 g8f6 g1f3 f6g8 f1e2 g8f6 e1g1 f6g8 d6c7 g8f6 c7b8n",
          "go depth 1 searchmoves a8b8"},
         {"bestmove a8b8.*"}},
        // The third time this position comes up: a draw, though a rook down; the first time it is none.
        {{"position fen 6k1/8/8/8/8/8/r7/7K b - - 0 1 moves a2b2 h1g1 b2a2 g1h1 a2b2 h1g1 b2a2 g1h1 a2b2",
          "go depth 4 searchmoves h1g1"},
         {"info depth 4 .* score cp 0 .*", "bestmove h1g1.*"}},
        {{"position fen 6k1/8/8/8/8/8/1r6/7K w - - 9 1", "go depth 4 searchmoves h1g1"},
         {"info depth 4 .* score cp -\\d{3,} .*", "bestmove h1g1.*"}},
        // Words before a command do not count, and a second search ends the first.
        {{"joho debug on", "tell go infinite", "go depth 1"},
         {"info string .*joho", "info string .*tell", "bestmove .*"}},
    };
    for (const auto& c : cases) {
        Conversation conversation;
        const std::vector<std::string> answers = conversation.Ask(c.Lines);
        for (const std::string& pattern : c.Patterns)
            EXPECT_GE(CountMatches(answers, pattern), 1U) << pattern << "\n" << testing::PrintToString(answers);
        EXPECT_EQ(CountMatches(answers, Shapes), answers.size()) << testing::PrintToString(answers);
        EXPECT_EQ(CountMatches({answers.back()}, c.Patterns.back()), 1U) << testing::PrintToString(answers);
    }
}

TEST(Uci, LeavesOutWhatItCannotMeanAndSaysSo) {
    Conversation conversation;
    std::istringstream lines(
        "xyzzy|\xFF\x01|setoption|setoption name|setoption name Hash|setoption name Hash value 0|"
        "setoption name Hash value 1025|setoption name Hash value 1x|setoption name Colour value 3|"
        "setoption name OwnBook value maybe|position|position middle|position fen|"
        "position fen 8/8/8/8/8/8/8/8 w - -|position fen k7/8/8/8/8/8/8/K6P w - - 0 1|"
        "position startpos moves e2e5|position startpos moves e2e4 e7e5 O-O|"
        "position fen 9/8 moves e2e4");
    for (std::string line; std::getline(lines, line, '|');) {
        const std::vector<std::string> answers = conversation.Ask({line});
        EXPECT_EQ(CountMatches(answers, "info string [^]+"), 1U) << line << "\n" << testing::PrintToString(answers);
    }
    for (const char* line : {"", "  ", "\r", "stop", "ponderhit", "debug on", "register later"})
        EXPECT_TRUE(conversation.Ask({line}).empty()) << line;
    // It still stands in the first position, and a bad limit leaves the others.
    EXPECT_EQ(CountMatches(conversation.Ask({"go depth x nodes searchmoves e7e5 e2e4 depth 1"}), "bestmove e2e4.*"),
              1U);
    EXPECT_FALSE(conversation.Say({"quit"}));
}

TEST(Uci, AnswersAnEndlessSearchOnlyWhenItIsAsked) {
    const char* const cases[][2] = {{"go infinite depth 2", "stop"},
                                    {"go ponder movetime 50", "ponderhit"},
                                    {"go ponder wtime 1000 btime 1000", "ponderhit"},
                                    {"go ponder depth 2", "stop"},
                                    {"go infinite", "quit"}}; // ends while it searches
    for (const auto& [go, end] : cases) {
        Conversation conversation;
        conversation.Say({"position startpos moves e2e4", go});
        conversation.Time.Advance(100000);
        std::this_thread::sleep_for(std::chrono::milliseconds(15));
        EXPECT_TRUE(conversation.Say({"isready"}));
        const std::vector<std::string> before = conversation.Take();
        EXPECT_EQ(CountMatches(before, "bestmove.*"), 0U) << go;
        EXPECT_EQ(before.empty() ? "" : before.back(), "readyok");
        if (std::string(end) == "quit") continue;
        conversation.Say({end});
        conversation.Time.Advance(100000);
        conversation.AwaitAnswer();
        EXPECT_EQ(CountMatches(conversation.Take(), "bestmove.*"), 1U) << go;
    }
}

TEST(Uci, ThinksShortlyInAClockGameThatLacksItsOwnClock) {
    const struct {
        const char* Go;
        std::int64_t DurationMs;
    } cases[] = {{"go btime 5000 binc 50", 500},
                 {"go btime 600000", 1000},
                 {"go btime 0", 1},
                 {"go winc 100", 1000},
                 {"go movestogo 10", 1000}};
    for (const auto& [go, durationMs] : cases) {
        Conversation conversation;
        conversation.Say({go});
        conversation.Time.Advance(durationMs - 1);
        std::this_thread::sleep_for(std::chrono::milliseconds(15));
        EXPECT_EQ(CountMatches(conversation.Take(), "bestmove.*"), 0U) << go;
        conversation.Time.Advance(1);
        conversation.AwaitAnswer();
        EXPECT_EQ(CountMatches(conversation.Take(), "bestmove.*"), 1U) << go;
    }
}

/// What the engine reports of a game that it plays against itself, but for times.
std::string PlaySeed(int skill, int seed, std::string moves) {
    Conversation conversation;
    conversation.Say({"setoption name Skill value " + std::to_string(skill), "setoption name OwnBook value true",
                      "setoption name Seed value " + std::to_string(seed), "ucinewgame"});
    std::string reports;
    for (int ply = 0; ply < 12; ++ply) {
        const auto answers = conversation.Ask({"position startpos moves" + moves, "go nodes 2000"});
        for (const std::string& answer : answers)
            if (answer.find("seldepth") != std::string::npos)
                reports += std::regex_replace(answer, std::regex(" (nps|time) \\d+"), "") + "\n";
        reports += answers.back() + "\n";
        moves += " " + answers.back().substr(9, answers.back().find(" ponder") - 9);
    }
    return reports;
}

TEST(Uci, PlaysTheSameGameWithTheSameSeedOnly) {
    const std::string weak = PlaySeed(30, 1, "");
    EXPECT_EQ(PlaySeed(30, 1, ""), weak);
    EXPECT_TRUE(PlaySeed(30, 2, "") != weak || PlaySeed(30, 3, "") != weak);
    // Beyond the book, where a strong player has to search.
    const char* const unusual = " a2a3 h7h6 h2h3 a7a6 a3a4";
    EXPECT_EQ(PlaySeed(100, 1, unusual), PlaySeed(100, 1, unusual));
}

TEST(Uci, LimitsItsStrengthByRating) {
    for (int elo = 400; elo < 2800; elo += 10) EXPECT_LE(Uci::SkillForElo(elo), Uci::SkillForElo(elo + 10));
    EXPECT_EQ(Uci::SkillForElo(0), 10);
    EXPECT_EQ(Uci::SkillForElo(3000), 100);
    Conversation conversation;
    const auto depth = [&](const char* limited) {
        const auto answers =
            conversation.Ask({"setoption name UCI_Elo value 600",
                              std::string("setoption name UCI_LimitStrength value ") + limited, "go nodes 20000"});
        return CountMatches(answers, "info depth .* seldepth.*");
    };
    EXPECT_GT(depth("false"), 5U);
    EXPECT_EQ(depth("true"), 1U);
}

} // namespace
} // namespace quarnel::engine
