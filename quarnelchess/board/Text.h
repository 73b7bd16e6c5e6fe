// Small helpers for reading command lines and position text.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>

namespace quarnel::engine {

/// Takes the first word (run of non-blanks) off the front of `text`; empty when none is left.
inline std::string_view NextWord(std::string_view& text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) {
        text = {};
        return {};
    }
    text.remove_prefix(begin);
    const std::string_view word = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(word.size());
    return word;
}

/// The whole word as a decimal number within [lowest, highest], or nothing.
inline std::optional<int> ReadNumber(std::string_view word, int lowest, int highest) {
    int value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc{} || end != word.data() + word.size() || value < lowest || value > highest)
        return std::nullopt;
    return value;
}

} // namespace quarnel::engine
