#include "platform/qt/SettingsFile.h"

#include "platform/posix/PlainFiles.h"

#include <QString>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <sstream>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

// The file is UTF-8 text: "[section]" lines, under each its "key=value" lines, "#" lines for people.
// A character that would break a line, or that a name must not hold, is written as \u and four hexadecimal digits.

namespace quarnel {

namespace {

namespace fs = std::filesystem;

struct Entry {
    Text Section;
    Text Key;
    Text Value;
};

constexpr std::size_t MostBytes = 1 << 20; ///< a file as long as this was not written by us
constexpr std::chrono::milliseconds Patience{2000};
constexpr TextView SpecialInNames = u"\\=[]#";
constexpr TextView SpecialInValues = u"\\";

Text Escaped(TextView text, TextView special) {
    Text line;
    for (const char16_t c : text) {
        // Surrogates are escaped too, because one that stands alone has no UTF-8 form.
        const bool surrogate = c >= 0xD800 && c < 0xE000;
        if (c < 0x20 || surrogate || special.find(c) != TextView::npos) {
            line += u"\\u" + QString::number(c, 16).toUpper().rightJustified(4, u'0').toStdU16String();
        } else {
            line += c;
        }
    }
    return line;
}

// Nothing when an escape is damaged.
std::optional<Text> Unescaped(TextView line) {
    Text text;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] != u'\\') {
            text += line[i];
            continue;
        }
        if (i + 5 >= line.size() || line[i + 1] != u'u') return std::nullopt;
        bool good = false;
        const auto digits = QStringView(line).sliced(static_cast<qsizetype>(i) + 2, 4);
        text += static_cast<char16_t>(digits.toUShort(&good, 16));
        if (!good) return std::nullopt;
        i += 5;
    }
    return text;
}

bool SameName(const Text& one, const Text& other) {
    return Lower(one) == Lower(other);
}

// Reads lines into entries; a damaged line is passed over, and so is all of a section whose name is damaged.
std::vector<Entry> Parse(const std::string& bytes) {
    std::vector<Entry> entries;
    std::optional<Text> section;
    std::istringstream lines(bytes);
    for (std::string raw; std::getline(lines, raw);) {
        if (raw.ends_with('\r')) raw.pop_back();
        const Text line = FromUtf8(raw);
        if (ToUtf8(line) != raw || line.empty() || line[0] == u'#') continue;
        if (line[0] == u'[') {
            section = line.back() == u']' ? Unescaped(TextView(line).substr(1, line.size() - 2)) : std::nullopt;
            continue;
        }
        const auto equals = line.find(u'=');
        if (!section || equals == Text::npos) continue;
        const auto key = Unescaped(TextView(line).substr(0, equals));
        const auto value = Unescaped(TextView(line).substr(equals + 1));
        if (key && value) entries.push_back({*section, *key, *value});
    }
    return entries;
}

std::string Serialise(const std::vector<Entry>& entries) {
    Text text = u"# Settings, written by the program whenever one changes.\n";
    std::optional<Text> section;
    for (const Entry& entry : entries) {
        if (section != entry.Section) text += u"\n[" + Escaped(entry.Section, SpecialInNames) + u"]\n";
        section = entry.Section;
        text += Escaped(entry.Key, SpecialInNames) + u"=" + Escaped(entry.Value, SpecialInValues) + u"\n";
    }
    return ToUtf8(text);
}

// The content of the file, empty where there is none; nothing when there is one that cannot be ours.
std::optional<std::string> ReadWhole(const fs::path& path) {
    std::error_code error;
    const auto size = fs::file_size(path, error); // which pipes and folders have not
    if (error == std::errc::no_such_file_or_directory) return std::string();
    return error || size >= MostBytes ? std::nullopt : ReadPlainFile(path, MostBytes);
}

// The right to write in a folder, held by one program at a time. A folder without locks is everybody's.
class FolderLock {
  public:
    explicit FolderLock(const fs::path& folder) : folder_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        const auto deadline = std::chrono::steady_clock::now() + Patience;
        while (flock(folder_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
            // A holder that was stopped would keep the window waiting for ever.
            if (std::chrono::steady_clock::now() > deadline) return;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        mayWrite_ = folder_ >= 0;
    }
    ~FolderLock() {
        if (folder_ >= 0) close(folder_);
    }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    bool MayWrite() const { return mayWrite_; }

  private:
    int folder_;
    bool mayWrite_ = false;
};

} // namespace

std::optional<Text> SettingsFile::Read(const Text& section, const Text& key) const {
    const auto bytes = ReadWhole(path_);
    if (!bytes) return std::nullopt;
    std::optional<Text> value;
    for (const Entry& entry : Parse(*bytes)) {
        if (SameName(entry.Section, section) && SameName(entry.Key, key)) value = entry.Value;
    }
    return value;
}

bool SettingsFile::Write(const Text& section, const Text& key, const Text& value) {
    std::error_code error;
    fs::create_directories(path_.parent_path(), error);
    const fs::path behindLinks = fs::weakly_canonical(path_, error);
    if (error) return false;
    const FolderLock lock(behindLinks.parent_path());
    const auto bytes = lock.MayWrite() ? ReadWhole(path_) : std::nullopt;
    if (!bytes) return false;

    std::vector<Entry> entries = Parse(*bytes);
    std::erase_if(entries, [&](const Entry& e) { return SameName(e.Section, section) && SameName(e.Key, key); });
    // Behind the last entry of its section, so that each section is written once.
    const auto last = std::find_if(entries.rbegin(), entries.rend(),
                                   [&](const Entry& entry) { return SameName(entry.Section, section); });
    const bool isNew = last == entries.rend();
    entries.insert(isNew ? entries.end() : last.base(), {isNew ? section : last->Section, key, value});

    const std::string fresh = Serialise(entries);
    return fresh.size() < MostBytes && StorePlainFile(path_, fresh);
}

} // namespace quarnel
