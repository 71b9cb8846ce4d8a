// What the published structure of Open Job Description's job templates, version 2023-09, asks of the parts
// that perch writes.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace perch::test {

// By which a template names its format.
inline constexpr char kFormatKey[] = "specificationVersion";

// A sentence for each breach.
std::vector<std::string> breachesOf(const nlohmann::json& jobTemplate);

// The text with its references replaced, as {"Task.Param.Shard", "2"} has them; an unknown one stays.
std::string resolved(std::string text, const std::map<std::string, std::string>& values);

}  // namespace perch::test
