#include "game/GameFiles.h"

#include "base/Numbers.h"
#include "notation/GameRecord.h"

#include <utility>

namespace quarnel {

using namespace notation;

namespace {

constexpr TextView SaveTitle = u"Enter a file name of your game to save.";
constexpr TextView LoadTitle = u"Enter a file name of your game to load.";
constexpr std::size_t LongestLine = std::size_t{64} << 20; // bytes; memory must not run out on a strange file

std::filesystem::path WithoutBlanksAround(const std::filesystem::path& path) {
    auto name = path.native(); // in the file system's own characters, whatever they are
    const auto last = name.find_last_not_of(' ');
    name.erase(last == name.npos ? 0 : last + 1);
    name.erase(0, name.find_first_not_of(' '));
    return name;
}

// The next line without its end, which is CR LF, LF or CR; nothing at the end of the file.
template <class Failure>
std::optional<std::string> ReadLine(std::fstream& file) {
    using Traits = std::fstream::traits_type;
    if (!file.is_open()) throw Failure();
    std::streambuf& bytes = *file.rdbuf();
    std::string line;
    bool any = false;
    for (auto c = bytes.sbumpc(); c != Traits::eof(); c = bytes.sbumpc()) {
        any = true;
        if (c == '\n') return line;
        if (c == '\r') {
            if (bytes.sgetc() == '\n') bytes.sbumpc();
            return line;
        }
        if (line.size() == LongestLine) throw Failure();
        line += Traits::to_char_type(c);
    }
    return any ? std::optional(line) : std::nullopt;
}

template <class Failure>
const Text& Field(const std::vector<Text>& fields, std::size_t index) {
    if (index >= fields.size()) throw Failure();
    return fields[index];
}

} // namespace

std::filesystem::path GameFiles::ShowFileDialog(bool save, const Text& title) {
    const auto answer = save ? desktop_.SaveFileDialog(frmBoard_, title) : desktop_.OpenFileDialog(frmBoard_, title);
    if (!answer) throw Failure();
    std::filesystem::path path = WithoutBlanksAround(*answer);
    if (path.empty() || std::filesystem::is_directory(path)) throw Failure();
    return path;
}

void GameFiles::Open(const std::filesystem::path& path, std::ios::openmode mode) {
    file_ = std::fstream();
    file_.open(path, mode | std::ios::binary);
    if (!file_) throw Failure();
}

void GameFiles::SaveGame() {
    try {
        const int plies = state_.PlyNow;
        const int lines = (plies + plies % 2) / 2;
        if (lines < 1) {
            messages_.MsgBoxXP(u"There are no moves. Nothing to save.");
            return;
        }
        Open(ShowFileDialog(true, Text(SaveTitle)), std::ios::out | std::ios::trunc);
        WriteRecord(plies, lines);
    } catch (const Failure&) {
        Fail();
    } catch (const std::exception&) {
        Fail();
    }
}

void GameFiles::WriteRecord(int plies, int lines) {
    const auto write = [&](const Text& line) { file_ << desktop_.ToBytes(line) << "\r\n"; };
    write(RecordHeader(state_.ComputerColor == Black));
    for (int i = 1; i <= lines; ++i) {
        const HistoryRow& row = state_.MoveText.at(static_cast<std::size_t>(i));
        const bool onlyWhite = i == lines && plies % 2 == 1;
        write(RecordLine(i, row[1], onlyWhite ? Text() : row[2]));
    }
    file_.close();
    if (!file_) throw Failure();
}

void GameFiles::LoadGame() {
    bool inSequence = true;
    try {
        Open(ShowFileDialog(false, Text(LoadTitle)), std::ios::in);
        inSequence = ReadRecord();
        file_.close();
    } catch (const Failure&) {
        Fail();
        return;
    } catch (const std::exception&) {
        Fail();
        return;
    }
    if (inSequence) {
        steps_.MoveTAB(ToEnd, False);
    } else {
        messages_.MsgBoxXP(u"File corrupted. Illegal move");
    }
}

std::optional<std::vector<Text>> GameFiles::ReadFields() {
    const auto line = ReadLine<Failure>(file_);
    if (!line) return std::nullopt;
    return RecordFields(desktop_.FromBytes(*line));
}

bool GameFiles::ReadRecord() {
    const auto header = ReadFields();
    if (!header) throw Failure();
    TakeSides(UserIsWhite(Field<Failure>(*header, 0)));

    state_.MoveText.assign(1, {});
    panel_.NewGame();

    int rows = 0;
    std::vector<Text> fields = *header;
    while (auto next = ReadFields()) {
        fields = std::move(*next);
        ++rows;
        if (!ToInteger16(rows)) throw Failure();
        if (LeadingNumber(Field<Failure>(fields, 0)) != rows) return false;
        state_.MoveText.resize(static_cast<std::size_t>(rows) + 1);
        HistoryRow& row = state_.MoveText.back();
        row[0] = ToText(rows) + u".";
        row[1] = Field<Failure>(fields, 1);
        if (!Field<Failure>(fields, 2).empty()) row[2] = fields[2];
    }
    const auto plies = ToInteger16(2 * rows);
    if (!plies || rows == 0) throw Failure(); // a header alone is no game, whatever its fields are
    state_.PlyCount = *plies;
    if (Field<Failure>(fields, 2).empty()) --state_.PlyCount;
    return true;
}

void GameFiles::Fail() {
    file_ = std::fstream();
    messages_.MsgBoxXP(u"Error!");
}

void GameFiles::TakeSides(bool userIsWhite) {
    const Truth computer = userIsWhite ? Black : White;
    if (state_.ComputerColor == computer) return;
    state_.ComputerColor = computer;
    renderer_.FlipBoard();
}

} // namespace quarnel
