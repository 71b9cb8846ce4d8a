#include "PictureEnd.h"

#include <gtest/gtest.h>

#include "PictureFiles.h"
#include "TemporaryFolder.h"

namespace pictures {
namespace {

using perch::test::bytesOf;
using perch::test::TemporaryFolder;
using perch::test::writeFile;

// Colour noise, encoded in the format of the name's ending.
std::string fileOf(const std::string& name) {
    const TemporaryFolder folder;
    std::vector<std::uint8_t> samples(9 * 7 * 3);
    std::uint32_t state = 1;
    for (std::uint8_t& sample : samples)
        sample = static_cast<std::uint8_t>((state = state * 1664525U + 1013904223U) >> 24);
    writeFile(folder / name, {9, 7, 3}, samples);
    return bytesOf(folder / name);
}

bool reachesItsEnd(const std::string& bytes, FileFormat format) {
    return pictures::reachesItsEnd({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()},
                                   format);
}

TEST(PictureEndTest, EveryBeginningOfAPngIsFoundCutShort) {
    const std::string whole = fileOf("noise.png");
    EXPECT_TRUE(reachesItsEnd(whole, FileFormat::Png));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(reachesItsEnd(whole.substr(0, size), FileFormat::Png)) << size << " of " << whole.size();
    }
}

TEST(PictureEndTest, APngThatEndsBeforeItsSizeIsNotAnEmptyOne) {
    const std::string whole = fileOf("noise.png");
    for (std::size_t size = 0; size < 24; ++size) {
        const auto* const bytes = reinterpret_cast<const unsigned char*>(whole.data());
        EXPECT_FALSE(isEmptyPng({bytes, size}, FileFormat::Png)) << size;
    }
}

TEST(PictureEndTest, EveryBeginningOfAJpegIsFoundCutShort) {
    const std::string whole = fileOf("noise.jpg");
    EXPECT_TRUE(reachesItsEnd(whole, FileFormat::Jpeg));
    EXPECT_TRUE(reachesItsEnd(whole + "bytes after the end", FileFormat::Jpeg));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(reachesItsEnd(whole.substr(0, size), FileFormat::Jpeg))
            << size << " of " << whole.size();
    }
}

TEST(PictureEndTest, TheEndOfAThumbnailIsNotTheEndOfItsJpeg) {
    const std::string thumbnail("\xFF\xE1\x00\x06\xFF\xD8\xFF\xD9", 8);
    const std::string fillByte = "\xFF";
    const std::string bytes = fileOf("noise.jpg").insert(2, thumbnail + fillByte);
    EXPECT_TRUE(reachesItsEnd(bytes, FileFormat::Jpeg));
    EXPECT_FALSE(reachesItsEnd(bytes.substr(0, bytes.size() - 2), FileFormat::Jpeg));
}

}  // namespace
}  // namespace pictures
