// The 8-bit code pages that a Windows desktop would use, and which one a locale calls for.
//
// Pure functions. The tables cover 1250 to 1258 and 874; the lower half is ASCII in all of them.
#pragma once

#include "base/Text.h"

namespace quarnel {

/// The code page of a locale name such as "cs_CZ.UTF-8" or "sr@latin"; 1252 where it says nothing.
int CodePageOfLocale(std::string_view locale);

/// `codePage` must be 874 or 1250..1258; any other is taken as 1252.
std::string ToCodePage(TextView text, int codePage);
Text FromCodePage(std::string_view bytes, int codePage);

} // namespace quarnel
