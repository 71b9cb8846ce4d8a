// The values that an instance renders with: those that the user gave, and what the effect makes of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <vector>

#include "Effect.h"
#include "ParameterCurve.h"
#include "Sequence.h"
#include "World.h"

namespace perch {

// Whether the effect may answer what the user sets with other values, which hold for all frames then.
bool mayChangeValues(const EffectDescription& effect);

// Keeps references to what it is made of.
class GivenValues {
public:
    // `layers` are those that the user has set, to none as well; pictures are `downsample` as large as the
    // layer.
    GivenValues(const Effect& effect, const std::vector<ParameterCurve>& curves,
                std::set<PF_ParamIndex> layers, const PF_RationalScale& downsample);

    // Tells the instance of what the user has set, parameter by parameter, as it would be told where the user
    // sets it in a window; what it changes then holds for all frames, except where a value has keys. Before
    // the instance's first frame.
    void tell(Sequence& sequence, std::int32_t frame, const World& input);

    // Points are placed by the input's pixels.
    ParameterValues at(std::int32_t frame, const World& input) const;

private:
    bool isSetByUser(PF_ParamIndex index) const;

    const Effect& effect;
    const std::vector<ParameterCurve>& curves;
    const std::set<PF_ParamIndex> layers;
    const PF_RationalScale downsample;
    std::map<std::size_t, PF_ParamDef> changedByEffect;  // values, by index
};

}  // namespace perch
