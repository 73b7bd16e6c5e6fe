// Real files, read and stored over by somebody who is not root.
#include "platform/posix/PlainFiles.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quarnel {
namespace {

namespace fs = std::filesystem;

constexpr uid_t Nobody = 65534;

/// A folder with one file, "old".
struct Scene {
    Scene() {
        fs::create_directory(Folder);
        std::ofstream(File) << "old";
        if (geteuid() != 0) return;
        for (const fs::path& path : {Folder, File}) EXPECT_EQ(chown(path.c_str(), Nobody, getegid()), 0);
        EXPECT_EQ(seteuid(Nobody), 0);
    }
    ~Scene() {
        EXPECT_EQ(seteuid(getuid()), 0);
        chmod(Folder.c_str(), 0700);
        fs::remove_all(Folder);
    }
    std::ptrdiff_t Names() const { return std::distance(fs::directory_iterator(Folder), fs::directory_iterator()); }

    const fs::path Folder = fs::temp_directory_path() / ("quarnel-files-" + std::to_string(getpid()));
    const fs::path File = Folder / "game";
};

void LimitFiles(rlim_t bytes) {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &limit);
}

struct stat StatusOf(const fs::path& path) {
    struct stat status {};
    stat(path.c_str(), &status);
    return status;
}

TEST(PlainFiles, WhatCannotBeStoredStaysAsItWasWithNothingBesideIt) {
    constexpr rlim_t AnySize = RLIM_INFINITY;
    const struct {
        const char* What;
        mode_t Folder, File;
        rlim_t MostBytes;
        bool Mapped;
        const char* Link; ///< in the place of the file
    } cases[] = {{"may not be written", 0700, 0444, AnySize, false, nullptr},
                 {"disk is full", 0700, 0600, 5, false, nullptr},
                 {"disk is full, folder forbids names", 0500, 0600, 5, false, nullptr},
                 {"mapped, folder forbids names", 0500, 0600, AnySize, true, nullptr},
                 {"pipe, whose opener waits for another one", 0700, 0600, AnySize, false, "pipe"},
                 {"device", 0700, 0600, AnySize, false, "/dev/zero"},
                 {"folder", 0700, 0600, AnySize, false, "."},
                 {"circle", 0700, 0600, AnySize, false, "game"},
                 {"nothing in a folder that is missing", 0700, 0600, AnySize, false, "no/such"}};
    for (const auto& [what, folder, file, mostBytes, mapped, link] : cases) {
        SCOPED_TRACE(what);
        const Scene scene;
        mkfifo((scene.Folder / "pipe").c_str(), 0600);
        chmod(scene.File.c_str(), file);
        if (mapped) mmap(nullptr, 3, PROT_READ, MAP_PRIVATE, open(scene.File.c_str(), O_RDONLY), 0);
        if (link != nullptr && fs::remove(scene.File)) fs::create_symlink(link, scene.File);
        chmod(scene.Folder.c_str(), folder);
        LimitFiles(mostBytes);
        EXPECT_FALSE(StorePlainFile(scene.File, "fresh, and longer"));
        LimitFiles(AnySize);
        EXPECT_EQ(ReadPlainFile(scene.File, 100), link == nullptr ? std::optional<std::string>("old") : std::nullopt);
        EXPECT_EQ(scene.Names(), 2);
    }
}

TEST(PlainFiles, AreReplacedWhereTheFolderAllowsAndKeepLinkModeAndOwner) {
    for (const mode_t folderMode : {0755U, 0555U}) {
        const Scene scene;
        fs::create_symlink("game", scene.Folder / "link");
        chmod(scene.File.c_str(), 0640);
        chmod(scene.Folder.c_str(), folderMode);
        const auto before = StatusOf(scene.File);
        EXPECT_TRUE(StorePlainFile(scene.Folder / "link", "1"));
        EXPECT_EQ(ReadPlainFile(scene.File, 4), "1");
        EXPECT_EQ(StatusOf(scene.File).st_ino == before.st_ino, folderMode == 0555);
        EXPECT_EQ(seteuid(getuid()), 0); // who may make the file somebody else's again
        EXPECT_TRUE(StorePlainFile(scene.File, "another"));
        EXPECT_EQ(ReadPlainFile(scene.File, 4), "anot");
        EXPECT_TRUE(fs::is_symlink(scene.Folder / "link"));
        EXPECT_EQ(StatusOf(scene.File).st_mode, before.st_mode);
        EXPECT_EQ(StatusOf(scene.File).st_uid, before.st_uid);
        EXPECT_EQ(scene.Names(), 2);
    }
}

TEST(PlainFiles, ANewOneIsMadeUnderTheNameThatALinkLeadsTo) {
    const Scene scene;
    const fs::path fresh = scene.Folder / std::string(255, 'n');
    fs::create_symlink(fresh, scene.Folder / "link");
    umask(027);
    EXPECT_TRUE(StorePlainFile(scene.Folder / "link", "fresh"));
    EXPECT_EQ(ReadPlainFile(fresh, 100), "fresh");
    EXPECT_EQ(StatusOf(fresh).st_mode & 0777U, 0640U);
    EXPECT_EQ(scene.Names(), 3);
}

} // namespace
} // namespace quarnel
