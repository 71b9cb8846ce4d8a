// render-cases PLUGIN CASES WIDTH HEIGHT OUTPUT
//
// Renders random settings of the effect, each at both depths, and writes the pixels of all into one file. The
// settings, the pictures and their order come from a fixed seed, so that the program writes the same bytes on
// every machine, if the effect does. Prints the seconds spent in rendering.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>

#include "Effect.h"
#include "FrameRequest.h"
#include "Parameter.h"
#include "Sequence.h"
#include "World.h"

namespace {

using namespace perch;
using Random =
    std::mt19937;  // the distributions of the standard library differ between machines; this does not

std::uint32_t Below(Random& random, std::uint32_t end) {
    return static_cast<std::uint32_t>(random()) % end;
}

// Noise in places and flat elsewhere; a quarter of the pixels opaque, a quarter transparent.
World MadePicture(Random& random, std::int32_t width, std::int32_t height, bool isDeep) {
    World picture(width, height, isDeep, 16 * static_cast<std::int32_t>(Below(random, 3)));
    const std::uint32_t white = isDeep ? 32768 : 255;
    for (std::int32_t y = 0; y < height; ++y) {
        auto* const row = reinterpret_cast<unsigned char*>(picture.record().data) +
                          static_cast<std::ptrdiff_t>(y) * picture.record().rowbytes;
        const bool isFlat = Below(random, 4) == 0;
        for (std::int32_t channel = 0; channel < 4 * width; ++channel) {
            std::uint32_t value = isFlat ? white / 3 : Below(random, white + 1);
            const std::uint32_t kind = Below(random, 4);
            if (channel % 4 == 0 && kind < 2) value = kind * white;
            if (isDeep)
                reinterpret_cast<std::uint16_t*>(row)[channel] = static_cast<std::uint16_t>(value);
            else
                row[channel] = static_cast<unsigned char>(value);
        }
    }
    return picture;
}

// Any value that the control takes.
void SetAtRandom(Random& random, const Parameter& parameter, PF_ParamDef& value) {
    if (!parameter.items.empty())
        value.u.pd.value =
            static_cast<PF_ParamValue>(1 + Below(random, static_cast<std::uint32_t>(parameter.items.size())));
    else if (value.param_type == PF_Param_CHECKBOX)
        value.u.bd.value = static_cast<PF_ParamValue>(Below(random, 2));
    else if (value.param_type == PF_Param_FLOAT_SLIDER && parameter.sliderRange)
        value.u.fs_d.value =
            parameter.sliderRange->minimum +
            (parameter.sliderRange->maximum - parameter.sliderRange->minimum) * Below(random, 1001) / 1000;
}

void Append(std::ofstream& file, const World& picture) {
    const auto pixelSize = picture.isDeep() ? 8 : 4;
    for (std::int32_t y = 0; y < picture.height(); ++y) {
        const auto* const row = reinterpret_cast<const char*>(picture.record().data) +
                                static_cast<std::ptrdiff_t>(y) * picture.record().rowbytes;
        file.write(row, static_cast<std::streamsize>(picture.width()) * pixelSize);
    }
}

double RenderAll(const std::string& plugin, int cases, std::int32_t width, std::int32_t height,
                 std::ofstream& file) {
    HostOptions options;
    options.threads = 2;
    Effect effect(plugin, options);
    Random random(20090401);
    std::chrono::steady_clock::duration spent{};
    for (int i = 0; i < cases; ++i) {
        ParameterValues values = effect.defaultValues(width, height);
        std::vector<PF_ParamIndex> layers;
        for (const Parameter& parameter : effect.description().parameters) {
            SetAtRandom(random, parameter, values[static_cast<std::size_t>(parameter.index)]);
            if (parameter.definition.param_type == PF_Param_LAYER) layers.push_back(parameter.index);
        }
        for (const bool isDeep : {false, true}) {
            const World input = MadePicture(random, width, height, isDeep);
            const World control = MadePicture(random, width, height, isDeep);
            FrameRequest request;
            request.input = &input;
            request.values = values;
            for (const PF_ParamIndex layer : layers)
                request.layers[layer] = &control;
            Sequence sequence(effect);
            const auto start = std::chrono::steady_clock::now();
            const RenderedFrame result = sequence.render(request);
            spent += std::chrono::steady_clock::now() - start;
            Append(file, result.picture);
        }
    }
    return std::chrono::duration<double>(spent).count();
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 6) throw std::invalid_argument("usage: render-cases PLUGIN CASES WIDTH HEIGHT OUTPUT");
    std::ofstream file(argv[5], std::ios::binary);
    const double seconds =
        RenderAll(argv[1], std::atoi(argv[2]), std::atoi(argv[3]), std::atoi(argv[4]), file);
    file.close();
    if (!file) throw std::runtime_error(std::string("cannot write ") + argv[5]);
    std::printf("%.6f\n", seconds);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "render-cases: %s\n", error.what());
    return 1;
}
