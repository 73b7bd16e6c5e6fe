// quarnel-record through its command line, with texts in place of standard input and output.
#include "EngineGames.h"

#include "Conversion.h"
#include "PgnReader.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <sstream>

#include <getopt.h>
#include <unistd.h>

namespace quarnel::record {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

struct Ran {
    int Status;
    std::string Out, Messages;
};

Ran Tool(std::vector<std::string> words, const std::string& input = {}) {
    words.insert(words.begin(), "quarnel-record");
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    optind = 0;
    const Request request = ReadCommandLine(static_cast<int>(words.size()), argv.data(), 1252);
    std::istringstream in(input);
    std::ostringstream out, messages;
    const int status = Conversion(request.Wanted, in, out, messages).Run();
    return {status, out.str(), messages.str()};
}

// The moves of one game as `pgn` writes them, in one line.
std::string MovesOf(const std::string& input) {
    const Ran ran = Tool({"pgn"}, input);
    if (ran.Status != 0) return ran.Messages;
    std::string moves = ran.Out.substr(ran.Out.find("\n\n") + 2);
    moves.resize(moves.size() - 2);
    std::replace(moves.begin(), moves.end(), '\n', ' ');
    return moves;
}

const std::string Header = "\tWhite(You)\tBlack\r\n";
const char* const Stalemate = "1.\te3\ta5\r\n2.\tQh5\tRa6\r\n3.\tQxa5\th5\r\n4.\th4\tRah6\r\n5.\tQxc7\tf6\r\n"
                              "6.\tQxd7+\tKf7\r\n7.\tQxb7\tQd3\r\n8.\tQxb8\tQh7\r\n9.\tQxc8\tKg6\r\n10.\tQe6\t\r\n";

TEST(Pgn, IsReadAsItIsFoundInTheWorld) {
    const std::pair<std::string, std::string> cases[] = {
        {"1. e4 $1 {a (comment; [%clk 1]} e5 ; rest } (\n2.Nf3 (2. f4 {)} exf4 (2... d5) 3. Nf3) Nc6! 3 Bb5?? a6 ?! "
         "4.0-0 Nf6 5... d3 0-1 ",
         "1. e4 e5 2. Nf3 Nc6 3. Bb5 a6 4. O-O Nf6 5. d3 0-1"},
        {"\xEF\xBB\xBF[White\"A\"]\r\n% e4\r\n[Result \"1/2\"]\r\n\r\n1.\r\nd4 {\r\n[Event \"in a "
         "comment\"]}\r\nd5\r\n",
         "1. d4 d5 1/2-1/2"},
        {"1. e4\r% not this\r1... e5", "1. e4 e5 *"},
        {"1. e4 a6 2. e5 d5 3. exd6 e.p. *", "1. e4 a6 2. e5 d5 3. exd6 *"},
        {"e4 a6 e5 d5 ed6e.p. exd6*", "1. e4 a6 2. e5 d5 3. exd6 exd6 *"},
        {"1. e4 d5 2. e:d5 c6 3. dxc6 Nf6 4. cxb7 g6 5. bxa8Q+ *",
         "1. e4 d5 2. exd5 c6 3. dxc6 Nf6 4. cxb7 g6 5. bxa8=Q *"},
        {"1. e4 d5 2. exd5 c6 3. dxc6 Nf6 4. cxb7 g6 5. bxc8=N *",
         "1. e4 d5 2. exd5 c6 3. dxc6 Nf6 4. cxb7 g6 5. bxc8=N *"},
        {"1. d4 d5 2. Nf3 Nf6 3. Nb1d2 *", "1. d4 d5 2. Nf3 Nf6 3. Nbd2 *"},
        {"1. a4 a5 2. Ra3 h5 3. h4 Rh6 4. Rah3 e6 5. R3h2 *", "1. a4 a5 2. Ra3 h5 3. h4 Rh6 4. Rah3 e6 5. R3h2 *"},
        {"[SetUp \"1\"]\n[FEN \"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b KQkq - 0 7\"]\n\n7... e5 8. f3 d5 *",
         "1... e5 2. f3 d5 *"},
        {"[Variant \"Standard\"]\n1. f3 e5 2. g4 Qh4#", "1. f3 e5 2. g4 Qh4# *"}};
    for (const auto& [given, moves] : cases) EXPECT_EQ(MovesOf(given), moves) << given;
}

TEST(Pgn, ThatCannotBeHadIsRefusedWithItsLineAndReason) {
    const std::string tooLong(PgnReader::MostLineBytes + 1, ' ');
    const std::string tooDeep = "e4 " + std::string(PgnReader::MostNesting + 1, '(');
    const std::pair<std::string, std::string> cases[] = {
        {"1. e4 e5\n2. e5 *", "2: \"e5\" is no legal move of White"},
        {"1. f3 e5 2. g4 Qh4#\n3. a3 *", "2: \"a3\" is no legal move of White"},
        {"1. e4 a6 2. e5 a5 3. exd6 *", "1: \"exd6\" is no legal move of White"},
        {"1. d4 d5 2. Nf3 Nf6 3. Nd2 *", "1: \"Nd2\" may mean more than one move"},
        {"1. e4 e5 2. Qf1a6 *", "1: \"Qf1a6\" names another piece than the one that stands there"},
        {"1. e4 e5 2. Zf3 *", "1: \"Zf3\" is no move"},
        {"1. e4 d5 2. exd5\x1B[2J *", "1: \"exd5?\" is no move"},
        {"1. e4 -- *", "1: a turn is passed, which a record cannot hold"},
        {"1. e4\n{e5\n\n", "2: the comment begun in line 2 has no end"},
        {"1. e4 (\n(e5) ", "1: the variation begun in line 1 has no end"},
        {"1. e4 ) e5", "1: \")\" is out of place"},
        {tooDeep, "1: variations stand more than 100 deep in each other"},
        {"1. e4\n" + tooLong + "e5", "2: the line is longer than 1048576 bytes"},
        {"[White]\n", "1: a tag has the form [Name \"value\"]"},
        {"[White \"A\nB\"]\n", "1: a tag has the form [Name \"value\"]"},
        {"[White \"A\" e4", "1: the tag \"White\" has no end"},
        {"[White \"A\"]\n[White \"A\"]\n", "2: the tag \"White\" is given twice"},
        {"[Event \"\"]\n[FEN \"4k3/8/8/8/8/8/8/4K3 w - - 0 1\"]\n\nKd2 *",
         "2: the game begins from a position of its own, which a record cannot hold"},
        {"[FEN \"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w Qkq - 0 1\"]",
         "1: the game begins from a position of its own, which a record cannot hold"},
        {"\n[SetUp \"1\"]", "2: SetUp announces a position, and there is no FEN"},
        {"[Variant \"Atomic\"]\n\ne4 *", "1: the variant \"Atomic\" is another game than standard chess"}};
    // Between two games that can.
    for (const auto& [given, message] : cases) {
        const Ran alone = Tool({"pgn"}, given);
        EXPECT_EQ(alone.Messages, "standard input:" + message + "\n") << given.substr(0, 100);
        EXPECT_EQ(alone.Status, 1);
        if (message.find("comment") != std::string::npos) continue; // which goes to the end
        const Ran ran =
            Tool({"list"}, "[White \"A\"]\n\n1. e4 *\n\n" + given + "\n\n[Event \"\"]\n[White \"C\"]\n\n1. d4 *\n");
        EXPECT_EQ(ran.Out, "standard input\t1\tA\t?\t*\t1\nstandard input\t3\tC\t?\t*\t1\n") << given.substr(0, 100);
    }
}

TEST(Records, GoToPgnAndComeBackByteForByte) {
    for (const std::string& record : {Header + "1.\te4\t\r\n", Header + Stalemate,
                                      std::string("\tWhite\tBlack(You)\r\n1.\t-\te5\r\n2.\tNf3\t1-0\r\n"),
                                      Header + "1.\tf3\te5\r\n2.\tg4\tQh4#\r\n", Header + "1.\te4\te5\r\n2.\t0-1\t\r\n",
                                      Header + "1.\t1/2-1/2\t\r\n", Header + "1.\t-\t1/2-1/2\r\n"}) {
        const Ran pgn = Tool({"pgn"}, record);
        EXPECT_EQ(Tool({"record"}, pgn.Out).Out, record) << pgn.Out << pgn.Messages;
        EXPECT_EQ(Tool({"pgn"}, pgn.Out).Out, pgn.Out);
    }
}

TEST(Records, TellTheResultThatThePositionOrTheLastTextTells) {
    const std::pair<std::string, std::string> cases[] = {
        {"1.\te4\t\r\n", "*"},     {Stalemate, "1/2-1/2"},         {"1.\tf3\te5\r\n2.\tg4\tQh4#\r\n", "0-1"},
        {"1.\te4\t*\r\n", "*"},    {"1.\te4\t1/2\r\n", "1/2-1/2"}, {"1.\te4\t\xBD-\xBD\r\n", "1/2-1/2"},
        {"1.\tf4\t1-0\r\n", "1-0"}};
    for (const std::string page : {"1250", "1252"}) {
        for (const auto& [moves, result] : cases)
            EXPECT_THAT(Tool({"list", "-c", page}, Header + moves).Out, HasSubstr("\t" + result + "\t")) << moves;
    }
}

TEST(Records, ThatCannotBeHadAreRefusedWithTheirLineAndReason) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "1: there is no move line"},
        {"1.\te4\te5\r\n3.\te4\te5\r\n", "3: the line's number is not 2"},
        {"1.\te4\r\n", "2: a move line is a number and two move texts, with a tab before each"},
        {"1.\te4\te5\r\n\r\n", "3: a move line is a number and two move texts, with a tab before each"},
        {"1.\te4\tRa9\r\n", "2: \"Ra9\" is no legal move of Black"},
        {"1.\te4\t\r\n2.\td4\t\r\n", "2: a move is missing"},
        {"1.\t\te5\r\n", "2: a move is missing"},
        {"1.\te4\t-\r\n", "2: \"-\" passes a turn in the middle of the game, which PGN cannot hold"},
        {"1.\te4\t1-0\r\n2.\td4\t\r\n", "3: \"d4\" stands behind the game's result"}};
    for (const auto& [moves, message] : cases)
        EXPECT_EQ(Tool({"pgn"}, Header + moves).Messages, "standard input:" + message + "\n");
    EXPECT_EQ(Tool({"record"}, "[White \"A\"]\n\n*").Messages,
              "standard input:1: the game has no moves, and a record needs one\n");
}

TEST(Records, AreOfTheUserWhomTheTagsOrTheOptionName) {
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"[White \"A\"]\n", "white", Header},
        {"[White \"A\"]\n", "black", "\tWhite\tBlack(You)\r\n"},
        {"[White \"You\"]\n", "black", Header},
        {"[Black \"You\"]\n", "white", "\tWhite\tBlack(You)\r\n"}};
    for (const auto& [tags, user, header] : cases)
        EXPECT_EQ(Tool({"record", "-u", user}, tags + "e4 *").Out, header + "1.\te4\t\r\n");
}

TEST(Records, OfTwoHundredEngineGamesComeBackFromPgn) {
    std::size_t castled = 0, promoted = 0, mated = 0;
    for (const std::string& record : SavedEngineGames(200)) {
        const Ran pgn = Tool({"pgn"}, record);
        ASSERT_EQ(Tool({"record"}, pgn.Out).Out, record) << pgn.Out << pgn.Messages;
        castled += record.find("O-O") != std::string::npos ? 1 : 0;
        promoted += record.find('=') != std::string::npos ? 1 : 0;
        mated += record.find('#') != std::string::npos ? 1 : 0;
        std::istringstream lines(pgn.Out);
        for (std::string line; std::getline(lines, line);) ASSERT_LE(line.size(), 79U);
    }
    EXPECT_GT(std::min({castled, promoted, mated}), 20U) << "games worth the name";
}

TEST(Positions, AreThoseAfterAPlyWithTheirCounters) {
    const std::string game = "e4 Nf6 e5 d5 Nf3 Ne4 *";
    const std::string black = "\tWhite\tBlack(You)\r\n1.\t-\te5\r\n2.\tNf3\t\r\n";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {game, "0", "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1\n"},
        {game, "2", "rnbqkb1r/pppppppp/5n2/8/4P3/8/PPPP1PPP/RNBQKBNR w KQkq - 1 2\n"},
        {game, "4", "rnbqkb1r/ppp1pppp/5n2/3pP3/8/8/PPPP1PPP/RNBQKBNR w KQkq d6 0 3\n"},
        {game, "6", "rnbqkb1r/ppp1pppp/8/3pP3/4n3/5N2/PPPP1PPP/RNBQKB1R w KQkq - 2 4\n"},
        {game, "7", ""},
        {black, "0", "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1\n"},
        {black, "1", "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR b KQkq - 0 1\n"},
        {black, "3", "rnbqkbnr/pppp1ppp/8/4p3/8/5N2/PPPPPPPP/RNBQKB1R b KQkq - 1 2\n"}};
    for (const auto& [given, ply, fen] : cases) {
        const Ran ran = Tool({"fen", "--ply", ply}, given);
        EXPECT_EQ(ran.Out, fen);
        EXPECT_EQ(ran.Messages, fen.empty() ? "standard input:1: the game has no more than 6 plies\n" : "");
    }
    EXPECT_EQ(Tool({"fen"}, game).Out, std::get<2>(cases[3]));
}

TEST(Tags, AreReadInBothEncodingsAndWrittenInUtf8) {
    for (const std::string name : {"Caf\xC3\xA9 \\\"B\\\" \\\\ \x1B", "Caf\xE9 \\\"B\\\" \\\\ \x1B"}) {
        const std::string game = "[Black \"" + name + "\"]\n\ne4 *";
        EXPECT_THAT(Tool({"pgn"}, game).Out, HasSubstr("[Black \"Caf\xC3\xA9 \\\"B\\\" \\\\  \"]\n"));
        EXPECT_EQ(Tool({"list", "-m"}, game).Out,
                  "standard input\t1\t?\tCaf\xC3\xA9 \"B\" \\  \t*\t1\n\t1\te4\te2-e4\n");
    }
}

/// A folder to write into.
struct Scene {
    Scene() { fs::create_directory(Folder); }
    ~Scene() { fs::remove_all(Folder); }
    std::string Path(const std::string& name) const { return (Folder / name).string(); }
    std::string Bytes(const std::string& name) const {
        std::ifstream in(Folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    const fs::path Folder = fs::temp_directory_path() / ("quarnel-record-" + std::to_string(getpid()));
};

TEST(Files, AreNamedAfterWhatTheyAreMadeFromAndReplacedOnlyByForce) {
    const Scene scene;
    const std::string two = "[White \"A\"]\n\n1. e4 *\n\n[White \"B\"]\n\n1. d4 *\n";
    std::ofstream(scene.Path("two.pgn")) << two;
    const std::string folder = scene.Folder.string();
    EXPECT_EQ(Tool({"record", "-d", folder, scene.Path("two.pgn"), "-"}, "f4 *").Status, 0);
    EXPECT_EQ(scene.Bytes("two-1.txt") + scene.Bytes("two-2.txt") + scene.Bytes("game.txt"),
              Header + "1.\te4\t\r\n" + Header + "1.\td4\t\r\n" + Header + "1.\tf4\t\r\n");
    EXPECT_EQ(Tool({"pgn", "-d", folder, scene.Path("two-2.txt")}).Status, 0);
    EXPECT_THAT(scene.Bytes("two-2.pgn"), HasSubstr("1. d4 *"));

    fs::create_symlink("missing", scene.Folder / "link");
    for (const std::string name : {"game.txt", "link"}) {
        const Ran kept = Tool({"record", "-o", scene.Path(name)}, "h4 *");
        EXPECT_EQ(kept.Messages, scene.Path(name) + ": is there already; --force replaces it\n");
        EXPECT_EQ(kept.Status, 1);
    }
    EXPECT_EQ(scene.Bytes("game.txt"), Header + "1.\tf4\t\r\n");
    EXPECT_EQ(Tool({"record", "--force", "-o", scene.Path("game.txt")}, "h4 *").Status, 0);
    EXPECT_EQ(scene.Bytes("game.txt"), Header + "1.\th4\t\r\n");
    EXPECT_FALSE(fs::exists(scene.Folder / "missing"));

    const Ran twice = Tool({"pgn", "-f", "-d", folder, scene.Path("game.txt"), scene.Path("game.txt")});
    EXPECT_EQ(twice.Messages, scene.Path("game.pgn") + ": has been written for another file of that name\n");
    EXPECT_EQ(Tool({"pgn", "-o", scene.Path("no/such")}, "e4").Messages,
              scene.Path("no/such") + ": cannot be written\n");
}

TEST(Files, ThatAreMissingOrStrangeAreToldAndTheRestIsDone) {
    const Scene scene;
    const Ran ran = Tool({"list", scene.Path("none"), scene.Folder.string(), "-"}, "e4 *");
    EXPECT_EQ(ran.Messages,
              scene.Path("none") + ": there is no such file\n" + scene.Folder.string() + ": is no plain file\n");
    EXPECT_EQ(ran.Out, "standard input\t1\t?\t?\t*\t1\n");
    EXPECT_EQ(ran.Status, 1);
    EXPECT_EQ(Tool({"list"}, " ; nothing\n").Messages, "standard input: holds no game\n");
    EXPECT_EQ(Tool({"list"}, std::string(64 << 20, ' ')).Messages, "standard input: is larger than 64 MiB\n");

    const std::string two = "e4 * Zz\n[White \"C\"]\nd4 *";
    EXPECT_EQ(Tool({"record", "-g", "3"}, two).Out, Header + "1.\td4\t\r\n");
    EXPECT_EQ(Tool({"record", "-g", "4"}, two).Messages, "standard input: holds no game 4\n");
    const Ran more = Tool({"record"}, "e4 *\nd4 *");
    EXPECT_EQ(more.Out, Header + "1.\te4\t\r\n");
    EXPECT_THAT(more.Messages, HasSubstr("standard input:2: a record holds one game"));
}

TEST(CommandLine, ThatMakesNoSenseIsRefused) {
    const std::vector<std::string> cases[] = {{},
                                              {"frob"},
                                              {"list", "--frob"},
                                              {"fen", "-p", "-1"},
                                              {"fen", "-p", "1x"},
                                              {"list", "-g", "0"},
                                              {"pgn", "-c", "1249"},
                                              {"record", "-u", "me"},
                                              {"list", "-d", "."},
                                              {"pgn", "-p", "1"},
                                              {"pgn", "-m"},
                                              {"pgn", "-o", "a", "-d", "b"}};
    opterr = 0;
    for (const auto& words : cases) EXPECT_THROW(Tool(words), UsageError) << testing::PrintToString(words);
}

} // namespace
} // namespace quarnel::record
