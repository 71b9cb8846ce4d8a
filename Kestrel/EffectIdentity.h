// The one description of the effect from which its resources are made: who it is, what it does, where it
// starts.
#pragma once

#include "PF_Values.h"
#include "PiPL.h"

inline constexpr char kEffectName[] = "Kestrel";
inline constexpr char kEffectCategory[] = "Quillon";
inline constexpr char kEffectMatchName[] = "Quillon Kestrel";  // permanent: projects find the effect by it
inline constexpr char kEffectEntryPoint[] = "PluginMain";

inline constexpr A_u_long kEffectVersion = PF_VERSION(1, 0, 0, PF_Stage_RELEASE, 1);
inline constexpr char kEffectVersionText[] = "1.0.0";

// What the effect does, and nothing that it does not do: it handles 16 bits per channel, and its sequence
// data holds pointers.
inline constexpr A_u_long kEffectOutFlags =
    PF_OutFlag_DEEP_COLOR_AWARE | PF_OutFlag_SEQUENCE_DATA_NEEDS_FLATTENING;
inline constexpr A_u_long kEffectOutFlags2 = 0;
