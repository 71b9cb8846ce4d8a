// Fine frames of any size against direct sums, at sampled pixels: what small pictures cannot show, as sums
// grow with the distance from the upper left corner.
//
//   large-frames WIDTHxHEIGHT 8|16 SAMPLES
//
// Prints a line for each picture and radius; fails at the first pixel that differs.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string_view>
#include <system_error>

#include "FrameBuffer.h"
#include "Image.h"
#include "Kestrel.h"
#include "NaiveBlur.h"
#include "OracleBuffers.h"
#include "RandomImage.h"
#include "ThreadPoolContext.h"

namespace {

using oracle::Colour;
using oracle::Image;
using oracle::Map;

struct Content {
    const char* name;
    Colour (*at)(std::mt19937& random, const Image& image, int x, int y);
};

std::uint32_t Share(const Image& image, int step, int steps) {
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(image.full) * step / steps);
}

constexpr Content kContents[] = {
    {"black beside bright noise",
     [](std::mt19937& random, const Image& image, int x, int /*y*/) -> Colour {
         if (x >= image.width / 2) return {image.full, 0, 0, 0};
         const auto bright = [&] { return image.full - oracle::RandomComponent(random, image.full / 4); };
         return {image.full, bright(), bright(), bright()};
     }},
    {"white",
     [](std::mt19937& /*random*/, const Image& image, int /*x*/, int /*y*/) -> Colour {
         return {image.full, image.full, image.full, image.full};
     }},
    {"uniform colours at every tenth of alpha",
     [](std::mt19937& /*random*/, const Image& image, int x, int /*y*/) -> Colour {
         return {Share(image, 11 * x / image.width, 10), image.full, image.full / 3, 1};
     }},
    {"ramps",
     [](std::mt19937& /*random*/, const Image& image, int x, int y) -> Colour {
         return {image.full, Share(image, x, image.width), Share(image, y, image.height),
                 Share(image, image.width - x, image.width)};
     }},
    {"noise",
     [](std::mt19937& random, const Image& image, int /*x*/, int /*y*/) -> Colour {
         const auto any = [&] { return oracle::RandomComponent(random, image.full); };
         return {any(), any(), any(), any()};
     }},
};

// Runs of equal values of every length up to a hundred, so that rows are read by groups and by pixels.
void FillMap(std::mt19937& random, Map& map) {
    std::uint32_t value = 0;
    int run = 0;
    for (std::uint32_t& element : map.values) {
        if (run-- == 0) {
            run = oracle::RandomUpTo(random, oracle::RandomUpTo(random, 100));
            value = 1 + oracle::RandomComponent(random, map.full - 1);
        }
        element = value;
    }
}

std::int32_t FixedRadius(std::uint32_t mapValue, std::uint32_t full, float radius) {
    const std::uint32_t share = full == oracle::kFull8 ? mapValue * 32897 / 128 : mapValue * 2;
    const float product = static_cast<float>(share) * radius;
    return static_cast<std::int32_t>(product);
}

template <class C>
bool IsRight(const Content& content, int width, int height, float radius, int samples) {
    std::mt19937 random(7);
    Image image(width, height, oracle::kFull<C>);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.at(x, y) = content.at(random, image, x, y);
    }
    Map map(width, height, oracle::kFull<C>);
    FillMap(random, map);
    const PILib::SimplePixelBuffer<PILib::Pixel<C>> input(width, height);
    const PILib::SimplePixelBuffer<PILib::Pixel<C>> output(width, height);
    const PILib::ChannelBuf<C> control(width, height);
    oracle::Store<C>(image, input);
    oracle::Store<C>(map, control);
    PILib::ThreadPoolContext context;
    Kestrel(context, output, input, control, true, radius, radius);

    const auto largest = static_cast<int>(std::ceil(radius));
    const oracle::Blur blur = oracle::MakeBlur(oracle::Shape::kTent, image, largest, largest);
    for (int n = 0; n < samples; ++n) {
        const int x = n == 0 ? width - 1 : oracle::RandomUpTo(random, width - 1);
        const int y = n == 0 ? height - 1 : oracle::RandomUpTo(random, height - 1);
        const std::int32_t fixed = FixedRadius(map.at(x, y), map.full, radius);
        const Colour expected = oracle::ReadFractional(blur, x, y, fixed, fixed);
        const Colour actual = oracle::ColourOf(output.row(y)[x]);
        if (expected == actual) continue;
        std::printf("%s, radius %g, pixel %d, %d: expected ARGB(%u, %u, %u, %u), actual (%u, %u, %u, %u)\n",
                    content.name, static_cast<double>(radius), x, y, expected[0], expected[1], expected[2],
                    expected[3], actual[0], actual[1], actual[2], actual[3]);
        return false;
    }
    std::printf("%s, radius %g: %d pixels are those of direct sums\n", content.name,
                static_cast<double>(radius), samples);
    return true;
}

bool Read(std::string_view text, int& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number > 0;
}

}  // namespace

int main(int argc, char** argv) {
    int width = 0;
    int height = 0;
    int samples = 0;
    const std::string_view size = argc == 4 ? argv[1] : "";
    const std::string_view depth = argc == 4 ? argv[2] : "";
    const std::size_t cross = std::min(size.find('x'), size.size());
    if (!Read(size.substr(0, cross), width) || cross == size.size() ||
        !Read(size.substr(cross + 1), height) || !Read(argv[3], samples) || (depth != "8" && depth != "16")) {
        std::fputs("usage: large-frames WIDTHxHEIGHT 8|16 SAMPLES\n", stderr);
        return 2;
    }
    const auto isRight = depth == "8" ? IsRight<PILib::Channel8> : IsRight<PILib::Channel15>;
    for (const Content& content : kContents) {
        for (const float radius : {0.3F, 1.0F, 5.0F, 50.0F, 121.5F, 200.0F}) {
            if (!isRight(content, width, height, radius, samples)) return 1;
            std::fflush(stdout);
        }
    }
    return 0;
}
