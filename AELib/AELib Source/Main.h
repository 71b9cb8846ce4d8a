// The plug-in's entry point.
#pragma once

#include "PF_Entry.h"

#if defined(_WIN32)
#define KESTREL_EXPORT __declspec(dllexport)
#else
#define KESTREL_EXPORT __attribute__((visibility("default")))
#endif

// Every command of the effect's life comes through here. The one place where exceptions become the returned
// code and a message in return_msg; 0 and a cancel leave no message.
extern "C" KESTREL_EXPORT PF_Err PluginMain(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data,
                                            PF_ParamDef* params[], PF_LayerDef* output, void* extra);
