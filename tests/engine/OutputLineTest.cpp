#include "engine/OutputLine.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

TEST(OutputLine, MoveLinesAreThoseWithASideAndABracket) {
    for (const TextView line : {u"White(1): e4 ", u"x Black("}) EXPECT_TRUE(IsMoveLine(line));
    for (const TextView line : {u"White mates", u"white(1): e4 ", u"Black (1): e4 "}) EXPECT_FALSE(IsMoveLine(line));
}

// The word is cut at the last blank, which may be the last character or the one before it; the first closing
// bracket with a colon counts, and the last opening one before it.
TEST(OutputLine, AMoveLineTakenApart) {
    const struct {
        TextView Line;
        Text Number, Move;
    } cases[] = {{u"White(3): e4 ", u"3", u"e4"},     {u"Black(13): Nf6 ", u"13", u"Nf6"},
                 {u"White(3): say e4 ", u"3", u"e4"}, {u"White(3): e4", u"3", u""},
                 {u"White(3): e4 x", u"3", u"e4"},    {u"White(3): e4 xy", u"3", u""},
                 {u"White(3): e4  ", u"3", u"e4 "},   {u"White(3): ", u"3", u"White(3):"},
                 {u"White(): e4 ", u"", u"e4"},       {u"a (b) White(3): e4 (7): ", u"3", u"(7):"},
                 {u"White((3): e4 ", u"3", u"e4"},    {u"x): White(3) e4 ", u"x", u"e4"}};
    for (const auto& [line, number, move] : cases) {
        const auto parts = ReadMoveLine(line);
        ASSERT_TRUE(parts) << ToUtf8(line);
        EXPECT_EQ(parts->Number, number) << ToUtf8(line);
        EXPECT_EQ(parts->Move, move) << ToUtf8(line);
    }
    for (const TextView line : {u"White(3) e4 ", u"White(3):e4 ", u"White(3", u"White(3):", u""}) {
        EXPECT_FALSE(ReadMoveLine(line)) << ToUtf8(line);
    }
}

} // namespace
} // namespace quarnel
