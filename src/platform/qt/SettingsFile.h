// The settings store as one small text file.
//
// Every read reads the file and every write replaces it as a whole, one writer after the other, so running programs
// do not lose each other's keys and, where its folder lets it be replaced, a crash leaves a whole file. Damaged lines
// are kept out of the result and dropped by the next write. Nothing of a writer that was killed is in the way of the
// next one: the lock is the system's and ends with its holder. Anything but a plain file of less than 1 MB is left
// alone.
#pragma once

#include "base/Text.h"

#include <filesystem>
#include <optional>

namespace quarnel {

/// Sections and keys are compared without regard to the case of the letters A to Z.
class SettingsFile {
  public:
    /// `path` need not exist; its folder is made by the first write.
    explicit SettingsFile(std::filesystem::path path) : path_(std::move(path)) {}

    std::optional<Text> Read(const Text& section, const Text& key) const;

    /// False when it could not be stored; the old file is then untouched. Another program that writes is waited for.
    bool Write(const Text& section, const Text& key, const Text& value);

  private:
    std::filesystem::path path_;
};

} // namespace quarnel
