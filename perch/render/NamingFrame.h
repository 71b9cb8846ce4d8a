// Failures of frames, with their numbers.
#pragma once

#include <fmt/format.h>

#include <cstddef>
#include <type_traits>

#include "Error.h"
#include "FramePlan.h"

namespace perch {

// Does `body` and tells the frame of an Error in it, where the plan is a sequence.
template <typename F>
std::invoke_result_t<F> namingFrame(const FramePlan& plan, std::size_t index, const F& body) {
    try {
        return body();
    } catch (const Cancelled&) {
        throw;
    } catch (const Error& error) {
        if (!plan.isSequence) throw;
        throw Error(fmt::format("frame {}: {}", plan.frames[index].frame, error.what()), error.status());
    }
}

}  // namespace perch
