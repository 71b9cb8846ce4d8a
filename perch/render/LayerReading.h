#pragma once

#include <map>
#include <optional>
#include <string>

#include "DepthRange.h"
#include "PF_Params.h"

namespace perch {

// What the effect looks at in a layer, as far as its parameters tell; Any: the colours.
enum class LayerChannel { Any, Alpha, Red, Green, Blue };

// How the pictures of a layer parameter are read.
struct LayerReading {
    std::string selected;         // of the file, a channel or a layer; empty: its first picture
    std::string option{};         // "--control-layer"
    std::string channelOption{};  // "--control-channel"; empty: none
    LayerChannel usedChannel = LayerChannel::Any;
    std::string rangeOption;  // "--control-range"
    std::optional<pictures::DepthRange> range;
    bool hasUsualRange = false;  // then the range is found in the first frame
};

using LayerReadings = std::map<PF_ParamIndex, LayerReading>;

}  // namespace perch
