#include "PluginRender.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>

#include "Error.h"
#include "Frame.h"
#include "ParameterText.h"
#include "PixelAccess.h"

namespace bench {

namespace {

using PILib::Channel15;
using PILib::Channel8;
using PILib::Pixel;
using PILib::PixelBuf;

const perch::Parameter& Find(const perch::EffectDescription& effect, const std::string& name) {
    for (const perch::Parameter& parameter : effect.parameters) {
        if (parameter.name == name) return parameter;
    }
    throw perch::Error("the effect has no parameter \"" + name + "\"");
}

void Set(const perch::EffectDescription& effect, perch::ParameterValues& values, const std::string& name,
         const std::string& text) {
    const perch::Parameter& parameter = Find(effect, name);
    const std::optional<perch::ParameterSetting> setting = perch::parseSetting(parameter, text);
    if (!setting) throw perch::Error("\"" + name + "\" does not take \"" + text + "\"");
    perch::applySetting(*setting, values);
}

}  // namespace

template <class C>
perch::World WorldOf(const PixelBuf<Pixel<C>>& picture) {
    constexpr bool kIsDeep = std::is_same_v<C, Channel15>;
    perch::World world(picture.width, picture.height, kIsDeep);
    const std::size_t rowSize = static_cast<std::size_t>(picture.width) * sizeof(Pixel<C>);
    for (int y = 0; y < picture.height; ++y) {
        std::memcpy(perch::rowOf<unsigned char>(world.record(), y), picture.row(y).begin(), rowSize);
    }
    return world;
}

template perch::World WorldOf(const PixelBuf<Pixel<Channel8>>&);
template perch::World WorldOf(const PixelBuf<Pixel<Channel15>>&);

PluginRender::PluginRender(const perch::World& input, const perch::World& control,
                           const PluginSettings& settings)
    : effect(KESTREL_BUNDLE, timedOptions(settings.threads)), sequence(effect) {
    const perch::EffectDescription& description = effect.description();
    request.input = &input;
    request.layers[Find(description, "Control Layer").index] = &control;
    request.values = effect.defaultValues(input.width(), input.height());
    Set(description, request.values, "Blur Type", settings.fine ? "Fine" : "Coarse");
    Set(description, request.values, "Maximum Blur", std::to_string(settings.radius));
}

perch::HostOptions PluginRender::timedOptions(int threads) {
    perch::HostOptions options;
    options.threads = threads;
    options.onCommand = [this](std::string_view command) {
        if (command == "RENDER") renderStart = Clock::now();
    };
    return options;
}

double PluginRender::secondsOfFrame() {
    perch::Frame frame(sequence, request);
    frame.render();
    const std::chrono::duration<double> elapsed = Clock::now() - renderStart;
    frame.finish();
    return elapsed.count();
}

}  // namespace bench
