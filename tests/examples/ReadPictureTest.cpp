#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <numeric>
#include <stdexcept>

#include "Pictures.h"
#include "TestFiles.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;

template <class C>
Pixel<C> PixelAt(const Picture& picture, int x, int y) {
    return dynamic_cast<const PILib::PixelBuf<Pixel<C>>&>(*picture.pixels).row(y)[x];
}

// One row per 256 codes, grey.
Raw<std::uint16_t> AllCodes16() {
    Raw<std::uint16_t> raw{256, 256, 1, std::vector<std::uint16_t>(65536)};
    std::iota(raw.samples.begin(), raw.samples.end(), std::uint16_t{0});
    return raw;
}

Raw<std::uint8_t> AllCodes8() {
    Raw<std::uint8_t> raw{256, 1, 1, std::vector<std::uint8_t>(256)};
    std::iota(raw.samples.begin(), raw.samples.end(), std::uint8_t{0});
    return raw;
}

int Nearest(int code, double from, double to) {
    return static_cast<int>(std::lround(code * to / from));
}

class ReadPictureTest : public testing::Test {
protected:
    // A picture of the given depth and size to be like.
    template <class T>
    Picture sized(int width, int height) {
        WriteRaw(folder.file("like.png"), Noise<T>(width, height, 3, 1));
        return ReadPicture(folder.file("like.png"));
    }

    ControlFile controlFile(const std::string& name) const {
        return {.file = {.path = folder.file(name), .selected = {}}};
    }

    ScratchFolder folder;
};

TEST_F(ReadPictureTest, EightBitCodesAreKept) {
    for (const std::string name : {"codes.png", "codes.tif"}) {
        WriteRaw(folder.file(name), AllCodes8());
        const Picture picture = ReadPicture(folder.file(name));
        for (int code = 0; code < 256; ++code) {
            ASSERT_EQ(PixelAt<Channel8>(picture, code, 0).red, code) << name;
        }
    }
}

TEST_F(ReadPictureTest, SixteenBitCodesAreRoundedToTheNearestOf32769) {
    for (const std::string name : {"codes.png", "codes.tif"}) {
        WriteRaw(folder.file(name), AllCodes16());
        const Picture picture = ReadPicture(folder.file(name));
        for (int code = 0; code < 65536; ++code) {
            ASSERT_EQ(PixelAt<Channel15>(picture, code % 256, code / 256).red, Nearest(code, 65535, 32768))
                << name << ", code " << code;
        }
    }
}

TEST_F(ReadPictureTest, ControlOfEightBitsIsWidenedToADeepBeauty) {
    WriteRaw(folder.file("codes.png"), AllCodes8());
    const Picture picture = ReadControl(controlFile("codes.png"), sized<std::uint16_t>(256, 1));
    for (int code = 0; code < 256; ++code) {
        ASSERT_EQ(PixelAt<Channel15>(picture, code, 0).red, Nearest(code, 255, 32768));
    }
}

TEST_F(ReadPictureTest, ControlOfSixteenBitsIsNarrowedToAnEightBitBeauty) {
    WriteRaw(folder.file("codes.png"), AllCodes16());
    const Picture picture = ReadControl(controlFile("codes.png"), sized<std::uint8_t>(256, 256));
    for (int code = 0; code < 65536; ++code) {
        ASSERT_EQ(PixelAt<Channel8>(picture, code % 256, code / 256).red, Nearest(code, 65535, 255)) << code;
    }
}

TEST_F(ReadPictureTest, ControlTakesTheSizeOfTheBeauty) {
    WriteRaw(folder.file("two.png"), Raw<std::uint8_t>{2, 1, 1, {0, 255}});
    const Picture picture = ReadControl(controlFile("two.png"), sized<std::uint8_t>(4, 3));
    ASSERT_EQ(picture.pixels->width, 4);
    ASSERT_EQ(picture.pixels->height, 3);
    EXPECT_EQ(PixelAt<Channel8>(picture, 1, 2).green, 64);
}

TEST_F(ReadPictureTest, DepthsOfTheControlBecomeWhiteNearAndBlackFar) {
    WriteRaw(folder.file("depth.exr"), Raw<float>{4, 1, 1, {1, 2, 6, 1e10F}});
    ControlFile control = controlFile("depth.exr");
    control.file.selected = "Y";
    control.range = pictures::DepthRange{.near = 2, .far = 6};
    const Picture picture = ReadControl(control, sized<std::uint8_t>(4, 1));
    for (const auto& [x, grey] : {std::pair{0, 255}, {1, 255}, {2, 0}, {3, 0}})
        EXPECT_EQ(PixelAt<Channel8>(picture, x, 0).red, grey) << x;
}

TEST_F(ReadPictureTest, GreyAndMissingAlphaAreFilledIn) {
    struct Case {
        int channels;
        Pixel<Channel8> pixel;
        bool hasAlpha;
    };
    const std::vector<std::uint8_t> samples{10, 20, 30, 40};
    for (const std::string name : {"pixel.png", "pixel.tif"}) {
        for (const auto& [channels, pixel, hasAlpha] :
             {Case{1, {255, 10, 10, 10}, false}, Case{2, {20, 10, 10, 10}, true},
              Case{3, {255, 10, 20, 30}, false}, Case{4, {40, 10, 20, 30}, true}}) {
            WriteRaw(folder.file(name),
                     Raw<std::uint8_t>{1, 1, channels, {samples.begin(), samples.begin() + channels}});
            const Picture picture = ReadPicture(folder.file(name));
            EXPECT_EQ(PixelAt<Channel8>(picture, 0, 0), pixel) << name << ", " << channels << " channels";
            EXPECT_EQ(picture.hasAlpha, hasAlpha) << name << ", " << channels << " channels";
        }
    }
}

TEST_F(ReadPictureTest, StraightAlphaLeavesTheColoursEvenWhereItIsZero) {
    for (const std::string name : {"pixels.png", "pixels.tif"}) {
        WriteRaw(folder.file(name), Raw<std::uint8_t>{2, 1, 4, {10, 20, 30, 0, 200, 100, 50, 1}});
        const Picture picture = ReadPicture(folder.file(name));
        EXPECT_EQ(PixelAt<Channel8>(picture, 0, 0), Pixel<Channel8>(0, 10, 20, 30)) << name;
        EXPECT_EQ(PixelAt<Channel8>(picture, 1, 0), Pixel<Channel8>(1, 200, 100, 50)) << name;
    }
}

TEST_F(ReadPictureTest, PremultipliedTiffIsMadeStraight) {
    // The second pixel's red is above its alpha, the third has none.
    WriteRaw(folder.file("pixels.tif"),
             Raw<std::uint8_t>{3, 1, 4, {100, 50, 20, 128, 90, 20, 0, 40, 0, 0, 0, 0}},
             Alpha::kPremultiplied);
    const Picture picture = ReadPicture(folder.file("pixels.tif"));
    EXPECT_EQ(PixelAt<Channel8>(picture, 0, 0), Pixel<Channel8>(128, 199, 100, 40));
    EXPECT_EQ(PixelAt<Channel8>(picture, 1, 0), Pixel<Channel8>(40, 255, 128, 0));
    EXPECT_EQ(PixelAt<Channel8>(picture, 2, 0), Pixel<Channel8>(0, 0, 0, 0));
}

TEST_F(ReadPictureTest, JpegIsReadOpaque) {
    Raw<std::uint8_t> raw{16, 16, 3, {}};
    for (int i = 0; i < 256; ++i)
        raw.samples.insert(raw.samples.end(), {200, 100, 50});
    WriteRaw(folder.file("flat.jpg"), raw);
    const Picture picture = ReadPicture(folder.file("flat.jpg"));
    const Pixel<Channel8> pixel = PixelAt<Channel8>(picture, 8, 8);
    EXPECT_EQ(pixel.alpha, 255);
    EXPECT_NEAR(pixel.red, 200, 3);
    EXPECT_NEAR(pixel.green, 100, 3);
    EXPECT_NEAR(pixel.blue, 50, 3);
    EXPECT_FALSE(picture.hasAlpha);
}

// The last bytes of a TIFF may be notes behind the picture, so that some beginnings of the file are whole
// pictures.
TEST_F(ReadPictureTest, FilesCutShortFailOrHaveTheWholePicture) {
    for (const std::string name : {"whole.png", "whole.tif", "whole.jpg"}) {
        WriteRaw(folder.file(name), Noise<std::uint8_t>(40, 30, 3, 5));
        const std::string bytes = BytesOf(folder.file(name));
        const std::string cut = folder.file("cut" + name.substr(5));
        WritePicture(folder.file("wanted.png"), ReadPicture(folder.file(name)));
        for (std::size_t size = 0; size < bytes.size(); size += 97) {
            WriteBytes(cut, bytes.substr(0, size));
            try {
                WritePicture(folder.file("read.png"), ReadPicture(cut));
            } catch (const std::runtime_error&) {
                continue;
            }
            EXPECT_EQ(BytesOf(folder.file("read.png")), BytesOf(folder.file("wanted.png")))
                << name << ", " << size << " bytes";
        }
    }
}

}  // namespace
