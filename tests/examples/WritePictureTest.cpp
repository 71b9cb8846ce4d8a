#include <gtest/gtest.h>

#include <stdexcept>

#include "Pictures.h"
#include "TestFiles.h"

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::SimplePixelBuffer;

// Every code of the depth stands in each channel, at different places.
template <class C>
Picture AllCodes(int width, int height) {
    auto pixels = std::make_unique<SimplePixelBuffer<Pixel<C>>>(width, height);
    constexpr int kCodes = C::kOne + 1;
    const auto code = [](int i) { return static_cast<typename C::Type>(i % kCodes); };
    int i = 0;
    for (int y = 0; y < height; ++y) {
        for (Pixel<C>& pixel : pixels->row(y)) {
            pixel = {code(i), code(i + 7), code(kCodes - 1 - i % kCodes), code(i * 5)};
            ++i;
        }
    }
    return {std::move(pixels), true};
}

template <class C>
void ExpectEqual(const Picture& a, const Picture& b, const std::string& name) {
    const auto& left = dynamic_cast<const PILib::PixelBuf<Pixel<C>>&>(*a.pixels);
    const auto& right = dynamic_cast<const PILib::PixelBuf<Pixel<C>>&>(*b.pixels);
    ASSERT_EQ(left.width, right.width);
    ASSERT_EQ(left.height, right.height);
    for (int y = 0; y < left.height; ++y) {
        for (int x = 0; x < left.width; ++x) {
            ASSERT_EQ(left.row(y)[x], right.row(y)[x]) << name << ", pixel " << x << ", " << y;
        }
    }
}

class WritePictureTest : public testing::Test {
protected:
    std::string refusal(const std::string& name, const Picture& picture) {
        try {
            WritePicture(folder.file(name), picture);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    }

    ScratchFolder folder;
};

TEST_F(WritePictureTest, EveryCodeOfTheHostDepthsSurvivesAFile) {
    const Picture narrow = AllCodes<Channel8>(16, 16);
    const Picture wide = AllCodes<Channel15>(257, 128);  // 32896 pixels for 32769 codes
    for (const std::string name : {"codes.png", "codes.tif", "codes.TIFF"}) {
        WritePicture(folder.file(name), narrow);
        ExpectEqual<Channel8>(ReadPicture(folder.file(name)), narrow, name);
        WritePicture(folder.file(name), wide);
        ExpectEqual<Channel15>(ReadPicture(folder.file(name)), wide, name);
    }
}

TEST_F(WritePictureTest, FilesHaveTheDepthAndTheStraightAlphaOfThePicture) {
    const Picture narrow = AllCodes<Channel8>(16, 16);
    const Picture wide = AllCodes<Channel15>(16, 16);
    for (const std::string name : {"codes.png", "codes.tif"}) {
        WritePicture(folder.file(name), narrow);
        const auto raw = ReadRaw<std::uint8_t>(folder.file(name));
        EXPECT_EQ(raw.channels, 4) << name;
        EXPECT_EQ(std::vector(raw.samples.begin() + 4, raw.samples.begin() + 8),
                  (std::vector<std::uint8_t>{8, 254, 5, 1}))
            << name;
        WritePicture(folder.file(name), wide);
        EXPECT_EQ(ReadRaw<std::uint16_t>(folder.file(name)).samples[2 * 4 + 1], 65531) << name;  // of 32766
    }
}

TEST_F(WritePictureTest, SoftAlphaComesBackWithItsColours) {
    Picture picture{std::make_unique<PILib::SimplePixelBuffer<PILib::Pixel<Channel15>>>(1, 1), true};
    auto& pixels = dynamic_cast<PILib::PixelBuf<PILib::Pixel<Channel15>>&>(*picture.pixels);
    pixels.row(0)[0] = {16384, 32768, 8192, 0};
    for (const std::string name : {"soft.png", "soft.tif", "soft.exr", "soft.dpx"}) {
        WritePicture(folder.file(name), picture);
        const Picture read = ReadPicture(folder.file(name));
        EXPECT_TRUE(read.hasAlpha) << name;
        ASSERT_TRUE(IsWide(read)) << name;
        const auto pixel =
            dynamic_cast<const PILib::PixelBuf<PILib::Pixel<Channel15>>&>(*read.pixels).row(0)[0];
        EXPECT_EQ(pixel.red, 32768) << name;
        EXPECT_NEAR(pixel.green, 8192, 2) << name;
    }
}

TEST_F(WritePictureTest, PicturesWithoutAlphaAreWrittenWithoutOne) {
    Picture picture = AllCodes<Channel8>(16, 16);
    picture.hasAlpha = false;
    for (const std::string name : {"rgb.png", "rgb.tif", "rgb.jpg", "rgb.JPEG"}) {
        WritePicture(folder.file(name), picture);
        EXPECT_EQ(ReadRaw<std::uint8_t>(folder.file(name)).channels, 3) << name;
    }
}

TEST_F(WritePictureTest, FormatsThatCannotHoldThePictureAreRefused) {
    const Picture withAlpha = AllCodes<Channel8>(2, 2);
    Picture wide = AllCodes<Channel15>(2, 2);
    wide.hasAlpha = false;
    EXPECT_EQ(refusal("a.jpg", withAlpha), "cannot write \"" + folder.file("a.jpg") +
                                               "\": JPEG holds no alpha and the picture has one; " +
                                               "use .png or .tif");
    EXPECT_EQ(refusal("a.jpeg", wide), "cannot write \"" + folder.file("a.jpeg") +
                                           "\": JPEG holds 8 bits per channel and the picture has 16 bits; " +
                                           "use .png or .tif");
    for (const std::string name : {"a", "a.bmp", "a.webp", "png", ".png"}) {
        EXPECT_EQ(refusal(name, withAlpha),
                  "cannot write \"" + folder.file(name) +
                      "\": its name must end in .png, .tif, .tiff, .exr, .dpx, .tga, .jpg or .jpeg");
    }
    EXPECT_TRUE(folder.names().empty());
}

}  // namespace
