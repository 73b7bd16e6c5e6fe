// A game goes on, or the program ends by itself, whatever fails on the way; and what was saved stays whole.
//
// QUARNEL_FAULTS=300 tries the first three hundred calls of each kind in the place of a few.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sys/wait.h>

namespace {

TEST(Faults, LeaveTheGameOrEndItAndTheRecordIsWhole) {
    namespace fs = std::filesystem;
    const fs::path folder = fs::temp_directory_path() / ("faults-" + std::to_string(getpid()));
    const fs::path record = folder / "game.txt";
    const char* const all = std::getenv("QUARNEL_FAULTS");
    const std::pair<const char*, std::vector<int>> kinds[] = {
        {"memory", {1, 30, 300, 3000}}, {"thread", {1, 2, 3}}, {"write", {1, 2, 3}}, {"rename", {1, 2}}};
    for (const auto& [kind, few] : kinds) {
        std::vector<int> numbers = few;
        for (int n = 1; all != nullptr && n <= std::atoi(all); ++n) numbers.push_back(n);
        for (const int number : numbers) {
            SCOPED_TRACE(std::string(kind) + " " + std::to_string(number));
            fs::remove_all(folder);
            fs::create_directories(folder);
            std::ofstream(record) << "\tWhite(You)\tBlack\r\n1.\td4\t\r\n";
            const std::string command = std::string("QUARNEL_FAIL='") + kind + " " + std::to_string(number) +
                                        "' LD_PRELOAD=" FAIL_NTH " timeout 120 " GAME " " LIBRARY " " +
                                        record.string() + " 2>/dev/null";
            const int status = std::system(command.c_str());
            const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
            EXPECT_TRUE(code == 0 || code == 128 + SIGABRT) << "ended with " << code;
            std::ifstream in(record, std::ios::binary);
            const std::string bytes(std::istreambuf_iterator<char>(in), {});
            EXPECT_TRUE(
                std::regex_match(bytes, std::regex("\t[^\t\n]+\t[^\t\n]+\r\n(\\d+\\.\t[^\t\n]+\t[^\t\n]*\r\n)+")))
                << bytes;
            EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1)
                << "something is left";
        }
    }
    fs::remove_all(folder);
}

} // namespace
