// Pictures as renderers hand them over, through the built program and the effect beside it.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "CommandCase.h"
#include "Program.h"
#include "TemporaryFolder.h"
#include "ToolRun.h"

namespace perch::test {
namespace {

namespace fs = std::filesystem;

// The samples of the first part, as floats; halves, 8 and 16 bits are exact in them.
struct Samples {
    int channels = 0;
    OIIO::TypeDesc type;
    std::vector<float> values;
};

Samples samplesOf(const fs::path& path) {
    OIIO::ImageSpec keepAlpha;
    keepAlpha["oiio:UnassociatedAlpha"] = 1;
    const auto file = OIIO::ImageInput::open(path.string(), &keepAlpha);
    if (!file) throw std::runtime_error("cannot open " + path.string() + ": " + OIIO::geterror());
    const OIIO::ImageSpec& layout = file->spec();
    Samples samples{layout.nchannels, layout.format,
                    std::vector<float>(layout.image_pixels() * static_cast<std::size_t>(layout.nchannels))};
    if (!file->read_image(0, 0, 0, layout.nchannels, OIIO::TypeFloat, samples.values.data()))
        throw std::runtime_error("cannot read " + path.string() + ": " + file->geterror());
    return samples;
}

class PictureJobsTest : public testing::Test {
protected:
    ProgramResult perch(const std::string& arguments) const {
        std::vector<std::string> command{PERCH_PROGRAM, "render"};
        std::istringstream words(arguments);
        for (std::string word; words >> word;)
            command.push_back(word);
        return runProgram(command, folder / "work");
    }

    void make(const std::string& line) const { runTool(folder / "work", line); }
    Samples samples(const std::string& name) const { return samplesOf(folder / "work" / name); }

    PictureJobsTest() { fs::create_directory(folder / "work"); }

    TemporaryFolder folder;
};

// Noise with highlights and alpha, and a matte.
const std::string kNoise = "oiiotool --create 62x43 4 --noise:type=uniform:min=0:max=1:seed=7 ";

TEST_F(PictureJobsTest, PixelsThatTheEffectLeavesAloneKeepTheFilesSamples) {
    const struct {
        const char* name;
        std::string make;
        std::vector<std::string> encodes{""};
    } cases[] = {
        {"a8.png", kNoise + "-d uint8 -o a8.png"},
        {"a16.png", kNoise + "-d uint16 -o a16.png", {"", " --encode srgb", " --encode log"}},
        {"a8.tif", kNoise + "-d uint8 -o a8.tif"},  // associated alpha
        {"a16.tif", kNoise + "-d uint16 -o a16.tif"},
        {"grey16.png",
         "oiiotool --create 62x43 1 --noise:type=uniform:min=0:max=1:seed=7 -d uint16 -o grey16.png"},
        {"half.exr",
         kNoise + "--mulc 9,9,9,1 -d half -o half.exr",
         {"", " --encode linear", " --encode log"}},
        {"float.exr",
         kNoise + "--mulc 900,9,9,1 --subc 0.1,0,0,0 -d float -o float.exr",
         {"", " --encode log"}},
        {"float.tif", kNoise + "-d float -o float.tif"},
        {"half.tif",
         "oiiotool --create 62x43 3 --noise:type=uniform:min=0:max=1:seed=7 -d uint16 -o n.png && "
         "convert n.png -define quantum:format=floating-point -depth 16 half.tif"},
        {"a.dpx", "oiiotool --create 62x43 3 --noise:type=uniform:min=0:max=1:seed=7 -d uint16 -o a.dpx"},
    };
    make("oiiotool --create 62x43 1 --noise:type=uniform:min=0:max=1:seed=3 -d uint16 -o matte.png");
    for (const auto& c : cases) {
        make(c.make);
        for (const std::string& encode : c.encodes) {
            const std::string out = "out" + fs::path(c.name).extension().string();
            const ProgramResult result =
                perch("-i " + std::string(c.name) + " -o " + out +
                      " --control-layer matte.png --maximum-blur 9 --blend-with-original 100" + encode);
            ASSERT_EQ(result.status, 0) << c.name << encode << ": " << result.err;
            const Samples before = samples(c.name);
            const Samples after = samples(out);
            if (before.type != OIIO::TypeHalf || out.ends_with(".exr")) {
                EXPECT_EQ(after.type, before.type) << c.name << encode;
            }
            EXPECT_EQ(after.channels, before.channels) << c.name << encode;
            EXPECT_EQ(after.values, before.values) << c.name << encode;
        }
    }
}

TEST_F(PictureJobsTest, DepthsNeedARangeAndTheRefusalSuggestsOne) {
    make("oiiotool --pattern fill:top=2:bottom=30 62x43 1 --chnames Z -d float -o z.exr && " + kNoise +
         "-d uint8 -o in.png");
    const ProgramResult refused = perch("-i in.png -o out.png --control-layer z.exr");
    EXPECT_EQ(refused.status, 3);
    EXPECT_EQ(
        refused.err,
        "perch: cannot take \"z.exr\" for a layer: its values are 2 to 30, not 0 to 1; say which are near "
        "and far with --control-range NEAR:FAR, as 2:30\n");
    const ProgramResult found = perch("-i in.png -o out.png --control-layer z.exr --control-range auto");
    EXPECT_EQ(found.status, 0);
    EXPECT_EQ(found.err, "perch: note: --control-range auto is --control-range 2:30\n");
    const ProgramResult wrong = perch("-i in.png -o out.png --control-layer z.exr --control-range 2");
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(
        wrong.err,
        "perch: --control-range takes two depths, as 2.5:40 or 2.5:40:reciprocal, or auto, not \"2\"\n");
    const ProgramResult alone = perch("-i in.png -o out.png --control-range 2:30");
    EXPECT_EQ(alone.status, 2);
    EXPECT_EQ(alone.err, "perch: --control-range is of the picture of --control-layer, which is missing\n");
}

TEST_F(PictureJobsTest, SharesWithAnInfiniteBackgroundNeedARangeToo) {
    make(
        "oiiotool --pattern fill:top=0.25:bottom=0.75 62x43 1 --chnames Z --fill:color=1e10 9x9+1+1 -d float "
        "-o z.exr && " +
        kNoise + "-d uint8 -o in.png");
    const ProgramResult refused = perch("-i in.png -o out.png --control-layer z.exr");
    EXPECT_EQ(refused.status, 3);
    EXPECT_EQ(
        refused.err,
        "perch: cannot take \"z.exr\" for a layer: its values are 0.25 to 0.75 and infinite, not 0 to 1; "
        "say which are near and far with --control-range NEAR:FAR, as 0.25:0.75\n");
}

TEST_F(PictureJobsTest, DepthsMakeTheMatteThatTheyStandFor) {
    // The same scene in metres, in centimetres, along an axis towards the viewer, and as a matte.
    make(
        "oiiotool --pattern fill:left=2:right=30 62x43 1 --chnames Z -d float -o m.exr && "
        "oiiotool m.exr --mulc 100 -o cm.exr && oiiotool m.exr --mulc -1 -o axis.exr && "
        "oiiotool m.exr --subc 30 --divc -28 -d uint16 -o matte.png && " +
        kNoise + "-d uint16 -o in.png");
    const std::string job = " --maximum-blur 9 --blur-type Fine --focal-point 40 --control-layer ";
    ASSERT_EQ(perch("-i in.png -o matte-out.png" + job + "matte.png").status, 0);
    const Samples expected = samples("matte-out.png");
    for (const std::string layer : {"m.exr --control-range 2:30", "cm.exr --control-range 200:3000",
                                    "axis.exr:Z --control-range -2:-30"}) {
        ASSERT_EQ(perch("-i in.png -o out.png" + job + layer).status, 0) << layer;
        EXPECT_EQ(samples("out.png").values, expected.values) << layer;
    }
    ASSERT_EQ(perch("-i in.png -o out.png" + job + "m.exr --control-range 2:30:reciprocal").status, 0);
    EXPECT_NE(samples("out.png").values, expected.values);
}

TEST_F(PictureJobsTest, LaterFrameOutsideTheRangeOfTheFirstIsToldOnce) {
    make(
        "oiiotool --pattern fill:top=2:bottom=30 62x43 1 --chnames Z -d float -o z.1.exr && cp z.1.exr "
        "z.2.exr && "
        "oiiotool z.1.exr --mulc 2 -o z.3.exr && cp z.3.exr z.4.exr && " +
        kNoise +
        "-d uint8 -o in.1.png && cp in.1.png in.2.png && cp in.1.png in.3.png && cp in.1.png in.4.png");
    const ProgramResult result =
        perch("-i in.#.png -o out.#.png --control-layer z.#.exr --control-range auto --threads 1");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(
        withoutTimes(withoutProgress(result.err)),
        "perch: 4 frames, 1-4: in.#.png -> out.#.png\n"
        "perch: note: --control-range auto is --control-range 2:30\n"
        "perch: warning: \"z.3.exr\" has depths of 4:60, outside the 2:30 that --control-range auto found in "
        "the first frame\n"
        "perch: 4 frames done in {time}: out.#.png\n");
    const ProgramResult refused =
        perch("-i in.#.png -o out.#.png --control-layer z.#.exr --control-range auto --warnings-as-errors");
    EXPECT_EQ(refused.status, 3);
}

TEST_F(PictureJobsTest, PartsOfOneFileAreBeautyAndDepth) {
    make(kNoise +
         "--mulc 9,9,9,0 --addc 0,0,0,1 -d half -o beauty.exr && "
         "oiiotool --pattern fill:left=2:right=30 62x43 1 --chnames Z -d float -o z.exr && "
         "oiiotool beauty.exr z.exr --siappend -o parts.exr");
    const ProgramResult result = perch(
        "-i parts.exr -o out.exr --control-layer parts.exr:Z --control-range 2:30 --encode log "
        "--maximum-blur 9");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err,
              "perch: note: \"parts.exr\" has 2 parts and the first is read; to read another, put its name "
              "after the file's, as in NAME.exr:depth\n");
    const Samples out = samples("out.exr");
    EXPECT_EQ(out.type, OIIO::TypeHalf);
    EXPECT_GT(*std::ranges::max_element(out.values), 4);  // highlights stay above white
    const Samples before = samples("beauty.exr");
    EXPECT_NE(out.values, before.values);
}

// Pixels that the blur has changed come from its codes, not from the file.
TEST_F(PictureJobsTest, LightAboveWhiteSpreadsAsSuchByLogAlone) {
    make(
        "oiiotool --create 62x43 3 --fill:color=8,8,8 20x20+20+10 -d half -o in.exr && "
        "oiiotool --pattern fill:left=0:right=0.3 62x43 1 -d uint16 -o matte.png");
    const Samples before = samples("in.exr");
    const auto brightestChanged = [&](const std::string& encode) {
        const ProgramResult result = perch(
            "-i in.exr -o out.exr --control-layer matte.png --focal-point 100 --maximum-blur 9 --encode " +
            encode);
        EXPECT_EQ(result.status, 0) << result.err;
        const Samples after = samples("out.exr");
        float brightest = 0;
        for (std::size_t i = 0; i < after.values.size(); ++i)
            if (after.values[i] != before.values[i]) brightest = std::max(brightest, after.values[i]);
        return brightest;
    };
    EXPECT_GT(brightestChanged("log"), 3);
    EXPECT_LE(brightestChanged("srgb"), 1);
}

TEST_F(PictureJobsTest, LayersOfTheInputAreRendered) {
    make(kNoise + "-d half -o a.exr && " + kNoise +
         "--mulc 0.5 --chnames fog.R,fog.G,fog.B,fog.A -d half -o fog.exr && "
         "oiiotool a.exr fog.exr --chappend -o in.1.exr && cp in.1.exr in.2.exr && "
         "oiiotool fog.exr --chnames R,G,B,A -o want.exr");
    const std::string job = " -o out.#.exr --control-layer none --blend-with-original 100 --existing skip";
    ASSERT_EQ(perch("-i in.#.exr" + job).status, 0);
    EXPECT_EQ(samples("out.2.exr").values, samples("a.exr").values);
    const ProgramResult fog = perch("-i in.#.exr:fog --report report.json" + job);
    EXPECT_EQ(fog.err.find("up to date"), std::string::npos) << fog.err;
    EXPECT_EQ(samples("out.1.exr").values, samples("want.exr").values);
    EXPECT_EQ(samples("out.2.exr").values, samples("want.exr").values);
    const ProgramResult again = perch("-i in.#.exr:fog --dry-run" + job);
    EXPECT_NE(again.err.find("2 frames, 1-2, are up to date"), std::string::npos) << again.err;
    EXPECT_NE(perch("-i in.#.exr:fog --dry-run --frames 1 -o x.#.exr")
                  .out.find("input: in.1.exr:fog, 62 x 43, 16 bits in floating point, RGBA\n"),
              std::string::npos);
    const ProgramResult refused = perch("-i in.1.exr:smoke -o x.exr");
    EXPECT_EQ(refused.status, 3);
    EXPECT_EQ(refused.err,
              "perch: cannot read \"in.1.exr\": it has no layer or channel \"smoke\"; it has the layers fog "
              "and the "
              "channels R, G, B, A, fog.R, fog.G, fog.B, fog.A\n");
}

TEST_F(PictureJobsTest, ColoursOfAFileThatHasDepthsAreNotTakenForThemInSilence) {
    make(kNoise +
         "-d half -o beauty.exr && oiiotool --pattern fill:left=2:right=30 62x43 1 --chnames Z -d float -o "
         "z.exr && "
         "oiiotool beauty.exr z.exr --chappend -d half -d Z=float -o all.exr && " +
         kNoise + "-d uint8 -o in.png");
    const std::string warning =
        "\"all.exr\" has depths in its channel Z and its colours are read; for the depths name it as "
        "all.exr:Z\n";
    EXPECT_EQ(perch("-i in.png -o out.png --control-layer all.exr").err, "perch: warning: " + warning);
    const ProgramResult refused = perch("-i in.png -o out.png --control-layer all.exr --warnings-as-errors");
    EXPECT_EQ(refused.err, "perch: " + warning);
    EXPECT_EQ(refused.status, 3);
    EXPECT_EQ(perch("-i in.png -o out.png --control-layer all.exr:Z --control-range 2:30").err, "");
}

TEST_F(PictureJobsTest, FilesTellWhatChangedTheirPixels) {
    make("oiiotool --pattern fill:left=2:right=30 62x43 1 --chnames Z -d float -o z.exr && " + kNoise +
         "-d uint8 -o in.png");
    ASSERT_EQ(
        perch("-i in.png -o out.png --control-layer z.exr --control-range auto --focal-point 40 --depth 16 "
              "--dither --threads 2")
            .status,
        0);
    const auto file = OIIO::ImageInput::open(folder / "work" / "out.png");
    ASSERT_TRUE(file);
    const std::string software = file->spec().get_string_attribute("Software");
    EXPECT_TRUE(software.ends_with(
        ": --control-layer z.exr --focal-point 40 --depth 16 --dither --control-range 2:30"))
        << software;
}

TEST_F(PictureJobsTest, OptionsThatDoNothingForTheOutputAreWarnedOf) {
    make("oiiotool --create 10x10 3 -d half -o in.exr && oiiotool --create 10x10 3 -d uint8 -o in.png");
    struct Case {
        const char* arguments;
        const char* warning;  // empty: none
    };
    const Case cases[] = {
        {"-i in.png -o a.png --compression piz",
         "--compression piz is for OpenEXR files and does nothing for \"a.png\""},
        {"-i in.exr -o a.exr --compression 5",
         "--compression 5 is for PNG and TIFF files and does nothing for \"a.exr\""},
        {"-i in.png -o a.jpg --compression 5",
         "--compression 5 is for PNG and TIFF files and does nothing for \"a.jpg\""},
        {"-i in.png -o a.png --jpeg-quality 90",
         "--jpeg-quality is for JPEG files and does nothing for \"a.png\""},
        {"-i in.png -o a.png --compression 5", ""},
        {"-i in.exr -o a.exr --compression piz", ""},
        {"-i in.png -o a.jpg --jpeg-quality 90", ""},
    };
    for (const auto& [arguments, warning] : cases) {
        const std::string job = std::string(arguments) + " --control-layer none --progress none";
        const auto outcome = perch(job);
        EXPECT_EQ(outcome.status, 0) << arguments;
        EXPECT_EQ(outcome.err.find("perch: warning: ") != std::string::npos, *warning != 0) << outcome.err;
        EXPECT_NE(outcome.err.find(warning), std::string::npos) << outcome.err;
        EXPECT_EQ(perch(job + " --warnings-as-errors").status, *warning != 0 ? 2 : 0) << arguments;
    }
}

TEST_F(PictureJobsTest, CodesForScreensInOpenExrAreToldOf) {
    make("oiiotool --create 10x10 3 -d uint8 -o in.png && oiiotool --create 10x10 3 -d uint16 -o in.tif");
    const std::string job = " --control-layer none --progress none";
    const std::string told = "numbers are written unchanged";
    EXPECT_NE(perch("-i in.png -o a.exr" + job).err.find(told), std::string::npos);
    EXPECT_EQ(perch("-i in.png -o a.png" + job).err.find(told), std::string::npos);
    EXPECT_EQ(perch("-i in.tif -o a.exr" + job).err.find(told), std::string::npos);
}

TEST_F(PictureJobsTest, LightInWholeNumbersIsWarnedOf) {
    make("oiiotool --create 10x10 3 -d half -o in.exr");
    const std::string job = "-i in.exr --control-layer none --progress none --encode log";
    const std::string told = "looks dark and ends at white";
    for (const char* const output : {" -o a.png", " -o a.dpx", " -o a.tif --output-depth 16"})
        EXPECT_NE(perch(job + output).err.find(told), std::string::npos) << output;
    for (const char* const output : {" -o a.exr", " -o a.tif", " -o a.tif --output-depth float"})
        EXPECT_EQ(perch(job + output).err.find(told), std::string::npos) << output;
}

TEST_F(PictureJobsTest, ClippedLightIsCountedOnce) {
    make(
        "oiiotool --create 10x10 3 --fill:color=2,0.5,0.5 10x3+0+0 --fill:color=-1,0,0 1x1+0+9 -d half -o "
        "in.1.exr && cp in.1.exr in.2.exr");
    const std::string job = "-i in.#.exr -o out.#.exr --control-layer none --blend-with-original 100";
    const std::string plan = "perch: 2 frames, 1-2: in.#.exr -> out.#.exr";
    const std::string summary = "perch: 2 frames done in {time}: out.#.exr\n";
    const std::string below = "perch: note: 1.0 % of the pixels of 2 frames are below 0 and were clipped\n";
    EXPECT_EQ(
        withoutTimes(withoutProgress(perch(job).err)),
        plan +
            "\n"
            "perch: note: the pictures hold light in floats, which the effect gets by the curve of sRGB, "
            "as with --encode srgb\n"
            "perch: note: 30.0 % of the pixels of 2 frames are above 1 and were clipped; --encode log "
            "keeps light up to 64 in OpenEXR files\n" +
            below + summary);
    EXPECT_EQ(withoutTimes(withoutProgress(perch(job + " --encode log").err)),
              plan + " (2 exist and are replaced)\n" + below + summary);
    EXPECT_EQ(perch(job + " --quiet").err, "");
}

TEST_F(PictureJobsTest, OutputHasTheDepthOfTheInputOrTheOneAskedFor) {
    make(kNoise + "-d uint8 -o in8.png && " + kNoise + "-d uint16 -o in16.png && " + kNoise +
         "-d half -o in.exr && "
         "oiiotool --create 62x43 1 --noise:type=uniform:min=0:max=1:seed=3 -d uint16 -o matte16.png");
    struct Case {
        const char* arguments;
        const char* output;
        OIIO::TypeDesc type;
    };
    const Case cases[] = {
        {"-i in8.png --control-layer matte16.png", "a.png", OIIO::TypeUInt8},
        {"-i in8.png --depth 16", "b.png", OIIO::TypeUInt16},
        {"-i in16.png --depth 8", "c.png", OIIO::TypeUInt8},
        {"-i in16.png --output-depth 8", "d.png", OIIO::TypeUInt8},
        {"-i in8.png --output-depth 16", "e.tif", OIIO::TypeUInt16},
        {"-i in8.png --output-depth float", "f.tif", OIIO::TypeFloat},
        {"-i in8.png", "g.exr", OIIO::TypeHalf},
        {"-i in16.png", "h.exr", OIIO::TypeFloat},
        {"-i in.exr", "i.exr", OIIO::TypeHalf},
        {"-i in.exr --output-depth float", "j.exr", OIIO::TypeFloat},
        {"-i in.exr", "k.png", OIIO::TypeUInt16},
        {"-i in.exr", "l.tif", OIIO::TypeFloat},
    };
    for (const Case& c : cases) {
        const ProgramResult result = perch(std::string(c.arguments) + " --maximum-blur 5 -o " + c.output);
        EXPECT_EQ(result.status, 0) << c.arguments << ": " << result.err;
        EXPECT_EQ(samples(c.output).type, c.type) << c.arguments;
    }
    make("convert in16.png -define quantum:format=floating-point half.tif");
    EXPECT_EQ(
        perch("-i half.tif -o m.tif --control-layer none --encode linear").err,
        "perch: note: \"m.tif\" gets floats of 32 bits for the halves of the input, with the same values; "
        ".exr files hold halves\n");
    EXPECT_EQ(perch("-i half.tif -o n.tif --control-layer none --encode linear --output-depth float").err,
              "");
    const ProgramResult refused = perch("-i in8.png -o out.png --output-depth half");
    EXPECT_EQ(refused.status, 4);
    EXPECT_EQ(refused.err,
              "perch: cannot write \"out.png\": PNG holds 8 or 16 bits per channel and the picture has half "
              "floats; "
              "use .exr, or another --output-depth\n");
}

// At 8 bits the steps of a matte of 16 would be rounded away, and with them the slow change of the blur.
TEST_F(PictureJobsTest, DeepMatteStaysOneBesideAnEightBitPicture) {
    make(kNoise +
         "-d uint8 -o in.png && "
         "oiiotool --pattern fill:left=0.5:right=0.52 62x43 1 -d uint16 -o matte.png");
    const std::string job =
        "-i in.png --control-layer matte.png --view-mode Focus --focal-point 50 --output-depth 16 -o ";
    ASSERT_EQ(perch(job + "auto.png").status, 0);
    ASSERT_EQ(perch(job + "eight.png --depth 8").status, 0);
    const auto steps = [](std::vector<float> values) {
        std::ranges::sort(values);
        return std::unique(values.begin(), values.end()) - values.begin();
    };
    EXPECT_GE(steps(samples("auto.png").values), steps(samples("eight.png").values));
    ASSERT_EQ(perch(job + "sixteen.png --depth 16").status, 0);
    EXPECT_EQ(samples("auto.png").values, samples("sixteen.png").values);
}

}  // namespace
}  // namespace perch::test
