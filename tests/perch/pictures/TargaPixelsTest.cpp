#include "TargaPixels.h"

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FileBytes.h"
#include "PictureError.h"
#include "PictureFile.h"
#include "TemporaryFolder.h"
#include "ToolRun.h"

namespace pictures {
namespace {

using perch::test::runTool;
using perch::test::TemporaryFolder;

constexpr char kMakeAll[] =
    "oiiotool --create 37x23 4 --noise:type=uniform:min=0:max=1:seed=7 --fill:color=1,0.5,0.25,1 20x15+3+4 "
    "-d uint8 -o a.png -o rgba.tga --compression rle -o rgba-runs.tga && "
    "oiiotool a.png --ch R,G,B -o rgb.tga --compression rle -o rgb-runs.tga && convert rgb.tga a.ppm && "
    "convert a.ppm -compress none up.tga && convert a.ppm -compress RLE up-runs.tga && "
    "convert a.ppm -colorspace Gray -compress none grey.tga && "
    "ffmpeg -v error -i a.ppm -pix_fmt gray grey-runs.tga && "
    "ffmpeg -v error -i a.ppm -pix_fmt rgb555le bits15.tga && convert a.ppm -type Palette palette.tga";

class TargaPixelsTest : public testing::Test {
protected:
    TargaPixelsTest() { runTool(folder.path, kMakeAll); }
    TemporaryFolder folder;
};

std::vector<std::uint8_t> readByLibrary(const std::string& path) {
    OIIO::ImageSpec keepAlpha;
    keepAlpha["oiio:UnassociatedAlpha"] = 1;
    const auto file = OIIO::ImageInput::open(path, &keepAlpha);
    if (!file) throw std::runtime_error(OIIO::geterror());
    std::vector<std::uint8_t> samples(file->spec().image_bytes());
    if (!file->read_image(0, 0, 0, file->spec().nchannels, OIIO::TypeUInt8, samples.data()))
        throw std::runtime_error(file->geterror());
    return samples;
}

TEST_F(TargaPixelsTest, FilesOfSeveralProgramsAreReadAsTheLibraryReadsThem) {
    const struct {
        const char* name;
        bool arePlain;
    } cases[] = {
        {"rgba.tga", true},    {"rgba-runs.tga", true}, {"rgb.tga", true},  {"rgb-runs.tga", true},
        {"up.tga", true},      {"up-runs.tga", true},   {"grey.tga", true}, {"grey-runs.tga", true},
        {"bits15.tga", false}, {"palette.tga", false},
    };
    for (const auto& c : cases) {
        const FileBytes bytes = readFile(folder / c.name);
        EXPECT_EQ(TargaPixels(bytes).arePlain(), c.arePlain) << c.name;
        const Picture picture = readPicture(folder / c.name);
        EXPECT_EQ(std::get<0>(picture.samples), readByLibrary(folder / c.name)) << c.name;
    }
}

TEST_F(TargaPixelsTest, OneChannelIsPickedByTheLibrary) {
    const std::vector<std::uint8_t> all = readByLibrary(folder / "rgb-runs.tga");
    const Picture green = readPicture(folder / "rgb-runs.tga", "G");
    const auto& samples = std::get<0>(green.samples);
    ASSERT_EQ(samples.size() * 3, all.size());
    for (std::size_t i = 0; i < samples.size(); ++i)
        ASSERT_EQ(samples[i], all[3 * i + 1]) << i;
}

TEST_F(TargaPixelsTest, PixelsEndWhereTheFileSays) {
    for (const char* const name : {"rgb.tga", "rgb-runs.tga", "up.tga", "up-runs.tga", "palette.tga"}) {
        const FileBytes whole = readFile(folder / name);
        EXPECT_FALSE(TargaPixels(whole).areDamaged()) << name;
        for (const std::size_t size : {12U, 14U}) {  // the places of the width and height
            FileBytes other = whole;
            --other[size];
            EXPECT_TRUE(TargaPixels(other).areDamaged()) << name << " made smaller";
            other[size] = static_cast<unsigned char>(whole[size] + 1);
            EXPECT_TRUE(TargaPixels(other).areDamaged()) << name << " made larger";
        }
    }
}

}  // namespace
}  // namespace pictures
