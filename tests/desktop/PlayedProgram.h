// A test that uses the built program in its window, on a display and in a home of their own.
//
// Nothing waits by the clock: each step waits for what the window, the files or the engine's command lines show.
#pragma once

#include "window/ProgramWindow.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace quarnel::xdriver {

inline std::string Contents(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    return text.str();
}

class PlayedProgram : public testing::Test, protected ProgramWindow {
  protected:
    void StartWith(const std::filesystem::path& program, const std::string& settings) {
        std::filesystem::create_directories(SettingsFile.parent_path());
        std::ofstream(SettingsFile) << "[Quarnel Chess/Settings]\n" << settings;
        Start(program);
    }

    const std::filesystem::path Home = std::getenv("HOME");
    const std::filesystem::path SettingsFile = Home / "config/quarnel-chess/settings.conf";
    engine::Board Game = engine::Board::Start(); ///< what the board ought to show
};

} // namespace quarnel::xdriver
