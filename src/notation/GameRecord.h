// The game record as text: a header that names the user's side, then a line for each full move.
//
// Fields stand between tabs; the caller adds the line ends and turns the text into bytes.
#pragma once

#include "base/Text.h"

#include <vector>

namespace quarnel::notation {

/// "White(You)" and "Black" behind a tab each, or "White" and "Black(You)".
Text RecordHeader(bool userIsWhite);

/// "12.", the texts of White's and Black's move, with both tabs whatever the texts are.
Text RecordLine(int number, const Text& white, const Text& black);

/// The fields of a line, which lie between tabs. Blanks and tabs before the first one do not count;
/// an empty line has no field at all.
std::vector<Text> RecordFields(TextView line);

/// Whether the header's fields say that the user plays White.
bool UserIsWhite(const Text& firstField);

} // namespace quarnel::notation
