// What a session can be asked, and how a request says it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Darkroom.h"
#include "Exchange.h"

namespace perch {

struct Question {
    std::string_view path;
    std::string_view methods;     // "GET, POST"
    bool isForTheEffect = false;  // answered in its turn, on the effect's thread

    bool takes(const std::string& method) const;
};

// Null where nothing is asked by that path.
const Question* questionAt(std::string_view path);

// Of pictures.
constexpr std::string_view kResult = "result";
constexpr std::string_view kOriginal = "original";
constexpr std::string_view kLayer = "layer";
constexpr std::string_view kFocus = "focus";

// Absent for a kind that there is not.
std::optional<std::string_view> kindOf(const ViewRequest& request);

// Absent where the text is not one.
std::optional<std::int64_t> wholeNumber(const std::string& text);

// By its name in the address. Throws UsageError where it is not a whole number.
std::int64_t numberOf(const ViewRequest& request, const std::string& name);

// "640x360"; absent for "full" and where the request says none. Throws UsageError.
std::optional<PictureSize> sizeOf(const ViewRequest& request);

}  // namespace perch
