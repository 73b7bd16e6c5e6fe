// Holds the floors: which folder of src/ and of quarnelchess/ may include which, and that nothing else comes in.
//
// Reads the sources as text, so a forbidden edge is found even in code that this platform never builds.
#include <gtest/gtest.h>

#include <algorithm>
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

// What a folder may include beside itself.
const std::map<std::string, Names> Floors{
    {"src/base", {}},
    {"src/model", {"base", "QuarnelChess.h"}},
    {"src/platform", {"base", "Pictures.h"}},
    {"src/controls", {"platform", "base", "Pictures.h"}},
    {"src/notation", {"model", "base"}},
    {"src/engine", {"notation", "model", "platform", "base"}},
    {"src/display", {"model", "platform", "base", "Pictures.h"}},
    {"src/game", {"engine", "notation", "display", "controls", "model", "platform", "base"}},
    {"src/app", {"game", "engine", "notation", "display", "controls", "model", "platform", "base", "Pictures.h"}},
    // The engine library shares one header with the program, and it belongs to the library.
    {"quarnelchess/include", {"stdint.h"}},
    {"quarnelchess/board", {}},
    {"quarnelchess/evaluation", {"board", "immintrin.h"}},
    {"quarnelchess/records", {"board", "QuarnelChess.h"}},
    {"quarnelchess/search", {"evaluation", "board", "pthread.h", "sys/mman.h"}},
    {"quarnelchess/book", {"records", "board"}},
    {"quarnelchess/library", {"book", "search", "records", "evaluation", "board", "QuarnelChess.h"}},
    {"quarnelchess/uci", {"book", "search", "evaluation", "board"}},
};
const std::string Engine = "quarnelchess/"; // includes there start with it; in src/ with the folder

// Back ends bring the headers of their toolkit and their system; only main() and they may name them.
bool IsBackEnd(const std::string& path) {
    const auto isIn = [&](const char* folder) { return path.starts_with(std::string("src/platform/") + folder); };
    return isIn("qt/") || isIn("posix/") || isIn("win32/");
}

// "src/model" of "src/model/Rules.h".
std::string FolderOf(const std::string& path) {
    return path.substr(0, path.find('/', path.find('/') + 1));
}

const std::regex Include(R"(^\s*#\s*include\s*(["<])([^">]*).*)");

// Whether `file`, a path from the top of the repository, may have this line; one that includes nothing may stand
// anywhere.
bool MayHave(const std::string& file, const std::string& line) {
    static const std::regex standard("[a-z_]+");
    static const std::regex toolkit(R"(\bQ([A-Z][a-z]|t[A-Z_]|_[A-Z]))"); // QString, QtCore, but not QUARNEL_CALL
    const bool knowsBackEnds = IsBackEnd(file) || file == "src/app/Main.cpp";
    if (!knowsBackEnds && std::regex_search(line, toolkit)) return false;

    std::smatch match;
    if (!std::regex_match(line, match, Include)) return true;
    const std::string name = match[2];
    const std::string folder = FolderOf(file);
    const Names& allowed = Floors.at(folder);
    if (match[1] == "<") return IsBackEnd(file) || std::regex_match(name, standard) || allowed.contains(name);
    if (file.starts_with(Engine) && !name.starts_with(Engine)) return false;
    const std::string path = file.starts_with(Engine) ? name : "src/" + name;
    if (IsBackEnd(path)) return knowsBackEnds;
    const std::string target = FolderOf(path);
    return target == folder || allowed.contains(target.substr(target.find('/') + 1));
}

// Of the program and the engine library, with paths from the top of the repository.
template <class Check>
void ForEachLine(Check check) {
    const fs::path top = QUARNEL_SOURCE_DIR;
    for (const char* house : {"src", "quarnelchess"}) {
        for (const auto& entry : fs::recursive_directory_iterator(top / house)) {
            if (!Names{".h", ".cpp", ".inc", ".c"}.contains(entry.path().extension())) continue;
            std::ifstream text(entry.path());
            for (std::string line; std::getline(text, line);)
                check(entry.path().lexically_relative(top).generic_string(), line);
        }
    }
}

TEST(IncludeFloors, AreTheseEdgesAndNoOthers) {
    const struct {
        const char* File;
        const char* Line;
        bool Allowed;
    } cases[] = {{"src/model/Rules.cpp", R"(#include "model/Rules.h")", true},
                 {"src/model/Rules.cpp", R"( # include "notation/LongText.h")", false},
                 {"src/app/X.cpp", R"(#include "../app/Program.h")", false},
                 {"src/app/X.cpp", R"(#include "quarnelchess/board/Board.h")", false},
                 {"src/app/X.cpp", R"(#include "platform/qt/QtDesktop.h")", false},
                 {"src/app/Main.cpp", R"(#include "platform/qt/QtDesktop.h" // why)", true},
                 {"src/model/X.h", R"(#include "QuarnelChess.h")", true},
                 {"src/game/X.cpp", R"(#include "Pictures.h")", false},
                 {"src/base/X.cpp", "#include <string_view>", true},
                 {"src/base/X.cpp", "#include <unistd.h>", false},
                 {"src/base/X.cpp", "QString name;", false},
                 {"src/base/X.cpp", "QUARNEL_CALL Queen", true},
                 {"src/platform/qt/X.cpp", "#include <QString>", true},
                 {"quarnelchess/search/X.cpp", R"(#include "quarnelchess/search/Search.h")", true},
                 {"quarnelchess/board/X.cpp", R"(#include "quarnelchess/evaluation/Evaluation.h")", false},
                 {"quarnelchess/search/X.cpp", R"(#include "base/Text.h")", false},
                 {"quarnelchess/search/X.cpp", "#include <QuarnelChess.h>", false}};
    for (const auto& [file, line, allowed] : cases) EXPECT_EQ(MayHave(file, line), allowed) << file << ": " << line;
}

TEST(IncludeFloors, HoldInTheWholeHouse) {
    Names folders;
    ForEachLine([&](const std::string& file, const std::string& line) {
        folders.insert(FolderOf(file));
        ASSERT_TRUE(Floors.contains(FolderOf(file))) << file << " stands on no floor";
        EXPECT_TRUE(MayHave(file, line)) << file << ": " << line;
    });
    EXPECT_EQ(folders.size(), Floors.size());
}

// A header and its source are one module; what it includes, even by a roundabout way, does not include it.
TEST(IncludeFloors, HaveNoCircles) {
    std::map<std::string, Names> needs;
    ForEachLine([&](const std::string& file, const std::string& line) {
        std::smatch match;
        if (!std::regex_match(line, match, Include)) return;
        const auto here = fs::path(file).replace_extension();
        const auto there = fs::path(file.starts_with(Engine) ? "" : "src") / fs::path(match[2]).replace_extension();
        if (here != there) needs[here].insert(there);
    });
    ASSERT_GT(needs.size(), 50U);
    // Whoever needs only what stands already can be put on top of it; who is left over needs itself.
    const auto stands = [&](const std::string& module) { return !needs.contains(module); };
    const auto canStand = [&](const auto& need) { return std::ranges::all_of(need.second, stands); };
    while (std::erase_if(needs, canStand) != 0) {
    }
    for (const auto& [module, needed] : needs) ADD_FAILURE() << module << " includes itself, or one that does";
}

} // namespace
