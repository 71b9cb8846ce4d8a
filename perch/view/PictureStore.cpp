#include "PictureStore.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "Error.h"

namespace perch {
namespace {

constexpr PF_ParamIndex kInput = 0;
constexpr std::size_t kAnyPlace = 0;  // frames are looked at in any order

std::int64_t sizeOf(const pictures::Picture& picture) {
    const auto bytesOf = [](const auto& samples) { return samples.size() * sizeof samples[0]; };
    return static_cast<std::int64_t>(std::visit(bytesOf, picture.samples));
}

std::int64_t sizeOf(const World& world) {
    return std::int64_t{world.record().rowbytes} * world.height();
}

}  // namespace

PictureStore::PictureStore(const Shot& shot)
    : effect(shot.effect),
      settings(shot.settings),
      plan(shot.plan),
      mostBytes(shot.memory),
      reader(settings.layers, settings.reading, shot.notes) {
    reader.findRanges(plan);
}

const FrameFiles& PictureStore::filesOf(std::int32_t frame) const {
    const auto found = std::ranges::find(plan.frames, frame, &FrameFiles::frame);
    if (found == plan.frames.end()) throw Error(fmt::format("there is no frame {}", frame));
    return *found;
}

std::map<PF_ParamIndex, std::filesystem::path> PictureStore::layersOf(const FrameFiles& files) const {
    std::map<PF_ParamIndex, std::filesystem::path> layers = plan.stillLayers;
    layers.insert(files.layers.begin(), files.layers.end());
    return layers;
}

FrameWorlds PictureStore::worlds(const FrameFiles& files, const PF_RationalScale& scale) {
    const auto paths = layersOf(files);
    LayerPictures layers;
    for (const auto& [index, path] : paths)
        layers[index] = picture(index, path);
    const Depth depth = workDepth(settings, effect, *input(files), {layers});
    if (depth == Depth::Bits16 && !effect.supportsDeepColor())
        throw Error("the effect does not declare 16 bits per channel; view with --depth 8");
    for (const auto& [index, layer] : layers)
        reader.compareSizes(*input(files), *layer, paths.at(index), kAnyPlace);
    FrameWorlds worlds{.input = world(kInput, files.input, scale, depth)};
    for (const auto& [index, path] : paths)
        worlds.layers[index] = world(index, path, scale, depth);
    return worlds;
}

SharedPicture PictureStore::input(const FrameFiles& files) {
    return picture(kInput, files.input);
}

SharedPicture PictureStore::layer(const FrameFiles& files, PF_ParamIndex index) {
    const auto paths = layersOf(files);
    const auto found = paths.find(index);
    return found != paths.end() ? picture(index, found->second) : nullptr;
}

void PictureStore::readAround(std::int32_t frame) {
    const auto middle = std::ranges::find(plan.frames, frame, &FrameFiles::frame) - plan.frames.begin();
    for (const std::ptrdiff_t step : {1, -1}) {
        const std::ptrdiff_t place = middle + step;
        if (place < 0 || place >= std::ssize(plan.frames)) continue;
        const FrameFiles& files = plan.frames[static_cast<std::size_t>(place)];
        input(files);
        for (const auto& [index, path] : layersOf(files))
            picture(index, path);
    }
}

SharedPicture PictureStore::picture(PF_ParamIndex index, const std::filesystem::path& path) {
    const Key key{index, path, 0, 1, Depth::Bits8};
    if (const std::optional<Kept> known = find(key)) return known->picture;
    const SharedPicture read =
        index == kInput ? readPictureFile(path, "", settings.reading) : reader.read(index, path, kAnyPlace);
    keep({.key = key, .picture = read, .world = nullptr, .bytes = sizeOf(*read)});
    return read;
}

std::shared_ptr<const FileWorld> PictureStore::world(PF_ParamIndex index, const std::filesystem::path& path,
                                                     const PF_RationalScale& scale, Depth depth) {
    const Key key{index, path, scale.num, scale.den, depth};
    if (const std::optional<Kept> known = find(key)) return known->world;
    const SharedPicture source = picture(index, path);
    const pictures::Transfer transfer =
        index == kInput ? workTransfer(settings, *source) : pictures::Transfer::Linear;
    auto made = std::make_shared<const FileWorld>(resized(worldOf(source, depth, transfer), scale));
    keep({.key = key, .picture = nullptr, .world = made, .bytes = sizeOf(made->pixels)});
    return made;
}

std::optional<PictureStore::Kept> PictureStore::find(const Key& key) {
    const std::lock_guard lock(mutex);
    const auto found = byKey.find(key);
    if (found == byKey.end()) return std::nullopt;
    kept.splice(kept.begin(), kept, found->second);
    return kept.front();
}

void PictureStore::keep(Kept made) {
    const std::lock_guard lock(mutex);
    if (byKey.contains(made.key)) return;
    bytes += made.bytes;
    kept.push_front(std::move(made));
    byKey[kept.front().key] = kept.begin();
    while (bytes > mostBytes && kept.size() > 1) {
        bytes -= kept.back().bytes;
        byKey.erase(kept.back().key);
        kept.pop_back();
    }
}

}  // namespace perch
