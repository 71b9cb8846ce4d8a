// The one description of the effect from which the resources of every system are made: who it is, what it
// does, where it starts.
#pragma once

#include "EffectVersion.h"
#include "PF_Values.h"
#include "PiPL.h"

inline constexpr char kEffectName[] = "Kestrel";
inline constexpr char kEffectCategory[] = "Quillon";
inline constexpr char kEffectMatchName[] = "Quillon Kestrel";  // permanent: projects find the effect by it
inline constexpr char kEffectEntryPoint[] = "PluginMain";
inline constexpr char kEffectDescription[] = "Depth of field by a control layer";
inline constexpr char kEffectBundleIdentifier[] = "quillon.kestrel";

inline constexpr A_u_long kEffectVersion =
    PF_VERSION(KESTREL_VERSION_MAJOR, KESTREL_VERSION_MINOR, KESTREL_VERSION_BUGFIX, PF_Stage_RELEASE,
               KESTREL_VERSION_BUILD);

// What the effect does, and nothing that it does not do: it handles 16 bits per channel, and its sequence
// data holds pointers.
inline constexpr A_u_long kEffectOutFlags =
    PF_OutFlag_DEEP_COLOR_AWARE | PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING;
inline constexpr A_u_long kEffectOutFlags2 = 0;
