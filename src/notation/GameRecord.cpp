#include "notation/GameRecord.h"

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

} // namespace quarnel::notation
