#include "platform/SettingsFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>

namespace quarnel {
namespace {

namespace fs = std::filesystem;

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
    EXPECT_TRUE(File.Write(u"Settings", u"WSIZE", u"3"));
    EXPECT_EQ(Content(), "# Settings, written by the program whenever one changes.\n\n"
                         "[Settings]\nLevel=6\nWSIZE=3\n\n[Other]\nLevel=7\n");
    EXPECT_EQ(FilesInFolder(), 1);
    EXPECT_EQ(File.Read(u"Settings", u"Level"), u"6");
    EXPECT_EQ(File.Read(u"Other", u"Level"), u"7");
    EXPECT_EQ(File.Read(u"Settings", u"WSize"), u"3");
    EXPECT_EQ(File.Read(u"Other", u"Wsize"), std::nullopt);
}

TEST_F(SettingsFileTest, AnyTextComesBackAsItWas) {
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
    for (int i = 0; i < 200000; ++i) garbage += static_cast<char>(random());
    Put(garbage);
    EXPECT_TRUE(File.Write(u"Settings", u"Level", u"1"));
    EXPECT_EQ(File.Read(u"Settings", u"Level"), u"1");
}

TEST_F(SettingsFileTest, WhatCannotBeStoredSaysSoAndChangesNothing) {
    fs::create_directories(Path); // a folder stands where the file should
    EXPECT_FALSE(File.Write(u"Settings", u"Level", u"1"));
    EXPECT_EQ(File.Read(u"Settings", u"Level"), std::nullopt);
    EXPECT_TRUE(fs::is_directory(Path));
    EXPECT_EQ(FilesInFolder(), 1);
}

TEST_F(SettingsFileTest, ALinkToTheFileStaysALink) {
    Put("[Settings]\nPonder=-1\n");
    const fs::path real = Path.parent_path() / "real.conf";
    fs::rename(Path, real);
    fs::create_symlink(real, Path);
    EXPECT_TRUE(File.Write(u"Settings", u"Level", u"1"));
    EXPECT_TRUE(fs::is_symlink(Path));
    EXPECT_EQ(SettingsFile(real).Read(u"Settings", u"Level"), u"1");
    EXPECT_EQ(SettingsFile(real).Read(u"Settings", u"Ponder"), u"-1");
}

} // namespace
} // namespace quarnel
