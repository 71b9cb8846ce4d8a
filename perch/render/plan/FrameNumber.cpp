#include "FrameNumber.h"

#include <charconv>
#include <system_error>

namespace perch {

std::optional<std::int32_t> takeFrameNumber(std::string_view& text) {
    std::int32_t number = 0;
    const std::from_chars_result parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || number < kFirstFrame || number > kLastFrame) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(parsed.ptr - text.data()));
    return number;
}

}  // namespace perch
