// How the effect's code came to an end that it should not have come to, in a sentence for the user.
#pragma once

#include <string>
#include <string_view>

#include "Whereabouts.h"

namespace perch {

// "frame 3: the effect "X.plugin" crashed at RENDER (SIGSEGV: ...; last callback: checkout_param)"; `how` is
// "crashed", `detail` what stands in the brackets beside the callback, empty without one.
std::string describeEffectEnd(const Whereabouts& at, std::string_view how, std::string_view detail);

}  // namespace perch
