#include "FakeClock.h"

#include "quarnelchess/board/Fen.h"
#include "quarnelchess/library/Session.h"
#include "support/PlainEngine.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <random>
#include <set>
#include <sstream>
#include <vector>

namespace quarnel::engine {
namespace {

/// The program's side of the conversation: hands over one queued line a call and writes everything down.
class Dialogue {
  public:
    Dialogue()
        : TheSession(
              Time, [this](bool mayWait) { Input(mayWait); }, [this](int length) { Output(length); }) {}

    using Lines = std::vector<const char*>;

    /// Lets the engine take all lines, and no longer.
    void HandOver(const Lines& lines) {
        waiting_.insert(waiting_.end(), lines.begin(), lines.end());
        while (!waiting_.empty()) TheSession.Step();
    }
    /// Steps until the engine has nothing to do and says so.
    void Settle() {
        idleSeen_ = false;
        while (!idleSeen_) TheSession.Step();
    }
    void Say(const Lines& lines) {
        HandOver(lines);
        Settle();
    }
    /// Steps until the move that is owed has come. The milliseconds that it took.
    std::int64_t AwaitMove() {
        const std::int64_t before = Time.NowMs();
        while (TheSession.IsThinking()) TheSession.Step();
        return Time.NowMs() - before;
    }

    FakeClock Time;
    std::vector<std::string> Texts;
    std::vector<std::string> Log; // "0" and "1" for callbacks without a line, "> line", "< text"
    std::function<void()> DuringInput = [] {};
    Session TheSession;

  private:
    void Input(bool mayWait) {
        DuringInput();
        if (waiting_.empty()) {
            Log.push_back(mayWait ? "1" : "0");
            idleSeen_ |= mayWait;
            return;
        }
        Log.push_back("> " + waiting_.front());
        EXPECT_FALSE(mayWait && TheSession.IsThinking());
        TheSession.Receive(waiting_.front());
        waiting_.pop_front();
    }
    void Output(int length) {
        EXPECT_EQ(static_cast<std::size_t>(length), TheSession.Text().size());
        Texts.push_back(TheSession.Text());
        Log.push_back("< " + TheSession.Text());
    }

    std::deque<std::string> waiting_;
    bool idleSeen_ = false;
};

/// To the letter, but that a "*" in the pattern is any one word.
bool Matches(const std::string& text, const std::string& pattern) {
    const std::size_t star = pattern.find('*');
    if (star == std::string::npos) return text == pattern;
    return text.size() > star + 2 && text.starts_with(pattern.substr(0, star)) &&
           text.find(' ', star) == text.size() - 1;
}

const char* const NoMove = "White(0): - ";
const char* const OnlyReply = "setboard 7k/8/8/8/8/8/q7/K7 w - - 0 1";     // Kxa2 is White's only move
const char* const BackRank = "setboard 6k1/5ppp/8/8/8/8/8/R3K3 w - - 0 1"; // Ra8 mates
// A position that no opening leads to, so that it takes a search.
const char* const Middlegame = "setboard r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10";
const char* const Start = "setboard rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";

TEST(Session, AnswersEachConversationWithItsTextsAndNoOthers) {
    const Dialogue::Lines thinking = {"skill 100 100", Middlegame, "h3"};
    const Dialogue::Lines bookMoveOwed = {"skill 100 100", "new", "go"};
    const struct {
        Dialogue::Lines Lines;
        std::vector<std::string> Texts;
        Dialogue::Lines Before = {}; // with which the engine is still busy when the lines come
    } cases[] = {
        // Numbered by the plies that the engine is told; a line that plays nothing is owed for each board.
        {{OnlyReply, "white", "movenumber 0", "go"}, {NoMove, "White(1): Kxa2 "}},
        {{OnlyReply, "white", "movenumber 1", "go"}, {NoMove, "White(1): Kxa2 "}},
        {{OnlyReply, "white", "movenumber 24", "go"}, {NoMove, "White(13): Kxa2 "}},
        {{"setboard 7K/8/8/8/8/8/Q7/k7 b - -", "black", "movenumber 25", "go"}, {NoMove, "Black(13): Kxa2 "}},
        {{"setboard 7k/q7/8/8/8/8/8/K7 b - -", "black", "movenumber 7", "Qa2"}, {NoMove, "White(5): Kxa2 "}},
        // The engine mates: first its move, then the announcement. The user does: the announcement alone.
        {{BackRank, "white", "movenumber 8", "go"}, {NoMove, "White(5): Ra8 ", "White mates"}},
        {{"setboard r3k3/8/8/8/8/8/5PPP/6K1 b - -", "black", "movenumber 9", "go"},
         {NoMove, "Black(5): Ra1 ", "Black mates"}},
        {{BackRank, "white", "movenumber 8", "Ra8"}, {"White mates", NoMove}},
        {{"setboard 7k/8/6K1/8/8/8/8/5Q2 w - -", "white", "movenumber 8", "Qf7"}, {"stalemate", NoMove}},
        {{"setboard 7k/5Q2/6K1/8/8/8/8/8 b - -", "black", "movenumber 9", "go"}, {"stalemate", NoMove}},
        // A drawn game goes on, as does one without kings, and codes that are no pieces harm nobody.
        {{"setboard 7k/8/8/8/8/8/8/K7 w - -", "skill 100 3", "go", "force", "go", "force", "go", "force"},
         {"White(1): * ", "Black(1): * ", "White(2): * ", NoMove}},
        {{"setboard 8/8/8/8/p7/8/8/4R3 w - -", "white", "movenumber 4", "go"}, {NoMove, "White(3): * "}},
        {{"setboard k7/8/8/3V4/8/8/8/K3R2v w - -", "white", "movenumber 4", "go"}, {NoMove, "White(3): * "}},
        // "force" plays nothing but the move of a search, once, and pays no debt.
        {{"force", "force", "skill 100 1", "e4"}, {NoMove, NoMove, "Black(1): * "}},
        {{"new", "force"}, {NoMove, NoMove}},
        {{"go", "force", "force"}, {"Black(1): * ", NoMove}, thinking},
        {{"force", "skill 100 1", "Kh1"}, {"Black(1): * ", "Black(2): * "}, thinking},
        {{"Kh1", "Ke2", "force"}, {"Illegal now.", "Illegal now.", "Black(1): * "}, thinking},
        // A search that a new game or board interrupts has the line that is owed in the place of its move, one for
        // several.
        {{"force", Start, "white", "movenumber 0", "skill 100 5", "sync", "go"},
         {"Black(1): * ", NoMove, "White(1): * "},
         thinking},
        {{OnlyReply, "skill 100 1", "go"}, {NoMove, "White(1): Kxa2 "}, thinking},
        {{"new", "skill 100 1", OnlyReply, "new", "e4"}, {NoMove, "Black(1): * "}, thinking},
        {{"new"}, {NoMove}, bookMoveOwed},
    };
    for (const auto& c : cases) {
        Dialogue d;
        d.HandOver(c.Before);
        d.TheSession.Step(); // what is owed for them
        d.Texts.clear();
        d.Say(c.Lines);
        EXPECT_TRUE(std::equal(d.Texts.begin(), d.Texts.end(), c.Texts.begin(), c.Texts.end(), Matches))
            << testing::PrintToString(c.Lines) << testing::PrintToString(d.Texts);
    }
}

// The program's tests play against it, so what is true there is true here.
TEST(Session, SaysWhatThePlainEngineSaysInAnyOrderOfLines) {
    const std::string lines[] = {"new",      "force", "go",    "sync",         Start,       OnlyReply,
                                 Middlegame, "black", "white", "movenumber 8", "ponder on", "ponder off"};
    for (unsigned seed = 1; seed <= 12; ++seed) {
        std::mt19937 random(seed);
        Dialogue d;
        d.Say({"adaptive 1M 1M 1M 1M 1M", "skill 100 600"});
        PlainEngine plain;
        std::vector<std::string> said, heard;
        std::string history;
        plain.Say = [&](const std::string& text) { said.push_back(text); };
        plain.ReadPosition = [](std::string_view text) { return RecordFromBoard(ReadFen(text).value()); };
        plain.Choose = [&] {
            const std::string& text = heard[said.size()];
            const std::size_t begin = text.find(": ") + 2;
            return text.substr(begin, text.size() - begin - 1);
        };
        for (int step = 0; step < 30; ++step) {
            d.Texts.clear();
            said.clear();
            const unsigned what = random() % 20;
            MoveList legal;
            ListMoves(plain.Game, plain.Game.SideToMove != 0 ? Black : White, legal);
            std::string line = what < std::size(lines) ? lines[what] : "";
            if (what >= 15 && legal.Count != 0) line = WriteSan(plain.Game, legal.Moves[random() % legal.Count], legal);
            if (what == 14) d.Time.Advance(100000);
            history += what == 14 ? "(time), " : line + ", ";
            if (line.empty())
                d.TheSession.Step();
            else
                d.HandOver({line.c_str()});
            heard = d.Texts;
            std::erase(heard, "Illegal now.");
            if (what == 14) plain.Answer();
            plain.Hear(line.empty() ? nullptr : &line);
            ASSERT_EQ(heard, said) << history;
        }
    }
}

TEST(Session, UnreadableLinesChangeNothingAndAreNeverQuoted) {
    Dialogue d;
    std::istringstream lines("White(1): mate|Black(2): e5 |mate|e5|Ke2|setboard|setboard 8/8 w|"
                             "setboard 8/8/8/8/8/8/8/8 x - -|skill|skill x 5|skill 100|mt 4|mt = x|ponder|ponder maybe|"
                             "movenumber|movenumber -1|adaptive|adaptive 1 2 3 4 5|e4 e5||  |\xBD|O-O");
    for (std::string line; std::getline(lines, line, '|');) {
        d.Texts.clear();
        d.Say({line.c_str()});
        ASSERT_EQ(d.Texts.size(), 1U) << line;
        for (const char* marker : {"White(", "Black(", "mate"})
            EXPECT_EQ(d.Texts[0].find(marker), std::string::npos) << line;
    }
    d.Say({"skill 100 1", "go"});
    EXPECT_TRUE(Matches(d.Texts.back(), "White(1): * ")) << d.Texts.back();
}

TEST(Session, AsksUntilNothingComesAndThenMayWait) {
    Dialogue d;
    d.Say({"new", "sync", "force"});
    const std::vector<std::string> expected = {"> new", "> sync",         "> force", "< White(0): - ",
                                               "0",     "< White(0): - ", "0",       "1"};
    EXPECT_EQ(d.Log, expected);
    // Callbacks that return at once are followed by a pause, those that waited for the user by none.
    const std::int64_t before = d.Time.NowMs();
    for (int i = 0; i < 100; ++i) d.TheSession.Step();
    EXPECT_GE(d.Time.NowMs() - before, 200);
    d.DuringInput = [&] { d.Time.Advance(50); };
    const std::int64_t waited = d.Time.NowMs();
    for (int i = 0; i < 10; ++i) d.TheSession.Step();
    EXPECT_EQ(d.Time.NowMs() - waited, 500);
}

TEST(Session, AsksOnWithoutWaitingWhileAMoveIsOwed) {
    Dialogue d;
    d.HandOver({"skill 100 20", Middlegame, "h3"});
    d.Log.clear();
    const std::int64_t elapsed = d.AwaitMove();
    EXPECT_EQ(std::count(d.Log.begin(), d.Log.end(), "1"), 0);
    const auto calls = std::count(d.Log.begin(), d.Log.end(), "0");
    EXPECT_GE(calls, elapsed / 10);
    EXPECT_LE(calls, elapsed + 2); // it slept in between
    d.Settle();
    EXPECT_EQ(d.Log.back(), "1");
    // "force" is obeyed at once.
    d.HandOver({"skill 100 100", "Kh1"});
    const std::int64_t before = d.Time.NowMs();
    d.HandOver({"force"});
    EXPECT_EQ(d.Texts.size(), 3U);
    EXPECT_LT(d.Time.NowMs() - before, 10);
}

TEST(Session, HoldsRepliesBackForAMomentAndKeepsItsTime) {
    const char* const bookKnows = "setboard rnbqkbnr/pppppppp/8/8/8/N7/PPPPPPPP/R1BQKBNR b KQkq - 1 1";
    const Dialogue::Lines guessed = {"ponder on", "skill 100 10", "setboard 7k/7p/8/8/8/7P/q7/K7 w - -", "go"};
    const struct {
        Dialogue::Lines Before;
        int PauseMs;
        const char* Line;
        const char* Text;
        std::int64_t LeastMs;
        std::int64_t MostMs;
    } cases[] = {
        {{OnlyReply, "skill 100 5"}, 0, "go", "White(1): Kxa2 ", 300, 510},
        // The time counts from the clock mark.
        {{"skill 100 20", Middlegame, "sync"}, 900, "go", "White(1): * ", 300, 1103},
        // The book needs no search, and the move that it expects leads on to another of its answers.
        {{"skill 100 100", bookKnows}, 0, "go", "Black(1): e5 ", 300, 310},
        {{"skill 100 100", "ponder on", bookKnows, "go"}, 0, "c4", "Black(2): Nf6 ", 300, 310},
        // One of these is the move pondered on.
        {guessed, 0, "Kg7", "White(2): * ", 0, 1010},
        {guessed, 0, "Kg8", "White(2): * ", 0, 1010},
        {guessed, 0, "h6", "White(2): * ", 0, 1010},
        {guessed, 0, "h5", "White(2): * ", 0, 1010},
    };
    for (const auto& c : cases) {
        Dialogue d;
        d.Say(c.Before);
        d.Time.Advance(c.PauseMs);
        const std::int64_t before = d.Time.NowMs();
        d.HandOver({c.Line});
        EXPECT_TRUE(d.TheSession.IsThinking());
        d.AwaitMove();
        EXPECT_TRUE(Matches(d.Texts.back(), c.Text)) << d.Texts.back();
        EXPECT_GE(d.Time.NowMs() - before, c.LeastMs) << c.Line;
        EXPECT_LE(d.Time.NowMs() - before, c.MostMs) << c.Line;
        const std::size_t texts = d.Texts.size();
        d.Settle();
        EXPECT_EQ(d.Texts.size(), texts);
    }
}

TEST(Session, PondersOnTheUsersTimeAndPlaysOnAfterAHitOrAMiss) {
    Dialogue d;
    d.Say({"ponder on", "skill 100 3", BackRank, "go"});
    EXPECT_FALSE(d.TheSession.IsPondering()); // mate: nothing to think about
    d.Say({"new", "skill 100 3", Middlegame, "h3"});
    EXPECT_TRUE(d.TheSession.IsPondering());
    // Settings and the clock mark leave it alone; it says it may wait.
    d.Say({"skill 100 4", "sync", "mt = 2"});
    EXPECT_TRUE(d.TheSession.IsPondering());
    EXPECT_EQ(d.Log.back(), "1");
    // Whatever the user plays, an answer comes and pondering goes on.
    for (const char* move : {"a3", "h3", "b3"}) {
        const std::size_t texts = d.Texts.size();
        d.Say({"sync", move});
        ASSERT_EQ(d.Texts.size(), texts + 1) << move;
        EXPECT_TRUE(d.TheSession.IsPondering()) << move;
    }
    d.Say({"ponder off"});
    EXPECT_FALSE(d.TheSession.IsPondering());
    d.Say({"ponder on"});
    EXPECT_TRUE(d.TheSession.IsPondering());
    d.Say({"force"});
    EXPECT_EQ(d.Texts.back(), "White(0): - ");
    EXPECT_FALSE(d.TheSession.IsPondering());
}

TEST(Session, OpensGamesInManyWaysAtEveryLevel) {
    Dialogue d;
    for (const char* skill :
         {"skill 0 10", "skill 10 10", "skill 20 10", "skill 30 10", "skill 50 10", "skill 75 10", "skill 100 100"}) {
        for (const char* line : {"go", "e4"}) {
            std::set<std::string> answers;
            for (int game = 0; game < 24; ++game) {
                d.Time.Advance(1);
                d.HandOver({skill, "new", line, "force"});
                answers.insert(d.Texts.back());
            }
            EXPECT_GE(answers.size(), 4U) << skill << ": " << line;
        }
    }
}

} // namespace
} // namespace quarnel::engine
