// What the parameters of the effect that comes with the program do. The sentences are those of docs/guide.md,
// which the build reads.
#pragma once

#include <span>
#include <string_view>

namespace perch {

struct ParameterHint {
    std::string_view name;
    std::string_view sentence;
};

// In the order in which the effect declares its parameters.
std::span<const ParameterHint> parameterHints();

}  // namespace perch
