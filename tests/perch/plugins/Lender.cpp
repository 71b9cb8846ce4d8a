// A library with an entry point, which Borrowed.so is linked with.
#include "HostInterface.h"

extern "C" __attribute__((visibility("default"))) PF_Err PluginMain(PF_Cmd, PF_InData*, PF_OutData*,
                                                                    PF_ParamDef*[], PF_LayerDef*, void*) {
    return 0;
}
