// How much memory a picture takes while it is read, and what of it counts against the limit.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "Codec.h"
#include "FileBytes.h"
#include "PictureError.h"
#include "TemporaryFolder.h"
#include "ToolRun.h"

namespace pictures {
namespace {

using perch::test::runTool;
using perch::test::TemporaryFolder;

constexpr std::int64_t kSlack = 1 << 20;  // bytes, of the decoders themselves

// Whether the decoder holds the whole picture, or most of it, as well.
enum class Decoder { Light, Heavy };

struct Kind {
    const char* name;
    Decoder decoder;
};

constexpr Kind kKinds[] = {
    {"8.png", Decoder::Light},           {"16.png", Decoder::Light},
    {"interlaced.png", Decoder::Heavy},  {"interlaced16.png", Decoder::Heavy},
    {"zip.tif", Decoder::Light},         {"one-strip.tif", Decoder::Light},
    {"tiles.tif", Decoder::Light},       {"one-tile.tif", Decoder::Heavy},
    {"palette.tif", Decoder::Light},     {"planes.tif", Decoder::Light},
    {"long-planes.tif", Decoder::Heavy}, {"zip.exr", Decoder::Light},
    {"piz.exr", Decoder::Light},         {"overscan.exr", Decoder::Light},
    {"dwab.exr", Decoder::Heavy},        {"one-tile.exr", Decoder::Heavy},
    {"a.dpx", Decoder::Light},           {"a.tga", Decoder::Light},
    {"runs.tga", Decoder::Light},        {"palette.tga", Decoder::Heavy},
    {"a.jpg", Decoder::Light},           {"progressive.jpg", Decoder::Heavy},
    {"a.webp", Decoder::Light},          {"alpha.webp", Decoder::Light},
    {"lossless.webp", Decoder::Heavy},
};

constexpr char kMakeAll[] =
    "oiiotool --create 1504x1008 3 --fill:color=1,0.5,0.25 900x700+9+9 -d uint8 -o 8.png -o a.dpx -o a.jpg "
    "-o a.webp -o a.tga --compression rle -o runs.tga --compression zip -d uint16 -o 16.png -o zip.tif "
    "-d half -o zip.exr --compression piz -o piz.exr --compression dwab -o dwab.exr "
    "--fullsize 1400x900+10+10 --compression zip -o overscan.exr && "
    "oiiotool 8.png --planarconfig separate --compression zip -o planes.tif && "
    "oiiotool 8.png --tile 64 64 -o tiles.tif --tile 1504 1008 -o one-tile.tif -d half -o one-tile.exr && "
    "oiiotool 8.png --ch R,G,B,A=0.5 -d uint8 -o alpha.webp && "
    "convert 8.png -interlace PNG interlaced.png && convert 16.png -interlace PNG interlaced16.png && "
    "convert 8.png -interlace JPEG -sampling-factor 1x1 progressive.jpg && "
    "convert 8.png -interlace plane -compress LZW -define tiff:rows-per-strip=1008 long-planes.tif && "
    "convert 8.png -compress LZW -define tiff:rows-per-strip=1008 one-strip.tif && "
    "convert 8.png -type Palette -compress none palette.tif && convert 8.png -type Palette palette.tga && "
    "oiiotool --create 1504x1008 3 --noise:type=uniform:min=0:max=1:seed=7 -d uint8 -o noise.png && "
    "convert noise.png -define webp:lossless=true -define webp:method=0 lossless.webp";

// What the process holds, in bytes: a field of the system's file about it.
std::int64_t heldMemory(const std::string& field) {
    std::ifstream status("/proc/self/status");
    std::int64_t kilobytes = 0;
    for (std::string word; status >> word;)
        if (word == field + ":") status >> kilobytes;
    return kilobytes << 10;
}

// How much more memory `body` has at its peak than before.
template <typename F>
std::int64_t memoryTakenBy(const F& body) {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5;  // the peak begins anew
    const std::int64_t before = heldMemory("VmRSS");
    body();
    return heldMemory("VmHWM") - before;
}

Picture decode(const FileBytes& bytes, const ReadOptions& options = {}) {
    return codec().decode(bytes, formatOfBytes(bytes).value(), "", options);
}

std::int64_t sampleBytes(const Picture& picture) {
    return std::visit([](const auto& samples) { return std::int64_t(samples.size() * sizeof(samples[0])); },
                      picture.samples);
}

class ReadingMemoryTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        folder = std::make_unique<TemporaryFolder>();
        runTool(folder->path, kMakeAll);
        decode(readFile(*folder / "8.png"));  // the library takes some for good
    }
    static void TearDownTestSuite() { folder.reset(); }

    static std::unique_ptr<TemporaryFolder> folder;
};

std::unique_ptr<TemporaryFolder> ReadingMemoryTest::folder;

TEST_F(ReadingMemoryTest, IsLittleMoreThanThatOfThePictureOrWhatIsAllowed) {
    for (const Kind& kind : kKinds) {
        const FileBytes bytes = readFile(*folder / kind.name);
        std::int64_t samples = 0;
        const std::int64_t taken = memoryTakenBy([&] { samples = sampleBytes(decode(bytes)); });
        std::printf("%-16s %.2f times its samples\n", kind.name,
                    static_cast<double>(taken) / static_cast<double>(samples));
        if (kind.decoder == Decoder::Light) {
            EXPECT_LE(taken, samples * 3 / 2 + kSlack) << kind.name;
        }
        const ReadOptions twoThirds{.bytes = (taken - kSlack) * 2 / 3};
        EXPECT_THROW(decode(bytes, twoThirds), PictureError) << kind.name;
        EXPECT_NO_THROW(decode(bytes, {.bytes = 2 * taken + 3 * kSlack})) << kind.name;
    }
}

TEST_F(ReadingMemoryTest, IsThatOfTheWholeFileAtMostWhereItIsCut) {
    for (const Kind& kind : kKinds) {
        FileBytes bytes = readFile(*folder / kind.name);
        const std::int64_t whole = memoryTakenBy([&] { decode(bytes); });
        bytes.resize(bytes.size() * 3 / 4);
        const std::int64_t taken = memoryTakenBy([&] { EXPECT_THROW(decode(bytes), PictureError); });
        EXPECT_LE(taken, whole + kSlack) << kind.name;
    }
}

TEST_F(ReadingMemoryTest, IsNoneForAFalseSize) {
    FileBytes png = readFile(*folder / "8.png");
    // 12345 x 12345, depth, colours and so on, and the check sum of them.
    const std::array<unsigned char, 17> claim{0x00, 0x00, 0x30, 0x39, 0x00, 0x00, 0x30, 0x39, 8,
                                              2,    0,    0,    0,    0x83, 0x73, 0xFA, 0x9C};
    std::ranges::copy(claim, png.begin() + 16);
    const std::int64_t taken = memoryTakenBy([&] { EXPECT_THROW(decode(png), PictureError); });
    EXPECT_LE(taken, kSlack);
}

// The number in a file behind the name of an attribute, its type and its length.
void replaceIn(FileBytes& bytes, std::string_view attribute, std::size_t distance, std::string_view number) {
    std::string text(bytes.begin(), bytes.end());
    text.replace(text.find(attribute) + distance, number.size(), number);
    std::ranges::copy(text, bytes.begin());
}

TEST_F(ReadingMemoryTest, IsNoneForWindowsThatAnOpenExrFileHasNoChunksFor) {
    using namespace std::string_view_literals;
    constexpr std::string_view kLast = "\x7F\x3E\0\0\x7F\x3E\0\0"sv;  // 15999
    std::string make = "oiiotool --pattern noise 300x200 4 -d half ";
    std::vector<std::string> names;
    for (const std::string name :
         {"none", "rle", "zips", "zip", "piz", "pxr24", "b44", "b44a", "dwaa", "dwab"}) {
        make += "--compression " + name + " -o claims-" + name + ".exr ";
        names.push_back("claims-" + name + ".exr");
    }
    make +=
        "--tile 16 16 --compression piz -o claims-tiles.exr && "
        "oiiotool claims-piz.exr claims-piz.exr --siappend -o claims-parts.exr";
    names.insert(names.end(), {"claims-tiles.exr", "claims-parts.exr"});
    runTool(folder->path, make);
    for (const std::string& name : names) {
        FileBytes bytes = readFile(*folder / name);
        replaceIn(bytes, "displayWindow", 32, kLast);
        replaceIn(bytes, "dataWindow", 29, kLast);
        const std::int64_t taken = memoryTakenBy([&] { EXPECT_THROW(decode(bytes), PictureError) << name; });
        EXPECT_LE(taken, kSlack) << name;
    }
}

}  // namespace
}  // namespace pictures
