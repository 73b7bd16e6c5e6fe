#include "base/Numbers.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace quarnel {

int RoundHalfEven(double value) {
    const double below = std::floor(value);
    const double fraction = value - below;
    const bool up = fraction > 0.5 || (fraction == 0.5 && std::fmod(below, 2.0) != 0.0);
    return static_cast<int>(below) + (up ? 1 : 0);
}

namespace {

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

// The longest beginning of `text` that is a decimal number, as plain characters; empty without digits.
std::string NumberPrefix(TextView text, bool withExponent) {
    std::string number;
    std::size_t i = 0;
    const auto at = [&](std::size_t k) { return k < text.size() ? text[k] : u'\0'; };
    const auto digits = [&] {
        std::size_t count = 0;
        for (; IsDigit(at(i)); ++i, ++count) number += static_cast<char>(text[i]);
        return count;
    };
    if (at(i) == u'+' || at(i) == u'-') number += static_cast<char>(text[i++]);
    std::size_t count = digits();
    if (at(i) == u'.') {
        number += '.';
        ++i;
        count += digits();
    }
    if (count == 0) return {};
    if (withExponent && (at(i) == u'e' || at(i) == u'E')) {
        const bool isSigned = at(i + 1) == u'+' || at(i + 1) == u'-';
        if (IsDigit(at(i + (isSigned ? 2 : 1)))) {
            number += 'e';
            ++i;
            if (isSigned) number += static_cast<char>(text[i++]);
            digits();
        }
    }
    return number;
}

// The value of what NumberPrefix() gives, whatever the desktop's locale takes for a decimal point.
double ValueOf(const std::string& number) {
    double value = 0;
    const char* first = number.data() + (number.starts_with('+') ? 1 : 0);
    const auto result = std::from_chars(first, number.data() + number.size(), value);
    return result.ec == std::errc::result_out_of_range ? std::numeric_limits<double>::infinity() : value;
}

// Whether the whole of `text` is a decimal number, and which.
std::optional<double> WholeNumberText(TextView text) {
    const std::string number = NumberPrefix(text, true);
    if (number.empty() || number.size() != text.size()) return std::nullopt;
    return ValueOf(number);
}

} // namespace

double LeadingNumber(TextView text) {
    Text packed;
    for (const char16_t c : text) {
        if (c != u' ' && c != u'\t' && c != u'\n') packed += c;
    }
    return ValueOf(NumberPrefix(packed, false));
}

std::optional<std::int16_t> ToInteger16(int number) {
    if (number < INT16_MIN || number > INT16_MAX) return std::nullopt;
    return static_cast<std::int16_t>(number);
}

std::optional<std::int16_t> ToInteger16(TextView text) {
    const auto value = WholeNumberText(TrimBlanks(text));
    if (!value || *value != std::floor(*value) || *value < INT16_MIN || *value > INT16_MAX) return std::nullopt;
    return static_cast<std::int16_t>(*value);
}

std::optional<Truth> ToTruthValue(TextView text) {
    const Text word = Lower(TrimBlanks(text));
    if (word == u"true") return True;
    if (word == u"false") return False;
    const auto value = WholeNumberText(word);
    if (!value) return std::nullopt;
    return ToTruth(*value != 0);
}

} // namespace quarnel
