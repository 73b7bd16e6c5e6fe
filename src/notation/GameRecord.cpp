#include "notation/GameRecord.h"

#include "base/Numbers.h"

#include <algorithm>

namespace quarnel::notation {

namespace {

constexpr TextView WhiteIsUser = u"White(You)";

} // namespace

Text RecordHeader(bool userIsWhite) {
    return userIsWhite ? u"\tWhite(You)\tBlack" : u"\tWhite\tBlack(You)";
}

Text RecordLine(int number, const Text& white, const Text& black) {
    return ToText(number) + u".\t" + white + u"\t" + black;
}

std::optional<std::string_view> NextRecordLine(std::string_view bytes, std::size_t& next) {
    if (next == bytes.size()) return std::nullopt;
    bytes.remove_prefix(next);
    const std::string_view line = bytes.substr(0, bytes.find_first_of("\r\n"));
    bytes.remove_prefix(line.size());
    next += line.size() + std::min<std::size_t>(bytes.size(), bytes.starts_with("\r\n") ? 2 : 1);
    return line;
}

std::vector<Text> RecordFields(TextView line) {
    const auto start = line.find_first_not_of(u" \t");
    if (start == TextView::npos) return {};
    line.remove_prefix(start);
    std::vector<Text> fields;
    for (auto tab = line.find(u'\t'); tab != TextView::npos; tab = line.find(u'\t')) {
        fields.emplace_back(line.substr(0, tab));
        line.remove_prefix(tab + 1);
    }
    fields.emplace_back(line);
    return fields;
}

bool UserIsWhite(const Text& firstField) {
    return firstField == WhiteIsUser;
}

RowReading ReadRecordRow(const std::vector<Text>& fields, int number, HistoryRow& row) {
    if (fields.empty()) return RowReading::Incomplete;
    if (LeadingNumber(fields[0]) != number) return RowReading::OutOfSequence;
    if (fields.size() < 3) return RowReading::Incomplete;
    row = {ToText(number) + u".", fields[1], fields[2]};
    return RowReading::Read;
}

} // namespace quarnel::notation
