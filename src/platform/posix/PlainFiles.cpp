#include "platform/posix/PlainFiles.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quarnel {

namespace {

namespace fs = std::filesystem;

using Status = struct stat;

class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    explicit operator bool() const { return number_ >= 0; }
    int Number() const { return number_; }

  private:
    int number_;
};

// -1 for anything but a plain file. It is looked at before it is opened, because opening a pipe may wait and opening a
// device may do something, and again afterwards, because it may have been replaced in between.
int OpenPlain(const fs::path& path, int access, Status& status) {
    const auto isPlain = [&](int result) { return result == 0 && S_ISREG(status.st_mode); };
    if (!isPlain(stat(path.c_str(), &status))) return -1;
    const int file = open(path.c_str(), access | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0 || isPlain(fstat(file, &status))) return file;
    close(file);
    return -1;
}

bool WriteAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(file, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

// What `path` leads to, which need not be there; nothing when it leads in a circle.
std::optional<fs::path> BehindLinks(fs::path path) {
    constexpr int MostLinks = 40;
    for (int link = 0; link < MostLinks; ++link) {
        std::error_code none;
        const fs::path next = fs::read_symlink(path, none);
        if (none) return path;
        path = path.parent_path() / next;
    }
    return std::nullopt;
}

// A file in the making, in the folder of the one whose place it will take. Until then it has no name where the system
// can do that, so that nothing is left of a program that is killed; else one that nobody can foresee.
class FreshFile {
  public:
    FreshFile(const Descriptor& folder, mode_t mode) : folder_(folder.Number()), file_(Make(mode)) {}
    ~FreshFile() {
        if (hasName_) unlinkat(folder_, name_.c_str(), 0);
    }
    FreshFile(const FreshFile&) = delete;
    FreshFile& operator=(const FreshFile&) = delete;

    /// -1, with errno set, when it could not be made.
    int Number() const { return file_.Number(); }
    /// False, with errno set, when the system refuses.
    bool TakePlaceOf(const fs::path& name) {
        const std::string self = PathOf(Number());
        if (!hasName_) hasName_ = linkat(AT_FDCWD, self.c_str(), folder_, name_.c_str(), AT_SYMLINK_FOLLOW) == 0;
        if (!hasName_ || renameat(folder_, name_.c_str(), folder_, name.c_str()) != 0) return false;
        hasName_ = false;
        return true;
    }
    /// The same, but not of a file that is there.
    bool TakeFreeName(const fs::path& name) {
        const std::string self = hasName_ ? name_ : PathOf(Number());
        const int folder = hasName_ ? folder_ : AT_FDCWD;
        if (linkat(folder, self.c_str(), folder_, name.c_str(), AT_SYMLINK_FOLLOW) == 0) return true;
        if (!hasName_ || errno == EEXIST) return false;
        // A file system on which a file has one name only.
        hasName_ = renameat2(folder_, name_.c_str(), folder_, name.c_str(), RENAME_NOREPLACE) != 0;
        return !hasName_;
    }

  private:
    static std::string RandomName() {
        std::array<unsigned char, 8> random{};
        if (getentropy(random.data(), random.size()) != 0) return {}; // under which nothing can be made
        std::string name = ".quarnel-";
        for (const unsigned char byte : random) name += {"0123456789abcdef"[byte / 16], "0123456789abcdef"[byte % 16]};
        return name;
    }
    /// Under which a file without a name can be given one.
    static std::string PathOf(int file) { return "/proc/self/fd/" + std::to_string(file); }
    int Make(mode_t mode) {
        const int nameless = openat(folder_, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, mode);
        if (Status status{}; nameless >= 0 && stat(PathOf(nameless).c_str(), &status) == 0) return nameless;
        if (nameless >= 0) close(nameless);
        const int named = openat(folder_, name_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, mode);
        hasName_ = named >= 0;
        return named;
    }

    const int folder_;
    const std::string name_ = RandomName();
    bool hasName_ = false;
    const Descriptor file_;
};

enum class Outcome { Stored, Failed, Forbidden };

Outcome WhyNot() {
    // Busy is a file that is a mount of its own.
    const bool forbidden = errno == EACCES || errno == EPERM || errno == EROFS || errno == EBUSY;
    return forbidden ? Outcome::Forbidden : Outcome::Failed;
}

// `old` is null for a file that is new.
Outcome Replace(const fs::path& target, const Status* old, std::string_view bytes, OldFile oldFile) {
    const fs::path parent = target.has_parent_path() ? target.parent_path() : ".";
    const Descriptor folder(open(parent.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder) return Outcome::Failed;
    FreshFile fresh(folder, old != nullptr ? S_IRUSR | S_IWUSR : 0666);
    const int file = fresh.Number();
    if (file < 0) return WhyNot();
    if (old != nullptr && (fchown(file, old->st_uid, old->st_gid) != 0 || fchmod(file, old->st_mode & 07777) != 0)) {
        return Outcome::Forbidden;
    }
    if (!WriteAll(file, bytes) || fsync(file) != 0) return Outcome::Failed;
    const fs::path name = target.filename();
    if (!(oldFile == OldFile::Keep ? fresh.TakeFreeName(name) : fresh.TakePlaceOf(name))) return WhyNot();
    const Descriptor names(openat(folder.Number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    fsync(names.Number()); // the new name; where the folder cannot be read, the system writes it in its own time
    return Outcome::Stored;
}

// Whether this process has the file in its memory; yes where nobody can tell. Devices are not compared, because some
// file systems have two numbers for one.
bool IsMapped(const Status& file) {
    std::ifstream maps("/proc/self/maps");
    if (!maps) return true;
    for (std::string line; std::getline(maps, line);) {
        std::istringstream fields(line);
        std::string addresses, access, offset, device;
        ino_t number = 0;
        if (fields >> addresses >> access >> offset >> device >> number && number == file.st_ino) return true;
    }
    return false;
}

bool WriteOver(int file, const Status& old, std::string_view bytes) {
    if (IsMapped(old)) return false;
    const auto size = static_cast<off_t>(bytes.size());
    // Room for all of it comes first, so that a full disk shows while the old bytes are still there.
    if (size > old.st_size && fallocate(file, 0, 0, size) != 0 && errno != EOPNOTSUPP) {
        [[maybe_unused]] const int asBefore = ftruncate(file, old.st_size);
        return false;
    }
    return WriteAll(file, bytes) && ftruncate(file, size) == 0 && fsync(file) == 0;
}

} // namespace

std::optional<std::string> ReadPlainFile(const fs::path& path, std::size_t mostBytes) {
    Status status{};
    const Descriptor file(OpenPlain(path, O_RDONLY, status));
    if (!file) return std::nullopt;
    std::string bytes;
    std::array<char, 1 << 16> part{};
    while (bytes.size() < mostBytes) {
        const ssize_t count = read(file.Number(), part.data(), std::min(part.size(), mostBytes - bytes.size()));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        bytes.append(part.data(), static_cast<std::size_t>(count));
    }
    return bytes;
}

bool StorePlainFile(const fs::path& path, std::string_view bytes, OldFile oldFile) {
    if (oldFile == OldFile::Keep) return Replace(path, nullptr, bytes, oldFile) == Outcome::Stored;
    Status old{};
    // The system follows the links first, and may refuse those that others have laid out.
    const bool isNew = stat(path.c_str(), &old) != 0;
    if (isNew && errno != ENOENT) return false;
    const auto target = BehindLinks(path);
    if (!target) return false;
    // Whoever may not write a file may not replace it either.
    const Descriptor file(isNew ? -1 : OpenPlain(*target, O_WRONLY, old));
    if (!isNew && !file) return false;
    const Outcome outcome = Replace(*target, isNew ? nullptr : &old, bytes, oldFile);
    return outcome == Outcome::Stored ||
           (outcome == Outcome::Forbidden && !isNew && WriteOver(file.Number(), old, bytes));
}

} // namespace quarnel
