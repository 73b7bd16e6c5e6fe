#include "base/Numbers.h"

#include "base/Step.h"

#include <gtest/gtest.h>

#include <array>

namespace quarnel {
namespace {

TEST(Numbers, HalvesGoToTheEvenNeighbour) {
    const std::pair<double, int> cases[] = {{2.5, 2},   {3.5, 4},    {273.5, 274}, {0.5, 0},  {-0.5, 0},
                                            {-1.5, -2}, {-2.5, -2},  {2.49, 2},    {2.51, 3}, {1.1, 1},
                                            {1.6, 2},   {-2.51, -3}, {-7.0, -7}};
    for (const auto& [value, rounded] : cases) EXPECT_EQ(RoundHalfEven(value), rounded) << value;
}

TEST(Numbers, TheNumberATextBeginsWith) {
    const std::pair<TextView, double> cases[] = {
        {u"12.", 12},    {u"12.5x", 12.5}, {u"", 0},     {u"x1", 0},   {u" 1 2\t3\n4", 1234}, {u"-3", -3},
        {u"+7", 7},      {u"--7", 0},      {u".5", 0.5}, {u".", 0},    {u"1e2", 1},           {u"1,5", 1},
        {u"1.2.3", 1.2}, {u"inf", 0},      {u"0x10", 0}, {u"007.", 7}, {u"1\u00A02", 1},      {u"\u0661", 0}};
    for (const auto& [text, number] : cases) EXPECT_DOUBLE_EQ(LeadingNumber(text), number) << ToUtf8(text);
}

TEST(Numbers, SixteenBitNumbersFromTexts) {
    const std::pair<TextView, int> cases[] = {{u"6", 6},     {u" +12  ", 12}, {u"-32768", -32768}, {u"32767", 32767},
                                              {u"1e2", 100}, {u"2.5E+1", 25}, {u"30e-1", 3}};
    for (const auto& [text, number] : cases) EXPECT_EQ(ToInteger16(text), number) << ToUtf8(text);
    for (const TextView text :
         {u"32768", u"-32769", u"1e400", u"", u" ", u"six", u"6x", u"1 2", u"6.5", u"1e", u"1e+"}) {
        EXPECT_EQ(ToInteger16(text), std::nullopt) << ToUtf8(text);
    }
    EXPECT_EQ(ToInteger16(32767), 32767);
    EXPECT_EQ(ToInteger16(32768), std::nullopt);
    EXPECT_EQ(ToInteger16(-32769), std::nullopt);
}

TEST(Numbers, TruthValuesFromTexts) {
    for (const TextView text : {u"-1", u"1", u" 0.5 ", u"True", u"TRUE ", u"70000"})
        EXPECT_EQ(ToTruthValue(text), True);
    for (const TextView text : {u"0", u"0.0", u"false"}) EXPECT_EQ(ToTruthValue(text), False) << ToUtf8(text);
    for (const TextView text : {u"yes", u"", u"1x", u"-"}) EXPECT_EQ(ToTruthValue(text), std::nullopt) << ToUtf8(text);
}

TEST(Step, AnIndexOutsideItsTableLeavesTheStepOut) {
    std::array<int, 3> table{10, 20, 30};
    for (const int index : {-1, 0, 2, 3, 40000}) Step(ElementAt(table, index), [](int& element) { ++element; });
    EXPECT_EQ(table, (std::array<int, 3>{11, 20, 31}));
}

} // namespace
} // namespace quarnel
