#include "FakeClock.h"

#include "quarnelchess/Fen.h"
#include "quarnelchess/MoveGen.h"
#include "quarnelchess/Records.h"
#include "quarnelchess/San.h"
#include "quarnelchess/Session.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <vector>

namespace quarnel::engine {
namespace {

/// The program's side of the conversation: hands over one queued line a call and writes everything down.
class Dialogue {
  public:
    Dialogue()
        : TheSession(
              Time, [this](bool mayWait) { Input(mayWait); }, [this](int length) { Output(length); }) {}

    void Queue(std::initializer_list<const char*> lines) {
        for (const char* line : lines) waiting_.emplace_back(line);
    }
    /// Steps until the engine has nothing to do and says so.
    void Settle() {
        do TheSession.Step();
        while (!idleSeen_);
        idleSeen_ = false;
    }
    void Say(std::initializer_list<const char*> lines) {
        Queue(lines);
        idleSeen_ = false;
        Settle();
    }
    /// Lets the engine take all queued lines, and no longer.
    void HandOver(std::initializer_list<const char*> lines) {
        Queue(lines);
        while (!waiting_.empty()) TheSession.Step();
    }

    FakeClock Time;
    std::vector<std::string> Texts;
    std::vector<std::string> Log; // "0" and "1" for callbacks without a line, "> line", "< text"
    std::function<void()> DuringInput = [] {};
    std::function<void()> DuringOutput = [] {};
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
        DuringOutput();
    }

    std::deque<std::string> waiting_;
    bool idleSeen_ = false;
};

/// The prefix, one word, and a blank.
bool IsMoveLine(const std::string& text, const std::string& prefix) {
    return text.size() > prefix.size() + 2 && text.compare(0, prefix.size(), prefix) == 0 &&
           text.find(' ', prefix.size()) == text.size() - 1;
}

const char* const OnlyReply = "setboard 7k/8/8/8/8/8/q7/K7 w - - 0 1"; // Kxa2 is White's only move
// A position that no opening leads to, so that it takes a search.
const char* const Middlegame = "setboard r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10";

TEST(Session, AnswersAUserMoveForTheOtherSide) {
    Dialogue d;
    d.Say({"ponder off", "mt = 1", "adaptive 10M 4M 1M 1M 16M", "new", "skill 100 5", "sync", "e4"});
    ASSERT_EQ(d.Texts.size(), 1U);
    EXPECT_TRUE(IsMoveLine(d.Texts[0], "Black(1): ")) << d.Texts[0];
    Board board = Board::Start();
    board.Make(ReadSan(board, "e4"));
    const std::string token = d.Texts[0].substr(10, d.Texts[0].size() - 11);
    ASSERT_TRUE(ReadSan(board, token)) << token;
    board.Make(ReadSan(board, token));

    // The board has both moves; "go" now moves for the user.
    d.Say({"sync", "go"});
    ASSERT_EQ(d.Texts.size(), 2U);
    EXPECT_TRUE(IsMoveLine(d.Texts[1], "White(2): ")) << d.Texts[1];
    EXPECT_TRUE(ReadSan(board, d.Texts[1].substr(10, d.Texts[1].size() - 11)));
}

TEST(Session, NumbersMovesByThePliesItIsTold) {
    const struct {
        std::initializer_list<const char*> Lines;
        const char* Text;
    } cases[] = {
        {{OnlyReply, "white", "movenumber 0", "go"}, "White(1): Kxa2 "},
        {{OnlyReply, "white", "movenumber 1", "go"}, "White(1): Kxa2 "},
        {{OnlyReply, "white", "movenumber 24", "go"}, "White(13): Kxa2 "},
        {{"setboard 7K/8/8/8/8/8/Q7/k7 b - - 0 1", "black", "movenumber 25", "go"}, "Black(13): Kxa2 "},
        {{"setboard 7k/q7/8/8/8/8/8/K7 b - - 0 1", "black", "movenumber 7", "Qa2"}, "White(5): Kxa2 "},
    };
    for (const auto& c : cases) {
        Dialogue d;
        d.Say(c.Lines);
        EXPECT_EQ(d.Texts, std::vector<std::string>{c.Text});
    }
}

TEST(Session, AnnouncesMateAndStalemateInATextOfTheirOwn) {
    const struct {
        std::initializer_list<const char*> Lines;
        std::vector<std::string> Texts;
    } cases[] = {
        // The engine mates: first its move, then the announcement.
        {{"setboard 6k1/5ppp/8/8/8/8/8/R3K3 w - - 0 1", "white", "movenumber 8", "go"},
         {"White(5): Ra8 ", "White mates"}},
        {{"setboard r3k3/8/8/8/8/8/5PPP/6K1 b - - 0 1", "black", "movenumber 9", "go"},
         {"Black(5): Ra1 ", "Black mates"}},
        // The user's move leaves no reply: the announcement alone.
        {{"setboard 6k1/5ppp/8/8/8/8/8/R3K3 w - - 0 1", "white", "movenumber 8", "Ra8"}, {"White mates"}},
        {{"setboard 7k/8/6K1/8/8/8/8/5Q2 w - - 0 1", "white", "movenumber 8", "Qf7"}, {"stalemate"}},
        // Nothing to move at all.
        {{"setboard 7k/5Q2/6K1/8/8/8/8/8 b - - 0 1", "black", "movenumber 9", "go"}, {"stalemate"}},
    };
    for (const auto& c : cases) {
        Dialogue d;
        d.Say(c.Lines);
        EXPECT_EQ(d.Texts, c.Texts);
    }
}

TEST(Session, ForceEndsTheSearchWithExactlyOneMoveLine) {
    Dialogue d;
    d.HandOver({"skill 100 100", Middlegame, "h3"});
    ASSERT_TRUE(d.TheSession.IsThinking());
    const std::int64_t before = d.Time.NowMs();
    d.HandOver({"force"});
    EXPECT_FALSE(d.TheSession.IsThinking());
    EXPECT_LT(d.Time.NowMs() - before, 10);
    ASSERT_EQ(d.Texts.size(), 1U);
    EXPECT_TRUE(IsMoveLine(d.Texts[0], "Black(1): "));
    // Nothing comes late, and the next user move is searched again.
    d.Settle();
    EXPECT_EQ(d.Texts.size(), 1U);
    d.Say({"Kh1"});
    ASSERT_EQ(d.Texts.size(), 2U);
    EXPECT_TRUE(IsMoveLine(d.Texts[1], "Black(2): ")) << d.Texts[1];
}

TEST(Session, ForceWithoutASearchPlaysNothing) {
    Dialogue d;
    d.Say({"new", "force"});
    EXPECT_EQ(d.Texts, std::vector<std::string>{"White(0): - "});
    d.Say({"force", "skill 100 1", "e4"});
    ASSERT_EQ(d.Texts.size(), 3U);
    EXPECT_EQ(d.Texts[1], "White(0): - ");
    EXPECT_EQ(d.Texts[2].substr(0, 10), "Black(1): ");
}

TEST(Session, AnAbandonedSearchIsFollowedByTheNewPosition) {
    Dialogue d;
    // "New Game as Black" while the engine thinks.
    d.HandOver({"skill 100 100", Middlegame, "h3"});
    d.Say({"force", "setboard rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", "white", "movenumber 0",
           "sync", "go"});
    ASSERT_EQ(d.Texts.size(), 2U);
    EXPECT_EQ(d.Texts[0].substr(0, 10), "Black(1): ");
    EXPECT_EQ(d.Texts[1].substr(0, 10), "White(1): ");
    // A position without "force" before it ends the search too, with its one line.
    d.HandOver({"skill 100 100", "go"});
    d.Say({OnlyReply, "skill 100 1", "go"});
    ASSERT_EQ(d.Texts.size(), 4U);
    EXPECT_EQ(d.Texts[2].substr(0, 10), "Black(1): ");
    EXPECT_EQ(d.Texts[3], "White(1): Kxa2 ");
}

TEST(Session, UnreadableLinesChangeNothingAndAreNeverQuoted) {
    Dialogue d;
    const char* const lines[] = {"White(1): mate",
                                 "Black(2): e5 ",
                                 "mate",
                                 "e5",
                                 "Ke2",
                                 "setboard",
                                 "setboard 8/8 w",
                                 "setboard 8/8/8/8/8/8/8/8 x - -",
                                 "skill",
                                 "skill x 5",
                                 "skill 100",
                                 "mt 4",
                                 "mt = x",
                                 "ponder",
                                 "ponder maybe",
                                 "movenumber",
                                 "movenumber -1",
                                 "adaptive",
                                 "adaptive 1 2 3 4 5",
                                 "e4 e5",
                                 "",
                                 "  ",
                                 "\xBD",
                                 "O-O"};
    for (const char* line : lines) {
        d.Texts.clear();
        d.Say({line});
        ASSERT_EQ(d.Texts.size(), 1U) << line;
        for (const char* marker : {"White(", "Black(", "mate"})
            EXPECT_EQ(d.Texts[0].find(marker), std::string::npos) << line;
    }
    d.Texts.clear();
    d.Say({"skill 100 1", "go"});
    EXPECT_EQ(d.Texts[0].substr(0, 10), "White(1): ");
    // A move while the engine thinks is no move either, and the search goes on.
    d.HandOver({"skill 100 100", "e5", "a6"});
    EXPECT_TRUE(d.TheSession.IsThinking() || d.Texts.size() > 1);
}

TEST(Session, AsksUntilNothingComesAndThenMayWait) {
    Dialogue d;
    d.Say({"new", "sync", "force"});
    const std::vector<std::string> expected = {"> new", "> sync", "> force", "< White(0): - ", "0", "1"};
    EXPECT_EQ(d.Log, expected);
}

TEST(Session, NeverLetsTheProgramWaitWhileAMoveIsOwed) {
    Dialogue d;
    d.HandOver({"skill 100 20", Middlegame, "h3"});
    const std::size_t begin = d.Log.size();
    const std::int64_t before = d.Time.NowMs();
    while (d.Texts.empty()) d.TheSession.Step();
    std::size_t calls = 0;
    for (std::size_t i = begin; i < d.Log.size(); ++i) {
        EXPECT_NE(d.Log[i], "1");
        calls += d.Log[i] == "0";
    }
    // It asked again and again, and slept in between.
    const std::int64_t elapsed = d.Time.NowMs() - before;
    EXPECT_GE(static_cast<std::int64_t>(calls), elapsed / 10);
    EXPECT_LE(static_cast<std::int64_t>(calls), elapsed + 2);
    d.Settle();
    EXPECT_EQ(d.Log.back(), "1");
}

TEST(Session, SleepsAfterCallbacksThatReturnAtOnce) {
    Dialogue d;
    d.Settle();
    const std::int64_t before = d.Time.NowMs();
    for (int i = 0; i < 100; ++i) d.TheSession.Step();
    EXPECT_GE(d.Time.NowMs() - before, 200);
    // A callback that itself waited for the user needs no pause on top.
    d.DuringInput = [&] { d.Time.Advance(50); };
    const std::int64_t waited = d.Time.NowMs();
    for (int i = 0; i < 10; ++i) d.TheSession.Step();
    EXPECT_EQ(d.Time.NowMs() - waited, 500);
}

TEST(Session, HoldsAReplyBackUntilItsThinkingCanBeSeen) {
    Dialogue d;
    d.HandOver({OnlyReply, "skill 100 5"});
    const std::int64_t before = d.Time.NowMs();
    d.HandOver({"go"});
    while (d.Texts.empty()) d.TheSession.Step();
    EXPECT_GE(d.Time.NowMs() - before, 300);
    EXPECT_LE(d.Time.NowMs() - before, 510);
}

TEST(Session, TakesItsTimeFromTheClockMark) {
    Dialogue d;
    d.HandOver({"skill 100 20", Middlegame, "sync"});
    const std::int64_t marked = d.Time.NowMs();
    d.Time.Advance(900);
    d.HandOver({"go"});
    while (d.Texts.empty()) d.TheSession.Step();
    EXPECT_LE(d.Time.NowMs() - marked, 2003);
    EXPECT_GE(d.Time.NowMs() - marked, 1200);
}

TEST(Session, PondersOnTheUsersTimeAndPlaysOnAfterAHitOrAMiss) {
    Dialogue d;
    d.Say({"ponder on", "skill 100 3", "setboard 6k1/5ppp/8/8/8/8/5PPP/R5K1 w - - 0 1", "go"});
    ASSERT_EQ(d.Texts[0], "White(1): Ra8 "); // mate: nothing to think about
    EXPECT_FALSE(d.TheSession.IsPondering());
    d.Texts.clear();
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

TEST(Session, AnswersTheExpectedMoveAndEveryOtherOnce) {
    // After Kxa2, White's only move, these are all of Black's; one of them is the move pondered on.
    for (const char* reply : {"Kg7", "Kg8", "h6", "h5"}) {
        Dialogue d;
        d.Say({"ponder on", "skill 100 10", "setboard 7k/7p/8/8/8/7P/q7/K7 w - - 0 1", "go"});
        ASSERT_EQ(d.Texts.size(), 1U);
        ASSERT_TRUE(d.TheSession.IsPondering());
        const std::int64_t before = d.Time.NowMs();
        d.HandOver({reply});
        EXPECT_TRUE(d.TheSession.IsThinking());
        d.Settle();
        ASSERT_EQ(d.Texts.size(), 2U) << reply;
        EXPECT_EQ(d.Texts[1].substr(0, 10), "White(2): ");
        EXPECT_LE(d.Time.NowMs() - before, 1010);
    }
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

TEST(Session, AnswersFromTheBookWithoutASearch) {
    Dialogue d;
    d.HandOver({"skill 100 100", "ponder on", "setboard rnbqkbnr/pppppppp/8/8/8/N7/PPPPPPPP/R1BQKBNR b KQkq - 1 1"});
    // The move that the book expects leads on to another of its answers, whatever the search made of it.
    const struct {
        const char* Line;
        const char* Answer;
    } cases[] = {{"go", "Black(1): e5 "}, {"c4", "Black(2): Nf6 "}};
    for (const auto& c : cases) {
        const std::int64_t before = d.Time.NowMs();
        d.HandOver({c.Line});
        while (d.TheSession.IsThinking()) d.TheSession.Step();
        EXPECT_EQ(d.Texts.back(), c.Answer);
        EXPECT_GE(d.Time.NowMs() - before, 300);
        EXPECT_LE(d.Time.NowMs() - before, 310);
        EXPECT_TRUE(d.TheSession.IsPondering());
    }
}

TEST(Session, ServesTheRulesFromInsideBothCallbacksWhileItSearches) {
    Dialogue d;
    int calls = 0;
    const auto askRules = [&] {
        Position position = RecordFromBoard(Board::Start());
        MoveList list;
        ListMoves(position, White, list);
        EXPECT_EQ(list.Count, 20);
        PlayMove(position, list.Moves[0]);
        EXPECT_FALSE(KingAttacked(position, Black));
        ++calls;
    };
    d.DuringInput = askRules;
    d.DuringOutput = askRules;
    d.Say({"mt = 2", "skill 100 10", Middlegame, "h3"});
    EXPECT_EQ(d.Texts.size(), 1U);
    EXPECT_GT(calls, 50);
}

TEST(Session, AnswersInPositionsItCannotSearch) {
    Dialogue d;
    d.Say({"setboard 8/8/8/8/p7/8/8/4R3 w - - 0 1", "white", "movenumber 4", "go"}); // no kings
    ASSERT_EQ(d.Texts.size(), 1U);
    EXPECT_EQ(d.Texts[0].substr(0, 11), "White(3): R");
    // Codes that are no pieces stand about and harm nobody.
    d.Say({"setboard k7/8/8/3V4/8/8/8/K3R2v w - - 0 1", "white", "movenumber 4", "go"});
    EXPECT_EQ(d.Texts.size(), 2U);
}

TEST(Session, KeepsAnsweringWhenTheGameIsDrawn) {
    Dialogue d;
    d.Say({"skill 100 3", "setboard 7k/8/8/8/8/8/8/K7 w - - 0 1", "white", "movenumber 0", "go"});
    EXPECT_EQ(d.Texts.size(), 1U);
    for (int i = 0; i < 6; ++i) d.Say({"go"});
    EXPECT_EQ(d.Texts.size(), 7U);
}

} // namespace
} // namespace quarnel::engine
