// What Hostile.so can do at a place.
#pragma once

#include <string_view>

#include "HostInterface.h"

struct Scene {
    PF_InData* in = nullptr;
    PF_OutData* out = nullptr;
    PF_ParamDef** params = nullptr;
    PF_LayerDef* output = nullptr;
};

PF_ParamDef plainParameter(PF_ParamType type);

// Makes the file that PERCH_HOSTILE_MARK names, then does the deed. What the effect is to answer, if it still
// can.
PF_Err doDeed(std::string_view name, const Scene& scene);
