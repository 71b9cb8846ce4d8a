// An effect that keeps something for each thread that works for it, and writes a byte to a descriptor, given
// as a value, when it is destroyed at the thread's end. Each of the host's threads gets one.
#include <pthread.h>
#include <unistd.h>

#include <atomic>

#include "PF_Entry.h"
#include "PF_Params.h"
#include "PF_Values.h"

namespace {

pthread_key_t key;
std::atomic<int> arrived{0};

struct Kept {
    int descriptor;
};

void destroy(void* kept) {
    const auto* mine = static_cast<Kept*>(kept);
    (void)!write(mine->descriptor, "x", 1);
    delete mine;
}

// Returns once every thread is in an iteration, so that none takes two.
PF_Err keep(void* descriptor, A_long, A_long, A_long threads) {
    pthread_setspecific(key, new Kept{*static_cast<A_long*>(descriptor)});
    ++arrived;
    while (arrived < threads) {
    }
    return PF_Err_NONE;
}

PF_Err declareParameters(const PF_InData& in, PF_OutData& out) {
    PF_ParamDef descriptor{};
    descriptor.param_type = PF_Param_SLIDER;
    descriptor.name[0] = 'D';
    out.num_params = 2;
    return in.inter.add_param(in.effect_ref, -1, &descriptor);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PF_Err EffectMain(PF_Cmd cmd, PF_InData* in_data,
                                                                    PF_OutData* out_data,
                                                                    PF_ParamDef* params[], PF_LayerDef*,
                                                                    void* /*extra*/) {
    switch (cmd) {
        case PF_Cmd_GLOBAL_SETUP:
            arrived = 0;
            out_data->out_flags = PF_OutFlag_DEEP_COLOR_AWARE;
            return pthread_key_create(&key, destroy) == 0 ? PF_Err_NONE : PF_Err_OUT_OF_MEMORY;
        case PF_Cmd_PARAMS_SETUP:
            return declareParameters(*in_data, *out_data);
        case PF_Cmd_RENDER:
            return in_data->utils->iterate_generic(-1, &params[1]->u.sd.value, keep);
        default:
            return PF_Err_NONE;
    }
}
