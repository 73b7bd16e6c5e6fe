#include "notation/MoveTextReader.h"

#include "support/LibraryRules.h"

#include <gtest/gtest.h>

#include <random>
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

class MoveTextReaderTest : public testing::Test {
  protected:
    LibraryRules Rules;
    MoveTextReader Reader{Rules};

    // `cases` are pairs "text>long text", read for the side to move of `fen`.
    void Reads(const Text& fen, const std::string& cases) {
        const Position position = PositionOf(fen);
        std::istringstream words(cases);
        for (std::string word; words >> word;) {
            const auto middle = word.find('>');
            const Text read = Reader.SanToLongText(position, FromUtf8(word.substr(0, middle)), position.SideToMove);
            EXPECT_EQ(ToUtf8(read), word.substr(middle + 1)) << word << " in " << ToUtf8(fen);
            EXPECT_EQ(Reader.MoveTextError, 0) << word;
        }
    }
};

TEST_F(MoveTextReaderTest, MarksBehindAMoveDoNotCount) {
    Reads(Start, "Nf3>g1-f3 Nf3+>g1-f3 Nf3!?>g1-f3 Nf3#>g1-f3 Nf3,>g1-f3 e4+-X>e2-e4");
    Reads(Castles, "O-O-O+>o-o-o O-O#>o-o");
    Reads(Promotes, "e8Q!!>e7-e8=Q e8=Q+>e7-e8=Q");
}

TEST_F(MoveTextReaderTest, CastlingInLettersAndDigitsButNeverAsAKingMove) {
    Reads(Castles, "O-O>o-o o-o>o-o 0-0>o-o o-O>o-o O-O-O>o-o-o o-o-o>o-o-o 0-0-0>o-o-o");
    Reads(Castles, "0-O> Kg1> Ki9> Kf1>e1-f1");
}

TEST_F(MoveTextReaderTest, LocalPieceLettersReadLikeEnglishOnes) {
    Reads(Knights, "Zg5>f3-g5 Ng5>f3-g5");
    Reads(PawnOrBishop, "Lxc3>e1xc3");
    Reads(Castles, "Txa8>a1xa8");
    Reads(Queens, "Dxd1>d8xd1 Qxd1>d8xd1 Dd1>d8xd1");
    Reads(Pawns, "Pe4>e3-e4");
    Reads(Promotes, "e8=D>e7-e8=Q e8D>e7-e8=Q e8=Z>e7-e8=N exd8=T>e7xd8=R");
    Reads(BlackPromotes, "b1L>b2-b1=B");
}

TEST_F(MoveTextReaderTest, PawnMovesInAllTheirForms) {
    // The nearest own pawn behind the square or on it, but never on the first rank.
    Reads(Start, "e4>e2-e4 e3>e2-e3 e44> i4>");
    Reads(Pawns, "e4>e3-e4 e2>e2-e2 d2> a4>");
    Reads(InPassing, "d3>d4-d3 e3>");
    Reads(u"4p2k/4pppp/8/8/8/8/8/4K3 b - - 0 1", "e5>e7-e5 e8>");
    Reads(u"4p2k/8/8/8/8/8/8/4K3 b - - 0 1", "e7>");
    // Captures: nothing is searched, unless only the files are given.
    Reads(InPassing, "dxe3>d4xe3 de3>d4xe3 d:e3>d4xe3 gxh8>g9xh8 de>d4xe3 ed>");
    Reads(Pawns, "gxh8>g7xh8");
    Reads(PawnOrBishop, "bxc3>b2xc3 bc>b2xc3 Bxc3>e1xc3 B:c3>e1xc3");
    Reads(Promotes, "exd8=N>e7xd8=N ed8N>e7xd8=N ed=R>e7xd8=R ed=K> exd=Q8>e7xd8=Q");
    Reads(BlackPromotes, "bxa1=N>b2xa1=N ba=D>b2xa1=Q");
}

TEST_F(MoveTextReaderTest, APieceIsFoundByItsOrigin) {
    Reads(Knights, "Nbd2>b1-d2 N3d2>f3-d2 N1d2>b1-d2 Ncd2> N2d2> Nd8> Nb1-d2> nbd2> N> Nd> Nbd2=Q>b1-d2");
    // An origin in full is taken as it stands, whatever is on the squares.
    Reads(Knights, "Nf3d2>f3-d2 Ng3xe8>g3xe8 Ng3e7>g3-e7");
}

TEST_F(MoveTextReaderTest, TheOrderOfTheListDecidesBetweenMovesThatFit) {
    const Text doubled = u"k7/3p4/4P3/3p4/4P3/8/8/K7 w - - 0 1";
    const struct {
        Text Fen, Written;
        MoveRec A, B;
        Text Read, ReadSwapped;
    } cases[] = {{Knights, u"Nd2", {2, 8, 4, 7, 0, 0, 0, 0}, {6, 6, 4, 7, 0, 0, 0, 0}, u"b1-d2", u"f3-d2"},
                 {doubled, u"ed", {5, 5, 4, 4, 0, 0, 0, 0}, {5, 3, 4, 2, 0, 0, 0, 0}, u"e6xd7", u"e4xd5"},
                 {BlackPromotes, u"ba", {2, 7, 1, 8, 0, 11, 0, 0}, {2, 7, 1, 8, 0, 8, 0, 0}, u"b2xa1=Q", u"b2xa1=N"}};
    for (const auto& c : cases) {
        ListedRules rules;
        MoveTextReader reader(rules);
        const Position position = PositionOf(c.Fen);
        rules.List = {c.A, c.B};
        EXPECT_EQ(reader.SanToLongText(position, c.Written, position.SideToMove), c.Read);
        rules.List = {c.B, c.A};
        EXPECT_EQ(reader.SanToLongText(position, c.Written, position.SideToMove), c.ReadSwapped);
    }
}

TEST_F(MoveTextReaderTest, AFaultGivesTheTextBackAsFarAsItWasRead) {
    ListedRules missing;
    missing.Missing = true;
    const struct {
        quarnel::Rules& Service;
        const Text& Fen;
        Text Written, Left;
    } cases[] = {{Rules, Knights, u"!!", u"!!"},         {Rules, Knights, u"+-+", u"+-+"},
                 {Rules, Knights, u"e9?!", u"e9"},       {Rules, Queens, u"e0", u"e0"},
                 {Rules, Knights, u"Nxf3e9!", u"Nf3e9"}, {Rules, Knights, u"e:dQ", u"exd"},
                 {missing, Knights, u"Nxd2+", u"Nd2"},   {missing, Knights, u"bc=Q", u"bc"}};
    for (const auto& [service, fen, written, left] : cases) {
        MoveTextReader reader(service);
        const Position before = PositionOf(fen);
        EXPECT_EQ(reader.SanToLongText(before, written, before.SideToMove), left);
        EXPECT_EQ(reader.MoveTextError, 1) << ToUtf8(written);
        reader.SanToLongText(before, u"", White);
        EXPECT_EQ(reader.MoveTextError, 0);
    }
}

TEST_F(MoveTextReaderTest, ResultsPassThroughAndASideThatIsNeitherReadsOnlyThemAndCastling) {
    const Position position = PositionOf(Castles);
    for (const TextView text : {u"1-0", u"1/2-1/2", u"\u02DD-\u02DD", u"-"}) {
        EXPECT_EQ(Reader.SanToLongText(position, text, 1), text);
        EXPECT_TRUE(IsSameMove(Reader.SanToMoveRec(position, text, White), ResultToMoveRec(text)));
    }
    Reads(Castles, "*>");
    EXPECT_EQ(Reader.SanToLongText(position, u"O-O", 1), u"o-o");
    EXPECT_EQ(Reader.SanToLongText(position, u"Kf1", 1), u"");
    EXPECT_EQ(Reader.MoveTextError, 0);
}

TEST_F(MoveTextReaderTest, SurvivesAnyText) {
    std::mt19937 random(7);
    constexpr TextView letters = u"PNBRQKZLTDabcdefghx:=+-#!?,X0123456789oO /*\u02DD\0i"sv;
    const Text fens[] = {Castles, Promotes, BlackPromotes, PawnOrBishop, Pawns, InPassing};
    for (int i = 0; i < 8000; ++i) {
        Text text;
        for (auto length = random() % 8; length > 0; --length) text += letters[random() % letters.size()];
        Position position = PositionOf(fens[random() % std::size(fens)]);
        const MoveRec move = Reader.SanToMoveRec(position, text, static_cast<Truth>(-static_cast<int>(random() % 3)));
        ASSERT_TRUE(move.FromFile <= 8 && move.FromRow <= 8 && move.ToFile <= 8 && move.ToRow <= 8) << ToUtf8(text);
        LongTextToMove(position, text);
        Rules.MakeMove(position, move);
    }
}

} // namespace
} // namespace quarnel::notation
