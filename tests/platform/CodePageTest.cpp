#include "platform/CodePage.h"

#include <gtest/gtest.h>

namespace quarnel {
namespace {

constexpr int AllPages[] = {874, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258};

TEST(CodePageTest, EveryByteComesBackFromItsCharacter) {
    for (const int page : AllPages) {
        for (int byte = 0; byte < 256; ++byte) {
            const std::string one(1, static_cast<char>(byte));
            const Text text = FromCodePage(one, page);
            ASSERT_EQ(text.size(), 1U);
            EXPECT_EQ(ToCodePage(text, page), one) << page << " byte " << byte;
        }
    }
}

TEST(CodePageTest, PlacesCharactersAsTheirPageDoes) {
    struct Case {
        int Page;
        char16_t Character;
        int Byte;
    };
    constexpr Case Cases[] = {
        {1250, u'\u02DD', 0xBD}, // the double acute that a draw is written with
        {1252, u'\u00BD', 0xBD}, {1250, u'\u0158', 0xD8}, {1251, u'\u041A', 0xCA}, {1252, u'\u20AC', 0x80},
        {1253, u'\u03A9', 0xD9}, {1254, u'\u011F', 0xF0}, {1255, u'\u05D0', 0xE0}, {1256, u'\u0627', 0xC7},
        {1257, u'\u0173', 0xF8}, {1258, u'\u01B0', 0xFD}, {874, u'\u0E01', 0xA1},
    };
    for (const Case& c : Cases) {
        EXPECT_EQ(ToCodePage(TextView(&c.Character, 1), c.Page), std::string(1, static_cast<char>(c.Byte))) << c.Page;
    }
}

TEST(CodePageTest, WhatThePageLacksBecomesAQuestionMark) {
    EXPECT_EQ(ToCodePage(u"\u041A e4 \u02DD", 1252), "? e4 ?");
    EXPECT_EQ(ToCodePage(u"\u0081\u0080", 1252), "\x81?"); // 0x81 is free in the page, 0x80 is the euro sign
}

TEST(CodePageTest, AnUnknownPageIsTheWesternOne) {
    EXPECT_EQ(ToCodePage(u"\u20AC", 932), "\x80");
    EXPECT_EQ(FromCodePage("\x80", 0), u"\u20AC");
}

TEST(CodePageTest, FollowsTheLanguageAndScriptOfALocale) {
    struct Case {
        const char* Locale;
        int Page;
    };
    constexpr Case Cases[] = {
        {"", 1252},
        {"C", 1252},
        {"POSIX", 1252},
        {"C.UTF-8", 1252},
        {"en_US.UTF-8", 1252},
        {"cs_CZ.UTF-8", 1250},
        {"cs", 1250},
        {"pl-PL", 1250},
        {"HU_hu", 1250},
        {"hr_HR@euro", 1250},
        {"ru_RU.KOI8-R", 1251},
        {"sr_RS.UTF-8", 1251},
        {"sr@latin", 1250},
        {"sr_RS.UTF-8@latin", 1250},
        {"sr-Latn-RS", 1250},
        {"bs_BA.UTF-8", 1250},
        {"bs_Cyrl_BA", 1251},
        {"el_GR.UTF-8", 1253},
        {"tr_TR", 1254},
        {"az_AZ.UTF-8", 1254},
        {"he_IL", 1255},
        {"fa_IR", 1256},
        {"lt_LT.UTF-8", 1257},
        {"vi_VN", 1258},
        {"th_TH.UTF-8", 874},
        {"csb_PL", 1252},
        {"zh_CN.UTF-8", 1252},
        {".UTF-8", 1252},
        {"@@__..", 1252},
    };
    for (const Case& c : Cases) EXPECT_EQ(CodePageOfLocale(c.Locale), c.Page) << c.Locale;
}

} // namespace
} // namespace quarnel
