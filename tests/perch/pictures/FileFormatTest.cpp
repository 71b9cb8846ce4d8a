#include "FileFormat.h"

#include <gtest/gtest.h>

#include <array>

namespace pictures {
namespace {

TEST(FileFormatTest, TypeThatAFormatLacksBecomesTheNextThatHoldsIt) {
    struct Case {
        FileFormat format;
        SampleType wanted;
        std::optional<SampleType> nearest;
    };
    const Case cases[] = {
        {FileFormat::OpenExr, SampleType::Bits8, SampleType::Half},
        {FileFormat::OpenExr, SampleType::Bits16, SampleType::Float},  // of which halves hold 11 bits
        {FileFormat::OpenExr, SampleType::Half, SampleType::Half},
        {FileFormat::Tiff, SampleType::Half, SampleType::Float},
        {FileFormat::Tiff, SampleType::Bits16, SampleType::Bits16},
        {FileFormat::Png, SampleType::Float, SampleType::Bits16},
        {FileFormat::Dpx, SampleType::Half, SampleType::Bits16},
        {FileFormat::Jpeg, SampleType::Bits8, SampleType::Bits8},
        {FileFormat::Jpeg, SampleType::Bits16, std::nullopt},
        {FileFormat::Targa, SampleType::Float, std::nullopt},
    };
    for (const auto& [format, wanted, nearest] : cases)
        EXPECT_EQ(nearestType(format, wanted), nearest) << nameOf(format) << ", " << nameOf(wanted);
}

// 2 x 1 pixels of 24 bits.
constexpr std::array<unsigned char, 18> kTarga{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 1, 0, 24, 0};

TEST(FileFormatTest, OldTargaIsKnownByAHeaderThatMakesSense) {
    EXPECT_EQ(formatOfBytes(kTarga), FileFormat::Targa);
    struct Case {
        const char* name;
        std::size_t place;
        unsigned char byte;
    };
    const Case cases[] = {
        {"a palette of another kind", 1, 2},
        {"a palette's length without one", 5, 1},
        {"another type", 2, 4},
        {"no columns", 12, 0},
        {"no rows", 14, 0},
        {"7 bits per pixel", 16, 7},
        {"bits that must be 0", 17, 0x40},
        {"the other of them", 17, 0x80},
    };
    for (const auto& [name, place, byte] : cases) {
        auto bytes = kTarga;
        bytes[place] = byte;
        EXPECT_EQ(formatOfBytes(bytes), std::nullopt) << name;
    }
    EXPECT_EQ(formatOfBytes(std::span(kTarga).first(17)), std::nullopt) << "a header cut short";
}

}  // namespace
}  // namespace pictures
