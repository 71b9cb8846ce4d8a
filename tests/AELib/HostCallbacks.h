// The functions behind the tables that the recording host gives out; each finds the one host.
#pragma once

#include <cstdint>

#include "RecordingHost.h"

inline const auto kEffectRef = reinterpret_cast<PF_ProgPtr>(std::uintptr_t{0xE0});

struct HostCallbacks {
    static RecordingHost* theHost;  // the one that is alive; null for none

    static void checkReference(PF_ProgPtr ref, const char* caller);
    static PF_Err checkoutParam(PF_ProgPtr ref, PF_ParamIndex index, A_long time, A_long step, A_u_long scale,
                                PF_ParamDef* param);
    static PF_Err checkinParam(PF_ProgPtr, PF_ParamDef* param);
    static PF_Err addParam(PF_ProgPtr, PF_ParamIndex index, PF_ParamDefPtr def);
    static PF_Err abort(PF_ProgPtr);
    static PF_Err progress(PF_ProgPtr, A_long current, A_long total);
    static PF_Err blend(PF_ProgPtr, const PF_EffectWorld* a, const PF_EffectWorld* b, PF_Fixed ratio,
                        PF_EffectWorld* out);
    static PF_Err newWorld(PF_ProgPtr, A_long width, A_long height, PF_NewWorldFlags flags,
                           PF_EffectWorld* world);
    static PF_Err disposeWorld(PF_ProgPtr, PF_EffectWorld* world);
    static PF_Err transformWorld(PF_ProgPtr, PF_Quality quality, PF_ModeFlags modeFlags, PF_Field field,
                                 const PF_EffectWorld* source, const PF_CompositeMode* mode,
                                 const PF_MaskWorld* mask, const PF_FloatMatrix* matrices, A_long count,
                                 PF_Boolean sourceToDestination, const PF_Rect* area, PF_EffectWorld* out);
    template <class Pixel, bool kDeep, Callback kCallback>
    static PF_Err getPixelData(PF_EffectWorld* world, PF_PixelPtr pixel, Pixel** first);
    static RecordingHost::Block* blockOf(PF_Handle handle, const char* caller);
    static PF_Handle newHandle(A_u_longlong size);
    static void* lockHandle(PF_Handle handle);
    static void unlockHandle(PF_Handle handle);
    static void disposeHandle(PF_Handle handle);
    static A_u_longlong getHandleSize(PF_Handle handle);
    // Always moves the block and replaces the handle, as a host may.
    static PF_Err resizeHandle(A_u_longlong size, PF_Handle* handle);
    static PF_Err iterateGeneric(A_long iterations, void* refcon,
                                 PF_Err (*fn)(void*, A_long thread, A_long i, A_long iterations));

    // In HostSuites.cpp.
    static PF_Err updateParamUI(PF_ProgPtr, PF_ParamIndex index, const PF_ParamDef* def);
    static A_Err registerWithAEGP(AEGP_GlobalRefcon refcon, const A_char* name, AEGP_PluginID* id);
    static A_Err getNewEffect(AEGP_PluginID plugin, PF_ProgPtr ref, AEGP_EffectRefH* effect);
    static A_Err getNewStream(AEGP_PluginID plugin, AEGP_EffectRefH effect, PF_ParamIndex index,
                              AEGP_StreamRefH* stream);
    static A_Err setStreamFlag(AEGP_StreamRefH stream, AEGP_DynStreamFlags flag, A_Boolean on);
    static A_Err disposeEffect(AEGP_EffectRefH effect);
    static A_Err disposeStream(AEGP_StreamRefH stream);
    static SPErr acquireSuite(const char* name, A_long version, const void** suite);
    static SPErr releaseSuite(const char* name, A_long version);

    static void fill(PF_InteractCallbacks& inter);
    static void fill(PF_UtilCallbacks& utils);
};
