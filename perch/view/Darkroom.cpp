#include "Darkroom.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <utility>

#include "Error.h"
#include "GivenValues.h"

namespace perch {
namespace {

constexpr PF_RationalScale kWhole{1, 1};

bool isWhole(const PF_RationalScale& scale) {
    return scale.num == static_cast<A_long>(scale.den);
}

std::int32_t scaled(std::int32_t extent, const PF_RationalScale& scale) {
    return static_cast<std::int32_t>((std::int64_t{extent} * scale.num + scale.den - 1) / scale.den);
}

FrameRequest requestFor(const Look& look, const FramePlan& plan, const FrameFiles& files,
                        const FrameWorlds& worlds) {
    FrameRequest request;
    request.frame = look.frame;
    request.input = &worlds.input->pixels;
    for (const auto& [index, picture] : worlds.layers)
        request.layers[index] = &picture->pixels;
    for (const PF_ParamIndex layer : plan.emptyLayers)
        request.layers[layer] = nullptr;
    for (const PF_ParamIndex layer : files.missingLayers)
        request.layers[layer] = nullptr;
    for (const auto& [layer, shown] : look.layers) {
        const auto picture = worlds.layers.find(shown);
        request.layers[layer] = picture != worlds.layers.end() ? &picture->second->pixels : nullptr;
    }
    request.time = request.frame * request.timeStep;
    request.totalTime = (std::max(plan.lastFrame, 0) + 1) * request.timeStep;
    return request;
}

}  // namespace

PF_RationalScale product(const PF_RationalScale& a, const PF_RationalScale& b) {
    const std::int64_t num = std::int64_t{a.num} * b.num;
    const std::int64_t den = std::int64_t{a.den} * b.den;
    const std::int64_t common = std::gcd(num, den);
    return {static_cast<A_long>(num / common), static_cast<A_u_long>(den / common)};
}

Darkroom::Darkroom(const Shot& shot, PictureStore& store)
    : effect(shot.effect), settings(shot.settings), plan(shot.plan), store(store) {}

PF_RationalScale Darkroom::scaleFor(const pictures::Picture& input,
                                    const std::optional<PictureSize>& room) const {
    if (!room) return kWhole;
    const PF_RationalScale full = fileScale(kWhole);
    const std::int32_t width = scaled(input.width, full);
    const std::int32_t height = scaled(input.height, full);
    if (room->width >= width && room->height >= height) return kWhole;
    const bool isWidthScarcer = std::int64_t{room->width} * height <= std::int64_t{room->height} * width;
    const std::int32_t extent = isWidthScarcer ? width : height;
    const std::int32_t available = std::clamp(isWidthScarcer ? room->width : room->height, 1, extent);
    return product({available, static_cast<A_u_long>(extent)}, kWhole);
}

PF_RationalScale Darkroom::fileScale(const PF_RationalScale& preview) const {
    return settings.resizes ? product(settings.downsample, preview) : preview;
}

Development Darkroom::develop(
    const Look& look, const std::optional<PictureSize>& room,
    const std::function<World(const FrameFiles&, const FrameWorlds&, const PF_RationalScale&)>& body) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    const FrameFiles& files = store.filesOf(look.frame);
    const PF_RationalScale preview = scaleFor(*store.input(files), room);
    FrameWorlds worlds = store.worlds(files, fileScale(preview));
    const Clock::time_point decoded = Clock::now();
    World picture = body(files, worlds, preview);
    return {.picture = std::move(picture),
            .input = std::move(worlds.input),
            .isFull = isWhole(preview),
            .decodeTime = decoded - begin,
            .renderTime = Clock::now() - decoded};
}

Development Darkroom::render(const Look& look, const std::optional<PictureSize>& room,
                             const std::atomic<bool>& cancelled,
                             const std::function<void(double)>& progress) {
    const auto body = [&](const FrameFiles& files, const FrameWorlds& worlds,
                          const PF_RationalScale& preview) {
        FrameRequest request = requestFor(look, plan, files, worlds);
        const pictures::Picture& source = *worlds.input->source;
        request.downsampleX = request.downsampleY = product(settings.downsample, preview);
        if (settings.resizes || !isWhole(preview)) {
            const PF_RationalScale told = settings.resizes ? kWhole : settings.downsample;
            request.fullWidth = fullExtent(0, source.width, told);
            request.fullHeight = fullExtent(0, source.height, told);
        }
        request.quality = settings.quality;
        request.smart = settings.smart;
        request.cancelled = &cancelled;
        request.progress = progress;

        std::set<PF_ParamIndex> layers = layersSetByUser(plan);
        for (const auto& [layer, shown] : look.layers)
            layers.insert(layer);
        GivenValues values(effect, look.curves, std::move(layers), request.downsampleX);
        // What an instance was told for another look it may keep.
        if (sequence == nullptr || mayChangeValues(effect.description())) {
            sequence.reset();
            sequence = std::make_unique<Sequence>(effect);
        }
        values.tell(*sequence, look.frame, *request.input);
        request.values = values.at(look.frame, *request.input);
        return sequence->render(request).picture;
    };
    try {
        return develop(look, room, body);
    } catch (const Cancelled&) {
        throw;
    } catch (const Error&) {
        sequence.reset();
        throw;
    }
}

Development Darkroom::original(const Look& look, const std::optional<PictureSize>& room) {
    return develop(look, room, [](const FrameFiles&, const FrameWorlds& worlds, const PF_RationalScale&) {
        return worlds.input->pixels;
    });
}

Development Darkroom::layer(const Look& look, PF_ParamIndex index, const std::optional<PictureSize>& room) {
    return develop(look, room, [&](const FrameFiles&, const FrameWorlds& worlds, const PF_RationalScale&) {
        const auto found = worlds.layers.find(index);
        if (found == worlds.layers.end()) throw Error("there is no picture for that layer");
        return found->second->pixels;
    });
}

}  // namespace perch
