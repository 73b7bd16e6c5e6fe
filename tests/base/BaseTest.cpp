#include "base/Numbers.h"

#include "base/Step.h"

#include <gtest/gtest.h>

#include <array>

namespace quarnel {
namespace {

TEST(Numbers, HalvesGoToTheEvenNeighbour) {
    const std::pair<double, int> cases[] = {{2.5, 2},   {273.5, 274}, {2.49, 2}, {2.51, 3},
                                            {-1.5, -2}, {-2.5, -2},   {-7, -7},  {-2.51, -3}};
    for (const auto& [value, rounded] : cases) EXPECT_EQ(RoundHalfEven(value), rounded) << value;
}

TEST(Numbers, TheNumberATextBeginsWith) {
    const std::pair<TextView, double> cases[] = {
        {u"12.5x", 12.5}, {u"", 0},  {u"x1", 0},  {u" 1 2\t3\n4", 1234}, {u"-3", -3}, {u"+7", 7},      {u"--7", 0},
        {u".5", 0.5},     {u".", 0}, {u"1e2", 1}, {u"1.2.3", 1.2},       {u"inf", 0}, {u"1\u00A02", 1}};
    for (const auto& [text, number] : cases) EXPECT_DOUBLE_EQ(LeadingNumber(text), number) << ToUtf8(text);
}

TEST(Numbers, SixteenBitNumbersFromTexts) {
    const std::pair<TextView, std::optional<int>> cases[] = {
        {u" +12  ", 12}, {u"-32768", -32768}, {u"32767", 32767}, {u"2.5E+1", 25}, {u"30e-1", 3},
        {u"32768", {}},  {u"-32769", {}},     {u"1e400", {}},    {u" ", {}},      {u"six", {}},
        {u"6x", {}},     {u"1 2", {}},        {u"6.5", {}},      {u"1e", {}},     {u"1e+", {}}};
    for (const auto& [text, number] : cases) EXPECT_EQ(ToInteger16(text), number) << ToUtf8(text);
    EXPECT_EQ(ToInteger16(32767), 32767);
    for (const int number : {32768, -32769}) EXPECT_EQ(ToInteger16(number), std::nullopt);
}

TEST(Numbers, TruthValuesFromTexts) {
    const std::pair<TextView, std::optional<Truth>> cases[] = {
        {u"-1", True},     {u" 0.5 ", True}, {u"TRUE ", True}, {u"70000", True}, {u"0.0", False},
        {u"False", False}, {u"yes", {}},     {u"", {}},        {u"1x", {}},      {u"-", {}}};
    for (const auto& [text, value] : cases) EXPECT_EQ(ToTruthValue(text), value) << ToUtf8(text);
}

TEST(Step, AnIndexOutsideItsTableLeavesTheStepOut) {
    std::array<int, 3> table{10, 20, 30};
    for (const int index : {-1, 0, 2, 3, 40000}) Step(ElementAt(table, index), [](int& element) { ++element; });
    EXPECT_EQ(table, (std::array<int, 3>{11, 20, 31}));
}

TEST(Text, OnlyLatinLettersChangeCaseAndOnlyBlanksAtTheEndsAreTrimmed) {
    EXPECT_EQ(Lower(u"O-O AZ[@`{\u00C4\u212A"), u"o-o az[@`{\u00C4\u212A");
    EXPECT_EQ(Upper(u"o-o az[@`{\u00E4"), u"O-O AZ[@`{\u00E4");
    EXPECT_EQ(TrimBlanks(u"  a b\t "), u"a b\t");
    EXPECT_EQ(TrimBlanks(u"   "), u"");
}

TEST(Text, Utf8AndBack) {
    const std::string bytes = "\x7F\xC2\x80 \xDF\xBF\xE0\xA0\x80 \xEF\xBF\xBF\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF";
    EXPECT_EQ(FromUtf8(bytes), u"\u007F\u0080 \u07FF\u0800 \uFFFF\U00010000 \U0010FFFF");
    EXPECT_EQ(ToUtf8(FromUtf8(bytes)), bytes);
}

TEST(Text, WhatIsNotValidBecomesReplacementsAndTheRestIsKept) {
    // A tail alone; cut off inside; half a pair; above the last character; longer than need be; cut off by the end.
    EXPECT_EQ(
        FromUtf8("a\x80z\xE2\x82z\xED\xA0\x80z\xF4\x90\x80\x80z\xF8\x88z\xE0\x9F\xBFz\xC3"),
        u"a\uFFFDz\uFFFD\uFFFDz\uFFFD\uFFFD\uFFFDz\uFFFD\uFFFD\uFFFD\uFFFDz\uFFFD\uFFFDz\uFFFD\uFFFD\uFFFDz\uFFFD");
    EXPECT_EQ(ToUtf8(Text{u'a', 0xD800, u'b', 0xDC00, 0xD800}), "a\xEF\xBF\xBD\x62\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(Text{0xD83D, 0xE000}), "\xEF\xBF\xBD\xEE\x80\x80");
}

} // namespace
} // namespace quarnel
