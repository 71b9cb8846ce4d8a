// An effect that breaks the host's rules at every render: it leaves a handle and a world, checks its layer
// out and not in, writes into the gap behind a row, and asks for memory on a thread of its own.
#include <cstring>
#include <thread>

#include "HostInterface.h"

namespace {

PF_Err declareParameters(PF_InData& in, PF_OutData& out) {
    PF_ParamDef layer{};
    layer.param_type = PF_Param_LAYER;
    std::strcpy(layer.name, "Layer");
    out.num_params = 2;
    return in.inter.add_param(in.effect_ref, -1, &layer);
}

PF_Err renderCarelessly(PF_InData& in, const PF_LayerDef& output) {
    static_cast<void>(in.utils->host_new_handle(16));
    PF_EffectWorld world{};
    in.utils->new_world(in.effect_ref, 4, 4, PF_NewWorldFlag_NONE, &world);
    PF_ParamDef layer{};
    in.inter.checkout_param(in.effect_ref, 1, in.current_time, in.time_step, in.time_scale, &layer);
    if (output.rowbytes > output.width * 4) output.data[output.width].red ^= 0xFFU;
    void* handle = nullptr;
    std::thread([&] { handle = in.utils->host_new_handle(4); }).join();
    return handle == nullptr ? PF_Err_OUT_OF_MEMORY : PF_Err_NONE;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PF_Err PluginMain(PF_Cmd cmd, PF_InData* in,
                                                                    PF_OutData* out, PF_ParamDef*[],
                                                                    PF_LayerDef* output, void*) {
    switch (cmd) {
        case PF_Cmd_GLOBAL_SETUP:
            out->my_version = PF_VERSION(1, 0, 0, PF_Stage_DEVELOP, 1);
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP:
            return declareParameters(*in, *out);
        case PF_Cmd_RENDER:
            return renderCarelessly(*in, *output);
        default:
            return PF_Err_NONE;
    }
}
