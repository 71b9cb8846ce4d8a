#include "RenderOptions.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <set>
#include <string>

#include "Error.h"
#include "TemporaryFolder.h"

namespace perch::test {
namespace {

std::vector<std::string> withPictures(const std::string& option, const std::string& text) {
    return {"--input", "in.png", "--output", "out.png", option, text};
}

RenderOptions parsed(const std::string& option, const std::string& text) {
    return parseRenderOptions(withPictures(option, text));
}

// The long options in the first column of the table in docs/perch.md, without their dashes and without those
// that each layer has.
std::set<std::string> documentedOptions() {
    std::ifstream document(std::string(PERCH_SOURCES) + "/docs/perch.md");
    std::string line;
    while (std::getline(document, line) && !line.starts_with("| option of `render` |")) {
    }
    std::getline(document, line);  // between heading and rows
    std::set<std::string> names;
    while (std::getline(document, line) && line.starts_with("| ")) {
        const std::string cell = line.substr(0, line.find(" | "));
        const std::size_t begin = cell.find("--") + 2;
        const std::string name = cell.substr(begin, cell.find('`', begin) - begin);
        if (!name.starts_with("LAYER-")) names.insert(name);
    }
    return names;
}

TEST(RenderOptionsTest, DocumentHasEveryOptionAndNoOther) {
    std::set<std::string> names(renderOptionNames().begin(), renderOptionNames().end());
    names.erase("help");
    EXPECT_EQ(documentedOptions(), names);
}

TEST(RenderOptionsTest, EachShardHasAReportOfItsOwn) {
    const struct {
        const char* shard;
        const char* report;
        const char* file;
    } cases[] = {
        {"2/8", "report.##.json", "report.02.json"},
        {"120/200", "all/report.%d.json", "all/report.120.json"},
        {"1/1", "report.json", "report.json"},
        {"3/3", "", ""},
    };
    for (const auto& [shard, report, file] : cases) {
        std::vector<std::string> arguments = withPictures("--shard", shard);
        arguments.insert(arguments.end(), {"--report", report});
        EXPECT_EQ(parseRenderOptions(arguments).job.report, file);
    }
    std::vector<std::string> arguments = withPictures("--shard", "1/2");
    arguments.insert(arguments.end(), {"--report", "report.json"});
    EXPECT_THROW(parseRenderOptions(arguments), UsageError) << "the other would replace it";
}

TEST(RenderOptionsTest, InputCanNameALayerOfItsFiles) {
    const TemporaryFolder folder;
    std::ofstream(folder / "real.0001.exr:fog");
    const std::string real = (folder / "real.####.exr:fog").string();
    const struct {
        std::vector<std::string> arguments;
        std::string input;
        std::string selected;
    } cases[] = {
        {{"-i", "a.exr:fog"}, "a.exr", "fog"},
        {{"-i", "a.####.exr:fog.Z"}, "a.####.exr", "fog.Z"},
        {{"-i", "a.exr:fog", "--no-pattern"}, "a.exr", "fog"},
        {{"-i", "a.exr"}, "a.exr", ""},
        {{"-i", real}, real, ""},
        {{"-i", real, "--no-pattern"}, (folder / "real.####.exr").string(), "fog"},
    };
    for (const auto& [arguments, input, selected] : cases) {
        std::vector<std::string> all = arguments;
        all.insert(all.end(), {"-o", "out.exr"});
        const RenderOptions options = parseRenderOptions(all);
        EXPECT_EQ(options.names.input, input) << arguments[1];
        EXPECT_EQ(options.settings.selectedInput, selected) << arguments[1];
    }
}

TEST(RenderOptionsTest, OptionsAreKnownToBeGivenWhateverTheySay) {
    EXPECT_EQ(parsed("--threads", "0").given, (std::set<std::string>{"input", "output", "threads"}));
    EXPECT_EQ(parsed("--progress", "auto").given, (std::set<std::string>{"input", "output", "progress"}));
}

TEST(RenderOptionsTest, ThreadsGoToTheEffect) {
    for (const int threads : {0, 1, 3, 1024}) {
        const std::string text = std::to_string(threads);
        EXPECT_EQ(parsed("--threads", text).load.threads, threads);
    }
}

TEST(RenderOptionsTest, FramesAheadFollowTheThreadsUpToEight) {
    EXPECT_EQ(parsed("--threads", "1").settings.framesAhead, 1U);
    EXPECT_EQ(parsed("--threads", "3").settings.framesAhead, 3U);
    EXPECT_EQ(parsed("--threads", "1024").settings.framesAhead, 8U);
}

TEST(RenderOptionsTest, MemoryIsSharedByThePicturesOfAFrame) {
    std::vector<std::string> arguments = withPictures("--max-memory", "600");
    arguments.insert(arguments.end(), {"--threads", "1", "--max-pixels", "5000"});
    const RenderOptions options = parseRenderOptions(arguments);
    EXPECT_EQ(options.settings.reading.bytes, std::int64_t{300} << 20);  // its input and its layer
    EXPECT_EQ(options.settings.memory, std::int64_t{600} << 20);
    EXPECT_EQ(options.settings.reading.pixels, 5000);
}

TEST(RenderOptionsTest, EncodersGetCompressionAndQuality) {
    EXPECT_EQ(parsed("--compression", "9").settings.encoding.compression, 9);
    EXPECT_EQ(parsed("--compression", "dwaa").settings.encoding.openExrCompression, "dwaa");
    EXPECT_EQ(parsed("--jpeg-quality", "7").settings.encoding.jpegQuality, 7);
}

TEST(RenderOptionsTest, DownsampleIsAFractionUpToOne) {
    struct Fraction {
        const char* text;
        A_long num;
        A_u_long den;
    };
    for (const auto& [text, num, den] : {Fraction{"1/1", 1, 1}, Fraction{"1/2", 1, 2}, Fraction{"2/3", 2, 3},
                                         Fraction{"1/1000", 1, 1000}, Fraction{"01/02", 1, 2}}) {
        const PF_RationalScale scale = parsed("--downsample", text).settings.downsample;
        EXPECT_EQ(scale.num, num) << text;
        EXPECT_EQ(scale.den, den) << text;
    }
}

TEST(RenderOptionsTest, OtherDownsamplesAreRefused) {
    for (const char* const text :
         {"",     "/",    "1",     "1/",     "/2",          "0/1",          "1/0",
          "2/1",  "-1/2", "1/-5",  "+1/2",   "1/+2",        " 1/2",         "1/ 2",
          "1 /2", "1/2 ", "1/2/3", "1/1001", "1/999999999", "1/4294967297", "99999999999/99999999999"})
        EXPECT_THROW(parsed("--downsample", text), UsageError) << '"' << text << '"';
}

TEST(RenderOptionsTest, FailuresEndAJobUnlessItIsToGoOn) {
    EXPECT_FALSE(parsed("--on-error", "stop").settings.goesOn);
    EXPECT_TRUE(parsed("--on-error", "continue").settings.goesOn);
    EXPECT_TRUE(parsed("--frames-from", "-").settings.goesOn);
    EXPECT_EQ(parsed("--on-error", "stop").settings.retries, 0);
    EXPECT_EQ(parsed("--retries", "100").settings.retries, 100);
    EXPECT_EQ(parsed("--retries", "1").job.progress, ProgressForm::Auto);
    EXPECT_EQ(parsed("--progress", "json").job.progress, ProgressForm::Json);
    EXPECT_TRUE(parsed("--on-error", "stop").settings.pause.count() > 0);
    for (const auto& [option, text] :
         {std::pair{"--on-error", "go"}, std::pair{"--on-error", ""}, std::pair{"--retries", "101"},
          std::pair{"--retries", "-1"}, std::pair{"--progress", "dots"}})
        EXPECT_THROW(parsed(option, text), UsageError) << option << ' ' << text;
}

TEST(RenderOptionsTest, ShardIsANumberAndHowManyThereAre) {
    for (const std::size_t number : {1U, 2U, 1000000U}) {
        const Shard shard = *parsed("--shard", std::to_string(number) + "/1000000").names.shard;
        EXPECT_EQ(shard.number, number);
        EXPECT_EQ(shard.count, 1000000U);
    }
    EXPECT_FALSE(parsed("--threads", "1").names.shard);
}

// A layer, a popup of its channels and a slider.
std::vector<Parameter> layerAndSlider() {
    Parameter layer;
    layer.index = 1;
    layer.name = "Matte";
    layer.definition.param_type = PF_Param_LAYER;
    Parameter channel;
    channel.index = 2;
    channel.name = "Matte Channel";
    channel.definition.param_type = PF_Param_POPUP;
    channel.items = {"Alpha", "Red", "Luma"};
    channel.defaultNumber = 2;
    Parameter amount;
    amount.index = 3;
    amount.name = "Amount";
    amount.definition.param_type = PF_Param_SLIDER;
    amount.validRange = Parameter::Range{0, 100};
    return {layer, channel, amount};
}

TEST(RenderOptionsTest, LikelyMistakesOfTheCommandLineAreNoticed) {
    const auto parse = [](const std::vector<std::string>& arguments) {
        return parseParameterArguments(arguments, layerAndSlider());
    };
    EXPECT_EQ(parse({"--amount", "3"}).missingLayer, "--matte");
    EXPECT_EQ(parse({}).missingLayer, "");
    EXPECT_EQ(parse({"--amount", "3", "--matte", "none"}).missingLayer, "");
    const ParameterArguments twice =
        parse({"--amount", "3", "--matte", "a.png", "--amount", "4", "--threads", "1", "--threads", "2"});
    EXPECT_EQ(twice.missingLayer, "");
    EXPECT_EQ(twice.repeated, (std::vector<std::string>{"--threads", "--amount"}));
}

TEST(RenderOptionsTest, OptionsThatChangePixelsAreTold) {
    EXPECT_EQ(pixelOptions({"-i", "a.exr", "--dither", "--threads", "2", "--encode", "log", "--depth=8"}),
              " --depth 8 --encode log --dither");
    EXPECT_EQ(pixelOptions({"-i", "a.exr", "--threads", "2"}), "");
}

TEST(RenderOptionsTest, ACommandLineIsTakenApart) {
    const CommandParts parts =
        commandParts({"--amount", "3", "--input=in.#.png", "--matte", "z.exr:Z", "--strict", "-o",
                      "out.#.png", "--matte-range", "1:9", "--preset", "look.json", "--frames=-3-1"},
                     layerAndSlider());
    EXPECT_EQ(parts.words,
              (std::vector<std::string>{"-i", "in.#.png", "-o", "out.#.png", "--frames=-3-1", "--strict"}));
    ASSERT_EQ(parts.layers.size(), 1U);
    EXPECT_EQ(parts.layers[0].picture, "z.exr:Z");
    EXPECT_EQ(parts.layers[0].range, "1:9");
    EXPECT_EQ(parts.layers[0].offset, "");
}

TEST(RenderOptionsTest, PopupBehindALayerTellsItsChannel) {
    const auto channelOf = [](const std::vector<std::string>& arguments) {
        return parseParameterArguments(arguments, layerAndSlider()).readings.at(1).usedChannel;
    };
    EXPECT_EQ(channelOf({"--matte", "a.png"}), LayerChannel::Red);
    EXPECT_EQ(channelOf({"--matte", "a.png", "--matte-channel", "Alpha"}), LayerChannel::Alpha);
    EXPECT_EQ(channelOf({"--matte", "a.png", "--matte-channel", "Luma"}), LayerChannel::Any);
}

}  // namespace
}  // namespace perch::test
