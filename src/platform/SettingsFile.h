// The settings store as one small text file, for desktops that have no store of their own.
//
// Every read reads the file and every write replaces it as a whole (a new file takes the old one's
// place), so two running programs do not lose each other's keys and a crash leaves a whole file.
// Unknown or damaged lines are kept out of the result and dropped by the next write.
#pragma once

#include "base/Text.h"

#include <filesystem>
#include <optional>

namespace quarnel {

class SettingsFile {
  public:
    /// `path` need not exist; its folder is made by the first write.
    explicit SettingsFile(std::filesystem::path path) : path_(std::move(path)) {}

    /// The stored text; keys are compared without regard to the case of the letters A to Z.
    std::optional<Text> Read(const Text& section, const Text& key) const;

    /// False when it could not be stored; the old file is then untouched.
    bool Write(const Text& section, const Text& key, const Text& value);

  private:
    std::filesystem::path path_;
};

} // namespace quarnel
