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

auto resultKey() {
    return std::tuple(PF_ParamIndex{-1}, std::filesystem::path(), A_long{0}, A_u_long{1}, Depth::Bits8);
}

}  // namespace

const pictures::Picture* PictureStore::Kept::heldPicture() const {
    return picture != nullptr ? picture.get() : world->source.get();
}

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

PictureStore::Paths PictureStore::pathsOf(const FrameFiles& files) const {
    Paths paths{files.input};
    for (const auto& [index, path] : layersOf(files))
        paths.insert(path);
    return paths;
}

void PictureStore::readAround(std::int32_t frame) {
    const auto middle = std::ranges::find(plan.frames, frame, &FrameFiles::frame) - plan.frames.begin();
    const Paths shown = pathsOf(filesOf(frame));
    const Share own = shareOf(shown);
    std::int64_t needed = own.all;
    for (const std::ptrdiff_t step : {1, -1}) {
        const std::ptrdiff_t place = middle + step;
        if (place < 0 || place >= std::ssize(plan.frames)) continue;
        needed += own.pictures;
        if (needed > mostBytes) return;
        const FrameFiles& files = plan.frames[static_cast<std::size_t>(place)];
        picture(kInput, files.input, shown);
        for (const auto& [index, path] : layersOf(files))
            picture(index, path, shown);
    }
}

SharedPicture PictureStore::picture(PF_ParamIndex index, const std::filesystem::path& path,
                                    const Paths& shown) {
    const Key key{index, path, 0, 1, Depth::Bits8};
    if (const std::optional<Kept> known = find(key)) return known->picture;
    const SharedPicture read = index == kInput
                                   ? readPictureFile(path, settings.selectedInput, settings.reading)
                                   : reader.read(index, path, kAnyPlace);
    keep({.key = key, .picture = read, .world = nullptr}, shown);
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
    keep({.key = key, .picture = nullptr, .world = made});
    return made;
}

std::optional<PictureStore::Kept> PictureStore::find(const Key& key) {
    const std::lock_guard lock(mutex);
    const auto found = byKey.find(key);
    if (found == byKey.end()) return std::nullopt;
    kept.splice(kept.begin(), kept, found->second);
    return kept.front();
}

PictureStore::Share PictureStore::shareOf(const Paths& files) {
    const std::lock_guard lock(mutex);
    Share share;
    std::set<const pictures::Picture*> counted;
    for (const Kept& one : kept) {
        if (!files.contains(std::get<std::filesystem::path>(one.key))) continue;
        if (one.world != nullptr) share.all += sizeOf(one.world->pixels);
        const pictures::Picture* const held = one.heldPicture();
        if (held == nullptr || !counted.insert(held).second) continue;
        share.pictures += sizeOf(*held);
        share.all += sizeOf(*held);
    }
    return share;
}

// What is read ahead makes others go, but not those of the frame that is shown.
void PictureStore::keep(Kept made, const Paths& shown) {
    const std::lock_guard lock(mutex);
    if (byKey.contains(made.key)) return;
    kept.push_front(std::move(made));
    const Kept& one = kept.front();
    byKey[one.key] = kept.begin();
    if (one.world != nullptr) bytes += sizeOf(one.world->pixels);
    const pictures::Picture* const held = one.heldPicture();
    if (held != nullptr && ++holders[held] == 1) bytes += sizeOf(*held);
    for (auto next = kept.begin(); next != kept.end();) {
        const auto it = next++;
        if (shown.contains(std::get<std::filesystem::path>(it->key))) kept.splice(kept.begin(), kept, it);
    }
    while (bytes > mostBytes && kept.size() > 1)
        dropOldest();
}

void PictureStore::dropOldest() {
    const Kept& one = kept.back();
    if (one.world != nullptr) bytes -= sizeOf(one.world->pixels);
    const pictures::Picture* const held = one.heldPicture();
    if (held != nullptr && --holders[held] == 0) {
        bytes -= sizeOf(*held);
        holders.erase(held);
    }
    byKey.erase(one.key);
    kept.pop_back();
}

void PictureStore::keepResult(World result) {
    {
        const std::lock_guard lock(mutex);
        if (const auto before = byKey.find(resultKey()); before != byKey.end()) {
            kept.splice(kept.end(), kept, before->second);
            dropOldest();
        }
    }
    auto made = std::make_shared<FileWorld>(FileWorld{.pixels = std::move(result), .source = nullptr});
    keep({.key = resultKey(), .picture = nullptr, .world = std::move(made)});
}

std::shared_ptr<const FileWorld> PictureStore::result() {
    const std::optional<Kept> known = find(resultKey());
    return known ? known->world : nullptr;
}

}  // namespace perch
