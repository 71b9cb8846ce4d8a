// No effect: the entry point is that of a library which it is linked with.
#include "HostInterface.h"

extern "C" PF_Err PluginMain(PF_Cmd, PF_InData*, PF_OutData*, PF_ParamDef*[], PF_LayerDef*, void*);

extern "C" __attribute__((visibility("default"))) PF_Err useTheOther() {
    return PluginMain(PF_Cmd_ABOUT, nullptr, nullptr, nullptr, nullptr, nullptr);
}
