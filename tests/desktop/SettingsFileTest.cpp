// The settings store, used by one program and by two at a time. Needs no display.
#include "platform/qt/SettingsFile.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <functional>
#include <random>

#include <sys/wait.h>
#include <unistd.h>

namespace quarnel {
namespace {

namespace fs = std::filesystem;

/// A process that does `work`, whose answer becomes its exit status.
pid_t Start(const std::function<int()>& work) {
    const pid_t process = fork();
    if (process == 0) _exit(work());
    return process;
}

int EndOf(pid_t process) {
    int status = -1;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class SettingsFileTest : public testing::Test {
  protected:
    SettingsFileTest() { fs::remove_all(folder_); }
    ~SettingsFileTest() override { fs::remove_all(folder_); }

    void Put(const std::string& content) const {
        fs::create_directories(Path.parent_path());
        std::ofstream(Path, std::ios::binary) << content;
    }
    std::string Content() const {
        std::ifstream file(Path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::ptrdiff_t FilesInFolder() const {
        return std::distance(fs::directory_iterator(Path.parent_path()), fs::directory_iterator());
    }

  private:
    const fs::path folder_ = fs::path(testing::TempDir()) /
                             (std::string("settings-") + testing::UnitTest::GetInstance()->current_test_info()->name());

  protected:
    const fs::path Path = folder_ / "made" / "settings.conf";
    SettingsFile File{Path};
};

TEST_F(SettingsFileTest, KeepsEachValueUnderItsSectionAndItsKeyInAnyLetterCase) {
    EXPECT_EQ(File.Read(u"Settings", u"Level"), std::nullopt);
    EXPECT_TRUE(File.Write(u"Settings", u"Level", u"6"));
    EXPECT_TRUE(File.Write(u"Other", u"Level", u"7"));
    EXPECT_TRUE(File.Write(u"Settings", u"Wsize", u"2"));
    EXPECT_TRUE(File.Write(u"SETTINGS", u"WSIZE", u"3"));
    EXPECT_EQ(Content(), "# Settings, written by the program whenever one changes.\n\n"
                         "[Settings]\nLevel=6\nWSIZE=3\n\n[Other]\nLevel=7\n");
    EXPECT_EQ(FilesInFolder(), 1);
    EXPECT_EQ(File.Read(u"settings", u"level"), u"6");
    EXPECT_EQ(File.Read(u"Other", u"Level"), u"7");
    EXPECT_EQ(File.Read(u"Settings", u"WSize"), u"3");
}

TEST_F(SettingsFileTest, AnyTextIsKept) {
    using namespace std::literals;
    constexpr TextView damaged(u"\xD800", 1);
    const auto texts = {u""sv,          u"  blanks  "sv,     u"a=b"sv,           u"[x]"sv,         u"#"sv,
                        u"\\u0041"sv,   u"two\r\nlines\n"sv, u"\u02DD-\u02DD"sv, u"nul\0inside"sv, damaged,
                        u"\U0001F60A"sv};
    for (const TextView text : texts) EXPECT_TRUE(File.Write(u"S" + Text(text), u"K" + Text(text), Text(text)));
    for (const TextView text : texts) EXPECT_EQ(File.Read(u"S" + Text(text), u"K" + Text(text)), text) << ToUtf8(text);
}

TEST_F(SettingsFileTest, DamagedLinesHideNothingElse) {
    Put("\xFF\xFE=1\nLevel=no section\n[Settings\nLevel=in a damaged section\n"
        "[Settings]\r\nno value\n=\n==\\u00\nLevel=\\uZZZZ\nLevel=4\r\nPonder=\xC3\nWsize=1");
    EXPECT_EQ(File.Read(u"Settings", u"Level"), u"4");
    EXPECT_EQ(File.Read(u"Settings", u"Ponder"), std::nullopt);
    EXPECT_EQ(File.Read(u"Settings", u"Wsize"), u"1");
    EXPECT_TRUE(File.Write(u"Settings", u"Ponder", u"0"));
    EXPECT_EQ(File.Read(u"Settings", u"Level"), u"4");
    EXPECT_EQ(Content().find("damaged section"), std::string::npos);

    std::mt19937 random(1);
    std::string garbage;
    for (int i = 0; i < 1000000; ++i) garbage += static_cast<char>(random());
    Put(garbage);
    EXPECT_TRUE(File.Write(u"Settings", u"Level", u"1"));
    EXPECT_EQ(File.Read(u"Settings", u"Level"), u"1");
}

TEST_F(SettingsFileTest, WhatCannotBeStoredSaysSoAndChangesNothing) {
    EXPECT_TRUE(File.Write(u"Settings", u"Level", u"1"));
    EXPECT_FALSE(File.Write(u"Settings", u"Level", Text(1 << 20, u'9')));
    EXPECT_EQ(File.Read(u"Settings", u"Level"), u"1");
    const std::string strange = "[Settings]\nLevel=2\n";
    Put(strange + std::string((1 << 20) - strange.size(), '#'));
    EXPECT_FALSE(File.Write(u"Settings", u"Level", u"1"));
    EXPECT_EQ(File.Read(u"Settings", u"Level"), std::nullopt);
}

TEST_F(SettingsFileTest, TwoProgramsKeepEachOthersKeys) {
    const auto write = [&](const char16_t* key) {
        int lost = 0;
        for (int round = 0; round < 200; ++round) {
            // All as long as each other, so that nobody can tell by the length that there is something new.
            const Text value = ToText(round % 10);
            while (!File.Write(u"Settings", key, value)) {
            }
            lost += File.Read(u"Settings", key) == value ? 0 : 1;
        }
        return lost;
    };
    const pid_t other = Start([&] { return write(u"Ponder"); });
    EXPECT_EQ(write(u"Level"), 0);
    EXPECT_EQ(EndOf(other), 0);
    EXPECT_EQ(File.Read(u"Settings", u"Level"), u"9");
    EXPECT_EQ(File.Read(u"Settings", u"Ponder"), u"9");
}

TEST_F(SettingsFileTest, AKilledWriterIsNotInTheWay) {
    ASSERT_TRUE(File.Write(u"Settings", u"Ponder", u"0"));
    for (int round = 0; round < 20; ++round) {
        const Text before = File.Read(u"Settings", u"Ponder").value();
        const pid_t writer = Start([&]() -> int {
            for (int i = 1;; ++i) File.Write(u"Settings", u"Ponder", ToText(round * 1000000LL + i));
        });
        while (File.Read(u"Settings", u"Ponder") == before) {
        }
        kill(writer, SIGKILL);
        EndOf(writer);
        EXPECT_NE(File.Read(u"Settings", u"Ponder"), std::nullopt);
        EXPECT_TRUE(File.Write(u"Settings", u"Level", ToText(round)));
        EXPECT_EQ(File.Read(u"Settings", u"Level"), ToText(round));
    }
}

} // namespace
} // namespace quarnel
