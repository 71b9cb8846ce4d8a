// Files with flipped bits, cut ends and false sizes: each is an error or the right picture, in no more memory
// than it may have.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
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
    int leastFound = 0;    // of kFlips; what has no check sums shows some flips all the same
    double mostWrong = 0;  // the largest part of the samples that a flip may change and not be found
};

constexpr int kFlips = 40;
constexpr double kPixel = 1.0 / (64 * 48);
constexpr double kAny = 1;

constexpr Format kFormats[] = {
    {"8.png", FileFormat::Png, Covered::All, kFlips},
    {"16.png", FileFormat::Png, Covered::All, kFlips},
    {"zip.tif", FileFormat::Tiff, Covered::Pixels, kFlips},
    {"tiles.tif", FileFormat::Tiff, Covered::Pixels, kFlips},
    {"big.tif", FileFormat::Tiff, Covered::Pixels, kFlips},
    {"old.tif", FileFormat::Tiff, Covered::Pixels, kFlips},
    {"lzw.tif", FileFormat::Tiff, Covered::Nothing, 8, 0.1},
    {"bits.tif", FileFormat::Tiff, Covered::Nothing, 0, 0.05},
    {"zip.exr", FileFormat::OpenExr, Covered::Pixels, kFlips},
    {"piz.exr", FileFormat::OpenExr, Covered::Nothing, 2, kAny},
    {"a.dpx", FileFormat::Dpx, Covered::Nothing, 0, kPixel},
    {"a.tga", FileFormat::Targa, Covered::Nothing, 0, kPixel},
    {"runs.tga", FileFormat::Targa, Covered::Nothing, 0, 0.05},
    {"a.jpg", FileFormat::Jpeg, Covered::Nothing, 5, kAny},
    {"a.webp", FileFormat::WebP, Covered::Nothing, 0, kAny},
    {"lossless.webp", FileFormat::WebP, Covered::Nothing, 1, kAny},
};

constexpr std::int64_t kMostPixels = 1 << 21;

// A file of each format.
constexpr char kMakeAll[] =
    "oiiotool --create 64x48 3 --noise:type=uniform:min=0:max=1:seed=7 --blur 5x5 "
    "-d uint8 -o 8.png -o a.dpx -o a.jpg -o a.webp -o a.tga --compression rle -o runs.tga "
    "--compression lzw -o lzw.tif --compression packbits -o bits.tif --compression zip -d uint16 -o 16.png "
    "-o zip.tif -d half -o zip.exr "
    "--compression piz -o piz.exr --compression zip --tile 16 16 -d uint8 -o tiles.tif && "
    "convert 16.png -endian MSB -compress zip big.tif && "
    "convert 8.png -define webp:lossless=true lossless.webp";

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

double wrongPart(const Picture& picture, const Picture& right) {
    return std::visit(
        [&](const auto& samples) {
            using Samples = std::decay_t<decltype(samples)>;
            const auto* const expected = std::get_if<Samples>(&right.samples);
            if (expected == nullptr || samples.size() != expected->size()) return 1.0;
            std::size_t wrong = 0;
            for (std::size_t i = 0; i < samples.size(); ++i)
                if (samples[i] != (*expected)[i]) ++wrong;
            return static_cast<double>(wrong) / static_cast<double>(samples.size());
        },
        picture.samples);
}

TEST_F(DamageTest, FlippedBitsAreFoundAsFarAsTheFormatLetsThem) {
    std::mt19937 random(1);
    for (const Format& format : kFormats) {
        const FileBytes whole = readFile(*folder / format.name);
        const Picture right = decodeWithin(whole, format.format);
        int refused = 0;
        double worst = 0;
        for (int flip = 0; flip < kFlips; ++flip) {
            FileBytes bytes = whole;
            // The pixels are most of the file; its directory is at the beginning or the end.
            const std::size_t margin = format.covered == Covered::Pixels ? bytes.size() / 4 : 0;
            const std::size_t place = margin + random() % (bytes.size() - 2 * margin);
            bytes[place] = static_cast<unsigned char>(bytes[place] ^ (1U << random() % 8));
            Picture picture;
            const bool isFound = isRefused(bytes, format.format, &picture);
            refused += isFound ? 1 : 0;
            if (isFound) continue;
            const double wrong = wrongPart(picture, right);
            worst = std::max(worst, wrong);
            EXPECT_LE(wrong, format.mostWrong) << format.name << ", byte " << place;
        }
        EXPECT_GE(refused, format.leastFound) << format.name;
        std::printf("%-10s %2d of %d flips refused; the others change at most %.2f %% of the samples\n",
                    format.name, refused, kFlips, 100 * worst);
    }
}

// The functions of the WebP library that decode a whole file.
std::uint8_t* decodedByLibrary(const FileBytes& bytes, bool hasAlpha, int& width, int& height) {
    using Decode = std::uint8_t*(const std::uint8_t*, std::size_t, int*, int*);
    auto* const decode =
        reinterpret_cast<Decode*>(dlsym(RTLD_DEFAULT, hasAlpha ? "WebPDecodeRGBA" : "WebPDecodeRGB"));
    return decode == nullptr ? nullptr : decode(bytes.data(), bytes.size(), &width, &height);
}

// Its files have no check sums: what the library gives up is refused, and the rest is what it decodes.
TEST_F(DamageTest, WebPIsJudgedByItsLibrary) {
    auto* const release = reinterpret_cast<void (*)(void*)>(dlsym(RTLD_DEFAULT, "WebPFree"));
    ASSERT_NE(release, nullptr);
    std::mt19937 random(2);
    for (const char* const name : {"a.webp", "lossless.webp"}) {
        const FileBytes whole = readFile(*folder / name);
        int refused = 0;
        int read = 0;
        for (int change = 0; change < 2 * kFlips; ++change) {
            FileBytes bytes = whole;
            const std::size_t place = random() % bytes.size();
            if (change % 2 == 0) {
                bytes[place] = static_cast<unsigned char>(bytes[place] ^ (1U << random() % 8));
            } else {
                bytes.resize(place);
            }
            Picture picture;
            const bool isFound = isRefused(bytes, FileFormat::WebP, &picture);
            int width = 0;
            int height = 0;
            std::uint8_t* const samples = decodedByLibrary(bytes, picture.channels == 4, width, height);
            EXPECT_EQ(isFound, samples == nullptr) << name << ", byte " << place << " of change " << change;
            ++(isFound ? refused : read);
            if (samples != nullptr && !isFound) {
                const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
                EXPECT_TRUE(std::ranges::equal(std::get<std::vector<std::uint8_t>>(picture.samples),
                                               std::span(samples, count * picture.channels)))
                    << name << ", byte " << place;
            }
            release(samples);
        }
        EXPECT_GE(refused, kFlips) << name << ": cut files are found";
        EXPECT_GE(read, 1) << name;
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

// Puts the number behind a text of the file, so many bytes after the text's beginning.
struct Claim {
    const char* name;
    FileFormat format;
    std::string_view text;
    std::size_t distance;
    std::string_view claim;
};

using namespace std::string_view_literals;

// 12345 pixels wide and high, or high alone.
constexpr Claim kClaims[] = {
    {"zip.exr", FileFormat::OpenExr, "displayWindow"sv, 32, "\x38\x30\0\0\x38\x30\0\0"sv},
    {"zip.exr", FileFormat::OpenExr, "dataWindow"sv, 29, "\x38\x30\0\0\x38\x30\0\0"sv},
    {"a.dpx", FileFormat::Dpx, ""sv, 772, "\0\0\x30\x39\0\0\x30\x39"sv},
    {"a.jpg", FileFormat::Jpeg, "\xFF\xC0"sv, 5, "\x30\x39\x30\x39"sv},
    {"a.webp", FileFormat::WebP, "\x9D\x01\x2A"sv, 3, "\x39\x30\x39\x30"sv},
    {"lzw.tif", FileFormat::Tiff, "\x01\x01\x03\0"sv, 8, "\x39\x30"sv},
};

FileBytes claiming(const FileBytes& whole, const Claim& claim) {
    std::string text(whole.begin(), whole.end());
    text.replace(text.find(claim.text) + claim.distance, claim.claim.size(), claim.claim);
    return {text.begin(), text.end()};
}

TEST_F(DamageTest, NoFormatIsBelievedItsSize) {
    for (const Claim& claim : kClaims) {
        const FileBytes bytes = claiming(readFile(*folder / claim.name), claim);
        EXPECT_TRUE(isRefused(bytes, claim.format)) << claim.name << ", " << claim.text;
    }
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
