// Holds the floors: which folder of src/ and of quarnelchess/ may include which, and that nothing else comes in.
//
// Reads the sources as text, so a forbidden edge is found even in code that this platform never builds.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

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

// The engine library's rooms. Includes there start at the top of the repository: "quarnelchess/board/Board.h".
const std::map<std::string, Names> EngineFloors{
    {"board", {}},
    {"evaluation", {"board"}},
    {"records", {"board", "QuarnelChess.h"}},
    {"search", {"evaluation", "board"}},
    {"book", {"records", "board"}},
    {"library", {"book", "search", "records", "evaluation", "board", "QuarnelChess.h"}},
    {"uci", {"book", "search", "evaluation", "board"}},
    {"include", {}},
};

// Memory in large pages is the operating system's to give; the shared header is C.
const Names EngineSystemHeaders{"search/TranspositionTable.cpp: sys/mman.h", "include/QuarnelChess.h: stdint.h"};

// Back ends bring the headers of their toolkit and their system; only main() and they may name them.
bool IsBackEnd(const std::string& path) {
    return path.starts_with("platform/qt/") || path.starts_with("platform/win32/");
}

std::string FolderOf(const std::string& path) {
    return path.substr(0, path.find('/'));
}

const std::regex Include(R"(^\s*#\s*include\s*(["<])([^">]*).*)");
const std::regex StandardHeader("[a-z_]+");

// Whether `file`, a path inside quarnelchess/, may have this line.
bool EngineMayHave(const std::string& file, const std::string& line) {
    std::smatch match;
    if (!std::regex_match(line, match, Include)) return true;
    const std::string name = match[2];
    const std::string room = FolderOf(file);
    const std::string house = "quarnelchess/";
    if (match[1] == "<")
        return std::regex_match(name, StandardHeader) || EngineFloors.at(room).contains(name) ||
               EngineSystemHeaders.contains(file + ": " + name);
    if (!name.starts_with(house)) return false;
    const std::string target = FolderOf(name.substr(house.size()));
    return target == room || EngineFloors.at(room).contains(target);
}

// Whether `file`, a path inside src/, may have this line; a line that includes nothing may stand anywhere.
bool MayHave(const std::string& file, const std::string& line) {
    static const std::regex toolkit(R"(\bQ([A-Z][a-z]|t[A-Z_]|_[A-Z]))"); // QString, QtCore, but not QUARNEL_CALL
    const bool knowsBackEnds = IsBackEnd(file) || file == "app/Main.cpp";
    if (!knowsBackEnds && std::regex_search(line, toolkit)) return false;

    std::smatch match;
    if (!std::regex_match(line, match, Include)) return true;
    const std::string name = match[2];
    if (match[1] == "<") return IsBackEnd(file) || std::regex_match(name, StandardHeader);
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
                 {"app/X.cpp", R"(#include "quarnelchess/board/Board.h")", false},
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
    EXPECT_TRUE(EngineMayHave("search/X.cpp", R"(#include "quarnelchess/board/Board.h")"));
    EXPECT_FALSE(EngineMayHave("board/X.cpp", R"(#include "quarnelchess/evaluation/Weights.h")"));
    EXPECT_FALSE(EngineMayHave("board/X.cpp", R"(#include "Board.h")"));
    EXPECT_FALSE(EngineMayHave("search/X.cpp", R"(#include "base/Text.h")"));
    EXPECT_FALSE(EngineMayHave("search/X.cpp", "#include <QuarnelChess.h>"));
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
TEST(IncludeFloors, HoldInTheEngineLibrary) {
    Names rooms;
    ForEachLine(fs::path(QUARNEL_SOURCE_DIR) / "quarnelchess",
                [&](const std::string& file, const std::string& line, int number) {
                    rooms.insert(FolderOf(file));
                    ASSERT_TRUE(EngineFloors.contains(FolderOf(file))) << file << " stands in no room";
                    EXPECT_TRUE(EngineMayHave(file, line)) << "quarnelchess/" << file << ":" << number << ": " << line;
                });
    EXPECT_EQ(rooms.size(), EngineFloors.size());
}

// A header and its source are one module; what it includes, even by a roundabout way, does not include it.
TEST(IncludeFloors, HaveNoCircles) {
    std::map<std::string, Names> needs;
    for (const std::string house : {"src/", "quarnelchess/"}) {
        const auto moduleOf = [](const std::string& path) {
            return fs::path(path).replace_extension().generic_string();
        };
        ForEachLine(fs::path(QUARNEL_SOURCE_DIR) / house, [&](const std::string& file, const std::string& line, int) {
            std::smatch match;
            if (!std::regex_match(line, match, Include)) return;
            const std::string named = match[2];
            const std::string here = moduleOf(house + file);
            const std::string there = moduleOf(named.starts_with(house) ? named : house + named);
            if (here != there) needs[here].insert(there);
        });
    }
    ASSERT_GT(needs.size(), 50U);
    for (const auto& [start, direct] : needs) {
        Names reached;
        for (std::vector<std::string> next(direct.begin(), direct.end()); !next.empty();) {
            const std::string module = next.back();
            next.pop_back();
            if (reached.insert(module).second && needs.contains(module))
                next.insert(next.end(), needs[module].begin(), needs[module].end());
        }
        EXPECT_FALSE(reached.contains(start)) << start << " includes itself";
    }
}

} // namespace
