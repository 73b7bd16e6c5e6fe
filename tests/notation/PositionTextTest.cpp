#include "notation/PositionText.h"

#include "model/GameState.h"
#include "support/LibraryRules.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace quarnel::notation {
namespace {

using namespace std::literals;

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

TEST(PositionText, PlacementIsReadAsFarAsSixtyFourSquares) {
    Reads(Text(StandardStart), Text(StandardStart));
    Reads(u"88888888 w - - 0 1", Empty + u"w - - 0 1");
    Reads(u"9P07/8/8/8/8/8/8/8 w K - 0 1", TopLeft + u"w K - 0 1");
    Reads(u" P.7 x//8/8/8/8/8/8/8 w K - 0 1", TopLeft + u"w K - 0 1");
    Reads(u"vVdDpnbr/rqkPNBRQ/K7/8/8/8/8/7d b - d3 0 1", u"vVdDpnbr/rqkPNBRQ/K7/8/8/8/8/7d b - d3 0 1");
    // What follows the 64th square is only a separator, whatever it is.
    Reads(u"8/8/8/8/8/8/8/8Pb kq h6 ", Empty + u"b kq h3 0 1");
    Reads(u"8/8/8/8/8/8/8/8/w Q a3 ", Empty + u"w Q a6 0 1");
    Reads(u"8/8/8/8/8/8/8/7K1w Qk a3 ", u"8/8/8/8/8/8/8/7K w Qk a6 0 1");
    // A run over the edge is cut off.
    Reads(u"8/8/8/8/8/8/8/P8 b - - 0 1", u"8/8/8/8/8/8/8/P7 b - - 0 1");
}

TEST(PositionText, FieldsBehindThePlacement) {
    const std::pair<Text, Text> cases[] = {{u"b KQkq e3 5 9", u"b KQkq e3 0 1"},
                                           {u"w Kq - 0 1", u"w Kq - 0 1"},
                                           {u"w QK - 0 1", u"w K - 0 1"},
                                           {u"w kQKqk - 0 1", u"w Kk - 0 1"},
                                           {u"w qQ - 0 1", u"w Qq - 0 1"},
                                           {u"w  KQ e3 0 1", u"w - - 0 1"},
                                           {u"B KQkq - 0 1", u"w KQkq - 0 1"},
                                           {u"b - e6 0 1", u"b - e3 0 1"},
                                           {u"w - e3", u"w - e6 0 1"},
                                           {u"w - i3 0 1", u"w - - 0 1"},
                                           {u"w - E3 0 1", u"w - - 0 1"},
                                           {u"w - -", u"w - - 0 1"},
                                           {u"w KQ ", u"w KQ - 0 1"}};
    for (const auto& [given, written] : cases) Reads(Empty + given, Empty + written);
}

TEST(PositionText, ATextThatEndsTooEarlyIsRewritten) {
    for (const TextView text : {u"", u"8/8/8/8/8/8/8/8", u"8/8/8/8/8/8/8/5 w - - 0 1"}) {
        Reads(Text(text), Empty + u"w - - 0 1", true);
    }
    Reads(u"P", TopLeft + u"w - - 0 1", true);
    for (const TextView text : {u"b", u"b ", u"b KQkq"}) Reads(TopLeft + Text(text), TopLeft + u"b - - 0 1", true);
}

TEST(PositionText, RightsOutsideTheirRangeWriteNothing) {
    Position position = PositionOf(Empty + u"w - - 0 1");
    position.WhiteCastle = 4;
    EXPECT_EQ(PositionToFen(position), Empty + u"w  - 0 1");
    position.BlackCastle = 2;
    EXPECT_EQ(PositionToFen(position), Empty + u"w q - 0 1");
}

TEST(PositionText, SurvivesAnyTextAndAnyBytes) {
    std::mt19937 random(3);
    constexpr TextView letters = u"PNBRQKpnbrqkVvDd12345678909/ wbKQkq-eh36\0\u212A"sv;
    for (int i = 0; i < 3000; ++i) {
        Text given;
        for (auto length = random() % 90; length > 0; --length) given += letters[random() % letters.size()];
        Text text = given;
        Position position{};
        FenToPosition(text, position);
        const Text written = PositionToFen(position);
        ASSERT_TRUE(text == given || text == written) << ToUtf8(given);
        for (int k = 0; k <= 8; ++k) ASSERT_EQ(PieceAt(position, 0, k) + PieceAt(position, k, 0), 0);
        ASSERT_EQ(PositionToFen(PositionOf(written)), written) << ToUtf8(given);

        auto* bytes = reinterpret_cast<std::uint8_t*>(&position);
        for (std::size_t k = 0; k < sizeof position; ++k) bytes[k] = static_cast<std::uint8_t>(random());
        ASSERT_TRUE(PositionToFen(position).ends_with(u" 0 1"));
    }
}

} // namespace
} // namespace quarnel::notation
