// Real files, read and stored over by somebody who is not root.
#include "platform/posix/PlainFiles.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <functional>

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
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status;
}

TEST(PlainFiles, WhatCannotBeStoredStaysAsItWasWithNothingBesideIt) {
    const auto forbidNames = [](const Scene& s) { chmod(s.Folder.c_str(), 0555); };
    const auto putLink = [](const Scene& s, const fs::path& target) {
        fs::remove(s.File);
        fs::create_symlink(target, s.File);
    };
    const struct {
        const char* What;
        std::function<void(const Scene&)> Arrange;
        bool Readable;
    } cases[] = {{"read-only", [](const Scene& s) { chmod(s.File.c_str(), 0444); }, true},
                 {"full disk", [](const Scene&) { LimitFiles(5); }, true},
                 {"full disk under a folder that forbids names",
                  [&](const Scene& s) {
                      forbidNames(s);
                      LimitFiles(5);
                  },
                  true},
                 {"mapped under a folder that forbids names",
                  [&](const Scene& s) {
                      forbidNames(s);
                      mmap(nullptr, 3, PROT_READ, MAP_PRIVATE, open(s.File.c_str(), O_RDONLY), 0);
                  },
                  true},
                 {"pipe",
                  [](const Scene& s) {
                      fs::remove(s.File);
                      mkfifo(s.File.c_str(), 0600); // whoever opens it waits for another one
                  },
                  false},
                 {"device", [&](const Scene& s) { putLink(s, "/dev/zero"); }, false},
                 {"folder", [&](const Scene& s) { putLink(s, "."); }, false},
                 {"circle", [&](const Scene& s) { putLink(s, s.File); }, false},
                 {"nothing in a folder that is missing", [&](const Scene& s) { putLink(s, "no/such"); }, false}};
    for (const auto& [what, arrange, readable] : cases) {
        SCOPED_TRACE(what);
        const Scene scene;
        arrange(scene);
        EXPECT_FALSE(StorePlainFile(scene.File, "fresh, and longer"));
        LimitFiles(RLIM_INFINITY);
        EXPECT_EQ(ReadPlainFile(scene.File, 100), readable ? std::optional<std::string>("old") : std::nullopt);
        EXPECT_EQ(scene.Names(), 1);
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
