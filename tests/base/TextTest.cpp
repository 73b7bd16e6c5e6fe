#include "base/Text.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

TEST(Text, OnlyLatinLettersChangeCaseAndOnlyBlanksAtTheEndsAreTrimmed) {
    EXPECT_EQ(Lower(u"O-O Z[@`{\u00C4\u212A"), u"o-o z[@`{\u00C4\u212A");
    EXPECT_EQ(Upper(u"o-o az[@`{\u00E4"), u"O-O AZ[@`{\u00E4");
    EXPECT_EQ(TrimBlanks(u"  a b\t "), u"a b\t");
    EXPECT_EQ(TrimBlanks(u"   "), u"");
}

TEST(Text, Utf8AndBack) {
    const std::pair<const char*, Text> cases[] = {{"e4", u"e4"},
                                                  {"\xC2\x80 \xDF\xBF", u"\u0080 \u07FF"},
                                                  {"\xE0\xA0\x80 \xEF\xBF\xBF", u"\u0800 \uFFFF"},
                                                  {"\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF", u"\U00010000 \U0010FFFF"}};
    for (const auto& [bytes, characters] : cases) {
        EXPECT_EQ(FromUtf8(bytes), characters);
        EXPECT_EQ(ToUtf8(characters), bytes);
    }
}

TEST(Text, WhatIsNotValidBecomesReplacementsAndTheRestIsKept) {
    const std::pair<const char*, Text> cases[] = {
        {"a\x80z", u"a\uFFFDz"},                           // a tail alone
        {"a\xC3", u"a\uFFFD"},                             // cut off
        {"\xE2\x82z", u"\uFFFD\uFFFDz"},                   // cut off inside
        {"\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},           // longer than need be
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},           // half a pair
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}, // above the last character
        {"\xF8\x88z", u"\uFFFD\uFFFDz"}};
    for (const auto& [bytes, characters] : cases) EXPECT_EQ(FromUtf8(bytes), characters);
    EXPECT_EQ(ToUtf8(Text{u'a', 0xD800, u'b'}), "a\xEF\xBF\xBD"
                                                "b");
    EXPECT_EQ(ToUtf8(Text{0xDC00, 0xD800}), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(Text{0xD83D, 0xE000}), "\xEF\xBF\xBD\xEE\x80\x80");
}

} // namespace
} // namespace quarnel
