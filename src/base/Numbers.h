// Numbers out of texts, and the one way of rounding.
//
// A conversion that fails gives nothing; the caller then leaves its step out (base/Step.h).
#pragma once

#include "base/Text.h"
#include "base/Truth.h"

#include <optional>

namespace quarnel {

/// The whole number nearest to `value`, a half going to the even neighbour (2.5 to 2, 273.5 to 274).
/// `value` must lie within the range of an int.
int RoundHalfEven(double value);

/// The number a text begins with: blanks, tabs and line feeds anywhere are passed over, then a sign,
/// digits and a decimal point are read as far as they go. 0 when there are no digits.
double LeadingNumber(TextView text);

/// `number` as 16 bits; nothing when it does not fit.
std::optional<std::int16_t> ToInteger16(int number);

/// A whole number from -32768 to 32767, blanks around it allowed; nothing for any other text.
std::optional<std::int16_t> ToInteger16(TextView text);

/// False for 0 and "false", true for any other number and "true" (in any letter case); nothing for
/// any other text.
std::optional<Truth> ToTruthValue(TextView text);

} // namespace quarnel
