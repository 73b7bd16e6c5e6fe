#include "platform/CodePage.h"

#include <algorithm>
#include <array>
#include <vector>

namespace quarnel {

namespace {

struct CodePageTable {
    int Number;
    std::array<char16_t, 128> UpperHalf; // the characters of the bytes 0x80 to 0xFF
};

constexpr CodePageTable Tables[] = {
#include "platform/CodePageTables.inc"
};

constexpr int WesternEuropean = 1252;

const std::array<char16_t, 128>& UpperHalfOf(int codePage) {
    const auto has = [](int number) { return [number](const CodePageTable& table) { return table.Number == number; }; };
    const auto* table = std::find_if(std::begin(Tables), std::end(Tables), has(codePage));
    if (table == std::end(Tables)) {
        table = std::find_if(std::begin(Tables), std::end(Tables), has(WesternEuropean));
    }
    return table->UpperHalf;
}

// A language and, where one language is written in several scripts, what the locale's name says of it.
struct LocaleRule {
    std::string_view Language;
    std::string_view Script; // empty: any
    int CodePage;
};

// The first rule that fits decides.
constexpr LocaleRule LocaleRules[] = {
    {"sr", "latn", 1250},     {"sr", "latin", 1250}, {"sr", "", 1251},         {"bs", "cyrl", 1251},
    {"bs", "cyrillic", 1251}, {"az", "cyrl", 1251},  {"az", "cyrillic", 1251}, {"uz", "cyrl", 1251},
    {"uz", "cyrillic", 1251}, {"pa", "arab", 1256},  {"pa", "pk", 1256},

    {"bs", "", 1250},         {"cs", "", 1250},      {"hr", "", 1250},         {"hsb", "", 1250},
    {"dsb", "", 1250},        {"hu", "", 1250},      {"pl", "", 1250},         {"ro", "", 1250},
    {"sh", "", 1250},         {"sk", "", 1250},      {"sl", "", 1250},         {"sq", "", 1250},

    {"be", "", 1251},         {"bg", "", 1251},      {"kk", "", 1251},         {"ky", "", 1251},
    {"mk", "", 1251},         {"mn", "", 1251},      {"ru", "", 1251},         {"tg", "", 1251},
    {"tt", "", 1251},         {"uk", "", 1251},

    {"el", "", 1253},         {"az", "", 1254},      {"tr", "", 1254},         {"uz", "", 1254},
    {"he", "", 1255},         {"iw", "", 1255},      {"yi", "", 1255},

    {"ar", "", 1256},         {"ckb", "", 1256},     {"fa", "", 1256},         {"ps", "", 1256},
    {"ug", "", 1256},         {"ur", "", 1256},

    {"et", "", 1257},         {"lt", "", 1257},      {"lv", "", 1257},         {"vi", "", 1258},
    {"th", "", 874},
};

// Takes the part up to the next "_", "-", "." or "@" off the front of `name`, in small letters.
std::string NextPart(std::string_view& name) {
    const auto end = std::min(name.find_first_of("_-.@"), name.size());
    std::string part(name.substr(0, end));
    std::transform(part.begin(), part.end(), part.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    name.remove_prefix(std::min(end + 1, name.size()));
    return part;
}

} // namespace

int CodePageOfLocale(std::string_view locale) {
    const std::string language = NextPart(locale);
    std::vector<std::string> rest;
    while (!locale.empty()) rest.push_back(NextPart(locale));
    for (const LocaleRule& rule : LocaleRules) {
        const bool scriptFits = rule.Script.empty() || std::find(rest.begin(), rest.end(), rule.Script) != rest.end();
        if (rule.Language == language && scriptFits) return rule.CodePage;
    }
    return WesternEuropean;
}

std::string ToCodePage(TextView text, int codePage) {
    const auto& upperHalf = UpperHalfOf(codePage);
    std::string bytes;
    bytes.reserve(text.size());
    for (const char16_t c : text) {
        if (c < 0x80) {
            bytes += static_cast<char>(c);
            continue;
        }
        const auto found = std::find(upperHalf.begin(), upperHalf.end(), c);
        bytes += found == upperHalf.end() ? '?' : static_cast<char>(0x80 + (found - upperHalf.begin()));
    }
    return bytes;
}

Text FromCodePage(std::string_view bytes, int codePage) {
    const auto& upperHalf = UpperHalfOf(codePage);
    Text text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += byte < 0x80 ? static_cast<char16_t>(byte) : upperHalf[byte - 0x80];
    }
    return text;
}

} // namespace quarnel
