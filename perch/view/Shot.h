// What a session shows and renders with.
#pragma once

#include <cstdint>
#include <string>

#include "Effect.h"
#include "FramePlan.h"
#include "Look.h"
#include "Notes.h"
#include "RenderJob.h"

namespace perch {

struct Shot {
    Effect& effect;
    const RenderSettings& settings;
    const FramePlan& plan;
    const LookReader& looks;
    Notes& notes;             // what the user should know
    Look first{};             // that is shown
    std::string input{};      // as the user named it
    std::int64_t memory = 0;  // for pictures that are kept, in bytes
};

}  // namespace perch
