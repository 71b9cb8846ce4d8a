// Writes the scene that the benchmarks render as picture files, for other programs to blur: beauty-8.png,
// matte-8.png, beauty-16.png and matte-16.png. The matte is the one with objects.
//
//   write-scene WIDTH HEIGHT FOLDER

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

#include "FileWorlds.h"
#include "PluginRender.h"
#include "SceneCache.h"

namespace {

template <class C>
void Write(bench::Size size, const std::filesystem::path& folder, const std::string& bits) {
    const bench::Scene<C> scene(size, bench::Matte::kObjects);
    perch::writeWorld(folder / ("beauty-" + bits + ".png"), bench::WorldOf(scene.beauty), true);
    perch::writeWorld(folder / ("matte-" + bits + ".png"), bench::WorldOf(scene.control), false);
}

}  // namespace

int main(int argc, char** argv) {
    const bench::Size size = {argc == 4 ? std::atoi(argv[1]) : 0, argc == 4 ? std::atoi(argv[2]) : 0};
    if (size.width < 1 || size.height < 1) {
        std::fputs("usage: write-scene WIDTH HEIGHT FOLDER\n", stderr);
        return 2;
    }
    try {
        Write<PILib::Channel8>(size, argv[3], "8");
        Write<PILib::Channel15>(size, argv[3], "16");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "write-scene: %s\n", error.what());
        return 1;
    }
    return 0;
}
