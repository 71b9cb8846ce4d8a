#include "CodeRows.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <vector>

namespace pictures {
namespace {

constexpr std::uint32_t kDeepWhite = 32768;
constexpr Transfer kTransfers[] = {Transfer::Linear, Transfer::Srgb, Transfer::Log};

Picture floats(std::size_t channels, const std::vector<float>& samples, bool isPremultiplied = false) {
    Picture picture =
        newPicture(static_cast<std::int32_t>(samples.size() / channels), 1, channels, SampleType::Float);
    std::get<std::vector<float>>(picture.samples) = samples;
    picture.isPremultiplied = isPremultiplied;
    return picture;
}

// Of a picture of one pixel.
Codes codesOf(const Picture& picture, Transfer transfer) {
    std::vector<Codes> row(1);
    readCodes(picture, 0, kDeepWhite, row, transfer);
    return row[0];
}

Clipped clippedIn(const Picture& picture, Transfer transfer) {
    std::vector<Codes> row(static_cast<std::size_t>(picture.width));
    return readCodes(picture, 0, kDeepWhite, row, transfer);
}

TEST(CodeRowsTest, EveryCodeSurvivesFloatsThroughEveryTransfer) {
    for (const Transfer transfer : kTransfers) {
        for (const bool isPremultiplied : {false, true}) {
            for (std::uint32_t code = 0; code <= kDeepWhite; ++code) {
                const auto same = static_cast<std::uint16_t>(code);
                const Codes codes{16384, same, same, same};
                Picture picture = floats(4, std::vector<float>(4), isPremultiplied);
                writeCodes({&codes, 1}, kDeepWhite, 0, picture, transfer);
                const Codes read = codesOf(picture, transfer);
                ASSERT_EQ(read.red, code) << static_cast<int>(transfer);
                ASSERT_EQ(read.alpha, 16384);
            }
        }
    }
}

TEST(CodeRowsTest, DitheredSamplesAreTheirExactValueInTheMean) {
    constexpr int kSide = 8;
    for (const std::uint16_t code : std::initializer_list<std::uint16_t>{0, 1, 100, 12345, 32700, 32768}) {
        const std::vector<Codes> row(kSide, Codes{32768, code, code, code});
        Picture picture = newPicture(kSide, kSide, 1, SampleType::Bits8);
        for (std::int32_t y = 0; y < kSide; ++y)
            writeCodes(row, kDeepWhite, y, picture, Transfer::Linear, Rounding::Dithered);
        const auto& samples = std::get<std::vector<std::uint8_t>>(picture.samples);
        const double exact = code * 255.0 / kDeepWhite;
        double sum = 0;
        for (const std::uint8_t sample : samples) {
            EXPECT_LT(std::abs(sample - exact), 1);
            sum += sample;
        }
        EXPECT_NEAR(sum / (kSide * kSide), exact, 0.5 / (kSide * kSide)) << code;
    }
    for (std::uint32_t sample = 0; sample <= 255; ++sample) {
        const auto code = static_cast<std::uint16_t>(rescale(sample, 255, kDeepWhite));
        const std::vector<Codes> row(kSide, Codes{32768, code, code, code});
        Picture picture = newPicture(kSide, 1, 1, SampleType::Bits8);
        writeCodes(row, kDeepWhite, 0, picture, Transfer::Linear, Rounding::Dithered);
        EXPECT_EQ(std::get<std::vector<std::uint8_t>>(picture.samples),
                  std::vector<std::uint8_t>(kSide, static_cast<std::uint8_t>(sample)));
    }
}

// The error that documents promise: half a step, as a share of the light, from 1/1000 of white on.
TEST(CodeRowsTest, LogKeepsLightToAShareOfItself) {
    double worst = 0;
    for (double light = 0.001; light < kLogWhite; light *= 1.00037) {
        const double code = std::floor(codeOfLight(Transfer::Log, light) * kDeepWhite + 0.5);
        const double back = lightOfCode(Transfer::Log, code / kDeepWhite);
        worst = std::max(worst, std::abs(back - light) / light);
        if (light >= 1) {
            ASSERT_LT(std::abs(back - light) / light, 0.00016) << light;
        }
    }
    EXPECT_LT(worst, 0.0008);
    EXPECT_GT(worst, 0.0006);
}

TEST(CodeRowsTest, ColoursOfAssociatedAlphaAreDividedByIt) {
    const Codes codes = codesOf(floats(4, {0.25F, 0.125F, 0.0625F, 0.25F}, true), Transfer::Linear);
    EXPECT_EQ(codes.alpha, 8192);
    EXPECT_EQ(codes.red, 32768);
    EXPECT_EQ(codes.green, 16384);
    EXPECT_EQ(codes.blue, 8192);
}

// Also where codes are divided as whole numbers.
TEST(CodeRowsTest, AssociatedColourAboveItsAlphaIsWhite) {
    Picture picture = newPicture(1, 1, 4, SampleType::Bits16);
    std::get<std::vector<std::uint16_t>>(picture.samples) = {40000, 20000, 10000, 20000};
    picture.isPremultiplied = true;
    const Codes codes = codesOf(picture, Transfer::Linear);
    EXPECT_EQ(codes.red, 32768);
    EXPECT_EQ(codes.green, 32768);
    EXPECT_EQ(codes.blue, 16384);
}

TEST(CodeRowsTest, PixelsWithColoursThatCodesDoNotReachAreCounted) {
    struct Case {
        Transfer transfer;
        std::vector<float> samples;  // of RGBA, associated
        std::int64_t above;
        std::int64_t below;
    };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Case cases[] = {
        {Transfer::Linear, {1, 1, 1, 1}, 0, 0},
        {Transfer::Srgb, {1, 1, 1, 1}, 0, 0},
        {Transfer::Log, {64, 64, 64, 1}, 0, 0},
        {Transfer::Linear, {1.01F, 2, 3, 1}, 1, 0},  // once per pixel
        {Transfer::Srgb, {1.01F, 0, 0, 1}, 1, 0},
        {Transfer::Log, {1.01F, 0, 0, 1}, 0, 0},
        {Transfer::Log, {65, 0, 0, 1}, 1, 0},
        {Transfer::Srgb, {-0.01F, 0, 0, 1}, 0, 1},
        {Transfer::Log, {-0.01F, 65, 0, 1}, 1, 1},
        {Transfer::Srgb, {0.5F, 0, 0, 0.4F}, 1, 0},  // 1.25 where it is opaque
        {Transfer::Srgb, {0.4F, 0, 0, 0.5F, 2, 0, 0, 1}, 1, 0},
        {Transfer::Srgb, {nan, 0, 0, 1}, 0, 0},
        {Transfer::Srgb, {0.5F, 0, 0, 1.5F}, 0, 0},  // alpha is not a colour
    };
    for (const Case& c : cases) {
        const Clipped clipped = clippedIn(floats(4, c.samples, true), c.transfer);
        EXPECT_EQ(clipped.above, c.above) << c.samples[0];
        EXPECT_EQ(clipped.below, c.below) << c.samples[0];
    }
}

TEST(CodeRowsTest, WhatIsNoNumberIsBlack) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(codesOf(floats(1, {nan}), Transfer::Srgb).red, 0);
    EXPECT_EQ(codesOf(floats(1, {std::numeric_limits<float>::infinity()}), Transfer::Srgb).red, kDeepWhite);
}

TEST(CodeRowsTest, CopiedPixelsAreTheSameBits) {
    const float nan = std::bit_cast<float>(0x7FC12345U);
    const Picture from = floats(2, {nan, 0.3F, 0.7F, 1});
    Picture to = floats(4, std::vector<float>(8, 9));
    const std::uint8_t isCopied[] = {1, 0};
    copyPixels(from, isCopied, 0, to);
    const auto& samples = std::get<std::vector<float>>(to.samples);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(samples[0]), 0x7FC12345U);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(samples[2]), 0x7FC12345U);
    EXPECT_EQ(samples[3], 0.3F);
    EXPECT_EQ(samples[4], 9);
}

TEST(CodeRowsTest, PixelsOfAPictureWithoutAlphaAreCopiedOpaque) {
    const Picture from = floats(3, {0.1F, 0.2F, 0.3F});
    Picture to = floats(4, std::vector<float>(4));
    const std::uint8_t isCopied[] = {1};
    copyPixels(from, isCopied, 0, to);
    EXPECT_EQ(std::get<std::vector<float>>(to.samples), (std::vector<float>{0.1F, 0.2F, 0.3F, 1}));
}

}  // namespace
}  // namespace pictures
