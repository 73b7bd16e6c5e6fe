// Plain files, read and replaced as a whole: all that the program asks of a POSIX system about them.
//
// Pipes, sockets, devices and folders are refused at once: nothing here waits for another program. What the system
// refuses is told by the result. Any thread.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quarnel {

/// The file's first bytes, `mostBytes` at most; nothing when it is none that can be read.
std::optional<std::string> ReadPlainFile(const std::filesystem::path& path, std::size_t mostBytes);

/// What becomes of a file that has the name already.
enum class OldFile { Replace, Keep };

/// Lets the file hold `bytes` and nothing else. True once they are on the disk; false leaves the old file as it was,
/// and nothing beside it.
///
/// A new file takes the old one's place with its mode and its owner; a symbolic link stays and its target is replaced.
/// Where the folder forbids that, the old file is written over, unless this process has it mapped, as it has its
/// libraries; then alone a fault of the disk can damage it. An old file that is to be kept, or a link in its place,
/// lets this fail.
bool StorePlainFile(const std::filesystem::path& path, std::string_view bytes, OldFile oldFile = OldFile::Replace);

} // namespace quarnel
