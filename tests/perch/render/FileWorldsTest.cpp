#include "FileWorlds.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <thread>

#include "Error.h"
#include "FileSizeLimit.h"
#include "PictureFiles.h"
#include "PixelAccess.h"
#include "TemporaryFolder.h"

namespace perch {
namespace {

using namespace test;

using Codes = std::vector<int>;

template <typename P>
Codes codesOf(const P& pixel) {
    return {pixel.alpha, pixel.red, pixel.green, pixel.blue};
}

// Alpha, red, green, blue of a picture of one pixel.
Codes onePixel(const FileWorld& picture) {
    return picture.pixels.isDeep() ? codesOf(pixelRow<PF_Pixel16>(picture.pixels.record(), 0)[0])
                                   : codesOf(pixelRow<PF_Pixel>(picture.pixels.record(), 0)[0]);
}

class FileWorldsTest : public testing::Test {
protected:
    std::string failureToRead(const std::string& name) const {
        try {
            readWorld(folder / name);
        } catch (const Error& error) {
            return error.what();
        }
        return "nothing was thrown";
    }

    std::string failureToWrite(const std::string& name, const World& world, bool withAlpha) const {
        try {
            writeWorld(folder / name, world, withAlpha);
        } catch (const Error& error) {
            return error.what();
        }
        return "nothing was thrown";
    }

    std::string sentence(const std::string& verb, const std::string& name, const std::string& reason) const {
        return "cannot " + verb + " \"" + (folder / name).string() + "\": " + reason;
    }

    std::size_t fileCount() const {
        const auto entries = std::filesystem::directory_iterator(folder.path);
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }

    TemporaryFolder folder;
};

TEST_F(FileWorldsTest, EveryCodeOfADeepWorldSurvivesAFile) {
    constexpr std::int32_t kCodes = 32769;
    World world(kCodes, 1, true);
    std::uint16_t code = 0;
    for (PF_Pixel16& pixel : pixelRow<PF_Pixel16>(world.record(), 0)) {
        pixel = {code, static_cast<std::uint16_t>(kCodes - 1 - code), code, 0};
        ++code;
    }
    for (const char* name : {"a.png", "a.tif", "a.TIFF"}) {
        // Wider than the largest picture that is read: two rows of half of it.
        World folded(kCodes / 3, 3, true);
        for (std::int32_t y = 0; y < 3; ++y) {
            const auto source =
                pixelRow<PF_Pixel16>(world.record(), 0).subspan(static_cast<std::size_t>(y * (kCodes / 3)));
            std::copy_n(source.begin(), kCodes / 3, pixelRow<PF_Pixel16>(folded.record(), y).begin());
        }
        writeWorld(folder / name, folded, true);
        const FileWorld read = readWorld(folder / name);
        ASSERT_TRUE(read.pixels.isDeep()) << name;
        EXPECT_TRUE(read.source->hasAlpha()) << name;
        for (std::int32_t y = 0; y < 3; ++y) {
            for (std::size_t x = 0; x < kCodes / 3; ++x) {
                ASSERT_EQ(codesOf(pixelRow<PF_Pixel16>(read.pixels.record(), y)[x]),
                          codesOf(pixelRow<PF_Pixel16>(folded.record(), y)[x]))
                    << name << ", x " << x << ", y " << y;
            }
        }
    }
}

TEST_F(FileWorldsTest, EveryCodeOfAnEightBitWorldSurvivesAFile) {
    World world(256, 1, false);
    A_u_char code = 0;
    for (PF_Pixel& pixel : pixelRow<PF_Pixel>(world.record(), 0)) {
        pixel = {static_cast<A_u_char>(255 - code), code, static_cast<A_u_char>(code ^ 0x55), 7};
        ++code;
    }
    for (const char* name : {"a.png", "a.tif"}) {
        writeWorld(folder / name, world, true);
        const FileWorld read = readWorld(folder / name);
        ASSERT_FALSE(read.pixels.isDeep()) << name;
        for (std::size_t x = 0; x < 256; ++x) {
            ASSERT_EQ(codesOf(pixelRow<PF_Pixel>(read.pixels.record(), 0)[x]),
                      codesOf(pixelRow<PF_Pixel>(world.record(), 0)[x]))
                << name << ", x " << x;
        }
    }
}

TEST_F(FileWorldsTest, SixteenBitFileCodesAreRoundedToTheNearestOfADeepWorld) {
    constexpr int kSide = 256;
    std::vector<std::uint16_t> samples(kSide * kSide);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::uint16_t>(i);
    writeFile(folder / "grey.png", {kSide, kSide, 1}, samples);
    const FileWorld read = readWorld(folder / "grey.png");
    EXPECT_FALSE(read.source->hasAlpha());
    for (std::uint32_t code = 0; code < samples.size(); ++code) {
        const PF_Pixel16& pixel =
            pixelRow<PF_Pixel16>(read.pixels.record(), static_cast<std::int32_t>(code / kSide))[code % kSide];
        const int expected = static_cast<int>((code * 32768U + 32767U) / 65535U);
        ASSERT_EQ(codesOf(pixel), (Codes{32768, expected, expected, expected})) << "code " << code;
    }
}

TEST_F(FileWorldsTest, ChannelsOfTheFileBecomeThoseOfTheWorld) {
    struct Case {
        const char* name;
        FileShape shape;
        std::vector<std::uint8_t> samples;
        Codes codes;
        bool hasAlpha;
    };
    const Case cases[] = {
        {"grey.png", {1, 1, 1}, {100}, {255, 100, 100, 100}, false},
        {"grey-alpha.png", {1, 1, 2}, {100, 50}, {50, 100, 100, 100}, true},
        {"rgb.png", {1, 1, 3}, {10, 20, 30}, {255, 10, 20, 30}, false},
        {"rgba.png", {1, 1, 4}, {10, 20, 30, 40}, {40, 10, 20, 30}, true},
        {"straight-without-alpha.tif", {1, 1, 4}, {10, 20, 30, 0}, {0, 10, 20, 30}, true},
        {"rgba.tif", {1, 1, 4}, {10, 20, 30, 40}, {40, 10, 20, 30}, true},
        {"premultiplied.tif", {1, 1, 4, true}, {10, 20, 40, 51}, {51, 50, 100, 200}, true},
        {"brighter-than-alpha.tif", {1, 1, 4, true}, {80, 20, 40, 51}, {51, 255, 100, 200}, true},
        {"premultiplied-without-alpha.tif", {1, 1, 4, true}, {0, 0, 0, 0}, {0, 0, 0, 0}, true},
        {"grey.jpg", {1, 1, 1}, {128}, {255, 128, 128, 128}, false},
    };
    for (const Case& c : cases) {
        writeFile(folder / c.name, c.shape, c.samples);
        const FileWorld read = readWorld(folder / c.name);
        EXPECT_EQ(onePixel(read), c.codes) << c.name;
        EXPECT_EQ(read.source->hasAlpha(), c.hasAlpha) << c.name;
        EXPECT_FALSE(read.pixels.isDeep()) << c.name;
    }
}

TEST_F(FileWorldsTest, DepthIsConvertedWhenAskedFor) {
    writeFile<std::uint8_t>(folder / "8.png", {}, {1, 128, 254, 255});
    writeFile<std::uint16_t>(folder / "16.png", {}, {128, 129, 65407, 65535});
    EXPECT_EQ(onePixel(readWorld(folder / "8.png", Depth::Bits16)), (Codes{32768, 129, 16448, 32639}));
    EXPECT_EQ(onePixel(readWorld(folder / "16.png", Depth::Bits8)), (Codes{255, 0, 1, 255}));
    EXPECT_EQ(onePixel(readWorld(folder / "8.png", Depth::Bits8)), (Codes{255, 1, 128, 254}));
}

TEST_F(FileWorldsTest, FilesThatAreNoPicturesAreRefusedAndTheSentenceSaysHowToMendIt) {
    writeBytes(folder / "text.png", "not a picture");
    writeBytes(folder / "empty.png", "");
    writeFile<std::uint32_t>(folder / "wide.tif", {}, {0, 0, 0, 1});
    writeFile<std::uint8_t>(folder / "five.tif", {1, 1, 5}, {1, 2, 3, 4, 5});
    writeFile<std::uint8_t>(folder / "other.bmp", {1, 1, 3}, {1, 2, 3});
    const std::string notPicture =
        "it is not a picture, or a damaged one; name a PNG, TIFF, OpenEXR, DPX, TGA, JPEG or WebP file";
    const std::pair<const char*, std::string> cases[] = {
        {"absent.png", "there is no such file; check the name"},
        {".", "it is a folder; name a file"},
        {"text.png", notPicture},
        {"empty.png", notPicture},
        {"wide.tif", "it has 32-bit integer channels; convert it to 8 or 16 bits per channel, or floats"},
        {"five.tif", "it has 5 channels; convert it to grey or RGB, with or without alpha"},
        {"other.bmp", "it is a BMP file; convert it to PNG, TIFF or OpenEXR"},
    };
    for (const auto& [name, reason] : cases)
        EXPECT_EQ(failureToRead(name), sentence("read", name, reason));
}

TEST_F(FileWorldsTest, CutFilesAreRefused) {
    constexpr int kSide = 64;
    std::vector<std::uint8_t> noise(kSide * kSide * 3);
    std::uint32_t state = 1;
    for (std::uint8_t& sample : noise)
        sample = static_cast<std::uint8_t>((state = state * 1664525U + 1013904223U) >> 24);
    for (const char* name : {"a.png", "a.tif", "a.jpg"}) {
        writeFile(folder / name, {kSide, kSide, 3}, noise);
        ASSERT_EQ(failureToRead(name), "nothing was thrown") << name;
        const std::string whole = bytesOf(folder / name);
        for (const std::size_t part : {1U, 10U, 30U, 50U, 70U, 90U, 99U}) {
            const std::size_t length = whole.size() * part / 100;
            writeBytes(folder / name, whole.substr(0, length));
            EXPECT_NE(failureToRead(name), "nothing was thrown") << name << ", " << length << " bytes";
        }
    }
}

TEST_F(FileWorldsTest, OutputsThatCannotBeAreRefusedAndTheSentenceSaysHowToMendIt) {
    std::filesystem::create_directory(folder / "folder.png");
    const World eight(1, 1, false);
    const World deep(1, 1, true);
    struct Case {
        const char* name;
        const World& world;
        bool withAlpha;
        std::string reason;
    };
    const std::string extensions = "its name must end in .png, .tif, .tiff, .exr, .dpx, .tga, .jpg or .jpeg";
    const Case cases[] = {
        {"a", eight, false, extensions},
        {"a.webp", eight, false, extensions},
        {"a.exr", eight, false,
         "OpenEXR holds half floats or floats per channel and the picture has 8 bits; use .png or .tif, or "
         "another --output-depth"},
        {"a.jpg", deep, false,
         "JPEG holds 8 bits per channel and the picture has 16 bits; use .png or .tif, or another "
         "--output-depth"},
        {"a.jpeg", eight, true, "JPEG holds no alpha and the picture has one; use .png or .tif"},
        {"none/a.png", eight, false,
         "there is no folder \"" + (folder / "none").string() + "\"; create it first"},
        {"folder.png", eight, false, "a folder has this name; choose another"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(failureToWrite(c.name, c.world, c.withAlpha), sentence("write", c.name, c.reason));
    }
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileWorldsTest, FullDiskLeavesTheFileBeforeAndNoPartOfTheNew) {
    World world(200, 200, false);
    std::uint32_t state = 1;
    for (std::int32_t y = 0; y < 200; ++y) {
        for (PF_Pixel& pixel : pixelRow<PF_Pixel>(world.record(), y)) {
            state = state * 1664525U + 1013904223U;
            pixel = {255, static_cast<A_u_char>(state >> 24), static_cast<A_u_char>(state >> 16), 0};
        }
    }
    for (const char* name : {"a.png", "a.tif", "a.jpg"}) {
        writeBytes(folder / name, "before");
        const std::filesystem::path whole = folder / ("whole-" + std::string(name));
        writeWorld(whole, world, false);
        const std::uintmax_t size = std::filesystem::file_size(whole);
        const std::size_t files = fileCount();
        // The last bytes are written when the file is closed.
        for (const std::uintmax_t limit : {std::uintmax_t{0}, std::uintmax_t{1000}, size / 2, size - 10}) {
            std::string failure;
            {
                const FileSizeLimit full(limit);
                failure = failureToWrite(name, world, false);
            }
            EXPECT_EQ(failure.find(sentence("write", name, "")), 0U)
                << name << ", limit " << limit << ": " << failure;
            EXPECT_EQ(bytesOf(folder / name), "before") << name << ", limit " << limit;
            EXPECT_EQ(fileCount(), files) << name << ", limit " << limit;
        }
    }
}

TEST_F(FileWorldsTest, EveryCompressionHoldsTheSamePicture) {
    World world(64, 48, true);
    for (std::int32_t y = 0; y < 48; ++y) {
        PF_Pixel16 next{32768, 0, 0, 0};
        for (PF_Pixel16& pixel : pixelRow<PF_Pixel16>(world.record(), y)) {
            pixel = next;
            next = {next.alpha, static_cast<A_u_short>(next.red + 300), static_cast<A_u_short>(y * 600), 7};
        }
    }
    for (const char* const name : {"a.png", "a.tif"}) {
        std::vector<std::uintmax_t> sizes;
        for (int level = 0; level <= kMostCompression; ++level) {
            writeWorld(folder / name, world, true, {.compression = level});
            EXPECT_EQ(readWorld(folder / name).pixels.checksum(), world.checksum())
                << name << ", level " << level;
            sizes.push_back(std::filesystem::file_size(folder / name));
        }
        EXPECT_GT(sizes[0], 64U * 48U * 8U) << name;
        EXPECT_LT(sizes[kFastCompression], sizes[0] / 4) << name;
    }
}

TEST_F(FileWorldsTest, WithoutAlphaTheFileHasThreeChannels) {
    World world(1, 1, false);
    pixelRow<PF_Pixel>(world.record(), 0)[0] = {9, 1, 2, 3};
    writeWorld(folder / "a.png", world, false);
    const FileWorld read = readWorld(folder / "a.png");
    EXPECT_FALSE(read.source->hasAlpha());
    EXPECT_EQ(onePixel(read), (Codes{255, 1, 2, 3}));
}

TEST_F(FileWorldsTest, SamePixelsGiveTheSameBytesAtAnyTime) {
    const World world(3, 2, false);
    const std::chrono::year_month_day today{
        std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now())};
    // Files keep a date as text, or in a chunk of its own.
    const std::string year = std::to_string(int{today.year()});
    for (const char* name : {"a.png", "a.tif", "a.jpg", "a.dpx"}) {
        writeWorld(folder / name, world, false);
        const std::string bytes = bytesOf(folder / name);
        for (const std::string& date : {year + ":", year + "-", std::string("1970")})
            EXPECT_EQ(bytes.find(date), std::string::npos) << name;
        EXPECT_EQ(bytes.find("tIME"), std::string::npos) << name;
        writeWorld(folder / name, world, false);
        EXPECT_EQ(bytesOf(folder / name), bytes) << name;
    }
}

TEST_F(FileWorldsTest, AlphaIsNeededWhereOneIsBelowWhite) {
    World world(2, 1, true);
    for (PF_Pixel16& pixel : pixelRow<PF_Pixel16>(world.record(), 0))
        pixel.alpha = 32768;
    EXPECT_TRUE(needsNoAlpha(world));
    pixelRow<PF_Pixel16>(world.record(), 0)[0].alpha = 32769;
    EXPECT_TRUE(needsNoAlpha(world));
    pixelRow<PF_Pixel16>(world.record(), 0)[1].alpha = 32767;
    EXPECT_FALSE(needsNoAlpha(world));
}

}  // namespace
}  // namespace perch
