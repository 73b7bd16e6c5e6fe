#include "Journal.h"

#include "quarnelchess/board/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <numeric>
#include <stdexcept>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace quarnel::match {
namespace {

using engine::NextWord;
using engine::ReadNumber;

constexpr const char* Results[] = {"0-1", "1/2-1/2", "1-0"};
constexpr int Many = 100000000;

/// Takes a line, without its end, off the front of `text`.
std::string_view NextLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    return line;
}

std::string AsComment(std::string_view settings) {
    std::string header = "# pair.leg White Black result ending plies opening\n";
    while (!settings.empty()) header += "# " + std::string(NextLine(settings)) + "\n";
    return header;
}

std::string Replaced(std::string text, char from, char to) {
    std::replace(text.begin(), text.end(), from, to);
    return text;
}

} // namespace

const char* ResultText(int whiteHalfPoints) {
    return Results[whiteHalfPoints];
}

std::string WriteResult(const GameResult& result, const std::string (&names)[2]) {
    const std::string opening = result.Opening.empty() ? "-" : Replaced(result.Opening.substr(1), ' ', ',');
    return std::to_string(result.Pair + 1) + "." + std::to_string(result.Leg + 1) + " " + names[result.Leg] + " " +
           names[1 - result.Leg] + " " + ResultText(result.WhiteHalfPoints()) + " " + NameOf(result.How) + " " +
           std::to_string(result.Plies) + " " + opening;
}

std::optional<GameResult> ReadResult(std::string_view line) {
    const std::string_view number = NextWord(line);
    const std::size_t point = number.find('.');
    if (point == std::string_view::npos) return std::nullopt;
    const auto pair = ReadNumber(number.substr(0, point), 1, Many);
    const auto leg = ReadNumber(number.substr(point + 1), 1, 2);
    NextWord(line); // the names are for human readers
    NextWord(line);
    const auto* const score = std::find(std::begin(Results), std::end(Results), NextWord(line));
    const Ending how = EndingOf(NextWord(line));
    const auto plies = ReadNumber(NextWord(line), 0, Many);
    const std::string_view opening = NextWord(line);
    if (!pair || !leg || score == std::end(Results) || how == Ending::Count || !plies || opening.empty())
        return std::nullopt;

    GameResult result{*pair - 1, *leg - 1, static_cast<int>(score - std::begin(Results)), how, *plies, {}};
    if (result.Leg == 1) result.FirstHalfPoints = 2 - result.FirstHalfPoints;
    if (opening != "-") result.Opening = " " + Replaced(std::string(opening), ',', ' ');
    return result;
}

bool Tally::Add(const GameResult& result) {
    ++(result.FirstHalfPoints == 2 ? Wins : result.FirstHalfPoints == 1 ? Draws : Losses);
    ++Endings[static_cast<std::size_t>(result.How)];
    if (IsFault(result.How)) ++Faults[result.FirstHalfPoints == 0 ? 0 : 1][static_cast<std::size_t>(result.How)];
    const auto [partner, isFirst] = halfPairs_.try_emplace(result.Pair, result.FirstHalfPoints);
    if (isFirst) return false;
    const int halfPoints = partner->second + result.FirstHalfPoints;
    ++Pairs[static_cast<std::size_t>(halfPoints)];
    return true;
}

int Tally::FaultsOf(std::size_t player) const {
    return std::accumulate(std::begin(Faults[player]), std::end(Faults[player]), 0);
}

Journal::Journal(const std::string& path, const std::string& settings, const std::string (&names)[2])
    : path_(path), names_{names[0], names[1]} {
    if (path.empty()) return;
    file_ = open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (file_ < 0) throw std::runtime_error("The journal " + path + " cannot be opened: " + std::strerror(errno) + ".");
    try {
        if (flock(file_, LOCK_EX | LOCK_NB) != 0)
            throw std::runtime_error("The journal " + path + " is in use by another match.");
        Load(ReadAll(), AsComment(settings));
    } catch (...) {
        close(file_);
        throw;
    }
}

Journal::~Journal() {
    if (file_ >= 0) close(file_);
}

std::string Journal::ReadAll() const {
    std::string text;
    char chunk[65536];
    for (;;) {
        const ssize_t count = read(file_, chunk, sizeof chunk);
        if (count < 0) throw std::runtime_error("The journal " + path_ + " cannot be read.");
        if (count == 0) return text;
        text.append(chunk, static_cast<std::size_t>(count));
    }
}

void Journal::Load(std::string_view text, const std::string& header) {
    std::string_view rest = header;
    const std::size_t whole = text.rfind('\n') + 1; // npos + 1 is 0
    if (whole < text.size() && ftruncate(file_, static_cast<off_t>(whole)) != 0)
        throw std::runtime_error("The journal " + path_ + " cannot be shortened.");
    text = text.substr(0, whole);
    if (header.starts_with(text)) { // nothing but a header that may be cut off
        Write(header.substr(text.size()));
        return;
    }
    while (!rest.empty()) {
        const std::string_view now = NextLine(rest);
        const std::string_view then = NextLine(text);
        if (now != then)
            throw std::runtime_error("The journal " + path_ + " belongs to another match.\n  there: " +
                                     std::string(then) + "\n  now:   " + std::string(now));
    }
    while (!text.empty()) {
        const std::string_view line = NextLine(text);
        const std::optional<GameResult> result = ReadResult(line);
        if (!result) throw std::runtime_error("The journal " + path_ + " holds a strange line: " + std::string(line));
        earlier_.push_back(*result);
    }
}

void Journal::Append(const GameResult& result) {
    if (file_ >= 0) Write(WriteResult(result, names_) + "\n");
}

void Journal::Write(std::string_view text) const {
    while (!text.empty()) {
        const ssize_t written = write(file_, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0)
            throw std::runtime_error("The journal " + path_ + " cannot be written: " + std::strerror(errno) + ".");
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

} // namespace quarnel::match
