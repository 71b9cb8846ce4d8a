// Writes that are given up on the way.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "CapturedStderr.h"
#include "Codec.h"
#include "PictureFile.h"
#include "PictureFiles.h"
#include "TemporaryFolder.h"

namespace pictures {
namespace {

using perch::test::bytesOf;
using perch::test::CapturedStderr;
using perch::test::TemporaryFolder;
using perch::test::writeBytes;

constexpr FileFormat kWritten[] = {FileFormat::Png, FileFormat::Tiff,  FileFormat::OpenExr,
                                   FileFormat::Dpx, FileFormat::Targa, FileFormat::Jpeg};

constexpr std::int32_t kHeight = 1000;

struct GivenUp {};

Picture tallPicture(FileFormat format) {
    return newPicture(8, kHeight, 3, format == FileFormat::OpenExr ? SampleType::Half : SampleType::Bits8);
}

// Options whose checkpoints are counted, and end the write at the n-th; never for 0.
struct Checkpoints {
    int endAt = 0;
    int reached = 0;
    EncodingOptions options{.checkpoint = [this] {
        if (++reached == endAt) throw GivenUp();
    }};
};

TEST(CancelledWriteTest, EncodingStopsAfterAFewRowsInEveryFormat) {
    const CapturedStderr captured;
    for (const FileFormat format : kWritten) {
        SCOPED_TRACE(nameOf(format));
        const Picture picture = tallPicture(format);
        Checkpoints whole;
        codec().encode(picture, {.format = format, .options = whole.options});
        EXPECT_GE(whole.reached, kHeight / 100);
        Checkpoints ended{.endAt = 3};
        EXPECT_THROW(codec().encode(picture, {.format = format, .options = ended.options}), GivenUp);
        EXPECT_EQ(ended.reached, 3);
    }
    EXPECT_EQ(captured.text(), "");
}

TEST(CancelledWriteTest, TellsWhenAllButTheDiskIsDone) {
    const TemporaryFolder folder;
    const Picture picture = tallPicture(FileFormat::Png);
    Checkpoints encoding;
    codec().encode(picture, {.format = FileFormat::Png, .options = encoding.options});
    Checkpoints whole;
    std::vector<int> tells;
    whole.options.isEncoded = [&] {
        tells.push_back(whole.reached);
        EXPECT_TRUE(std::filesystem::is_empty(folder.path));
    };
    writePicture(folder / "a.png", picture, whole.options);
    EXPECT_EQ(tells, std::vector<int>{encoding.reached});
    Checkpoints ended{.endAt = encoding.reached};
    ended.options.isEncoded = [] { FAIL(); };
    EXPECT_THROW(writePicture(folder / "a.png", picture, ended.options), GivenUp);
}

TEST(CancelledWriteTest, AFileStaysAsItWasWhereverItsWriteEnds) {
    const TemporaryFolder folder;
    const Picture picture = tallPicture(FileFormat::Png);
    Checkpoints whole;
    writePicture(folder / "whole.png", picture, whole.options);
    std::filesystem::remove(folder / "whole.png");
    writeBytes(folder / "a.png", "older");
    for (int end = 1; end <= whole.reached; ++end) {
        Checkpoints ended{.endAt = end};
        EXPECT_THROW(writePicture(folder / "a.png", picture, ended.options), GivenUp) << end;
        EXPECT_EQ(bytesOf(folder / "a.png"), "older");
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path))
            names.insert(entry.path().filename());
        EXPECT_EQ(names, std::set<std::string>{"a.png"}) << end;
    }
}

}  // namespace
}  // namespace pictures
