// Which of several names a misspelt one was meant to be.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace perch {

// The name that takes the fewest edits (insert, delete, replace, swap of neighbours; upper and lower case are
// one), the first of several; nothing when all of them take more than a third of the word's length.
std::optional<std::string> nearestName(std::string_view word, std::span<const std::string> names);

// " (did you mean \"...\"?)", or nothing.
std::string suggestion(std::string_view word, std::span<const std::string> names);

}  // namespace perch
