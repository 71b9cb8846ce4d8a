// Files with flipped bits, cut ends and false sizes: each is an error or the right picture, in no more memory
// than it may have.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "CapturedStderr.h"
#include "Codec.h"
#include "FileBytes.h"
#include "PictureError.h"
#include "PictureFiles.h"
#include "TemporaryFolder.h"
#include "ToolRun.h"

namespace pictures {
namespace {

using perch::test::bytesOf;
using perch::test::CapturedStderr;
using perch::test::runTool;
using perch::test::TemporaryFolder;
using perch::test::writeBytes;

// What the file's own check sums cover.
enum class Covered { All, Pixels, Nothing };

struct Format {
    const char* name;
    FileFormat format;
    Covered covered;
};

constexpr Format kFormats[] = {
    {"8.png", FileFormat::Png, Covered::All},           {"16.png", FileFormat::Png, Covered::All},
    {"zip.tif", FileFormat::Tiff, Covered::Pixels},     {"tiles.tif", FileFormat::Tiff, Covered::Pixels},
    {"big.tif", FileFormat::Tiff, Covered::Pixels},     {"old.tif", FileFormat::Tiff, Covered::Pixels},
    {"lzw.tif", FileFormat::Tiff, Covered::Nothing},    {"zip.exr", FileFormat::OpenExr, Covered::Pixels},
    {"piz.exr", FileFormat::OpenExr, Covered::Nothing}, {"a.dpx", FileFormat::Dpx, Covered::Nothing},
    {"a.tga", FileFormat::Targa, Covered::Nothing},     {"runs.tga", FileFormat::Targa, Covered::Nothing},
    {"a.jpg", FileFormat::Jpeg, Covered::Nothing},      {"a.webp", FileFormat::WebP, Covered::Nothing},
};

constexpr std::int64_t kMostPixels = 1 << 21;

// A file of each format.
constexpr char kMakeAll[] =
    "oiiotool --create 64x48 3 --noise:type=uniform:min=0:max=1:seed=7 --blur 5x5 "
    "-d uint8 -o 8.png -o a.dpx -o a.jpg -o a.webp -o a.tga --compression rle -o runs.tga "
    "--compression lzw -o lzw.tif --compression zip -d uint16 -o 16.png -o zip.tif -d half -o zip.exr "
    "--compression piz -o piz.exr --compression zip --tile 16 16 -d uint8 -o tiles.tif && "
    "convert 16.png -endian MSB -compress zip big.tif";

// The same file with deflate named by its number of before it was registered.
std::string withOldDeflate(std::string tiff) {
    using namespace std::string_literals;
    const std::string entry = "\x03\x01\x03\0\x01\0\0\0"s;  // compression: one number of 16 bits
    tiff.replace(tiff.find(entry + "\x08\0"s) + entry.size(), 2, "\xB2\x80");
    return tiff;
}

class DamageTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        folder = std::make_unique<TemporaryFolder>();
        runTool(folder->path, kMakeAll);
        writeBytes(*folder / "old.tif", withOldDeflate(bytesOf(*folder / "zip.tif")));
    }
    static void TearDownTestSuite() { folder.reset(); }

    static Picture decodeWithin(const FileBytes& bytes, FileFormat format) {
        return codec().decode(bytes, format, "", {.pixels = kMostPixels});
    }

    // Whether the picture was refused.
    static bool isRefused(const FileBytes& bytes, FileFormat format, Picture* picture = nullptr) {
        try {
            Picture read = decodeWithin(bytes, format);
            EXPECT_LE(std::int64_t{read.width} * read.height, kMostPixels);
            if (picture != nullptr) *picture = std::move(read);
            return false;
        } catch (const PictureError& error) {
            EXPECT_STRNE(error.what(), "");
            return true;
        }
    }

    static std::unique_ptr<TemporaryFolder> folder;
};

std::unique_ptr<TemporaryFolder> DamageTest::folder;

TEST_F(DamageTest, FlippedBitsAreFoundWhereTheFileHasCheckSums) {
    constexpr int kFlips = 40;
    std::mt19937 random(1);
    for (const Format& format : kFormats) {
        const FileBytes whole = readFile(*folder / format.name);
        const Picture right = decodeWithin(whole, format.format);
        int refused = 0;
        for (int flip = 0; flip < kFlips; ++flip) {
            FileBytes bytes = whole;
            // The pixels are most of the file; its directory is at the beginning or the end.
            const std::size_t margin = format.covered == Covered::Pixels ? bytes.size() / 4 : 0;
            const std::size_t place = margin + random() % (bytes.size() - 2 * margin);
            bytes[place] = static_cast<unsigned char>(bytes[place] ^ (1U << random() % 8));
            Picture picture;
            const bool isFound = isRefused(bytes, format.format, &picture);
            refused += isFound ? 1 : 0;
            if (!isFound && format.covered != Covered::Nothing) {
                EXPECT_EQ(picture.samples, right.samples) << format.name << ", byte " << place;
            }
        }
        std::printf("%-10s %2d of %d flips refused\n", format.name, refused, kFlips);
    }
}

TEST_F(DamageTest, DamageCountsInThePageThatIsReadAlone) {
    runTool(folder->path,
            "oiiotool 16.png --compression zip -o first.tif && "
            "oiiotool 16.png --ch Y=R --compression zip -o second.tif && "
            "oiiotool first.tif second.tif --siappend -o pages.tif");
    FileBytes bytes = readFile(*folder / "pages.tif");
    const auto decodeChannel = [&](const std::string& channel) {
        return codec().decode(bytes, FileFormat::Tiff, channel, {.pixels = kMostPixels});
    };
    EXPECT_NO_THROW(decodeChannel("Y"));
    const std::size_t firstPage = readFile(*folder / "first.tif").size();
    bytes[(firstPage + bytes.size()) / 2] ^= 1U;
    EXPECT_NO_THROW(decodeChannel(""));
    EXPECT_THROW(decodeChannel("Y"), PictureError);
}

TEST_F(DamageTest, CutFilesAreRefusedUnlessTheyHaveThePictureStill) {
    for (const Format& format : kFormats) {
        const FileBytes whole = readFile(*folder / format.name);
        const Picture right = decodeWithin(whole, format.format);
        for (std::size_t part = 0; part < 20; ++part) {
            const auto end = whole.begin() + static_cast<std::ptrdiff_t>(whole.size() * part / 20);
            Picture picture;
            if (!isRefused(FileBytes(whole.begin(), end), format.format, &picture)) {
                EXPECT_EQ(picture.samples, right.samples) << format.name << ", " << part << " twentieths";
            }
        }
    }
}

// The decoders are given all of it, as nothing is refused before.
TEST_F(DamageTest, DecodersPrintNothingOfIt) {
    constexpr std::size_t kParts = 20;
    const CapturedStderr captured;
    const auto decodeAnyway = [](const FileBytes& bytes, FileFormat format) {
        try {
            codec().decode(bytes, format, "", {.pixels = kMostPixels, .acceptsDamage = true});
        } catch (const PictureError&) {
        }
    };
    for (const Format& format : kFormats) {
        const FileBytes whole = readFile(*folder / format.name);
        for (std::size_t part = 0; part < kParts; ++part) {
            const std::size_t place = whole.size() * part / kParts;
            // At the end of a PNG that is cut short the image library forgets a string, which sanitizers
            // report.
            if (format.format != FileFormat::Png) {
                const auto end = whole.begin() + static_cast<std::ptrdiff_t>(place);
                decodeAnyway(FileBytes(whole.begin(), end), format.format);
            }
            FileBytes changed = whole;
            changed[place] = static_cast<unsigned char>(~changed[place]);
            decodeAnyway(changed, format.format);
        }
        EXPECT_EQ(captured.text(), "") << format.name;
    }
}

TEST_F(DamageTest, ClaimedSizesAreNotBelieved) {
    FileBytes tga = readFile(*folder / "a.tga");
    tga[12] = tga[14] = 0x30;
    tga[13] = tga[15] = 0x75;
    try {
        codec().decode(tga, FileFormat::Targa, "", {});
        ADD_FAILURE() << "nothing was thrown";
    } catch (const PictureError& error) {
        EXPECT_STREQ(
            error.what(),
            "it has 30000 x 30000 pixels, 900000000 in all, and --max-pixels allows 268435456; make it "
            "smaller, or allow more");
    }
    EXPECT_FALSE(isRefused(readFile(*folder / "8.png"), FileFormat::Png));
    EXPECT_THROW(codec().decode(readFile(*folder / "8.png"), FileFormat::Png, "", {.bytes = 9000}),
                 PictureError);
}

TEST_F(DamageTest, LimitOfPixelsIsThatOfThePicture) {
    const FileBytes png = readFile(*folder / "8.png");
    EXPECT_NO_THROW(codec().decode(png, FileFormat::Png, "", {.pixels = 64 * 48}));
    EXPECT_THROW(codec().decode(png, FileFormat::Png, "", {.pixels = 64 * 48 - 1}), PictureError);
}

// A TIFF of 8-bit RGB, compressed by LZW into one strip of a few zeros.
FileBytes tiffOfOneStrip(std::uint32_t width, std::uint32_t height) {
    constexpr std::uint32_t kShort = 3;
    constexpr std::uint32_t kLong = 4;
    constexpr std::uint32_t kStripBytes = 40;
    const std::array<std::uint32_t, 4> entries[] = {
        {256, kLong, 1, width}, {257, kLong, 1, height}, {258, kShort, 3, 122},
        {259, kShort, 1, 5},    {262, kShort, 1, 2},     {273, kLong, 1, 128},
        {277, kShort, 1, 3},    {278, kLong, 1, height}, {279, kLong, 1, kStripBytes}};
    FileBytes bytes;
    const auto append = [&](std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i)
            bytes.push_back(static_cast<unsigned char>(value >> (8 * i)));
    };
    append(0x002A4949, 4);
    append(8, 4);
    append(std::size(entries), 2);
    for (const auto& [tag, type, count, value] : entries) {
        append(tag, 2);
        append(type, 2);
        append(count, 4);
        append(value, 4);
    }
    append(0, 4);  // no other directory
    for (int channel = 0; channel < 3; ++channel)
        append(8, 2);
    bytes.resize(bytes.size() + kStripBytes);
    return bytes;
}

TEST_F(DamageTest, StripThatTheReaderCannotCountIsRefused) {
    try {
        codec().decode(tiffOfOneStrip(27000, 27000), FileFormat::Tiff, "", {.pixels = 1 << 30});
        ADD_FAILURE() << "nothing was thrown";
    } catch (const PictureError& error) {
        EXPECT_STREQ(error.what(), "its strips are too large; save it with more strips, or with tiles");
    }
}

}  // namespace
}  // namespace pictures
