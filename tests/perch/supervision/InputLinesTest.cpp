#include "InputLines.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <string_view>
#include <thread>

#include "Error.h"
#include "PictureFiles.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

// A pipe to the program, whose other end a test writes.
struct InputLinesTest : testing::Test {
    int ends[2] = {-1, -1};
    std::atomic<bool> isCancelled{false};

    InputLinesTest() { EXPECT_EQ(pipe(ends), 0); }
    ~InputLinesTest() override {
        close(ends[0]);
        closeWriter();
    }

    void write(std::string_view text) const {
        EXPECT_EQ(::write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void closeWriter() {
        if (ends[1] >= 0) close(ends[1]);
        ends[1] = -1;
    }
    InputLines lines() const { return {ends[0], isCancelled}; }
};

TEST_F(InputLinesTest, LinesComeOneByOneHoweverTheyWereWritten) {
    InputLines lines = this->lines();
    write("1-");
    EXPECT_EQ(lines.nextThatIsThere(), std::nullopt);
    write("3\r\n\n7\nlast");
    EXPECT_EQ(lines.next(), "1-3");
    EXPECT_EQ(lines.nextThatIsThere(), "");
    EXPECT_EQ(lines.next(), "7");
    EXPECT_EQ(lines.nextThatIsThere(), std::nullopt);
    closeWriter();
    EXPECT_EQ(lines.next(), "last");
    EXPECT_EQ(lines.next(), std::nullopt);
    EXPECT_EQ(lines.nextThatIsThere(), std::nullopt);
}

TEST_F(InputLinesTest, CancellingEndsTheWait) {
    InputLines lines = this->lines();
    std::thread canceller([this] { isCancelled = true; });
    EXPECT_EQ(lines.next(), std::nullopt);
    canceller.join();
}

TEST_F(InputLinesTest, LineOfNoEndIsAnError) {
    const TemporaryFolder folder;
    writeBytes(folder / "input", "1\n" + std::string((1 << 20) + 1, '1'));
    const int file = open((folder / "input").c_str(), O_RDONLY);
    InputLines lines(file, isCancelled);
    EXPECT_EQ(lines.next(), "1");
    EXPECT_THROW(lines.next(), InputError);
    close(file);
}

TEST_F(InputLinesTest, WhatCannotBeReadIsAnError) {
    const int folder = open("/", O_RDONLY | O_DIRECTORY);
    EXPECT_THROW(InputLines(folder, isCancelled).next(), InputError);
    close(folder);
}

}  // namespace
}  // namespace perch::test
