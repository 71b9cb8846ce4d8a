// JSON from outside, as a file or a page sends it. What reads such values calls itself for every level that
// they are nested, so that only a few levels are taken.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace perch {

// Comments are left out. Throws UsageError where values are nested too deeply or an object has a name twice;
// it names the text as "a state" or "preset ...". Throws parse_error of the JSON library where it is not
// JSON.
nlohmann::ordered_json shallowJson(std::string_view text, const std::string& name);

// The same for an object; null where the text is none.
nlohmann::ordered_json shallowObject(std::string_view text, const std::string& name);

}  // namespace perch
