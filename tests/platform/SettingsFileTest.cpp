#include "platform/SettingsFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace quarnel {
namespace {

namespace fs = std::filesystem;

class SettingsFileTest : public testing::Test {
  protected:
    SettingsFileTest() {
        fs::remove_all(folder_);
        fs::create_directories(folder_);
    }
    ~SettingsFileTest() override { fs::remove_all(folder_); }

    void Put(const std::string& content) const { std::ofstream(Path, std::ios::binary) << content; }
    std::string Content() const {
        std::ostringstream content;
        content << std::ifstream(Path, std::ios::binary).rdbuf();
        return content.str();
    }
    std::size_t FilesInFolder() const {
        return std::distance(fs::directory_iterator(Path.parent_path()), fs::directory_iterator());
    }

  private:
    const fs::path folder_ = fs::path(testing::TempDir()) /
                             (std::string("settings-") + testing::UnitTest::GetInstance()->current_test_info()->name());

  protected:
    const fs::path Path = folder_ / "made" / "settings.conf";
};

TEST_F(SettingsFileTest, KeepsEachValueUnderItsSectionAndKey) {
    SettingsFile file(Path);
    EXPECT_EQ(file.Read(u"Settings", u"Level"), std::nullopt);
    EXPECT_TRUE(file.Write(u"Settings", u"Level", u"6"));
    EXPECT_TRUE(file.Write(u"Other", u"Level", u"7"));
    EXPECT_TRUE(file.Write(u"Settings", u"Ponder", u"-1"));
    const SettingsFile again(Path);
    EXPECT_EQ(again.Read(u"Settings", u"Level"), u"6");
    EXPECT_EQ(again.Read(u"Other", u"Level"), u"7");
    EXPECT_EQ(again.Read(u"Settings", u"Ponder"), u"-1");
    EXPECT_EQ(again.Read(u"Other", u"Ponder"), std::nullopt);
}

TEST_F(SettingsFileTest, FindsAKeyWhateverItsLetterCase) {
    SettingsFile file(Path);
    file.Write(u"Settings", u"Wsize", u"2");
    EXPECT_EQ(file.Read(u"Settings", u"WSize"), u"2");
    file.Write(u"Settings", u"WSIZE", u"3");
    EXPECT_EQ(file.Read(u"Settings", u"Wsize"), u"3");
    EXPECT_EQ(Content().find("=2"), std::string::npos) << "the old value must be gone";
}

TEST_F(SettingsFileTest, AnyTextComesBackAsItWas) {
    const Text texts[] = {u"",
                          u"  blanks  ",
                          u"a=b",
                          u"[x]",
                          u"#",
                          u"\\",
                          u"\\u0041",
                          u"two\r\nlines\n",
                          u"\u02DD-\u02DD",
                          Text(u"nul\0inside", 10),
                          Text(1, u'\xD800'),
                          u"\U0001F60A"};
    SettingsFile file(Path);
    for (const Text& text : texts) {
        EXPECT_TRUE(file.Write(u"S" + text, u"K" + text, text));
        EXPECT_EQ(file.Read(u"S" + text, u"K" + text), text) << ToUtf8(text);
    }
    for (const Text& text : texts) EXPECT_EQ(file.Read(u"S" + text, u"K" + text), text) << ToUtf8(text);
}

TEST_F(SettingsFileTest, DamagedLinesHideNothingElse) {
    fs::create_directories(Path.parent_path());
    Put("\xFF\xFE=1\nLevel=no section\n[Settings\nLevel=in a damaged section\n"
        "[Settings]\r\nno value\n=\n==\\u00\nLevel=\\uZZZZ\nLevel=4\r\nPonder=\xC3\nWsize=1");
    SettingsFile file(Path);
    EXPECT_EQ(file.Read(u"Settings", u"Level"), u"4");
    EXPECT_EQ(file.Read(u"Settings", u"Ponder"), std::nullopt);
    EXPECT_EQ(file.Read(u"Settings", u"Wsize"), u"1");
    EXPECT_TRUE(file.Write(u"Settings", u"Ponder", u"0"));
    EXPECT_EQ(file.Read(u"Settings", u"Level"), u"4");
    EXPECT_EQ(Content().find("damaged section"), std::string::npos);
}

TEST_F(SettingsFileTest, SurvivesGarbageOfEveryByte) {
    fs::create_directories(Path.parent_path());
    std::string garbage;
    std::uint32_t random = 1;
    for (int i = 0; i < 200000; ++i) {
        random = random * 1664525 + 1013904223;
        garbage += static_cast<char>(random >> 24);
    }
    Put(garbage);
    SettingsFile file(Path);
    EXPECT_EQ(file.Read(u"Settings", u"Level"), std::nullopt);
    EXPECT_TRUE(file.Write(u"Settings", u"Level", u"1"));
    EXPECT_EQ(file.Read(u"Settings", u"Level"), u"1");
}

TEST_F(SettingsFileTest, LeavesNoOtherFileBehind) {
    SettingsFile file(Path);
    EXPECT_TRUE(file.Write(u"Settings", u"Level", u"1"));
    EXPECT_TRUE(file.Write(u"Settings", u"Level", u"2"));
    EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(SettingsFileTest, WhatCannotBeStoredSaysSoAndChangesNothing) {
    fs::create_directories(Path); // a folder stands where the file should
    SettingsFile file(Path);
    EXPECT_FALSE(file.Write(u"Settings", u"Level", u"1"));
    EXPECT_EQ(file.Read(u"Settings", u"Level"), std::nullopt);
    EXPECT_TRUE(fs::is_directory(Path));
    EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(SettingsFileTest, ALinkToTheFileStaysALink) {
    fs::create_directories(Path.parent_path());
    const fs::path real = Path.parent_path() / "real.conf";
    std::ofstream(real) << "[Settings]\nPonder=-1\n";
    fs::create_symlink(real, Path);
    SettingsFile file(Path);
    EXPECT_TRUE(file.Write(u"Settings", u"Level", u"1"));
    EXPECT_TRUE(fs::is_symlink(Path));
    EXPECT_EQ(SettingsFile(real).Read(u"Settings", u"Level"), u"1");
    EXPECT_EQ(SettingsFile(real).Read(u"Settings", u"Ponder"), u"-1");
}

} // namespace
} // namespace quarnel
