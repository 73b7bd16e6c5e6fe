// Text: UTF-16, so that positions inside a text count characters, and the few operations on it that
// the program needs.
//
// Pure functions over values; nothing here fails. Positions are 1-based and 0 means "not there",
// because tables of letters ("PNBRQK") double as code tables throughout the program.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quarnel {

using Text = std::u16string;
using TextView = std::u16string_view;

/// The number in decimal, with a leading "-" when negative.
Text ToText(long long number);

/// 1-based position of `character` in `table`, 0 when it is absent.
int PositionIn(TextView table, char16_t character);

/// Whether `part` occurs in `text`, letter case included.
bool Contains(TextView text, TextView part);

/// `text` with the letters A to Z turned into small ones (or back); all else unchanged.
Text Lower(TextView text);
Text Upper(TextView text);

/// `text` without the blanks (code 32) at both its ends.
Text TrimBlanks(TextView text);

/// Plain ASCII in, the same characters out.
Text FromAscii(std::string_view ascii);

/// UTF-8 in both directions, for messages of our own tools and for file contents of the desktop.
/// What is not valid becomes U+FFFD.
Text FromUtf8(std::string_view utf8);
std::string ToUtf8(TextView text);

} // namespace quarnel
