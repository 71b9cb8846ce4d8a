// An effect's description in words and as JSON.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "EffectDescription.h"
#include "ParameterOptions.h"

namespace perch {

// "1.2.3 beta build 4" of a packed version, see PF_VERSION; the last number of three is left out when it is
// 0.
std::string versionText(std::uint32_t version);

// "DEEP_COLOR_AWARE" and so on; bits without a name as one hexadecimal number.
std::vector<std::string> flagNames(PF_OutFlags flags);
std::vector<std::string> flagNames2(PF_OutFlags2 flags);

// The display name, that of the file where the effect has none.
std::string displayName(const EffectDescription& description);

// `options` are those by which the parameters are set. Both end with a line break.
std::string describeAsText(const EffectDescription& description, const std::vector<ParameterOption>& options);
std::string describeAsJson(const EffectDescription& description, const std::vector<ParameterOption>& options);

}  // namespace perch
