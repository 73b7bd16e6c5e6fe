// Positions and moves as the program keeps them in texts.
#include "notation/LongText.h"
#include "support/LibraryRules.h"

#include <gtest/gtest.h>

#include <cstring>

namespace quarnel::notation {
namespace {

const Position WhiteToMove = PositionOf(u"4k3/4P3/8/3pP3/3pP3/8/1p6/R3K3 w - d6 0 1");
const Position BlackToMove = PositionOf(u"4k3/4P3/8/3pP3/3pP3/8/1p6/R3K3 b - e3 0 1");
const Position Occupied = PositionOf(u"4k3/8/3n4/3pP3/8/8/8/4K3 w - - 0 1");

// The record's eight bytes, a digit or letter each.
std::string Bytes(const MoveRec& move) {
    std::string digits(reinterpret_cast<const char*>(&move), sizeof move);
    for (char& byte : digits) byte = static_cast<char>(byte + '0');
    return digits;
}

TEST(LongText, TextsBecomeRecordsAndWhatIsNoMoveTheEmptyOne) {
    const std::tuple<const Position&, Text, std::string> cases[] = {
        {WhiteToMove, u"e5xd6", "54430044"},   {Occupied, u"e5xd6", "54430000"},
        {BlackToMove, u"d4xe3", "45560055"},   {WhiteToMove, u"e7-e8=Q", "52510500"},
        {BlackToMove, u"a2-a1=N", "17180800"}, {WhiteToMove, u"e7-e8=q", "52510000"},
        {WhiteToMove, u"e7-e8 Q", "52510000"}, {WhiteToMove, u"0-0-0", "58002000"},
        {BlackToMove, u"0-0", "51001000"},     {BlackToMove, u"o-o-o", "51002000"},
        {WhiteToMove, u"a3xb4", "16250020"}}; // in passing, but of no rank
    for (const auto& [before, written, record] : cases) {
        EXPECT_EQ(Bytes(LongTextToMove(before, written)), record) << ToUtf8(written);
    }
    for (const TextView text :
         {u"", u"e2-e", u"i2-e4", u"e9-e4", u"e2-e0", u"e2-j4", u"E2-E4", u"o-O", u"*", u"Ng1f3"}) {
        EXPECT_EQ(Bytes(LongTextToMove(BlackToMove, text)), "00000000") << ToUtf8(text);
    }
    EXPECT_EQ(MoveToLongText(BlackToMove, {5, 5, 4, 4, 0, 0, 0, 0}), u"e4xd5") << "own pieces are not looked at";
    EXPECT_EQ(MoveToLongText(BlackToMove, {5, 8, 7, 8, 3, 0, 0, 0}), u"") << "no such castling";
}

TEST(ResultText, HasACodeInThePromotionByte) {
    const std::pair<Text, int> cases[] = {{u"1-0", 250}, {u"0-1", 251},           {u"1/2-1/2", 251}, {u"1/2", 251},
                                          {u"-", 252},   {u"\u02DD-\u02DD", 251}, {u"*", 0}};
    for (const auto& [text, code] : cases) {
        EXPECT_TRUE(IsResultText(text)) << ToUtf8(text);
        EXPECT_TRUE(
            IsSameMove(LongTextToMoveRec(BlackToMove, text), {0, 0, 0, 0, 0, static_cast<std::uint8_t>(code), 0, 0}));
    }
    for (const TextView text : {u"", u"1-0 ", u"o-o", u"\u00BD"}) EXPECT_FALSE(IsResultText(text)) << ToUtf8(text);
}

// What a text reads as, written again; and whether the text itself becomes that.
void Reads(const Text& given, const Text& written, bool rewritten = false) {
    Text text = given;
    Position position{};
    std::memset(static_cast<void*>(&position), 7, sizeof position);
    FenToPosition(text, position);
    EXPECT_EQ(PositionToFen(position), written) << ToUtf8(given);
    EXPECT_EQ(text, rewritten ? written : given);
}

const Text Empty = u"8/8/8/8/8/8/8/8 ";
const Text TopLeft = u"P7/8/8/8/8/8/8/8 ";

TEST(PositionText, IsReadAsFarAsSixtyFourSquaresAndWhatFollowsThemIsASeparator) {
    const std::pair<Text, Text> cases[] = {
        {u"vVdDpnbr/rqkPNBRQ/K7/8/8/8/8/7d b - d3 0 1", u"vVdDpnbr/rqkPNBRQ/K7/8/8/8/8/7d b - d3 0 1"},
        {u"88888888 w - - 0 1", Empty + u"w - - 0 1"},
        {u"9P07/8/8/8/8/8/8/8 w K - 0 1", TopLeft + u"w K - 0 1"},
        {u" P.7 x//8/8/8/8/8/8/8 w K - 0 1", TopLeft + u"w K - 0 1"},
        {u"8/8/8/8/8/8/8/8Pb kq h6 ", Empty + u"b kq h3 0 1"},
        {u"8/8/8/8/8/8/8/7K1w Qk a3 ", u"8/8/8/8/8/8/8/7K w Qk a6 0 1"},
        {u"8/8/8/8/8/8/8/P8 b - - 0 1", u"8/8/8/8/8/8/8/P7 b - - 0 1"}}; // a run over the edge is cut off
    for (const auto& [given, written] : cases) Reads(given, written);
}

TEST(PositionText, FieldsBehindThePlacement) {
    const std::pair<Text, Text> cases[] = {{u"b KQkq e3 5 9", u"b KQkq e3 0 1"},
                                           {u"w QK - 0 1", u"w K - 0 1"},
                                           {u"w kQKqk - 0 1", u"w Kk - 0 1"},
                                           {u"w qQ - 0 1", u"w Qq - 0 1"},
                                           {u"w  KQ e3 0 1", u"w - - 0 1"},
                                           {u"B KQkq - 0 1", u"w KQkq - 0 1"},
                                           {u"w - e3", u"w - e6 0 1"},
                                           {u"w - i3 0 1", u"w - - 0 1"},
                                           {u"w - -", u"w - - 0 1"},
                                           {u"w KQ ", u"w KQ - 0 1"}};
    for (const auto& [given, written] : cases) Reads(Empty + given, Empty + written);
    Position position = PositionOf(Empty + u"w q - 0 1");
    position.WhiteCastle = 4; // no such rights, so nothing is written for them
    EXPECT_EQ(PositionToFen(position), Empty + u"w q - 0 1");
}

TEST(PositionText, ATextThatEndsTooEarlyIsRewritten) {
    for (const TextView text : {u"", u"8/8/8/8/8/8/8/5 w - - 0 1"}) Reads(Text(text), Empty + u"w - - 0 1", true);
    Reads(u"P", TopLeft + u"w - - 0 1", true);
    for (const TextView text : {u"b", u"b ", u"b KQkq"}) Reads(TopLeft + Text(text), TopLeft + u"b - - 0 1", true);
}

} // namespace
} // namespace quarnel::notation
