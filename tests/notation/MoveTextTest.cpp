// Moves as people and engines write them: read, written, and both in a row.
#include "notation/MoveTextReader.h"
#include "notation/MoveTextWriter.h"
#include "support/LibraryRules.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <set>
#include <sstream>

namespace quarnel::notation {
namespace {

using namespace std::literals;

const Text Start = u"rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1";
const Text Castles = u"r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1";
const Text Promotes = u"3r1k2/4P3/8/8/8/8/8/4K3 w - - 0 1";
const Text BlackPromotes = u"4k3/8/8/8/8/8/1p6/R3K3 b - - 0 1";
const Text PawnOrBishop = u"4k3/8/8/8/8/2n5/1P6/4B1K1 w - - 0 1";
const Text Knights = u"4k3/8/8/8/8/5N2/8/1N2K3 w - - 0 1";
const Text Pawns = u"4k3/3pp3/8/4p3/8/4P3/4P3/3PK3 w - - 0 1";
const Text InPassing = u"4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 1";
const Text Queens = u"3qk3/8/8/8/8/8/8/3RK3 b - - 0 1";

class MoveText : public testing::Test {
  protected:
    LibraryRules Rules;
    MoveTextReader Reader{Rules};
    std::set<std::pair<Truth, std::string>> Met; // who met which kind of move

    // `cases` are pairs "text>long text" or "long text>text", for the side to move of `fen`.
    void Reads(const Text& fen, const std::string& cases, int error = 0) {
        Gives(fen, cases, error, [&](const auto&... given) { return Reader.SanToLongText(given...); });
    }
    void Writes(const Text& fen, const std::string& cases) {
        Gives(fen, cases, 0, [&](const auto&... given) { return LongTextToSan(Rules, given...); });
    }
    template <class Convert>
    void Gives(const Text& fen, const std::string& cases, int error, Convert convert) {
        const Position position = PositionOf(fen);
        std::istringstream words(cases);
        for (std::string word; words >> word;) {
            const auto middle = word.find('>');
            const Text result = convert(position, FromUtf8(word.substr(0, middle)), position.SideToMove);
            EXPECT_EQ(ToUtf8(result), word.substr(middle + 1)) << word << " in " << ToUtf8(fen);
            EXPECT_EQ(Reader.MoveTextError, error) << word;
        }
    }

    // Writes and reads every legal move; no two may be written alike.
    void RoundTrip(const Position& position, const MoveList& list) {
        const Truth side = position.SideToMove;
        std::set<Text> written;
        for (int i = 0; i < list.Count; ++i) {
            const MoveRec& move = list.Moves[i];
            const Text longText = MoveToLongText(position, move);
            const MoveRec again = LongTextToMove(position, longText);
            const Text san = LongTextToSan(Rules, position, longText, side);
            SCOPED_TRACE(ToUtf8(PositionToFen(position) + u": " + san));
            ASSERT_EQ(std::memcmp(&again, &move, sizeof move), 0);
            ASSERT_TRUE(IsSameMove(Reader.SanToMoveRec(position, san, side), move));
            ASSERT_EQ(Reader.SanToLongText(position, san + u"+", side), longText);
            ASSERT_EQ(Reader.MoveTextError, 0);
            ASSERT_TRUE(written.insert(san).second);
            if (move.Castle != NoCastle) Met.emplace(side, "castling");
            if (move.EpCapFile != 0) Met.emplace(side, "in passing");
            if (move.Promote != NoPiece) Met.emplace(side, "promotion");
            if (san[0] == u'Q' && san.size() >= 5 && !Contains(san, u"x")) Met.emplace(side, "full origin");
        }
    }
};

TEST_F(MoveText, MarksBehindAMoveDoNotCount) {
    Reads(Knights, "Nd4>f3-d4 Nd4+>f3-d4 Nd4!?>f3-d4 Nd4#>f3-d4 Nd4,>f3-d4 Nd4+-X>f3-d4");
    Reads(Castles, "O-O-O+>o-o-o O-O#>o-o");
    Reads(Promotes, "e8Q!!>e7-e8=Q e8=Q+>e7-e8=Q");
}

TEST_F(MoveText, CastlingInLettersAndDigitsButNeverAsAKingMove) {
    Reads(Castles, "O-O>o-o 0-0>o-o o-O>o-o O-O-O>o-o-o 0-0-0>o-o-o 0-O> Kg1> Ki9> Kf1>e1-f1");
}

TEST_F(MoveText, LocalPieceLettersReadLikeEnglishOnes) {
    Reads(Knights, "Zg5>f3-g5 Ng5>f3-g5");
    Reads(PawnOrBishop, "Lxc3>e1xc3");
    Reads(Castles, "Txa8>a1xa8");
    Reads(Queens, "Dxd1>d8xd1 Qxd1>d8xd1 Dd1>d8xd1");
    Reads(Pawns, "Pe4>e3-e4");
    Reads(Promotes, "e8=D>e7-e8=Q e8D>e7-e8=Q e8=Z>e7-e8=N exd8=T>e7xd8=R");
    Reads(BlackPromotes, "b1L>b2-b1=B");
}

TEST_F(MoveText, PawnMovesInAllTheirForms) {
    // The nearest own pawn behind the square or on it, but never on the first rank.
    Reads(Start, "e4>e2-e4 e3>e2-e3 e44> i4>");
    Reads(Pawns, "e4>e3-e4 e2>e2-e2 d2> a4> gxh8>g7xh8");
    Reads(InPassing, "d3>d4-d3 e3>");
    Reads(u"4p2k/3ppppp/8/8/8/8/8/4K3 b - - 0 1", "e5>e7-e5 e8>");
    Reads(u"4p2k/8/8/8/8/8/8/4K3 b - - 0 1", "e7>");
    // Captures: nothing is searched, unless only the files are given.
    Reads(InPassing, "dxe3>d4xe3 de3>d4xe3 d:e3>d4xe3 gxh8>g9xh8 de>d4xe3 ed>");
    Reads(PawnOrBishop, "bxc3>b2xc3 bc>b2xc3 Bxc3>e1xc3 B:c3>e1xc3");
    Reads(Promotes, "exd8=N>e7xd8=N ed8N>e7xd8=N ed=R>e7xd8=R ed=K> exd=Q8>e7xd8=Q");
    Reads(BlackPromotes, "bxa1=N>b2xa1=N ba=D>b2xa1=Q");
}

TEST_F(MoveText, APieceIsFoundByItsOrigin) {
    Reads(Knights, "Nbd2>b1-d2 N3d2>f3-d2 N1d2>b1-d2 Ncd2> N2d2> Nd8> Nb1-d2> nbd2> N> Nd> Nbd2=Q>b1-d2");
    // An origin in full is taken as it stands, whatever is on the squares.
    Reads(Knights, "Nf3d2>f3-d2 Ng3xe8>g3xe8 Ng3e7>g3-e7");
}

TEST_F(MoveText, TheOrderOfTheListDecidesBetweenMovesThatFit) {
    const std::tuple<Text, MoveRec, MoveRec, std::string, std::string> cases[] = {
        {Knights, {2, 8, 4, 7, 0, 0, 0, 0}, {6, 6, 4, 7, 0, 0, 0, 0}, "Nd2>b1-d2", "Nd2>f3-d2"},
        {u"k7/3p4/4P3/3p4/4P3/8/8/K7 w - - 0 1",
         {5, 5, 4, 4, 0, 0, 0, 0},
         {5, 3, 4, 2, 0, 0, 0, 0},
         "ed>e6xd7",
         "ed>e4xd5"},
        {BlackPromotes, {2, 7, 1, 8, 0, 11, 0, 0}, {2, 7, 1, 8, 0, 8, 0, 0}, "ba>b2xa1=Q", "ba>b2xa1=N"}};
    for (const auto& [fen, a, b, read, readSwapped] : cases) {
        Rules.List = {a, b};
        Reads(fen, read);
        Rules.List = {b, a};
        Reads(fen, readSwapped);
    }
}

TEST_F(MoveText, AFaultGivesTheTextBackAsFarAsItWasRead) {
    Reads(Knights, "!!>!! +-+>+-+ e9?!>e9 Nxf3e9!>Nf3e9 e:dQ>exd", 1);
    Reads(Queens, "e0>e0", 1);
    Reads(Knights, "Nd4>f3-d4 ");
    Rules.Missing = true;
    Reads(Knights, "Nxd2+>Nd2 bc=Q>bc", 1);
}

TEST_F(MoveText, ResultsPassThroughAndASideThatIsNeitherReadsOnlyThemAndCastling) {
    const Position position = PositionOf(Castles);
    for (const TextView text : {u"1-0", u"1/2-1/2", u"\u02DD-\u02DD", u"-"}) {
        EXPECT_EQ(Reader.SanToLongText(position, text, 1), text);
        EXPECT_TRUE(IsSameMove(Reader.SanToMoveRec(position, text, White), ResultToMoveRec(text)));
    }
    EXPECT_EQ(Reader.SanToLongText(position, u"O-O", 1), u"o-o");
    EXPECT_EQ(Reader.SanToLongText(position, u"Kf1", 1), u"");
    Reads(Castles, "*>");
}

TEST_F(MoveText, IsWrittenWithAsLittleAsTellsThePieceApart) {
    Writes(u"4k3/8/8/8/8/8/4K3/R6R w - - 0 1", "a1-d1>Rad1 h1-d1>Rhd1 a1-a5>Ra5");
    Writes(u"4k3/8/8/3r4/8/3N4/4K3/3r4 b - - 0 1", "d1xd3>R1xd3 d5-d4>Rd4");
    Writes(u"8/8/8/1k6/4Q2Q/8/8/K6Q w - - 0 1", "h4-e1>Qh4e1 e4-e1>Qee1 h1-e1>Q1e1");
    // A pinned knight cannot be meant, nor can a bishop.
    Writes(u"4r1k1/8/8/8/8/8/4N3/1N2K3 w - - 0 1", "b1-c3>Nc3");
    Writes(u"4k3/8/8/8/8/5N2/1B6/4K3 w - - 0 1", "f3-e5>Ne5");
}

TEST_F(MoveText, IsWrittenForEveryKindOfMove) {
    // The long text alone tells a capture.
    Writes(u"4k3/8/5n2/8/3pP3/8/p7/4K3 b - - 0 1", "f6xe4>Nxe4 f6-e4>Ne4 d4xe3>dxe3 d4-d3>d3 a2-a1=Q>a1=Q");
    Writes(Promotes, "e7xd8=R>exd8=R e7-e8=Q>e8=Q a3-a4> > 1-0>1-0 1/2>1/2 ->- *>*");
    Writes(Castles, "e1xf2>Kxf2 e1-g1>Kg1 o-o>O-O o-o-o>O-O-O 0-0>o-o 0-0-0>o-o-o");
    Rules.Missing = true; // pawns and kings need no rules
    Writes(Start, "e2-e4>e4 e1-e2>Ke2 g1-f3>");
}

// Random games by the real rules.
TEST_F(MoveText, EveryLegalMoveIsReadAsItIsWritten) {
    std::mt19937 random(20090701);
    for (const TextView start :
         {u"r3k2r/pppp2pp/2n2n2/4p2Q/q3P2q/2N2N2/PPPP2PP/R3K2R w KQkq - 0 1",
          u"r3k2r/p1p1p1pp/8/1P1P1P2/2p1p1p1/8/PP1P1P1P/R3K2R w KQkq - 0 1",
          u"4k3/PPPPpppp/8/8/8/8/ppppPPPP/4K3 w - - 0 1", u"Q2Q4/5k2/8/Q7/7q/8/2K5/4q2q w - - 0 1"}) {
        for (int game = 0; game < 6; ++game) {
            Position position = PositionOf(Text(start));
            for (int ply = 0; ply < 60; ++ply) {
                const MoveList list = GenerateMoves(Rules, position, position.SideToMove);
                ASSERT_NO_FATAL_FAILURE(RoundTrip(position, list));
                if (list.Count == 0) break;
                Rules.MakeMove(position, list.Moves[random() % list.Count]);
                position.SideToMove = Not(position.SideToMove);
                const Position again = PositionOf(PositionToFen(position));
                ASSERT_EQ(std::memcmp(&again, &position, sizeof position), 0) << ToUtf8(PositionToFen(position));
            }
        }
    }
    EXPECT_EQ(Met.size(), 8U) << "the games are worth something only when both sides met every kind of move";
}

TEST_F(MoveText, AnyTextAndAnyPositionTextIsReadWithoutHarm) {
    std::mt19937 random(7);
    constexpr TextView letters = u"PNBRQKZLTDpnrqkVvabcdefghx:=+-#!?,X0123456789oO /w*\u02DD\0i\u212A"sv;
    const Text fens[] = {Castles, Promotes, BlackPromotes, PawnOrBishop, Pawns, InPassing};
    for (int i = 0; i < 8000; ++i) {
        Text text;
        const std::size_t length = random() % (i % 4 != 0 ? 8 : 90);
        while (text.size() < length) text += letters[random() % letters.size()];
        Position position = PositionOf(fens[random() % std::size(fens)]);
        const MoveRec move = Reader.SanToMoveRec(position, text, static_cast<Truth>(-static_cast<int>(random() % 3)));
        ASSERT_TRUE(move.FromFile <= 8 && move.FromRow <= 8 && move.ToFile <= 8 && move.ToRow <= 8) << ToUtf8(text);
        LongTextToMove(position, text);
        Rules.MakeMove(position, move);
        FenToPosition(text, position);
        for (int k = 0; k <= 8; ++k) ASSERT_EQ(PieceAt(position, 0, k) + PieceAt(position, k, 0), 0);
    }
}

} // namespace
} // namespace quarnel::notation
