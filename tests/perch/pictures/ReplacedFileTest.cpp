#include "ReplacedFile.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <set>
#include <string>
#include <thread>

#include "PictureError.h"
#include "PictureFiles.h"
#include "TemporaryFolder.h"

namespace pictures {
namespace {

namespace fs = std::filesystem;
using perch::test::bytesOf;
using perch::test::TemporaryFolder;
using perch::test::writeBytes;
using testing::HasSubstr;

std::span<const unsigned char> asBytes(std::string_view text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

class ReplacedFileTest : public testing::Test {
protected:
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : fs::directory_iterator(folder.path))
            found.insert(entry.path().filename().string());
        return found;
    }

    std::string failureToPrepare(const std::string& name) const { return failureOf(prepareToReplace, name); }

    std::string failureOf(void (*check)(std::span<const fs::path>), const std::string& name) const {
        const fs::path path = folder / name;
        try {
            check({&path, 1});
        } catch (const PictureError& error) {
            return error.what();
        }
        return "nothing was thrown";
    }

    // The name of the temporary file that a process killed while it wrote `name` leaves.
    std::string leftoverOf(const std::string& name) const {
        const pid_t child = fork();
        if (child == 0) {
            // The signal of the limit ends the process in the middle of the write, as a kill would.
            signal(SIGXFSZ, SIG_DFL);
            const rlimit limit{10, 10};
            setrlimit(RLIMIT_FSIZE, &limit);
            const rlimit noCore{0, 0};
            setrlimit(RLIMIT_CORE, &noCore);
            replaceFile(folder / name, asBytes("more bytes than the limit lets through"));
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status));
        for (const std::string& found : names()) {
            if (found.starts_with(".perch-")) return found;
        }
        ADD_FAILURE() << "nothing was left behind";
        return "";
    }

    TemporaryFolder folder;
};

TEST_F(ReplacedFileTest, AnOlderFileIsReplacedAndNoOtherIsLeft) {
    replaceFile(folder / "a", asBytes("first, longer"));
    replaceFile(folder / "a", asBytes("second"));
    EXPECT_EQ(bytesOf(folder / "a"), "second");
    EXPECT_EQ(names(), std::set<std::string>{"a"});
}

TEST_F(ReplacedFileTest, FailuresLeaveNoFile) {
    fs::create_directory(folder / "taken");
    EXPECT_THROW(replaceFile(folder / "taken", asBytes("a folder has this name")), PictureError);
    EXPECT_THROW(replaceFile(folder / "none/a", asBytes("no such folder")), PictureError);
    EXPECT_EQ(names(), std::set<std::string>{"taken"});
}

TEST_F(ReplacedFileTest, ModeAndOwnerOfAReplacedFileAreKept) {
    writeBytes(folder / "a", "older");
    ASSERT_EQ(chmod((folder / "a").c_str(), 0640), 0);
    const bool isSuperUser = geteuid() == 0;
    if (isSuperUser) {
        ASSERT_EQ(chown((folder / "a").c_str(), 12345, 54321), 0);
    }
    replaceFile(folder / "a", asBytes("newer"));
    struct stat status {};
    ASSERT_EQ(stat((folder / "a").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
    EXPECT_EQ(status.st_uid, isSuperUser ? 12345 : geteuid());
    EXPECT_EQ(bytesOf(folder / "a"), "newer");
}

TEST_F(ReplacedFileTest, NewFilesHaveTheModeOfTheUsersMask) {
    const mode_t before = umask(027);
    replaceFile(folder / "a", asBytes("x"));
    umask(before);
    struct stat status {};
    ASSERT_EQ(stat((folder / "a").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST_F(ReplacedFileTest, WhatALinkLeadsToIsReplacedAndTheLinkStays) {
    fs::create_directory(folder / "other");
    writeBytes(folder / "other/a", "older");
    fs::create_symlink("other/a", folder / "near");
    fs::create_symlink(folder / "near", folder / "chain");
    fs::create_symlink("other/new", folder / "dangling");
    replaceFile(folder / "chain", asBytes("newer"));
    replaceFile(folder / "dangling", asBytes("new"));
    EXPECT_EQ(bytesOf(folder / "other/a"), "newer");
    EXPECT_EQ(bytesOf(folder / "other/new"), "new");
    EXPECT_TRUE(fs::is_symlink(folder / "near") && fs::is_symlink(folder / "chain"));
    EXPECT_TRUE(fs::is_symlink(folder / "dangling"));
    fs::create_symlink("circle", folder / "circle");
    EXPECT_THROW(replaceFile(folder / "circle", asBytes("x")), PictureError);
}

TEST_F(ReplacedFileTest, WhatCannotBeReplacedIsRefusedBeforeTheWork) {
    fs::create_directory(folder / "folder");
    writeBytes(folder / "locked", "older");
    ASSERT_EQ(chmod((folder / "locked").c_str(), 0444), 0);
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_THAT(failureToPrepare("folder"), HasSubstr("a folder has this name; choose another"));
    EXPECT_THAT(failureToPrepare("locked"),
                HasSubstr("it is read-only; choose another name or change its mode"));
    EXPECT_THAT(failureToPrepare("pipe"), HasSubstr("it is not a file; choose another name"));
    EXPECT_THAT(failureToPrepare("/proc/a"), HasSubstr("check its folder"));
    EXPECT_THAT(failureToPrepare("one/two/a"), HasSubstr("there is no folder"));
    EXPECT_EQ(bytesOf(folder / "locked"), "older");
}

TEST_F(ReplacedFileTest, WhatWouldBeRefusedIsFoundWithoutAChange) {
    fs::create_directory(folder / "folder");
    writeBytes(folder / "locked", "older");
    ASSERT_EQ(chmod((folder / "locked").c_str(), 0444), 0);
    for (const std::string name : {"folder", "locked", "locked/a", "one/two/a", "folder/a", "new/a", "a"}) {
        const std::set<std::string> before = names();
        const std::string found = failureOf(requireReplaceable, name);
        EXPECT_EQ(names(), before) << name;
        EXPECT_EQ(found, failureToPrepare(name));
    }
}

TEST_F(ReplacedFileTest, AFolderWhoseParentExistsIsMade) {
    EXPECT_EQ(failureToPrepare("new/a"), "nothing was thrown");
    EXPECT_TRUE(fs::is_directory(folder / "new"));
    EXPECT_TRUE(fs::is_empty(folder / "new"));
}

TEST_F(ReplacedFileTest, WhatAKilledRunLeftIsRemovedByTheNextForTheSameName) {
    const std::string leftover = leftoverOf("a");
    EXPECT_EQ(failureToPrepare("b"), "nothing was thrown");
    EXPECT_EQ(names(), std::set<std::string>{leftover}) << "of another name";
    {
        const int running = open((folder / leftover).c_str(), O_RDONLY);
        ASSERT_EQ(flock(running, LOCK_EX | LOCK_NB), 0);
        EXPECT_EQ(failureToPrepare("a"), "nothing was thrown");
        EXPECT_EQ(names(), std::set<std::string>{leftover}) << "of a run under way";
        close(running);
    }
    EXPECT_EQ(failureToPrepare("a"), "nothing was thrown");
    EXPECT_EQ(names(), std::set<std::string>());
}

// Each tidies up when it begins, whatever the other has just made and not locked yet.
TEST_F(ReplacedFileTest, RunsForTheSameNameAtOnceDoNotHarmEachOther) {
    constexpr int kRounds = 100;
    std::atomic<bool> isOver{false};
    std::thread other([&] {
        while (!isOver)
            EXPECT_EQ(failureToPrepare("a"), "nothing was thrown");
    });
    for (int i = 0; i < kRounds; ++i)
        EXPECT_NO_THROW(replaceFile(folder / "a", asBytes("whole")));
    isOver = true;
    other.join();
    EXPECT_EQ(bytesOf(folder / "a"), "whole");
    EXPECT_EQ(names(), std::set<std::string>{"a"});
}

}  // namespace
}  // namespace pictures
