// `perch check`: an effect put through the protocol in strict mode, on generated frames of both depths, rule
// by rule.
#pragma once

#include <filesystem>
#include <span>
#include <string>

#include "CheckRule.h"

namespace perch {

// The first is that the effect can be loaded; without it there is no use in the others.
std::span<const CheckRule> checkRules();

// Why the effect does not keep to the rule; empty where it does.
std::string tryRule(const CheckRule& rule, const std::filesystem::path& plugin);

}  // namespace perch
