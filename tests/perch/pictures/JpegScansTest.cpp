#include "JpegScans.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "FileBytes.h"
#include "PictureFiles.h"
#include "TemporaryFolder.h"
#include "ToolRun.h"

namespace pictures {
namespace {

using perch::test::runTool;
using perch::test::TemporaryFolder;
using perch::test::writeFile;

FileBytes jpeg() {
    const TemporaryFolder folder;
    std::vector<std::uint8_t> samples(64 * 48 * 3);
    std::uint32_t state = 1;
    for (std::uint8_t& sample : samples)
        sample = static_cast<std::uint8_t>((state = state * 1664525U + 1013904223U) >> 24);
    writeFile(folder / "noise.jpg", {64, 48, 3}, samples);
    return readFile(folder / "noise.jpg");
}

TEST(JpegScansTest, WholeFilesOfEveryKindAreLeftAlone) {
    const TemporaryFolder folder;
    runTool(folder.path,
            "convert -size 64x48 plasma:red-blue -depth 8 -write a.png -write 0.jpg "
            "-quality 100 -sampling-factor 1x1 -write 1.jpg -interlace JPEG -write 2.jpg "
            "-colorspace gray -write 3.jpg -interlace none -colorspace CMYK 4.jpg && "
            "oiiotool a.png -o 5.jpg && "
            "ffmpeg -v error -i a.png 6.jpg -pix_fmt yuvj444p -huffman default 7.jpg");
    for (int i = 0; i < 8; ++i)
        EXPECT_FALSE(hasDamagedScan(readFile(folder / (std::to_string(i) + ".jpg")))) << i;
}

TEST(JpegScansTest, BytesThatNoBlockNeedsAreDamage) {
    FileBytes bytes = jpeg();
    bytes.insert(bytes.end() - 2, 40, 0);
    EXPECT_TRUE(hasDamagedScan(bytes));
}

TEST(JpegScansTest, BlocksThatHaveNoBytesAreDamage) {
    FileBytes bytes = jpeg();
    bytes.erase(bytes.end() - 60, bytes.end() - 2);
    EXPECT_TRUE(hasDamagedScan(bytes));
}

TEST(JpegScansTest, WhatTheDecoderGivesUpIsDamage) {
    FileBytes bytes = jpeg();
    const std::string text(bytes.begin(), bytes.end());
    bytes[text.find("\xFF\xC4") + 4] = 99;  // a table of codes of a class that there is none of
    EXPECT_TRUE(hasDamagedScan(bytes));
}

TEST(JpegScansTest, BytesBehindTheEndAreNone) {
    FileBytes bytes = jpeg();
    bytes.insert(bytes.end(), 40, 0);
    EXPECT_FALSE(hasDamagedScan(bytes));
}

}  // namespace
}  // namespace pictures
