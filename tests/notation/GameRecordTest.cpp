#include "notation/GameRecord.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quarnel::notation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(GameRecord, FieldsOfALine) {
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
