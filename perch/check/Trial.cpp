#include "Trial.h"

#include <utility>

#include "PF_Values.h"
#include "PixelAccess.h"
#include "PixelOps.h"
#include "Sequence.h"

namespace perch {
namespace {

HostOptions strict(HostOptions options) {
    options.strict = true;
    return options;
}

World asFloat(const World& picture) {
    World floats(picture.width(), picture.height(), PixelDepth::Float);
    for (std::int32_t y = 0; y < picture.height(); ++y) {
        for (std::int32_t x = 0; x < picture.width(); ++x) {
            constexpr float kLevel = 1.25F / 255;
            const PF_Pixel& p = rowOf<PF_Pixel>(picture.record(), y)[x];
            rowOf<PF_PixelFloat>(floats.record(), y)[x] = {
                static_cast<float>(p.alpha) / 255, static_cast<float>(p.red) * kLevel,
                static_cast<float>(p.green) * kLevel, static_cast<float>(p.blue) * kLevel};
        }
    }
    return floats;
}

}  // namespace

void require(bool condition, const std::string& sentence) {
    if (!condition) throw Failure(sentence);
}

World generatedPicture(Size size, bool deep, std::uint32_t seed) {
    World picture(size.width, size.height, deep);
    forDepth(picture.record(), [&]<class P>() {
        for (std::int32_t y = 0; y < size.height; ++y) {
            P* const row = rowOf<P>(picture.record(), y);
            for (std::int32_t x = 0; x < size.width; ++x) {
                const auto wave = [&](std::uint32_t step) {
                    const std::uint32_t part =
                        (static_cast<std::uint32_t>(x) * step + static_cast<std::uint32_t>(y) * 5 + seed) %
                        64;
                    return static_cast<ChannelOf<P>>(kWhite<P> * part / 63);
                };
                row[x] = {wave(3), wave(7), wave(11), wave(13)};
            }
        }
    });
    return picture;
}

Trial::Trial(const std::filesystem::path& plugin, HostOptions options)
    : effect(plugin, strict(std::move(options))) {}

FrameRequest Trial::frame(Size size, bool deep, bool withLayers) {
    FrameRequest request;
    request.input = &keep(generatedPicture(size, deep, 0));
    request.values = effect.defaultValues(size.width, size.height);
    for (const Parameter& parameter : effect.description().parameters) {
        if (!isLayer(parameter)) continue;
        request.layers[parameter.index] = withLayers ? &keep(generatedPicture(size, deep, 17)) : nullptr;
    }
    return request;
}

FrameRequest Trial::floatFrame(Size size) {
    FrameRequest request = frame(size, false);
    request.input = &keep(asFloat(*request.input));
    for (auto& [index, picture] : request.layers)
        picture = &keep(asFloat(*picture));
    return request;
}

World Trial::render(const FrameRequest& request) {
    return Sequence(effect).render(request).picture;
}

World Trial::renderWithinFrame(const FrameRequest& request) {
    const RenderedFrame frame = Sequence(effect).render(request);
    const World& picture = frame.picture;
    World within(request.input->width(), request.input->height(), picture.depth());
    const PF_Point& origin = frame.origin;
    const PF_Rect place{-origin.h, -origin.v, picture.width() - origin.h, picture.height() - origin.v};
    copyWorld(picture.record(), nullptr, within.record(), &place);
    return within;
}

void Trial::end(bool toleratesHandles) {
    effect.close();
    for (const Finding& finding : effect.findings()) {
        const bool isHandle = finding.callback == "host_new_handle";
        if (finding.severity == Finding::Severity::Fault && !(isHandle && toleratesHandles))
            throw Failure(describe(finding));
    }
}

void Trial::requireSame(std::uint64_t picture, std::uint64_t expected, const std::string& sentence) const {
    const bool mayVary = (effect.description().flags & PF_OutFlag_NON_PARAM_VARY) != 0;
    require(mayVary || picture == expected, sentence);
}

std::vector<bool> Trial::depths() const {
    return effect.supportsDeepColor() ? std::vector<bool>{false, true} : std::vector<bool>{false};
}

const World& Trial::keep(World picture) {
    pictures.push_back(std::make_unique<World>(std::move(picture)));
    return *pictures.back();
}

}  // namespace perch
