#include "base/Text.h"

#include <algorithm>

namespace quarnel {

Text ToText(long long number) {
    return FromAscii(std::to_string(number));
}

int PositionIn(TextView table, char16_t character) {
    const auto index = table.find(character);
    return index == TextView::npos ? 0 : static_cast<int>(index) + 1;
}

bool Contains(TextView text, TextView part) {
    return text.find(part) != TextView::npos;
}

Text Lower(TextView text) {
    Text result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c; });
    return result;
}

Text Upper(TextView text) {
    Text result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char16_t c) { return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c; });
    return result;
}

Text TrimBlanks(TextView text) {
    const auto first = text.find_first_not_of(u' ');
    if (first == TextView::npos) return {};
    return Text(text.substr(first, text.find_last_not_of(u' ') - first + 1));
}

Text FromAscii(std::string_view ascii) {
    return Text(ascii.begin(), ascii.end());
}

namespace {

constexpr char32_t Replacement = 0xFFFD;

void AppendUtf16(Text& text, char32_t code) {
    if (code < 0x10000) {
        text += static_cast<char16_t>(code);
        return;
    }
    code -= 0x10000;
    text += static_cast<char16_t>(0xD800 + (code >> 10));
    text += static_cast<char16_t>(0xDC00 + (code & 0x3FF));
}

void AppendUtf8(std::string& bytes, char32_t code) {
    const auto tail = [&](int shift) { bytes += static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
    if (code < 0x80) {
        bytes += static_cast<char>(code);
    } else if (code < 0x800) {
        bytes += static_cast<char>(0xC0 | (code >> 6));
        tail(0);
    } else if (code < 0x10000) {
        bytes += static_cast<char>(0xE0 | (code >> 12));
        tail(6);
        tail(0);
    } else {
        bytes += static_cast<char>(0xF0 | (code >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

// Reads one character at `i` and moves `i` behind it; a wrong byte is passed over alone.
char32_t NextFromUtf8(std::string_view bytes, std::size_t& i) {
    static constexpr char32_t Smallest[] = {0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(bytes[i++]);
    if (lead < 0x80) return lead;
    const int tails = lead >= 0xF0 && lead < 0xF8 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
    if (tails == 0 || lead >= 0xF8 || i + tails > bytes.size()) return Replacement;
    char32_t code = lead & (0x3F >> tails);
    for (int k = 0; k < tails; ++k) {
        const auto byte = static_cast<unsigned char>(bytes[i + k]);
        if ((byte & 0xC0) != 0x80) return Replacement;
        code = (code << 6) | (byte & 0x3F);
    }
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    if (code < Smallest[tails] || surrogate || code > 0x10FFFF) return Replacement;
    i += tails;
    return code;
}

} // namespace

Text FromUtf8(std::string_view utf8) {
    Text text;
    for (std::size_t i = 0; i < utf8.size();) AppendUtf16(text, NextFromUtf8(utf8, i));
    return text;
}

std::string ToUtf8(TextView text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t code = text[i];
        const bool leads = code >= 0xD800 && code < 0xDC00;
        const bool paired = leads && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
        if (paired) {
            code = 0x10000 + ((code - 0xD800) << 10) + (text[++i] - 0xDC00u);
        } else if (code >= 0xD800 && code < 0xE000) {
            code = Replacement;
        }
        AppendUtf8(bytes, code);
    }
    return bytes;
}

} // namespace quarnel
