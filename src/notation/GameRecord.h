// The game record as text: a header that names the user's side, then a line for each full move.
//
// Fields stand between tabs; the caller adds the line ends and turns the text into bytes.
#pragma once

#include "base/Text.h"
#include "model/GameState.h"

#include <optional>
#include <vector>

namespace quarnel::notation {

/// "White(You)" and "Black" behind a tab each, or "White" and "Black(You)".
Text RecordHeader(bool userIsWhite);

/// "12.", the texts of White's and Black's move, with both tabs whatever the texts are.
Text RecordLine(int number, const Text& white, const Text& black);

/// The line that begins at `next`, without its end, which is CR LF, LF or CR; `next` then stands behind that. Nothing
/// at the end of the bytes.
std::optional<std::string_view> NextRecordLine(std::string_view bytes, std::size_t& next);

/// The fields of a line, which lie between tabs. Blanks and tabs before the first one do not count;
/// an empty line has no field at all.
std::vector<Text> RecordFields(TextView line);

/// Whether the header's fields say that the user plays White.
bool UserIsWhite(const Text& firstField);

enum class RowReading { Read, OutOfSequence, Incomplete };

/// Reads the fields of a move line into a row of the history. `row` is left alone where the line's number is not
/// `number`, and where a number and two move texts, of which one may be empty, are not all there.
RowReading ReadRecordRow(const std::vector<Text>& fields, int number, HistoryRow& row);

} // namespace quarnel::notation
