/* What the C half of the test offers its C++ half. */
#pragma once

#include <stddef.h>

#include "HostInterface.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Answers GLOBAL_SETUP with version 3.2.1 beta 7, declares one slider, and paints one pixel's blue at RENDER.
 */
PF_Err EffectInC(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                 PF_LayerDef* output, void* extra);
size_t SizeOfInDataInC(void);
size_t SizeOfParamDefInC(void);

#ifdef __cplusplus
}
#endif
