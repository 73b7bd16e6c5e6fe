#include "engine/OutputLine.h"

namespace quarnel {

namespace {

// The word that ends at the last blank of the line; a line that does not end in a blank has none.
Text LastWord(TextView line) {
    const auto end = line.rfind(u' ');
    if (end == TextView::npos) return {};
    std::size_t start = 0;
    if (line.size() > 2) {
        const auto blank = line.rfind(u' ', line.size() - 3);
        if (blank != TextView::npos) start = blank + 1;
    }
    return end > start ? Text(line.substr(start, end - start)) : Text();
}

} // namespace

bool IsMoveLine(TextView line) {
    return Contains(line, u"White(") || Contains(line, u"Black(");
}

std::optional<MoveLine> ReadMoveLine(TextView line) {
    const auto closing = line.find(u"): ");
    if (closing == TextView::npos) return std::nullopt;
    const auto opening = line.rfind(u'(', closing);
    const auto number = opening == TextView::npos ? 0 : opening + 1;
    return MoveLine{Text(line.substr(number, closing - number)), LastWord(line)};
}

} // namespace quarnel
