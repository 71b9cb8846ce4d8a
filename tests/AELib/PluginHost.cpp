#include "PluginHost.h"

#include <dlfcn.h>

#include <ostream>
#include <stdexcept>

namespace {

float Ratio(const PF_RationalScale& scale) {
    return static_cast<float>(scale.num) / static_cast<float>(scale.den);
}

float Fraction(double percent) {
    return static_cast<float>(static_cast<float>(percent) * 0.01);
}

}  // namespace

std::filesystem::path PluginLibrary() {
    return PLUGIN_LIBRARY;
}

std::filesystem::path PluginContents() {
    return PluginLibrary().parent_path().parent_path();
}

LoadedPlugin::LoadedPlugin() : library(dlopen(PluginLibrary().c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (library == nullptr) throw std::runtime_error(dlerror());
    entry = reinterpret_cast<PF_EntryPoint>(dlsym(library, "PluginMain"));
    if (entry == nullptr) throw std::runtime_error(dlerror());
}

LoadedPlugin::~LoadedPlugin() {
    dlclose(library);
}

std::ostream& operator<<(std::ostream& out, const PanelValues& v) {
    return out << (v.viewMode == 1 ? "Focus" : "Normal") << (v.blurType == 1 ? ", Fine" : ", Coarse")
               << ", channel " << v.channel << ", focal point " << v.focalPoint << " %, range "
               << v.inFocusRange << " %, blur " << v.maximumBlur << ", aspect " << v.aspect << ", invert "
               << v.invert << ", conform " << v.conform << ", blend " << v.blend << " %";
}

PluginHost::PluginHost() : RecordingHost(nullptr) {
    entryPoint = plugin.entryPoint();
}

PluginHost::~PluginHost() {
    tearDown();
}

PF_Err PluginHost::setUp() {
    if (const PF_Err error = call(PF_Cmd_GLOBAL_SETUP)) return error;
    if (const PF_Err error = call(PF_Cmd_PARAMS_SETUP)) return error;
    adoptDeclaredParams();
    return call(PF_Cmd_SEQUENCE_SETUP);
}

void PluginHost::set(const PanelValues& v) {
    param(kViewModeIndex).u.pd.value = v.viewMode + 1;
    param(kBlurTypeIndex).u.pd.value = v.blurType + 1;
    param(kControlChannelIndex).u.pd.value = v.channel + 1;
    param(kFocalPointIndex).u.fs_d.value = v.focalPoint;
    param(kInFocusRangeIndex).u.fs_d.value = v.inFocusRange;
    param(kMaximumBlurIndex).u.fs_d.value = v.maximumBlur;
    param(kAspectRatioIndex).u.fs_d.value = v.aspect;
    param(kInvertIndex).u.bd.value = v.invert ? 1 : 0;
    param(kConformIndex).u.bd.value = v.conform ? 1 : 0;
    param(kBlendIndex).u.fs_d.value = v.blend;
}

oracle::Image ExpectedFrame(const PanelValues& v, const RecordingHost& host, const oracle::Image& input,
                            const oracle::Image* control, bool hostBlends) {
    oracle::Controls controls = {v.viewMode == 1,
                                 v.blurType == 1,
                                 v.channel,
                                 Fraction(v.focalPoint),
                                 Fraction(v.inFocusRange),
                                 static_cast<float>(v.maximumBlur),
                                 static_cast<float>(v.aspect),
                                 v.invert,
                                 Fraction(v.blend),
                                 Ratio(host.in.downsample_x),
                                 Ratio(host.in.downsample_y)};
    const float blend = controls.blend;
    const bool mixes = hostBlends && control != nullptr && blend != 0.0F && blend < 0.999F;
    if (mixes) controls.blend = 0.0F;
    oracle::Image frame = oracle::RenderedFrame(controls, input, control);
    if (!mixes) return frame;
    const float scaled = blend * 65536.0F;
    const auto ratio = static_cast<PF_Fixed>(scaled + 0.5F);
    for (std::size_t i = 0; i < frame.values.size(); ++i)
        frame.values[i] = HostMix(frame.values[i], input.values[i], ratio);
    return frame;
}
