#include "base/Numbers.h"

#include "base/Step.h"

#include <gtest/gtest.h>

#include <array>

namespace quarnel {
namespace {

TEST(Numbers, HalvesGoToTheEvenNeighbour) {
    const struct {
        double Value;
        int Rounded;
    } cases[] = {{2.5, 2},
                 {3.5, 4},
                 {273.5, 274},
                 {274.5, 274},
                 {0.5, 0},
                 {-0.5, 0},
                 {-1.5, -2},
                 {-2.5, -2},
                 {2.49, 2},
                 {2.51, 3},
                 {-2.51, -3},
                 {1.1, 1},
                 {1.6, 2},
                 {7.0, 7},
                 {-7.0, -7},
                 {32767.5, 32768},
                 {1e9 + 0.5, 1000000000}};
    for (const auto& [value, rounded] : cases) EXPECT_EQ(RoundHalfEven(value), rounded) << value;
}

TEST(Numbers, TheNumberATextBeginsWith) {
    const struct {
        TextView Characters;
        double Number;
    } cases[] = {{u"12.", 12},     {u"12.5x", 12.5}, {u"", 0},    {u"x1", 0},   {u" 1 2\t3\n4", 1234},
                 {u"-3", -3},      {u"+7", 7},       {u"--7", 0}, {u".5", 0.5}, {u".", 0},
                 {u"-", 0},        {u"1e2", 100},    {u"1e", 1},  {u"1e+", 1},  {u"2E-1.", 0.2},
                 {u"1.2.3", 1.2},  {u"0x10", 0},     {u"1,5", 1}, {u"inf", 0},  {u"007.", 7},
                 {u"1\u00A02", 1}, {u"\u0661", 0}};
    for (const auto& [characters, number] : cases) {
        EXPECT_DOUBLE_EQ(LeadingNumber(characters), number) << ToUtf8(characters);
    }
}

TEST(Numbers, SixteenBitNumbersFromTexts) {
    const struct {
        TextView Characters;
        std::optional<std::int16_t> Number;
    } cases[] = {{u"6", 6},
                 {u" 12  ", 12},
                 {u"-32768", -32768},
                 {u"32767", 32767},
                 {u"32768", std::nullopt},
                 {u"-32769", std::nullopt},
                 {u"1e400", std::nullopt},
                 {u"", std::nullopt},
                 {u"  ", std::nullopt},
                 {u"six", std::nullopt},
                 {u"6x", std::nullopt},
                 {u"1 2", std::nullopt},
                 {u"6.5", std::nullopt}};
    for (const auto& [characters, number] : cases) EXPECT_EQ(ToInteger16(characters), number) << ToUtf8(characters);
    EXPECT_EQ(ToInteger16(32767), 32767);
    EXPECT_EQ(ToInteger16(32768), std::nullopt);
    EXPECT_EQ(ToInteger16(-32769), std::nullopt);
}

TEST(Numbers, TruthValuesFromTexts) {
    const struct {
        TextView Characters;
        std::optional<Truth> Value;
    } cases[] = {{u"-1", True},       {u"0", False},          {u"1", True},        {u" 0.5 ", True},
                 {u"0.0", False},     {u"True", True},        {u"TRUE ", True},    {u"false", False},
                 {u"70000", True},    {u"yes", std::nullopt}, {u"", std::nullopt}, {u"1x", std::nullopt},
                 {u"-", std::nullopt}};
    for (const auto& [characters, value] : cases) EXPECT_EQ(ToTruthValue(characters), value) << ToUtf8(characters);
}

TEST(Truth, IsNegatedBitwise) {
    EXPECT_EQ(Not(True), False);
    EXPECT_EQ(Not(False), True);
    EXPECT_EQ(Not(Not(White)), White);
    EXPECT_EQ(Black, -1);
}

TEST(Step, AnIndexOutsideItsTableLeavesTheStepOut) {
    std::array<int, 3> table{10, 20, 30};
    int calls = 0;
    for (const int index : {-1, 0, 2, 3, 40000}) {
        Step(ElementAt(table, index), [&](int& element) {
            ++element;
            ++calls;
        });
    }
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(table, (std::array<int, 3>{11, 20, 31}));
}

} // namespace
} // namespace quarnel
