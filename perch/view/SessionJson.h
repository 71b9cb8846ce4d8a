// What the page is told of the effect, and what it makes of a click in the picture.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "EffectDescription.h"
#include "Look.h"
#include "Pick.h"

namespace perch {

// The effect, its parameters, the layers that are given and the pick.
nlohmann::ordered_json sessionJson(const EffectDescription& effect, const LookReader& looks,
                                   const std::optional<Pick>& pick);

// "Focal Point" by "Control Layer" where the effect has them, else the first slider by the first layer that
// is given.
std::optional<Pick> usualPick(const LookReader& looks);

// The channel of its layer that the effect reads at the look's frame, where it asks for one; else luma.
std::string controlChannel(const Look& look, const LookReader& looks);

// The parameter's value for a share of 0 to 1 of the layer.
double pickedValue(const Look& look, const LookReader& looks, const Pick& pick, double share);

// With the effect's view of what is out of focus. Throws UsageError where it has none.
Look inFocusView(const Look& look, const LookReader& looks);

}  // namespace perch
