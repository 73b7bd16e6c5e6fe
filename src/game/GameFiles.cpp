#include "game/GameFiles.h"

#include "base/Numbers.h"
#include "notation/GameRecord.h"

#include <utility>

namespace quarnel {

using namespace notation;

namespace {

constexpr TextView SaveTitle = u"Enter a file name of your game to save.";
constexpr TextView LoadTitle = u"Enter a file name of your game to load.";
constexpr std::size_t MostBytes = std::size_t{64} << 20; // memory must not run out on a strange file

std::filesystem::path WithoutBlanksAround(const std::filesystem::path& path) {
    auto name = path.native(); // in the file system's own characters, whatever they are
    const auto last = name.find_last_not_of(' ');
    name.erase(last == name.npos ? 0 : last + 1);
    name.erase(0, name.find_first_not_of(' '));
    return name;
}

} // namespace

std::filesystem::path GameFiles::ShowFileDialog(bool save, const Text& title) {
    const auto answer = save ? desktop_.SaveFileDialog(frmBoard_, title) : desktop_.OpenFileDialog(frmBoard_, title);
    if (!answer) throw Failure();
    std::filesystem::path path = WithoutBlanksAround(*answer);
    if (path.empty()) throw Failure();
    return path;
}

void GameFiles::SaveGame() {
    try {
        const int plies = state_.PlyNow;
        const int lines = (plies + plies % 2) / 2;
        if (lines < 1) {
            messages_.MsgBoxXP(u"There are no moves. Nothing to save.");
            return;
        }
        const auto path = ShowFileDialog(true, Text(SaveTitle));
        record_.reset();
        if (!desktop_.StoreFile(path, RecordBytes(plies, lines))) throw Failure();
    } catch (const Failure&) {
        Fail();
    } catch (const std::exception&) {
        Fail();
    }
}

std::string GameFiles::RecordBytes(int plies, int lines) {
    std::string bytes;
    const auto write = [&](const Text& line) { bytes += desktop_.ToBytes(line) + "\r\n"; };
    write(RecordHeader(state_.ComputerColor == Black));
    for (int i = 1; i <= lines; ++i) {
        const HistoryRow& row = state_.MoveText.at(static_cast<std::size_t>(i));
        const bool onlyWhite = i == lines && plies % 2 == 1;
        write(RecordLine(i, row[1], onlyWhite ? Text() : row[2]));
    }
    return bytes;
}

void GameFiles::LoadGame() {
    bool inSequence = true;
    try {
        const auto path = ShowFileDialog(false, Text(LoadTitle));
        record_.reset();
        auto bytes = desktop_.ReadFile(path, MostBytes);
        if (!bytes) throw Failure();
        record_ = OpenRecord{std::move(*bytes)};
        inSequence = ReadRecord();
        record_.reset();
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
    if (!record_) throw Failure();
    const auto line = NextRecordLine(record_->Bytes, record_->Next);
    if (!line) return std::nullopt;
    if (record_->Next == MostBytes) throw Failure(); // where the rest was not read
    return RecordFields(desktop_.FromBytes(*line));
}

bool GameFiles::ReadRecord() {
    const auto header = ReadFields();
    if (!header || header->empty()) throw Failure();
    TakeSides(UserIsWhite(header->front()));

    state_.MoveText.assign(1, {});
    panel_.NewGame();

    int rows = 0;
    HistoryRow row;
    while (const auto fields = ReadFields()) {
        ++rows;
        if (!ToInteger16(rows)) throw Failure();
        const RowReading reading = ReadRecordRow(*fields, rows, row);
        if (reading == RowReading::OutOfSequence) return false;
        if (reading == RowReading::Incomplete) throw Failure();
        state_.MoveText.resize(static_cast<std::size_t>(rows) + 1);
        state_.MoveText.back() = row;
    }
    const auto plies = ToInteger16(2 * rows);
    if (!plies || rows == 0) throw Failure(); // a header alone is no game, whatever its fields are
    state_.PlyCount = *plies;
    if (row[2].empty()) --state_.PlyCount;
    return true;
}

void GameFiles::Fail() {
    record_.reset();
    messages_.MsgBoxXP(u"Error!");
}

void GameFiles::TakeSides(bool userIsWhite) {
    const Truth computer = userIsWhite ? Black : White;
    if (state_.ComputerColor == computer) return;
    state_.ComputerColor = computer;
    renderer_.FlipBoard();
}

} // namespace quarnel
