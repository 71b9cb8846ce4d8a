#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>

#include "CommandLine.h"

namespace {

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

struct Case {
    std::string name;
    std::string arguments;
    int exitCode;
    std::string err;  // without the program's name before it and the end of line

    friend std::ostream& operator<<(std::ostream& stream, const Case& c) { return stream << c.arguments; }
};

const std::string kEmptyPng(
    "\x89PNG\r\n\x1A\n"
    "\0\0\0\15IHDR\0\0\0\0\0\0\0\2\10\2\0\0\0\xF9\x21\x4A\x4E"
    "\0\0\0\0IEND\xAE\x42\x60\x82",
    45);

void WriteHalfOf(const ScratchFolder& folder, const std::string& name) {
    const std::string whole = BytesOf(folder.file(name));
    WriteBytes(folder.file("half_" + name), whole.substr(0, whole.size() / 2));
}

class RefusalTest : public testing::TestWithParam<Case> {
protected:
    RefusalTest() {
        writePictures();
        for (const std::string name : {"rgba.png", "rgb.jpg", "rgb.tif"})
            WriteHalfOf(folder, name);
        WriteBytes(folder.file("zero.png"), kEmptyPng);
        WriteBytes(folder.file("text.png"), "not a picture\n");
        WriteBytes(folder.file("nothing.png"), "");
        std::filesystem::create_directory(folder.file("folder"));
        std::filesystem::create_directory(folder.file("folder.png"));
    }

    void writePictures() const {
        WriteRaw(folder.file("rgba.png"), Noise<std::uint8_t>(20, 10, 4, 1));
        for (const std::string name : {"rgb.png", "rgb.tif", "rgb.jpg", "other.bmp"}) {
            WriteRaw(folder.file(name), Noise<std::uint8_t>(20, 10, 3, 1));
        }
        WriteRaw(folder.file("rgb16.png"), Noise<std::uint16_t>(20, 10, 3, 1));
        WriteRaw(folder.file("float.tif"), Raw<float>{1, 1, 3, {0.5F, 1.5F, 0.5F}});
        WriteRaw(folder.file("float.exr"), Raw<float>{1, 1, 1, {5.5F}});
        WriteRaw(folder.file("int32.tif"), Raw<std::uint32_t>{1, 1, 1, {5}});
        WriteRaw(folder.file("five.tif"), Raw<std::uint8_t>{1, 1, 5, {1, 2, 3, 4, 5}});
    }

    ScratchFolder folder;
};

TEST_P(RefusalTest, IsOneSentenceAndLeavesNoFile) {
    const auto& [name, arguments, exitCode, err] = GetParam();
    const auto before = folder.names();
    const Outcome outcome = PullFocus(folder, arguments);
    EXPECT_EQ(outcome.exitCode, exitCode);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "pull-focus: " + err + "\n");
    EXPECT_EQ(folder.names(), before);
}

std::string CaseName(const testing::TestParamInfo<Case>& info) {
    return info.param.name;
}

const std::string kSeeHelp = " (see pull-focus --help)";
const std::string kDamaged = "\": it is damaged or cut short; save or copy it again";
const std::string kNoPicture =
    "\": it is not a picture, or a damaged one; name a PNG, TIFF, OpenEXR, DPX, TGA, JPEG or "
    "WebP file";
const std::string kConvert = " channels; convert it to 8 or 16 bits per channel, or floats";

INSTANTIATE_TEST_SUITE_P(
    Input, RefusalTest,
    testing::Values(
        Case{"MissingBeauty", "none.png rgb.png out.png", kFailed,
             "cannot read \"none.png\": there is no such file; check the name"},
        Case{"MissingControl", "rgb.png none.png out.png", kFailed,
             "cannot read \"none.png\": there is no such file; check the name"},
        Case{"Folder", "folder rgb.png out.png", kFailed,
             "cannot read \"folder\": it is a folder; name a file"},
        Case{"Device", "/dev/zero rgb.png out.png", kFailed,
             "cannot read \"/dev/zero\": it is not a file; name a picture file"},
        Case{"Text", "text.png rgb.png out.png", kFailed, "cannot read \"text.png" + kNoPicture},
        Case{"EmptyFile", "nothing.png rgb.png out.png", kFailed, "cannot read \"nothing.png" + kNoPicture},
        Case{"NoPixels", "zero.png rgb.png out.png", kFailed,
             "cannot read \"zero.png\": it has no pixels; save it again"},
        Case{"HalfPng", "half_rgba.png rgb.png out.png", kFailed, "cannot read \"half_rgba.png" + kDamaged},
        Case{"HalfJpeg", "half_rgb.jpg rgb.png out.png", kFailed, "cannot read \"half_rgb.jpg" + kDamaged},
        Case{"HalfControl", "rgb.png half_rgba.png out.png", kFailed,
             "cannot read \"half_rgba.png" + kDamaged},
        Case{"HalfTiff", "half_rgb.tif rgb.png out.png", kFailed, "cannot read \"half_rgb.tif" + kDamaged},
        Case{"BrightFloats", "float.tif rgb.png out.png", kFailed,
             "cannot read \"float.tif\": its values are 0.5 to 1.5, not 0 to 1; convert it to 16 bits per "
             "channel"},
        Case{
            "SceneDepths", "rgb.png float.exr out.png", kFailed,
            "cannot read \"float.exr\": its values are 5.5 to 5.5, not 0 to 1; give the depths that are near "
            "and far by --control-range NEAR:FAR"},
        Case{"NoSuchChannel", "rgb.png float.exr:W out.png", kFailed,
             "cannot read \"float.exr\": it has no layer or channel \"W\"; it has the channels Y"},
        Case{"Integers", "int32.tif rgb.png out.png", kFailed,
             "cannot read \"int32.tif\": it has 32-bit integer" + kConvert},
        Case{"FiveChannels", "five.tif rgb.png out.png", kFailed,
             "cannot read \"five.tif\": it has 5 channels; convert it to grey or RGB, with or without alpha"},
        Case{"OtherFormat", "other.bmp rgb.png out.png", kFailed,
             "cannot read \"other.bmp\": it is a BMP file; convert it to PNG, TIFF or OpenEXR"}),
    CaseName);

INSTANTIATE_TEST_SUITE_P(
    Output, RefusalTest,
    testing::Values(
        Case{"MissingFolder", "rgb.png rgb.png none/here/out.png", kFailed,
             "cannot write \"none/here/out.png\": there is no folder \"none/here\" and it cannot be made "
             "(No such file or directory); create it first"},
        Case{"FolderIsAFile", "rgb.png rgb.png rgb.png/out.png", kFailed,
             "cannot write \"rgb.png/out.png\": there is no folder \"rgb.png\" and it cannot be made "
             "(File exists); create it first"},
        Case{"OutputIsTheBeauty", "rgb.png rgba.png ./rgb.png", kFailed,
             "cannot write \"./rgb.png\": it is the file \"rgb.png\", which is read; choose another name"},
        Case{"OutputIsTheControl", "rgb.png rgba.png folder/../rgba.png", kFailed,
             "cannot write \"folder/../rgba.png\": it is the file \"rgba.png\", which is read; choose "
             "another name"},
        // Not even the super-user creates files there.
        Case{"FolderNotWritable", "rgb.png rgb.png /proc/out.png", kFailed,
             "cannot write \"/proc/out.png\": No such file or directory; check its folder and the room on "
             "its disk"},
        Case{"FolderOfThisName", "rgb.png rgb.png folder.png", kFailed,
             "cannot write \"folder.png\": a folder has this name; choose another"},
        Case{"UnknownFormat", "rgb.png rgb.png out.webp", kFailed,
             "cannot write \"out.webp\": its name must end in .png, .tif, .tiff, .exr, .dpx, .tga, .jpg or "
             ".jpeg"},
        Case{"JpegWithAlpha", "rgba.png rgb.png out.jpg", kFailed,
             "cannot write \"out.jpg\": JPEG holds no alpha and the picture has one; use .png or .tif"},
        Case{"DeepJpeg", "rgb16.png rgb.png out.jpg", kFailed,
             "cannot write \"out.jpg\": JPEG holds 8 bits per channel and the picture has 16 bits; "
             "use .png or .tif"}),
    CaseName);

Case OutOfRange(const std::string& name, const std::string& option, const std::string& value,
                const std::string& range) {
    return {name, "rgb.png rgb.png out.png " + option + " " + value, kWrongUsage,
            option + ": " + value + " is outside the range " + range + kSeeHelp};
}

INSTANTIATE_TEST_SUITE_P(Range, RefusalTest,
                         testing::Values(OutOfRange("FocalPointAbove", "--focal-point", "100.5", "0..100"),
                                         OutOfRange("FocalPointBelow", "--focal-point", "-1", "0..100"),
                                         OutOfRange("InFocusRangeAbove", "--in-focus-range", "101", "0..100"),
                                         OutOfRange("InFocusRangeBelow", "--in-focus-range", "-0.1",
                                                    "0..100"),
                                         OutOfRange("MaximumBlurAbove", "--maximum-blur", "200.01", "0..200"),
                                         OutOfRange("MaximumBlurBelow", "--maximum-blur", "-1", "0..200"),
                                         OutOfRange("AspectRatioAbove", "--aspect-ratio", "1.01", "-1..1"),
                                         OutOfRange("AspectRatioBelow", "--aspect-ratio", "-1.01", "-1..1"),
                                         OutOfRange("BlendAbove", "--blend-with-original", "1e9", "0..100"),
                                         OutOfRange("BlendBelow", "--blend-with-original", "-5", "0..100"),
                                         OutOfRange("NotANumber", "--maximum-blur", "nan", "0..200"),
                                         OutOfRange("Infinite", "--maximum-blur", "inf", "0..200"),
                                         OutOfRange("NoThreads", "--threads", "0", "1..256"),
                                         OutOfRange("TooManyThreads", "--threads", "257", "1..256")),
                         CaseName);

Case WrongUsage(const std::string& name, const std::string& arguments, const std::string& err) {
    return {name, arguments, kWrongUsage, err + kSeeHelp};
}

INSTANTIATE_TEST_SUITE_P(
    Usage, RefusalTest,
    testing::Values(
        WrongUsage("NoFiles", "", "BEAUTY is required"),
        WrongUsage("NoControl", "rgb.png", "CONTROL is required"),
        WrongUsage("NoOutput", "rgb.png rgb.png", "OUT is required"),
        WrongUsage("FourFiles", "rgb.png rgb.png out.png more.png",
                   "The following argument was not expected: more.png"),
        WrongUsage("UnknownOption", "rgb.png rgb.png out.png --focal-pont",
                   "The following argument was not expected: --focal-pont"),
        WrongUsage("NoValue", "rgb.png rgb.png out.png --focal-point",
                   "--focal-point: 1 required 0..100 missing"),
        WrongUsage("Word", "rgb.png rgb.png out.png --focal-point near",
                   "--focal-point: \"near\" is not a number"),
        WrongUsage("NumberAndUnit", "rgb.png rgb.png out.png --maximum-blur 5px",
                   "--maximum-blur: \"5px\" is not a number"),
        WrongUsage("NoRange", "rgb.png float.exr out.png --control-range 2.5-40",
                   "--control-range: \"2.5-40\" is no range; give it as 2.5:40 or 2.5:40:reciprocal"),
        WrongUsage("UnknownView", "rgb.png rgb.png out.png --view-mode Depth",
                   "--view-mode: \"Depth\" is none of Normal|Focus"),
        WrongUsage("UnknownBlur", "rgb.png rgb.png out.png --blur-type 1",
                   "--blur-type: \"1\" is none of Coarse|Fine"),
        WrongUsage("UnknownChannel", "rgb.png rgb.png out.png --control-channel Hue",
                   "--control-channel: \"Hue\" is none of Alpha|Red|Green|Blue|Luma|Lightness|Brightness")),
    CaseName);

TEST(HelpTest, NamesEveryControlAndItsRange) {
    const ScratchFolder folder;
    const Outcome outcome = PullFocus(folder, "--help");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    for (const char* text :
         {"BEAUTY CONTROL OUT", "--view-mode Normal|Focus=Normal", "--blur-type Coarse|Fine=Coarse",
          "--control-channel Alpha|Red|Green|Blue|Luma|Lightness|Brightness=Luma", "--focal-point 0..100=0",
          "--in-focus-range 0..100=0", "--maximum-blur 0..200=10", "--aspect-ratio -1..1=0",
          "--control-range NEAR:FAR", "--invert-control", "--conform-control-size,--no-conform-control-size",
          "--blend-with-original 0..100=0", "--threads 1..256"}) {
        EXPECT_NE(outcome.out.find(text), std::string::npos) << text << " is not in:\n" << outcome.out;
    }
}

}  // namespace
