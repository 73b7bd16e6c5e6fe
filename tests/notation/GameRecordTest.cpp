#include "notation/GameRecord.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quarnel::notation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(GameRecord, LinesAreFieldsBetweenTabs) {
    EXPECT_EQ(RecordHeader(true), u"\tWhite(You)\tBlack");
    EXPECT_EQ(RecordHeader(false), u"\tWhite\tBlack(You)");
    EXPECT_EQ(RecordLine(1, u"e4", u"e5"), u"1.\te4\te5");
    EXPECT_EQ(RecordLine(12, u"exd8=Q#", u""), u"12.\texd8=Q#\t");
}

TEST(GameRecord, FieldsOfALine) {
    EXPECT_THAT(RecordFields(u"\tWhite(You)\tBlack"), ElementsAre(u"White(You)", u"Black"));
    EXPECT_THAT(RecordFields(u" \t 1.\te4\te5"), ElementsAre(u"1.", u"e4", u"e5"));
    EXPECT_THAT(RecordFields(u"3.\tBb5\t"), ElementsAre(u"3.", u"Bb5", u""));
    EXPECT_THAT(RecordFields(u"3.\t\tBb5 "), ElementsAre(u"3.", u"", u"Bb5 "));
    EXPECT_THAT(RecordFields(u"3. Bb5"), ElementsAre(u"3. Bb5"));
    EXPECT_THAT(RecordFields(u""), IsEmpty());
    EXPECT_THAT(RecordFields(u" \t "), IsEmpty());
    EXPECT_TRUE(UserIsWhite(u"White(You)"));
    EXPECT_FALSE(UserIsWhite(u"White") || UserIsWhite(u"White(you)"));
}

} // namespace
} // namespace quarnel::notation
