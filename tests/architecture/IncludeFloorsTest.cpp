// Holds the floors: which folder of src/ may include which, and that nothing else comes in.
//
// Reads the sources as text, so a forbidden edge is found even in code that this platform never builds.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace {

namespace fs = std::filesystem;

using Names = std::set<std::string>;

const std::map<std::string, Names> Floors{
    {"base", {}},
    {"model", {"base", "QuarnelChess.h"}},
    {"platform", {"base", "Pictures.h"}},
    {"controls", {"platform", "base", "Pictures.h"}},
    {"notation", {"model", "base"}},
    {"engine", {"notation", "model", "platform", "base"}},
    {"display", {"model", "platform", "base", "Pictures.h"}},
    {"game", {"engine", "notation", "display", "controls", "model", "platform", "base"}},
    {"app", {"game", "engine", "notation", "display", "controls", "model", "platform", "base", "Pictures.h"}},
};

// System headers that a file of the core may name: the settings store makes sure that what it wrote is
// on the disk, which the standard library cannot.
const std::map<std::string, Names> SystemHeaders{{"platform/SettingsFile.cpp", {"fcntl.h", "unistd.h"}}};

// Back ends bring the headers of their toolkit and their system; only main() and they may name them.
bool IsBackEnd(const std::string& path) {
    return path.starts_with("platform/qt/") || path.starts_with("platform/win32/");
}

std::string FolderOf(const std::string& path) {
    return path.substr(0, path.find('/'));
}

// Whether `file`, a path inside src/, may have this line; a line that includes nothing may stand anywhere.
bool MayHave(const std::string& file, const std::string& line) {
    static const std::regex include(R"(^\s*#\s*include\s*(["<])([^">]*).*)");
    static const std::regex standard("[a-z_]+");
    static const std::regex toolkit(R"(\bQ([A-Z][a-z]|t[A-Z_]|_[A-Z]))"); // QString, QtCore, but not QUARNEL_CALL
    const bool knowsBackEnds = IsBackEnd(file) || file == "app/Main.cpp";
    if (!knowsBackEnds && std::regex_search(line, toolkit)) return false;

    std::smatch match;
    if (!std::regex_match(line, match, include)) return true;
    const std::string name = match[2];
    if (match[1] == "<") {
        const auto system = SystemHeaders.find(file);
        const bool isListed = system != SystemHeaders.end() && system->second.contains(name);
        return IsBackEnd(file) || isListed || std::regex_match(name, standard);
    }
    if (IsBackEnd(name)) return knowsBackEnds;
    const bool isOwn = name.starts_with(FolderOf(file) + "/");
    return isOwn || Floors.at(FolderOf(file)).contains(FolderOf(name));
}

template <class Check>
void ForEachLine(const fs::path& root, Check check) {
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const std::string kind = entry.path().extension().string();
        if (kind != ".h" && kind != ".cpp" && kind != ".inc" && kind != ".c") continue;
        std::ifstream text(entry.path());
        int number = 0;
        for (std::string line; std::getline(text, line);) {
            check(entry.path().lexically_relative(root).generic_string(), line, ++number);
        }
    }
}

TEST(IncludeFloors, AreTheseEdgesAndNoOthers) {
    const struct {
        const char* File;
        const char* Line;
        bool Allowed;
    } cases[] = {{"model/Rules.cpp", R"(#include "model/Rules.h")", true},
                 {"model/Rules.cpp", R"(#include "base/Text.h" // why)", true},
                 {"model/Rules.cpp", R"( # include "notation/LongText.h")", false},
                 {"base/Text.h", R"(#include "model/Rules.h")", false},
                 {"app/X.cpp", R"(#include "Program.h")", false},
                 {"app/X.cpp", R"(#include "../app/Program.h")", false},
                 {"app/X.cpp", R"(#include "quarnelchess/Board.h")", false},
                 {"app/X.cpp", R"(#include "platform/qt/QtDesktop.h")", false},
                 {"app/Main.cpp", R"(#include "platform/qt/QtDesktop.h")", true},
                 {"model/X.h", R"(#include "QuarnelChess.h")", true},
                 {"game/X.cpp", R"(#include "Pictures.h")", false},
                 {"base/X.cpp", "#include <string_view>", true},
                 {"base/X.cpp", "#include <unistd.h>", false},
                 {"base/X.cpp", "QString name;", false},
                 {"base/X.cpp", "QUARNEL_CALL Queen", true},
                 {"platform/qt/X.cpp", "#include <QString>", true}};
    for (const auto& [file, line, allowed] : cases) EXPECT_EQ(MayHave(file, line), allowed) << file << ": " << line;
}

TEST(IncludeFloors, HoldInTheWholeProgram) {
    Names folders;
    ForEachLine(fs::path(QUARNEL_SOURCE_DIR) / "src",
                [&](const std::string& file, const std::string& line, int number) {
                    folders.insert(FolderOf(file));
                    ASSERT_TRUE(Floors.contains(FolderOf(file))) << file << " stands on no floor";
                    EXPECT_TRUE(MayHave(file, line)) << "src/" << file << ":" << number << ": " << line;
                });
    EXPECT_EQ(folders.size(), Floors.size());
}

// The library and the program share one header, which belongs to the library.
TEST(IncludeFloors, TheEngineLibraryKnowsNothingOfTheProgram) {
    static const std::regex include(R"(^\s*#\s*include\s*"([^"/]*)/.*)");
    const fs::path house = fs::path(QUARNEL_SOURCE_DIR) / "quarnelchess";
    ForEachLine(house, [&](const std::string& file, const std::string& line, int number) {
        std::smatch match;
        const bool foreign = std::regex_match(line, match, include) && Floors.contains(match[1]);
        EXPECT_FALSE(foreign) << "quarnelchess/" << file << ":" << number << ": " << line;
    });
}

} // namespace
