#include "platform/CodePage.h"

#include <gtest/gtest.h>

#include <sstream>

namespace quarnel {
namespace {

TEST(CodePage, EveryByteComesBackFromItsCharacter) {
    for (const int page : {874, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258}) {
        for (int byte = 0; byte < 256; ++byte) {
            const std::string one(1, static_cast<char>(byte));
            const Text text = FromCodePage(one, page);
            ASSERT_EQ(text.size(), 1U);
            EXPECT_EQ(ToCodePage(text, page), one) << page << " byte " << byte;
        }
    }
}

// An unknown page is the Western one; what a page lacks becomes a question mark.
TEST(CodePage, PlacesCharactersAsTheirPageDoes) {
    const struct {
        int Page;
        Text Characters;
        std::string Bytes;
    } cases[] = {{1250, u"\u02DD", "\xBD"}, // the double acute that a draw is written with
                 {1252, u"\u00BD", "\xBD"},       {1250, u"\u0158", "\xD8"}, {1251, u"\u041A", "\xCA"},
                 {1253, u"\u03A9", "\xD9"},       {1254, u"\u011F", "\xF0"}, {1255, u"\u05D0", "\xE0"},
                 {1256, u"\u0627", "\xC7"},       {1257, u"\u0173", "\xF8"}, {1258, u"\u01B0", "\xFD"},
                 {874, u"\u0E01", "\xA1"},        {932, u"\u20AC", "\x80"},  {1252, u"\u041A e4 \u02DD", "? e4 ?"},
                 {1252, u"\u0081\u0080", "\x81?"}}; // 0x81 is free in the page, 0x80 is the euro sign
    for (const auto& [page, characters, bytes] : cases) EXPECT_EQ(ToCodePage(characters, page), bytes) << page;
    EXPECT_EQ(FromCodePage("\x80", 0), u"\u20AC");
}

TEST(CodePage, FollowsTheLanguageAndScriptOfALocale) {
    std::istringstream cases("C.UTF-8 1252 cs_CZ.UTF-8 1250 cs 1250 pl-PL 1250 HU_hu 1250 hr_HR@euro 1250 ru_RU 1251 "
                             "sr_RS.UTF-8 1251 sr@latin 1250 sr_RS.UTF-8@latin 1250 sr-Latn-RS 1250 bs_BA 1250 "
                             "bs_Cyrl_BA 1251 el_GR.UTF-8 1253 tr_TR 1254 az_AZ.UTF-8 1254 he_IL 1255 fa_IR 1256 "
                             "lt_LT 1257 vi_VN 1258 th_TH.UTF-8 874 csb_PL 1252 .UTF-8 1252 @@__.. 1252");
    std::string locale;
    for (int page = 0; cases >> locale >> page;) EXPECT_EQ(CodePageOfLocale(locale), page) << locale;
    EXPECT_EQ(CodePageOfLocale(""), 1252);
}

} // namespace
} // namespace quarnel
