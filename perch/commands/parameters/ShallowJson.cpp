#include "ShallowJson.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "Error.h"

namespace perch {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kMostLevels = 16;  // a state has five: itself, its parameters, keys, a key, a point

}  // namespace

Json shallowJson(std::string_view text, const std::string& name) {
    std::vector<std::set<std::string>> namesAround;  // of each level that is an object
    const auto isKept = [&](int levelsAround, Json::parse_event_t event, const Json& parsed) {
        const bool isLevel =
            event == Json::parse_event_t::object_start || event == Json::parse_event_t::array_start;
        if (isLevel && levelsAround >= kMostLevels)
            throw UsageError(
                fmt::format("{} nests values more than {} levels deep; no parameter takes such a value", name,
                            kMostLevels));
        if (event == Json::parse_event_t::object_start) namesAround.emplace_back();
        if (event == Json::parse_event_t::object_end) namesAround.pop_back();
        if (event == Json::parse_event_t::key && !namesAround.back().insert(parsed.get<std::string>()).second)
            throw UsageError(fmt::format("{} has {} twice; leave one", name, parsed.dump()));
        return true;
    };
    return Json::parse(text, isKept, true, true);
}

Json shallowObject(std::string_view text, const std::string& name) {
    try {
        Json json = shallowJson(text, name);
        return json.is_object() ? json : Json();
    } catch (const Json::parse_error&) {
        return nullptr;
    }
}

}  // namespace perch
