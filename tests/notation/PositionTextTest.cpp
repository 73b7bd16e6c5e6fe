#include "notation/PositionText.h"

#include "support/LibraryRules.h"

#include <gtest/gtest.h>

#include <cstring>

namespace quarnel::notation {
namespace {

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
