#include "platform/SettingsFile.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#if defined(__unix__) || defined(__APPLE__)
#include <fcntl.h>
#include <unistd.h>
#endif

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

constexpr TextView SpecialInNames = u"\\=[]#";
constexpr TextView SpecialInValues = u"\\";

void AppendEscaped(Text& line, char16_t c) {
    constexpr TextView Digits = u"0123456789ABCDEF";
    line += u"\\u";
    for (int shift = 12; shift >= 0; shift -= 4) line += Digits[(c >> shift) & 0xF];
}

Text Escaped(TextView text, TextView special) {
    Text line;
    for (const char16_t c : text) {
        // Surrogates are escaped too, because one that stands alone has no UTF-8 form.
        const bool surrogate = c >= 0xD800 && c < 0xE000;
        if (c < 0x20 || surrogate || special.find(c) != TextView::npos) {
            AppendEscaped(line, c);
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
        int code = 0;
        for (std::size_t k = i + 2; k < i + 6; ++k) {
            const int digit = PositionIn(u"0123456789ABCDEF", line[k]) - 1;
            if (digit < 0) return std::nullopt;
            code = code * 16 + digit;
        }
        text += static_cast<char16_t>(code);
        i += 5;
    }
    return text;
}

bool SameKey(const Entry& entry, const Text& section, const Text& key) {
    return entry.Section == section && Lower(entry.Key) == Lower(key);
}

// Reads lines into entries; a damaged line is passed over, and so is all of a section whose name is damaged.
std::vector<Entry> Parse(const std::string& bytes) {
    std::vector<Entry> entries;
    std::optional<Text> section;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t end = std::min(bytes.find('\n', at), bytes.size());
        std::string raw = bytes.substr(at, end - at);
        at = end + 1;
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

// The content of the file, empty where there is none; nothing when there is one that cannot be read.
std::optional<std::string> ReadWhole(const fs::path& path) {
    std::error_code error;
    if (!fs::exists(path, error)) return error ? std::nullopt : std::optional(std::string());
    std::ifstream file(path, std::ios::binary);
    std::string bytes;
    char chunk[4096];
    while (file.read(chunk, sizeof chunk) || file.gcount() > 0) bytes.append(chunk, file.gcount());
    if (!file.is_open() || file.bad()) return std::nullopt;
    return bytes;
}

#if defined(__unix__) || defined(__APPLE__)

// Whether what was written to the file or folder has reached the disk.
bool SyncToDisk(const fs::path& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return false;
    const bool synced = fsync(file) == 0;
    close(file);
    return synced;
}

std::string ProcessMark() {
    return std::to_string(getpid());
}

#else

bool SyncToDisk(const fs::path&) {
    return true;
}

std::string ProcessMark() {
    return "new";
}

#endif

bool WriteWhole(const fs::path& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    return !file.fail() && SyncToDisk(path);
}

} // namespace

std::optional<Text> SettingsFile::Read(const Text& section, const Text& key) const {
    const auto bytes = ReadWhole(path_);
    if (!bytes) return std::nullopt;
    std::optional<Text> value;
    for (const Entry& entry : Parse(*bytes)) {
        if (SameKey(entry, section, key)) value = entry.Value;
    }
    return value;
}

bool SettingsFile::Write(const Text& section, const Text& key, const Text& value) {
    std::error_code error;
    fs::create_directories(path_.parent_path(), error);

    // A link to the file is followed, so that it stays a link.
    fs::path target = path_;
    if (fs::is_symlink(path_, error)) {
        target = fs::weakly_canonical(path_, error);
        if (error) return false;
    }

    const auto bytes = ReadWhole(target);
    if (!bytes) return false;
    std::vector<Entry> entries = Parse(*bytes);
    std::erase_if(entries, [&](const Entry& entry) { return SameKey(entry, section, key); });
    // Behind the last entry of its section, so that each section is written once.
    auto place = entries.end();
    while (place != entries.begin() && std::prev(place)->Section != section) --place;
    entries.insert(place == entries.begin() ? entries.end() : place, {section, key, value});

    fs::path fresh = target;
    fresh += "." + ProcessMark();
    if (WriteWhole(fresh, Serialise(entries))) {
        fs::rename(fresh, target, error);
        if (!error) {
            SyncToDisk(target.parent_path());
            return true;
        }
    }
    fs::remove(fresh, error);
    return false;
}

} // namespace quarnel
