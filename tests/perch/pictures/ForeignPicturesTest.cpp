// Files that other programs have written, and what is read of them.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "CodeRows.h"
#include "PictureError.h"
#include "PictureFile.h"
#include "TemporaryFolder.h"
#include "ToolRun.h"

namespace pictures {
namespace {

using perch::test::runTool;
using perch::test::TemporaryFolder;

constexpr std::uint32_t kWhite = 255;

// Black, and two pixels from (1, 1) on in red 1, green 0.5, blue 0.25.
const std::string kMake = "oiiotool --create 5x3 3 --fill:color=1,0.5,0.25 2x1+1+1 ";

const std::string kMakeAll =
    kMake +
    "-d uint8 -o 8.png -o 8.tif -o 8.dpx -d uint16 -o 16.png -o 16.tif -o 16.dpx -d uint10 -o 10.dpx "
    "-d float -o float.tif -o float.exr -d half -o half.exr "
    "--tile 16 16 -d uint16 -o tiled.tif --compression piz -d half -o tiled.exr --compression none "
    "--planarconfig separate -d float -o planar-tiles.tif --scanline -d uint16 -o planar.tif && "
    "convert 8.png -write old.tga -interlace PNG -write interlaced.png -interlace none "
    "-define webp:lossless=true -write lossless.webp -quality 100 -sampling-factor 1x1 -write best.jpg "
    "-type Palette PNG8:palette.png && "
    "convert 16.png -endian MSB -compress LZW -write big-endian.tif -endian LSB "
    "-define quantum:format=floating-point half.tif && "
    "ffmpeg -v error -i 8.png new.tga";

struct ForeignFile {
    const char* name;
    SampleType type;
    int slack = 1;  // of the codes
};

constexpr ForeignFile kForeignFiles[] = {
    {"8.png", SampleType::Bits8},
    {"16.png", SampleType::Bits16},
    {"palette.png", SampleType::Bits8},
    {"interlaced.png", SampleType::Bits8},
    {"8.tif", SampleType::Bits8},
    {"16.tif", SampleType::Bits16},
    {"float.tif", SampleType::Float},
    {"half.tif", SampleType::Half},
    {"tiled.tif", SampleType::Bits16},
    {"planar.tif", SampleType::Bits16},
    {"planar-tiles.tif", SampleType::Float},
    {"big-endian.tif", SampleType::Bits16},
    {"half.exr", SampleType::Half},
    {"float.exr", SampleType::Float},
    {"tiled.exr", SampleType::Half},
    {"8.dpx", SampleType::Bits8},
    {"10.dpx", SampleType::Bits16},
    {"16.dpx", SampleType::Bits16},
    {"new.tga", SampleType::Bits8},
    {"old.tga", SampleType::Bits8},
    {"lossless.webp", SampleType::Bits8},
    {"best.jpg", SampleType::Bits8, 40},  // an edge at each pixel
};

class ForeignPicturesTest : public testing::Test {
protected:
    std::string failureToRead(const std::string& name, const std::string& channel = {}) const {
        try {
            readPicture(folder / name, channel);
        } catch (const PictureError& error) {
            return std::string(error.what())
                .substr(("cannot read \"" + (folder / name).string() + "\": ").size());
        }
        return "nothing was thrown";
    }

    Codes codesAt(const Picture& picture, std::int32_t x, std::int32_t y) const {
        std::vector<Codes> row(static_cast<std::size_t>(picture.width));
        readCodes(picture, y, kWhite, row);
        return row[static_cast<std::size_t>(x)];
    }

    TemporaryFolder folder;
};

TEST_F(ForeignPicturesTest, EveryFormatAndDepthIsRead) {
    runTool(folder.path, kMakeAll);
    for (const ForeignFile& file : kForeignFiles) {
        SCOPED_TRACE(file.name);
        const Picture picture = readPicture(folder / file.name);
        EXPECT_EQ(picture.type(), file.type);
        EXPECT_EQ(picture.channels, 3U);
        const Codes codes = codesAt(picture, 1, 1);
        EXPECT_NEAR(codes.red, 255, file.slack);
        EXPECT_NEAR(codes.green, 128, file.slack);
        EXPECT_NEAR(codes.blue, 64, file.slack);
        EXPECT_EQ(codes.alpha, 255);
        EXPECT_NEAR(codesAt(picture, 4, 1).red, 0, file.slack);
    }
}

// None of these has a check sum; what is counted of them instead must fit the files of every program.
TEST_F(ForeignPicturesTest, PackedTiffsAreWholeWhoeverWroteThem) {
    runTool(
        folder.path,
        "convert -size 90x70 plasma:red-blue -depth 16 a.png && "
        "convert a.png -compress LZW -write lzw16.tif -depth 8 -write lzw.tif "
        "-define tiff:rows-per-strip=16 -write strips.tif -compress RLE -write rle-strips.tif "
        "-define tiff:fill-order=lsb -write rle-turned.tif -compress LZW -write turned.tif "
        "-compress Zip -write zip-turned.tif +define tiff:fill-order -compress LZW "
        "-define tiff:tile-geometry=32x32 -write tiles.tif +define tiff:tile-geometry "
        "-type Palette -write palette.tif -type Bilevel -write bits.tif -type Grayscale grey.tif && "
        "convert a.png -colorspace YCbCr -compress LZW luma.tif && "
        "oiiotool a.png --planarconfig separate --compression lzw -o planes.tif "
        "--tile 16 16 --compression packbits -o plane-tiles.tif -d float --compression lzw -o float.tif && "
        "ffmpeg -v error -i a.png -compression_algo lzw ff.tif -compression_algo packbits ff-bits.tif "
        "-compression_algo lzw -pix_fmt yuv420p ff-luma.tif");
    for (const char* const name :
         {"lzw16.tif", "lzw.tif", "strips.tif", "rle-strips.tif", "rle-turned.tif", "turned.tif",
          "zip-turned.tif", "tiles.tif", "palette.tif", "bits.tif", "grey.tif", "luma.tif", "planes.tif",
          "plane-tiles.tif", "float.tif", "ff.tif", "ff-bits.tif", "ff-luma.tif"}) {
        EXPECT_NO_THROW(readPicture(folder / name)) << name;
    }
}

TEST_F(ForeignPicturesTest, AlphaIsAssociatedInOpenExrAndStraightElsewhereUnlessTheFileSaysOtherwise) {
    // Straight 0.8, 0.4, 0.2 at an alpha of a half.
    const std::string make = "oiiotool --create 1x1 4 --fill:color=0.4,0.2,0.1,0.5 1x1+0+0 ";
    runTool(folder.path,
            make + "-d half -o a.exr && " + make + "-d uint16 -o a.png && " + make +
                "-d uint16 -o associated.tif && convert a.png straight.tif && convert a.png a.tga");
    for (const auto& [name, isPremultiplied] : {std::pair("a.exr", true),
                                                {"a.png", false},
                                                {"associated.tif", true},
                                                {"straight.tif", false},
                                                {"a.tga", false}}) {
        SCOPED_TRACE(name);
        const Picture picture = readPicture(folder / name);
        EXPECT_EQ(picture.isPremultiplied, isPremultiplied);
        const Codes codes = codesAt(picture, 0, 0);
        EXPECT_NEAR(codes.red, 204, 1);
        EXPECT_NEAR(codes.green, 102, 1);
        EXPECT_NEAR(codes.blue, 51, 1);
        EXPECT_NEAR(codes.alpha, 128, 1);
    }
}

TEST_F(ForeignPicturesTest, OutsideTheDataWindowAPictureIsTransparent) {
    runTool(folder.path,
            "oiiotool --create 4x3 3 --fill:color=1,0.5,0.25 4x3+0+0 --origin +2+1 --fullsize 8x6+0+0 -d "
            "half -o in.exr && "
            "oiiotool --create 12x9 3 --fill:color=1,0.5,0.25 12x9+0+0 --origin -2-1 --fullsize 8x6+0+0 -d "
            "half -o over.exr && "
            "oiiotool --create 4x3 3 --fill:color=1,0.5,0.25 4x3+0+0 --origin +102+51 --fullsize 8x6+100+50 "
            "-d half -o far.exr");
    for (const char* const name : {"in.exr", "far.exr"}) {
        SCOPED_TRACE(name);
        const Picture picture = readPicture(folder / name);
        ASSERT_EQ(picture.width, 8);
        ASSERT_EQ(picture.height, 6);
        ASSERT_EQ(picture.channels, 4U);
        for (std::int32_t y = 0; y < 6; ++y) {
            for (std::int32_t x = 0; x < 8; ++x) {
                const bool isInside = x >= 2 && x < 6 && y >= 1 && y < 4;
                const Codes codes = codesAt(picture, x, y);
                EXPECT_EQ(codes.alpha, isInside ? 255 : 0) << x << ", " << y;
                EXPECT_EQ(codes.red, isInside ? 255 : 0) << x << ", " << y;
            }
        }
    }
    const Picture over = readPicture(folder / "over.exr");
    EXPECT_EQ(over.width, 8);
    EXPECT_EQ(over.height, 6);
    EXPECT_EQ(over.channels, 3U);
    EXPECT_EQ(codesAt(over, 7, 5).green, 128);
}

TEST_F(ForeignPicturesTest, OutsideTheDataWindowThereIsNoDepth) {
    runTool(folder.path,
            "oiiotool --create 2x2 1 --fill:color=5 2x2+0+0 --chnames Z --origin +1+0 --fullsize 4x2+0+0 -d "
            "float -o z.exr");
    const Picture picture = readPicture(folder / "z.exr", "", {.isOfDepths = true});
    const auto& samples = std::get<std::vector<float>>(picture.samples);
    ASSERT_EQ(samples.size(), 8U);
    EXPECT_TRUE(std::isnan(samples[0]));
    EXPECT_EQ(samples[1], 5);
    EXPECT_TRUE(std::isnan(samples[3]));
    const Picture light = readPicture(folder / "z.exr");
    EXPECT_EQ(light.channels, 2U) << "a picture is transparent there";
    EXPECT_EQ(std::get<std::vector<float>>(light.samples)[0], 0);
}

TEST_F(ForeignPicturesTest, ChannelsArePickedByNameFromAnyPart) {
    runTool(folder.path,
            "oiiotool --create 2x1 4 --fill:color=0.1,0.2,0.3,1 2x1+0+0 -d half -o beauty.exr && "
            "oiiotool --create 2x1 1 --fill:color=7.5 2x1+0+0 --chnames Z -d float -o z.exr && "
            "oiiotool beauty.exr --attrib name rgba z.exr --attrib name depth --siappend -o parts.exr && "
            "oiiotool beauty.exr z.exr --chappend -d half -d Z=float -o mixed.exr && "
            "oiiotool beauty.exr --create 2x1 2 --fill:color=3,4 2x1+0+0 --chnames fog.Z,fog.A --chappend -d "
            "half -o layers.exr && "
            "oiiotool --create 2x1 4 --fill:color=0.2,0.4,0.6,0.8 2x1+0+0 -d uint16 -o rgba.png");
    struct Case {
        const char* file;
        const char* channel;
        SampleType type;
        float value;
    };
    const Case cases[] = {
        {"parts.exr", "Z", SampleType::Float, 7.5F},  {"parts.exr", "depth.Z", SampleType::Float, 7.5F},
        {"parts.exr", "G", SampleType::Half, 0.2F},   {"mixed.exr", "Z", SampleType::Float, 7.5F},
        {"mixed.exr", "B", SampleType::Half, 0.3F},   {"layers.exr", "fog.Z", SampleType::Half, 3},
        {"layers.exr", "fog.A", SampleType::Half, 4}, {"z.exr", "Z", SampleType::Float, 7.5F},
        {"rgba.png", "A", SampleType::Bits16, 0.8F},  {"rgba.png", "G", SampleType::Bits16, 0.5F},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.file) + ":" + c.channel);
        const Picture picture = readPicture(folder / c.file, c.channel);
        EXPECT_EQ(picture.channels, 1U);
        EXPECT_EQ(picture.type(), c.type);
        if (isFloat(c.type)) {
            EXPECT_NEAR(std::get<std::vector<float>>(picture.samples)[0], c.value, 1e-3);
        } else {
            EXPECT_NEAR(codesAt(picture, 0, 0).red, c.value * 255, 1);
        }
    }
    // The beauty keeps its own type beside a wider channel.
    EXPECT_EQ(readPicture(folder / "mixed.exr").type(), SampleType::Half);
    EXPECT_EQ(readPicture(folder / "parts.exr").parts, 2);
    EXPECT_EQ(failureToRead("parts.exr", "Q"),
              "it has no layer or channel \"Q\"; it has the layers rgba, depth and the channels rgba.R, "
              "rgba.G, rgba.B, rgba.A, depth.Z");
    EXPECT_EQ(failureToRead("rgba.png", "Z"),
              "it has no layer or channel \"Z\"; it has the channels R, G, B, A");
}

TEST_F(ForeignPicturesTest, LayersAreColoursBelowANameOrAPartOfThatName) {
    // The layers in one part, with a type each; the same as parts; and parts that have layers.
    runTool(
        folder.path,
        "oiiotool --create 4x2 4 --fill:color=0.1,0.2,0.3,0.5 4x2+0+0 -d half -o beauty.exr "
        "--create 4x2 4 --fill:color=4,5,6,0.25 4x2+0+0 -d float -o unnamed.exr "
        "--chnames fog.R,fog.G,fog.B,fog.A -o fog.exr "
        "--create 4x2 3 --fill:color=7,8,9 4x2+0+0 --chnames a.b.R,a.b.G,a.b.B -d half -o deep.exr "
        "--create 4x2 1 --fill:color=10 4x2+0+0 --chnames mask.Y -o mask.exr "
        "--create 4x2 1 --fill:color=11 4x2+0+0 --chnames Z -d float -o z.exr "
        "--chnames depth.Z -o depth.exr --create 4x2 2 --chnames motion.X,motion.Y -d half -o motion.exr && "
        "oiiotool beauty.exr fog.exr --chappend deep.exr --chappend mask.exr --chappend depth.exr "
        "--chappend motion.exr --chappend -d half -d fog.R=float -d fog.G=float -d fog.B=float "
        "-d fog.A=float -d depth.Z=float -o layers.exr && "
        "oiiotool beauty.exr --attrib name rgba unnamed.exr --attrib name fog z.exr --attrib name depth "
        "--siappendall -o parts.exr && "
        "oiiotool beauty.exr --attrib name left fog.exr --attrib name right --siappend -o views.exr && "
        "oiiotool fog.exr deep.exr --chappend -o none.exr");
    struct Case {
        const char* file;
        const char* layer;
        std::vector<float> pixel;
        SampleType type = SampleType::Float;
    };
    const std::vector<float> beauty{0.1F, 0.2F, 0.3F, 0.5F};
    const std::vector<float> fog{4, 5, 6, 0.25F};
    const std::vector<float> deep{7, 8, 9};
    const Case cases[] = {
        {"layers.exr", "", beauty, SampleType::Half},
        {"layers.exr", "fog", fog},
        {"layers.exr", "a.b", deep, SampleType::Half},
        {"layers.exr", "mask", {10}, SampleType::Half},
        {"layers.exr", "depth", {11}},
        {"layers.exr", "fog.G", {5}},
        {"parts.exr", "rgba", beauty, SampleType::Half},
        {"parts.exr", "fog", fog},
        {"parts.exr", "depth", {11}},
        {"views.exr", "right.fog", fog},
        {"views.exr", "fog", fog},
        {"none.exr", "fog", fog},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.file) + ":" + c.layer);
        const Picture picture = readPicture(folder / c.file, c.layer);
        EXPECT_EQ(picture.type(), c.type);
        ASSERT_EQ(picture.channels, c.pixel.size());
        EXPECT_EQ(picture.isPremultiplied, picture.hasAlpha());
        const auto& samples = std::get<std::vector<float>>(picture.samples);
        ASSERT_EQ(samples.size(), 8 * c.pixel.size());
        for (std::size_t i = 0; i < samples.size(); ++i)
            EXPECT_NEAR(samples[i], c.pixel[i % c.pixel.size()], 1e-3) << i;
    }
    EXPECT_EQ(
        failureToRead("layers.exr", "motion"),
        "it has no layer or channel \"motion\"; it has the layers a.b, depth, fog, mask and the channels "
        "R, G, B, A, a.b.R, a.b.G, a.b.B, depth.Z, fog.R, fog.G, fog.B, fog.A, mask.Y, motion.X, motion.Y");
    EXPECT_EQ(
        failureToRead("none.exr"),
        "it has the layers a.b, fog and the channels a.b.R, a.b.G, a.b.B, fog.R, fog.G, fog.B, fog.A and "
        "not R, G and B; name one of them after the file, as :a.b");
}

TEST_F(ForeignPicturesTest, NamesBehindAColonSelectUnlessTheyAreOfTheFile) {
    runTool(folder.path, "touch a.exr:fog");
    const std::string there = (folder / "a.exr:fog").string();
    const struct {
        std::string text;
        std::string path;
        std::string selected;
    } cases[] = {
        {"b.exr:fog", "b.exr", "fog"},
        {"b.####.exr:a.b", "b.####.exr", "a.b"},
        {"m.png:A", "m.png", "A"},
        {"a:b/m.png", "a:b/m.png", ""},
        {"take:fog", "take:fog", ""},
        {"a.exr:b.exr", "a.exr:b.exr", ""},
        {"a.exr:b.#.png", "a.exr:b.#.png", ""},
        {there, there, ""},
    };
    for (const auto& [text, path, selected] : cases) {
        const SelectedPicture parsed = parseSelectedPicture(text);
        EXPECT_EQ(parsed.path, path) << text;
        EXPECT_EQ(parsed.selected, selected) << text;
    }
}

TEST_F(ForeignPicturesTest, FileWithoutColoursListsItsChannels) {
    runTool(folder.path, "oiiotool --create 2x1 2 --chnames motion.X,motion.Y -d half -o motion.exr");
    EXPECT_EQ(
        failureToRead("motion.exr"),
        "it has the channels motion.X, motion.Y and not R, G and B; name one of them after the file, as "
        ":motion.X");
}

TEST_F(ForeignPicturesTest, LuminanceAndChromaAreNoGrey) {
    runTool(folder.path, "oiiotool --create 4x4 3 --chnames Y,RY,BY -d half -o chroma.exr");
    EXPECT_EQ(failureToRead("chroma.exr"),
              "its colours are luminance and chroma; save it as red, green and blue");
}

TEST_F(ForeignPicturesTest, LabIsRefused) {
    runTool(folder.path, "convert -size 9x7 gradient:red-blue -colorspace Lab -depth 8 lab.tif");
    EXPECT_EQ(failureToRead("lab.tif"), "its colours are L*a*b*; save it as red, green and blue");
}

TEST_F(ForeignPicturesTest, AlphaOfWebPIsStraight) {
    runTool(folder.path,
            "oiiotool --create 9x7 4 --fill:color=0.8,0.5,0.3,0.02 9x7 -d uint8 --attrib "
            "oiio:UnassociatedAlpha 1 "
            "-o a.png && convert a.png -define webp:lossless=true a.webp && "
            "ffmpeg -v error -i a.webp -pix_fmt rgba right.png");
    const Picture picture = readPicture(folder / "a.webp");
    EXPECT_FALSE(picture.isPremultiplied);
    EXPECT_EQ(picture.samples, readPicture(folder / "right.png").samples);
    EXPECT_EQ(readPicture(folder / "a.webp", "A").samples, readPicture(folder / "right.png", "A").samples);
}

TEST_F(ForeignPicturesTest, PlanesOfManyRowsAreReadOneAfterTheOther) {
    runTool(folder.path, "oiiotool --pattern noise 40x200 3 -d uint8 -o a.png");
    for (const std::string compression : {"none", "LZW", "Zip"}) {
        runTool(folder.path, "convert a.png -interlace plane -compress " + compression + " planes.tif");
        EXPECT_EQ(readPicture(folder / "planes.tif").samples, readPicture(folder / "a.png").samples)
            << compression;
    }
}

TEST_F(ForeignPicturesTest, FirstPageOfSeveralIsRead) {
    runTool(folder.path, kMake +
                             "-d uint8 -o a.tif && oiiotool --create 9x9 3 -d uint8 -o b.tif && "
                             "convert a.tif b.tif b.tif pages.tif");
    const Picture picture = readPicture(folder / "pages.tif");
    EXPECT_EQ(picture.parts, 3);
    EXPECT_EQ(picture.width, 5);
}

TEST_F(ForeignPicturesTest, OtherFormatsAreNamedWhateverTheirEnding) {
    runTool(folder.path, kMake +
                             "-d uint8 -o a.png && convert a.png GIF:gif.png && convert a.png BMP:bmp.tif && "
                             "convert a.png PSD:psd.exr");
    EXPECT_EQ(failureToRead("gif.png"), "it is a GIF file; convert it to PNG, TIFF or OpenEXR");
    EXPECT_EQ(failureToRead("bmp.tif"), "it is a BMP file; convert it to PNG, TIFF or OpenEXR");
    EXPECT_EQ(failureToRead("psd.exr"), "it is a PSD file; convert it to PNG, TIFF or OpenEXR");
}

}  // namespace
}  // namespace pictures
