#include "game/GameFiles.h"

#include "base/Numbers.h"
#include "notation/GameRecord.h"

#include <optional>

namespace quarnel {

using namespace notation;

namespace {

constexpr TextView SaveTitle = u"Enter a file name of your game to save.";
constexpr TextView LoadTitle = u"Enter a file name of your game to load.";
constexpr std::size_t LongestLine = std::size_t{64} << 20; // bytes; memory must not run out on a strange file

// The next line without its end, which is CR LF, LF or CR; nothing at the end of the file.
template <class Failure>
std::optional<std::string> ReadLine(std::ifstream& file) {
    using Traits = std::ifstream::traits_type;
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
    const auto path = save ? desktop_.SaveFileDialog(frmBoard_, title) : desktop_.OpenFileDialog(frmBoard_, title);
    if (!path || path->empty() || std::filesystem::is_directory(*path)) throw Failure();
    return *path;
}

void GameFiles::SaveGame() {
    try {
        const int plies = state_.PlyNow;
        const int lines = (plies + plies % 2) / 2;
        if (lines < 1) {
            EndWith(u"There are no moves. Nothing to save.");
            return;
        }
        WriteRecord(ShowFileDialog(true, Text(SaveTitle)), plies, lines);
    } catch (const Failure&) {
        EndWith(u"Error!");
    } catch (const std::exception&) {
        EndWith(u"Error!");
    }
}

void GameFiles::WriteRecord(const std::filesystem::path& path, int plies, int lines) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    const auto write = [&](const Text& line) { file << desktop_.ToBytes(line) << "\r\n"; };
    write(RecordHeader(state_.ComputerColor == Black));
    for (int i = 1; i <= lines; ++i) {
        const HistoryRow& row = state_.MoveText.at(static_cast<std::size_t>(i));
        const bool onlyWhite = i == lines && plies % 2 == 1;
        write(RecordLine(i, row[1], onlyWhite ? Text() : row[2]));
    }
    file.close();
    if (!file) throw Failure();
}

void GameFiles::LoadGame() {
    bool inSequence = true;
    try {
        std::ifstream file(ShowFileDialog(false, Text(LoadTitle)), std::ios::binary);
        if (!file) throw Failure();
        inSequence = ReadRecord(file);
    } catch (const Failure&) {
        EndWith(u"Error!");
        return;
    } catch (const std::exception&) {
        EndWith(u"Error!");
        return;
    }
    if (inSequence) {
        panel_.MoveTAB(ToEnd, False);
    } else {
        EndWith(u"File corrupted. Illegal move");
    }
}

bool GameFiles::ReadRecord(std::ifstream& file) {
    const auto readFields = [&](const std::string& line) { return RecordFields(desktop_.FromBytes(line)); };
    const auto header = ReadLine<Failure>(file);
    if (!header) throw Failure();
    std::vector<Text> fields = readFields(*header);
    TakeSides(UserIsWhite(Field<Failure>(fields, 0)));

    state_.MoveText.assign(1, {});
    panel_.NewGame();

    int rows = 0;
    while (const auto line = ReadLine<Failure>(file)) {
        fields = readFields(*line);
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
    if (!plies) throw Failure();
    state_.PlyCount = *plies;
    if (Field<Failure>(fields, 2).empty()) --state_.PlyCount;
    return true;
}

void GameFiles::TakeSides(bool userIsWhite) {
    const Truth computer = userIsWhite ? Black : White;
    if (state_.ComputerColor == computer) return;
    state_.ComputerColor = computer;
    renderer_.FlipBoard();
}

} // namespace quarnel
