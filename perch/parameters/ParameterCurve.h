// A parameter's value over time: keys at frames, and how the value moves from one to the next.
//
//   value
//     70 |              ,--x        linear into key 24, from there on held
//        |           ,-'
//     20 |   x__,,--'              smooth out of key 1: it starts off level
//        +---1-----------24--- frame
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "ParameterSetting.h"

namespace perch {

struct ParameterKey {
    enum class Kind {
        Hold,    // the value stays until the next key
        Linear,  // straight
        Smooth,  // level at the key
    };

    std::int32_t frame = 0;
    std::array<double, 4> numbers{};  // as those of a ParameterSetting
    Kind kind = Kind::Linear;

    bool operator==(const ParameterKey&) const = default;
};

// Keys in the order of their frames, none of them twice; never empty. One key is a constant.
struct ParameterCurve {
    PF_ParamIndex index = 0;
    std::vector<ParameterKey> keys;

    bool moves() const { return keys.size() > 1; }
    bool operator==(const ParameterCurve&) const = default;
};

// Whether the value has others between those of two keys.
bool glides(const ParameterCurve& curve);

ParameterCurve constantCurve(const ParameterSetting& setting);

// The value at a frame, which depends on nothing else. Before the first key it is the first key's, after the
// last the last's, and between two keys never outside their values.
ParameterSetting settingAt(const ParameterCurve& curve, std::int32_t frame);

}  // namespace perch
