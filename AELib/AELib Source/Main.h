// The plug-in's entry point and what it owns for the whole process. For the host's thread alone; worker
// threads of a render touch none of it.
#pragma once

#include "PF_Entry.h"
#include "SuiteHandler.h"

namespace AELib {

// The utility callbacks of the current call.
extern PF_UtilCallbacks* gPF_Utils;

// The suite cache; null before the first call with a basic suite and after global set-down.
extern SuiteHandler* gSuites;

// The effect's display name for messages; "Unknown" until the PiPL has been read.
extern char gPluginName[256];

}  // namespace AELib

#if defined(_WIN32)
#define KESTREL_EXPORT __declspec(dllexport)
#else
#define KESTREL_EXPORT __attribute__((visibility("default")))
#endif

// Every command of the effect's life comes through here. The one place where exceptions become the returned
// code and, but for 0 and a cancel, a message in return_msg.
extern "C" KESTREL_EXPORT PF_Err PluginMain(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data,
                                            PF_ParamDef* params[], PF_LayerDef* output, void* extra);
