// Renders ten frames through the plug-in in this fresh process, on one thread, and prints the milliseconds of
// each: what the first one pays for memory that the process has not had before.
//
//   first-frame coarse|fine 8|16 [WIDTH HEIGHT]

#include <charconv>
#include <cstdio>
#include <cstring>
#include <exception>
#include <optional>
#include <string_view>

#include "Cases.h"
#include "PluginRender.h"
#include "SceneCache.h"

namespace {

constexpr int kFrames = 10;
constexpr bench::Size kDefaultSize = {3840, 2160};

std::optional<int> ParseExtent(std::string_view text) {
    int extent = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), extent);
    if (error != std::errc() || end != text.data() + text.size() || extent < 1) return std::nullopt;
    return extent;
}

template <class C>
void PrintFrames(bench::Size size, bool fine) {
    const bench::Scene<C> scene(size, bench::Matte::kObjects);
    const perch::World input = bench::WorldOf(scene.beauty);
    const perch::World control = bench::WorldOf(scene.control);
    bench::PluginRender render(input, control, {.fine = fine});
    for (int i = 0; i < kFrames; ++i)
        std::printf("%.3f\n", 1e3 * render.secondsOfFrame());
}

int Usage() {
    std::fputs("usage: first-frame coarse|fine 8|16 [WIDTH HEIGHT]\n", stderr);
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 && argc != 5) return Usage();
    const std::string_view blur = argv[1];
    const std::string_view depth = argv[2];
    if ((blur != "coarse" && blur != "fine") || (depth != "8" && depth != "16")) return Usage();
    bench::Size size = kDefaultSize;
    if (argc == 5) {
        const auto width = ParseExtent(argv[3]);
        const auto height = ParseExtent(argv[4]);
        if (!width || !height) return Usage();
        size = {*width, *height};
    }
    try {
        const bool fine = blur == "fine";
        depth == "8" ? PrintFrames<PILib::Channel8>(size, fine) : PrintFrames<PILib::Channel15>(size, fine);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "first-frame: %s\n", error.what());
        return 1;
    }
    return 0;
}
