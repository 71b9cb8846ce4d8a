// What a file says of its picture, format by format.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "CapturedStderr.h"
#include "Error.h"
#include "FileSizeLimit.h"
#include "FileWorlds.h"
#include "PictureFile.h"
#include "PictureFiles.h"
#include "SmallProfile.h"
#include "TemporaryFolder.h"
#include "ToolRun.h"

namespace perch {
namespace {

using test::bytesOf;
using test::runTool;
using test::TemporaryFolder;

// What exiftool reads of a file. A line has a column for each, "-" for what the file does not say.
constexpr char kTags[] =
    "-ProfileCopyright -Gamma -WhitePointX -RedX -SRGBRendering -PixelsPerUnitX -XResolution "
    "-Orientation -Artist -Description -ImageDescription -ModifyDate -Compression";

// Files that other programs have written, and how many of the tags they have.
struct Described {
    std::string file;
    int tags;
};

const Described kDescribed[] = {
    {"8.png", 9}, {"16.png", 7}, {"grey.png", 7}, {"8.tif", 7}, {"16.tif", 5}, {"a.jpg", 5},
};

constexpr const char* kExrAttributes[] = {
    "PixelAspectRatio: 2",          "FramesPerSecond: 24/1",
    "Copyright: \"Ada\"",           "ImageDescription: \"Gradient\"",
    "full/display origin: 100, 50", "my.attribute: 7",
    "smpte:TimeCode: 01:02:03:04",  "oiio:ColorSpace",
};

class MetadataTest : public testing::Test {
protected:
    // As a job does that changes nothing; returns what is left behind.
    std::vector<std::string> copy(const std::string& from, const std::string& to) const {
        const SharedPicture picture = readPictureFile(folder / from);
        const FileWorld world = worldOf(picture, Depth::Bits16, pictures::Transfer::Linear);
        const pictures::FileFormat format = pictures::formatOfName(to).value();
        const pictures::SampleType type =
            nearestType(format, picture->type()).value_or(pictures::SampleType::Bits8);
        return writeWorld(folder / to, world.pixels, world,
                          {.type = type, .encoding = {.software = "perch"}});
    }

    std::string listOf(const std::string& name, const std::string& command) const {
        runTool(folder.path, command + " " + name);
        return bytesOf(folder / "tool.log");
    }

    TemporaryFolder folder;
};

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

int tagsIn(const std::string& line) {
    std::istringstream stream(line);
    int tags = 0;
    for (std::string tag; std::getline(stream, tag, '\t');)
        tags += tag == "-" ? 0 : 1;
    return tags;
}

TEST_F(MetadataTest, WhatDescribesThePictureSurvivesFormatByFormat) {
    test::writeBytes(folder / "p.icc", test::smallProfile());
    runTool(folder.path,
            "convert -size 9x7 gradient:red-blue -depth 8 a8.png && "
            "convert a8.png -density 72 -units PixelsPerCentimeter -set Artist Ada -set Description Gradient "
            "8.png && convert -size 9x7 gradient:red-blue -depth 16 -density 72 -units PixelsPerCentimeter "
            "-set Artist Ada 16.png && convert -size 9x7 gradient: -depth 8 -density 72 "
            "-units PixelsPerCentimeter -set Artist Ada grey.png && "
            "convert a8.png -density 72 -units PixelsPerCentimeter -compress LZW 8.tif && "
            "convert -size 9x7 gradient:red-blue -depth 16 -density 72 -compress LZW 16.tif && "
            "convert a8.png -density 72 -units PixelsPerInch a.jpg && "
            "exiftool -q -overwrite_original -Artist=Ada -ImageDescription=Gradient 16.tif && "
            "exiftool -q -overwrite_original -Artist=Ada -ImageDescription=Gradient -Orientation#=6 "
            "\"-ICC_Profile<=p.icc\" 8.tif a.jpg && "
            "exiftool -q -overwrite_original \"-ICC_Profile<=p.icc\" 8.png && "
            "exiftool -q -overwrite_original \"-ModifyDate=2001:02:03 04:05:06\" 8.tif");
    std::string files;
    for (const Described& described : kDescribed) {
        copy(described.file, "out-" + described.file);
        files += " " + described.file + " out-" + described.file;
    }
    const std::vector<std::string> lines =
        linesOf(listOf(files, "exiftool -q -T -f " + std::string(kTags) + " -Software"));
    ASSERT_EQ(lines.size(), 2 * std::size(kDescribed));
    for (std::size_t i = 0; i < std::size(kDescribed); ++i) {
        const auto withoutSoftware = [](const std::string& line) { return line.substr(0, line.rfind('\t')); };
        const std::string before = withoutSoftware(lines[2 * i]);
        const std::string& after = lines[2 * i + 1];
        EXPECT_EQ(withoutSoftware(after), before) << kDescribed[i].file;
        EXPECT_EQ(tagsIn(before), kDescribed[i].tags) << before;
        EXPECT_TRUE(after.ends_with("\tperch")) << after;
    }
}

TEST_F(MetadataTest, AttributesAndWindowsOfOpenExrSurvive) {
    runTool(
        folder.path,
        "oiiotool --create 4x3 4 --fill:color=1,0.5,0.25,1 4x3+0+0 --origin +102+51 --fullsize 8x6+100+50 "
        "--attrib PixelAspectRatio 2.0 --attrib:type=rational FramesPerSecond 24/1 --attrib owner Ada "
        "--attrib comments Gradient --attrib:type=int my.attribute 7 --attrib:type=timecode smpte:TimeCode "
        "01:02:03:04 "
        "-d half --compression piz -o a.exr");
    EXPECT_EQ(copy("a.exr", "out.exr"), std::vector<std::string>{});
    const std::string after = listOf("out.exr", "oiiotool --info -v");
    for (const char* const attribute : kExrAttributes)
        EXPECT_NE(after.find(attribute), std::string::npos) << attribute << " is not in " << after;
    EXPECT_NE(after.find("compression: \"zip\""), std::string::npos) << after;
    EXPECT_EQ(copy("a.exr", "out.png"),
              (std::vector<std::string>{"FramesPerSecond", "my.attribute", "smpte:TimeCode",
                                        "the display window's place"}));
}

TEST_F(MetadataTest, FilesHaveTheCompressionAskedFor) {
    const struct {
        const char* name;
        pictures::SampleType type;
        pictures::EncodingOptions encoding;
        const char* compression;
    } cases[] = {
        {"zip.exr", pictures::SampleType::Half, {}, "zip"},
        {"piz.exr", pictures::SampleType::Half, {.openExrCompression = "piz"}, "piz"},
        {"zip.tif", pictures::SampleType::Bits8, {}, "zip"},
        {"none.tif", pictures::SampleType::Bits8, {.compression = 0}, "none"},
    };
    for (const auto& c : cases) {
        pictures::writePicture(folder / c.name, pictures::newPicture(9, 7, 3, c.type), c.encoding);
        const auto file = OIIO::ImageInput::open(folder / c.name);
        ASSERT_NE(file, nullptr) << c.name;
        EXPECT_EQ(file->spec().get_string_attribute("compression"), c.compression) << c.name;
    }
    pictures::Picture noise = pictures::newPicture(64, 64, 3, pictures::SampleType::Bits8);
    std::uint32_t state = 1;
    for (std::uint8_t& sample : std::get<std::vector<std::uint8_t>>(noise.samples))
        sample = static_cast<std::uint8_t>((state = state * 1664525U + 1013904223U) >> 24);
    pictures::writePicture(folder / "10.jpg", noise, {.jpegQuality = 10});
    pictures::writePicture(folder / "95.jpg", noise, {.jpegQuality = 95});
    EXPECT_LT(2 * bytesOf(folder / "10.jpg").size(), bytesOf(folder / "95.jpg").size());
}

TEST_F(MetadataTest, NoDateIsInvented) {
    test::writeFile<std::uint8_t>(folder / "a.png", {1, 1, 3}, {1, 2, 3});
    for (const char* const to : {"b.png", "b.tif", "b.exr", "b.dpx", "b.tga", "b.jpg"}) {
        copy("a.png", to);
        const auto file = OIIO::ImageInput::open(folder / to);
        ASSERT_NE(file, nullptr) << to;
        EXPECT_EQ(file->spec().get_string_attribute("DateTime"), "") << to;
    }
}

TEST_F(MetadataTest, LibrariesPrintNothingOfWhatAFormatDoesNotHold) {
    test::writeBytes(folder / "p.icc", test::smallProfile());
    runTool(folder.path,
            "convert -size 9x7 gradient:red-blue -depth 8 -density 72 a.tif && convert a.tif a.jpg && "
            "exiftool -q -overwrite_original -Artist=Ada -Orientation#=6 -ISO=100 -GPSLatitude=52 "
            "\"-ICC_Profile<=p.icc\" a.tif a.jpg && "
            "oiiotool a.tif --attrib:type=timecode smpte:TimeCode 01:02:03:04 --attrib:type=rational "
            "FramesPerSecond 24/1 --attrib:type=float[3] my.numbers 1,2,3 -d half -o a.exr");
    const test::CapturedStderr captured;
    for (const char* const from : {"a.tif", "a.jpg", "a.exr"}) {
        for (const char* const to : {"b.png", "b.tif", "b.exr", "b.dpx", "b.tga", "b.jpg"}) {
            copy(from, to);
            EXPECT_EQ(captured.text(), "") << from << " to " << to;
        }
    }
}

// Of a camera; a line has a column for each. The image library keeps the last of them out of TIFF files, and
// does not read them there.
constexpr char kExifTags[] =
    "-EXIF:Make -EXIF:Model -EXIF:Orientation -EXIF:Artist -EXIF:ExposureTime -EXIF:FNumber "
    "-EXIF:DateTimeOriginal -EXIF:ISO -EXIF:GPSLatitude -EXIF:GPSLatitudeRef";

TEST_F(MetadataTest, ExifSurvivesBetweenTheFormatsThatHoldIt) {
    runTool(folder.path,
            "convert -size 9x7 gradient:red-blue -depth 8 a.png && convert a.png a.jpg && "
            "convert a.png a.tif && convert a.png a.webp && exiftool -q -overwrite_original "
            "-EXIF:Make=Acme -EXIF:Model=One -EXIF:Orientation#=6 -EXIF:Artist=Ada -EXIF:ExposureTime=1/50 "
            "-EXIF:FNumber=2.8 -EXIF:ISO=100 \"-EXIF:DateTimeOriginal=2001:02:03 04:05:06\" "
            "-EXIF:GPSLatitude=52.5 -EXIF:GPSLatitudeRef=N a.png a.jpg a.tif a.webp");
    const std::string camera = "Acme\tOne\tRotate 90 CW\tAda\t1/50\t2.8\t2001:02:03 04:05:06\t";
    std::string files;
    std::vector<std::string> expected;
    for (const std::string from : {"png", "jpg", "tif", "webp"}) {
        for (const std::string to : {"png", "jpg", "tif"}) {
            const std::string name = from + "-to." + to;
            copy("a." + from, name);
            EXPECT_EQ(pictures::readPicture(folder / name).width, 9) << name;
            const bool isWhole = from != "tif" && to != "tif";
            files += " " + name;
            expected.push_back(name + "\t" + camera +
                               (isWhole ? "100\t52 deg 30' 0.00\"\tNorth" : "-\t-\t-"));
        }
    }
    EXPECT_EQ(linesOf(listOf(files, "exiftool -q -T -f -FileName " + std::string(kExifTags))), expected);
}

// It is made in a file that is nowhere but in memory, where the encoder does not notice the limit.
TEST_F(MetadataTest, TiffWithExifThatFindsNoRoomLeavesTheFileBefore) {
    runTool(folder.path, "oiiotool --pattern noise 200x150 3 --attrib Make Acme -d uint8 -o a.tif");
    copy("a.tif", "whole.tif");
    const std::uintmax_t size = std::filesystem::file_size(folder / "whole.tif");
    test::writeBytes(folder / "out.tif", "before");
    for (const std::uintmax_t limit : {std::uintmax_t{0}, std::uintmax_t{1000}, size / 2, size - 10}) {
        std::string failure = "nothing was thrown";
        try {
            const test::FileSizeLimit full(limit);
            copy("a.tif", "out.tif");
        } catch (const Error& error) {
            failure = error.what();
        }
        EXPECT_EQ(failure, "cannot write \"" + (folder / "out.tif").string() +
                               "\": File too large; check its folder and the room on its disk")
            << limit;
        EXPECT_EQ(bytesOf(folder / "out.tif"), "before") << limit;
    }
}

TEST_F(MetadataTest, WhatTiffDoesNotHoldOfExifIsNamed) {
    runTool(folder.path,
            "convert -size 9x7 gradient:red-blue -depth 8 a.jpg && "
            "exiftool -q -overwrite_original -EXIF:GPSLatitude=52.5 a.jpg");
    const std::vector<std::string> unheld = copy("a.jpg", "b.tif");
    EXPECT_NE(std::ranges::find(unheld, "GPS:Latitude"), unheld.end()) << testing::PrintToString(unheld);
}

TEST_F(MetadataTest, ExposureOfOpenExrIsKeptInTiff) {
    runTool(folder.path, "oiiotool --create 9x7 3 --attrib:type=float ExposureTime 0.02 -d half -o a.exr");
    copy("a.exr", "b.tif");
    EXPECT_EQ(listOf("b.tif", "exiftool -q -T -ExposureTime"), "1/50\n");
}

TEST_F(MetadataTest, ATextThatIsSaidDifferentlyIsNamed) {
    const std::string text(150, 'x');
    runTool(folder.path,
            "convert -size 9x7 gradient:red-blue -depth 8 a.png && "
            "exiftool -q -overwrite_original -PNG:Artist=" +
                text + " a.png");
    const std::vector<std::string> unheld = copy("a.png", "b.dpx");
    EXPECT_NE(std::ranges::find(unheld, "Artist"), unheld.end()) << testing::PrintToString(unheld);
}

TEST_F(MetadataTest, NumbersThatAFileLeavesUndefinedAreLeftOut) {
    runTool(folder.path,
            "convert -size 64x48 gradient:red-blue -depth 8 a.png && "
            "ffmpeg -v error -i a.png -pix_fmt gbrp10le a.dpx");
    copy("a.dpx", "b.exr");
    const auto file = OIIO::ImageInput::open(folder / "b.exr");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->spec().get_float_attribute("PixelAspectRatio", 1), 1);
}

// Each code of 10 bits, whose highest bits come again as the lowest of 16.
std::vector<std::uint16_t> tenBitCodes(std::size_t channels) {
    std::vector<std::uint16_t> codes;
    for (std::uint32_t code = 0; code < 1024; ++code)
        for (std::size_t channel = 0; channel < channels; ++channel)
            codes.push_back(static_cast<std::uint16_t>(code << 6 | code >> 4));
    return codes;
}

int bitsOf(const std::filesystem::path& path) {
    const auto file = OIIO::ImageInput::open(path);
    return file == nullptr ? 0 : file->spec().get_int_attribute("oiio:BitsPerSample");
}

// Readers fill up the lowest bits in one of two ways.
std::vector<int> codesOf(const std::filesystem::path& path, int bits) {
    const pictures::Picture picture = pictures::readPicture(path);
    std::vector<int> codes;
    for (const std::uint16_t sample : std::get<std::vector<std::uint16_t>>(picture.samples))
        codes.push_back(sample >> (16 - bits));
    return codes;
}

TEST_F(MetadataTest, DpxFilesOfFewerBitsKeepThem) {
    test::writeFile(folder / "rgb.png", {32, 32, 3}, tenBitCodes(3));
    test::writeFile(folder / "rgba.png", {32, 32, 4}, tenBitCodes(4));
    runTool(folder.path,
            "oiiotool rgb.png -d uint10 -o rgb10.dpx -d uint12 -o rgb12.dpx && "
            "oiiotool rgba.png -d uint10 -o rgba10.dpx && "
            "ffmpeg -v error -i rgb.png -pix_fmt gbrp10le ff10.dpx -pix_fmt gbrp12le ff12.dpx");
    for (const auto& [name, bits] : {std::pair("rgb10.dpx", 10),
                                     {"rgb12.dpx", 12},
                                     {"rgba10.dpx", 10},
                                     {"ff10.dpx", 10},
                                     {"ff12.dpx", 12}}) {
        const std::string copied = std::string("copy-") + name;
        copy(name, copied);
        EXPECT_EQ(bitsOf(folder / copied), bits) << name;
        EXPECT_EQ(codesOf(folder / copied, bits), codesOf(folder / name, bits)) << name;
        runTool(folder.path, std::string("ffmpeg -v error -y -i ") + name +
                                 " -f rawvideo a.raw && ffmpeg -v error -y -i " + copied +
                                 " -f rawvideo b.raw");
        EXPECT_EQ(bytesOf(folder / "b.raw"), bytesOf(folder / "a.raw")) << name;
    }
}

TEST_F(MetadataTest, OtherSamplesOfSuchFilesAreRoundedUnlessADepthIsChosen) {
    test::writeFile(folder / "a.png", {32, 32, 3}, tenBitCodes(3));
    runTool(folder.path, "oiiotool a.png -d uint10 -o a.dpx");
    pictures::Picture picture = pictures::readPicture(folder / "a.dpx");
    auto& samples = std::get<std::vector<std::uint16_t>>(picture.samples);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::uint16_t>(i * 65535 / (samples.size() - 1));
    writePicture(folder / "ten.dpx", picture);
    const std::vector<int> codes = codesOf(folder / "ten.dpx", 10);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double mostAway = samples[i] % 64 == 0 ? 1 : 0.5;  // those may be from such a file
        ASSERT_NEAR(codes[i], samples[i] * 1023.0 / 65535, mostAway) << samples[i];
    }
    writePicture(folder / "sixteen.dpx", picture, {.hasChosenDepth = true});
    EXPECT_EQ(pictures::readPicture(folder / "sixteen.dpx").samples, picture.samples);
}

// Chunks that no library here reads pass as they are.
TEST_F(MetadataTest, ChunksOfPngFilesArePassedOnByTheirBytes) {
    runTool(folder.path, "convert -size 9x7 gradient:red-blue -depth 8 a.png");
    std::string png = bytesOf(folder / "a.png");
    // cICP: BT.2020, perceptual quantizer, full range.
    const std::string chunk("\0\0\0\4cICP\x09\x10\0\1\x4D\x23\x23\xFE", 16);
    png.insert(33, chunk);
    test::writeBytes(folder / "b.png", png);
    copy("b.png", "out.png");
    EXPECT_EQ(bytesOf(folder / "out.png").find(chunk), 33U);
}

}  // namespace
}  // namespace perch
