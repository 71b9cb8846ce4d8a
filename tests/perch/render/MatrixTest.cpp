// Format by depth by alpha: which tags of a file are in the one written from it, and how far its pixels are
// from what they were after they went through the effect's codes. Prints it all.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "FileWorlds.h"
#include "PixelAccess.h"
#include "SmallProfile.h"
#include "TemporaryFolder.h"

namespace perch {
namespace {

namespace fs = std::filesystem;
using pictures::Transfer;
using test::TemporaryFolder;

enum class Alpha { None, Straight, Associated };
constexpr const char* kAlphaNames[] = {"none", "straight", "associated"};

struct Kind {
    const char* name;
    OIIO::TypeDesc type;
    Alpha alpha;
    int tags;        // of kTags that the format holds
    int difference;  // of the codes at most, white being 32768
};

const OIIO::TypeDesc k8 = OIIO::TypeUInt8;
const OIIO::TypeDesc k16 = OIIO::TypeUInt16;
const OIIO::TypeDesc kHalf = OIIO::TypeHalf;
const OIIO::TypeDesc kFloat = OIIO::TypeFloat;

// Colours times alpha in 16 bits have fewer steps than the codes; JPEG loses some of everything.
const Kind kKinds[] = {
    {"a.png", k8, Alpha::None, 5, 0},         {"b.png", k8, Alpha::Straight, 5, 0},
    {"c.png", k16, Alpha::None, 5, 0},        {"d.png", k16, Alpha::Straight, 5, 0},
    {"a.tif", k8, Alpha::None, 7, 0},         {"b.tif", k8, Alpha::Straight, 7, 0},
    {"c.tif", k8, Alpha::Associated, 7, 0},   {"d.tif", k16, Alpha::None, 7, 0},
    {"e.tif", k16, Alpha::Straight, 7, 0},    {"f.tif", k16, Alpha::Associated, 7, 1},
    {"g.tif", kHalf, Alpha::None, 7, 0},      {"h.tif", kFloat, Alpha::None, 7, 0},
    {"i.tif", kFloat, Alpha::Straight, 7, 0}, {"j.tif", kFloat, Alpha::Associated, 7, 0},
    {"a.exr", kHalf, Alpha::None, 8, 0},      {"b.exr", kHalf, Alpha::Associated, 8, 0},
    {"c.exr", kFloat, Alpha::None, 8, 0},     {"d.exr", kFloat, Alpha::Associated, 8, 0},
    {"a.dpx", k8, Alpha::None, 5, 0},         {"b.dpx", k16, Alpha::None, 5, 0},
    {"c.dpx", k16, Alpha::Associated, 5, 1},  {"a.tga", k8, Alpha::None, 3, 0},
    {"b.tga", k8, Alpha::Straight, 3, 0},     {"a.jpg", k8, Alpha::None, 7, 6000},
};

constexpr const char* kTags[] = {"Artist",           "Copyright",       "ImageDescription",
                                 "XResolution",      "Orientation",     "ICCProfile",
                                 "PixelAspectRatio", "FramesPerSecond", "smpte:TimeCode"};

constexpr int kWidth = 64;
constexpr int kHeight = 16;

// Light of many codes, alpha of a third and more.
std::vector<float> samplesOf(const Kind& kind) {
    std::vector<float> samples;
    const bool isFloats = kind.type == kHalf || kind.type == kFloat;
    for (int i = 0; i < kWidth * kHeight; ++i) {
        const double alpha = kind.alpha == Alpha::None ? 1 : (85 + i % 171) / 255.0;
        for (int channel = 0; channel < 3; ++channel) {
            const double code = (i * 31 + channel * 10007) % 32769 / 32768.0;
            const double light = isFloats ? lightOfCode(Transfer::Srgb, code) : code;
            samples.push_back(static_cast<float>(kind.alpha == Alpha::Associated ? light * alpha : light));
        }
        if (kind.alpha != Alpha::None) samples.push_back(static_cast<float>(alpha));
    }
    return samples;
}

void write(const fs::path& path, const Kind& kind) {
    OIIO::ImageSpec layout(kWidth, kHeight, kind.alpha == Alpha::None ? 3 : 4, kind.type);
    if (kind.alpha == Alpha::Straight) layout["oiio:UnassociatedAlpha"] = 1;
    layout["compression"] = path.extension() == ".exr" ? "zip" : "";
    layout["Artist"] = "Ada";
    layout["Copyright"] = "none";
    layout["ImageDescription"] = "colours";
    layout["XResolution"] = layout["YResolution"] = 300.0F;
    layout["ResolutionUnit"] = "in";
    if (path.extension() != ".dpx") layout["Orientation"] = 6;
    layout["PixelAspectRatio"] = 2.0F;
    const int rate[] = {24, 1};
    layout.attribute("FramesPerSecond", OIIO::TypeRational, rate);
    const unsigned timecode[] = {0x01020304, 0};
    layout.attribute("smpte:TimeCode", OIIO::TypeTimeCode, timecode);
    const std::string profile = test::smallProfile();
    const OIIO::TypeDesc bytes(OIIO::TypeDesc::UINT8, static_cast<int>(profile.size()));
    layout.attribute("ICCProfile", bytes, profile.data());
    const auto file = OIIO::ImageOutput::create(path.string());
    ASSERT_TRUE(file && file->open(path.string(), layout) &&
                file->write_image(OIIO::TypeFloat, samplesOf(kind).data()) && file->close())
        << path << ": " << OIIO::geterror();
}

OIIO::ImageSpec layoutOf(const fs::path& path) {
    const auto file = OIIO::ImageInput::open(path.string());
    return file ? file->spec() : OIIO::ImageSpec();
}

// The names of tags that both files have, with the same value.
std::string tagsKept(const fs::path& before, const fs::path& after, int& count) {
    const OIIO::ImageSpec from = layoutOf(before);
    const OIIO::ImageSpec to = layoutOf(after);
    std::string names;
    for (const char* const tag : kTags) {
        const OIIO::ParamValue* const value = from.find_attribute(tag);
        const OIIO::ParamValue* const kept = to.find_attribute(tag);
        if (value == nullptr) continue;
        EXPECT_TRUE(kept != nullptr && kept->get_string() == value->get_string()) << after << ", " << tag;
        names += std::string(" ") + tag;
        ++count;
    }
    return names;
}

int differenceOf(const World& before, const World& after) {
    int most = 0;
    for (std::int32_t y = 0; y < kHeight; ++y) {
        for (std::size_t x = 0; x < kWidth; ++x) {
            const PF_Pixel16& a = pixelRow<PF_Pixel16>(before.record(), y)[x];
            const PF_Pixel16& b = pixelRow<PF_Pixel16>(after.record(), y)[x];
            for (const int d : {a.alpha - b.alpha, a.red - b.red, a.green - b.green, a.blue - b.blue})
                most = std::max(most, std::abs(d));
        }
    }
    return most;
}

TEST(MatrixTest, TagsAndPixelsThatAFormatHoldsAreKept) {
    const TemporaryFolder folder;
    std::printf("%-6s %-7s %-10s %10s  tags\n", "format", "depth", "alpha", "difference");
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(kind.name);
        const fs::path before = folder / kind.name;
        const fs::path after = folder / ("out-" + std::string(kind.name));
        write(before, kind);
        const SharedPicture picture = readPictureFile(before);
        const Transfer transfer = isFloat(picture->type()) ? Transfer::Srgb : Transfer::Linear;
        FileWorld world = worldOf(picture, Depth::Bits16, transfer);
        const World pixels = std::move(world.pixels);
        world.pixels = World(kWidth, kHeight, true);  // as if the effect had changed every pixel
        writeWorld(after, pixels, world, {.type = picture->type(), .encoding = {}});
        int tags = 0;
        const std::string names = tagsKept(before, after, tags);
        const int difference =
            differenceOf(pixels, worldOf(readPictureFile(after), Depth::Bits16, transfer).pixels);
        std::printf("%-6s %-7s %-10s %10d %s\n", before.extension().c_str() + 1, kind.type.c_str(),
                    kAlphaNames[static_cast<int>(kind.alpha)], difference, names.c_str());
        EXPECT_EQ(tags, kind.tags);
        EXPECT_LE(difference, kind.difference);
    }
}

}  // namespace
}  // namespace perch
