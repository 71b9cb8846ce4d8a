#include "Error.h"

#include <fmt/format.h>

#include <new>

namespace perch {
namespace {

std::string sentence(const std::string& command, std::int32_t code, const std::string& message,
                     std::optional<std::int32_t> frame) {
    std::string text = frame ? fmt::format("frame {}: ", *frame) : std::string();
    text += code != 0 ? fmt::format("plug-in returned {} at {}", code, command)
                      : fmt::format("plug-in reported a failure at {}", command);
    if (!message.empty()) text += fmt::format(": \"{}\"", message);
    return text;
}

}  // namespace

EffectError::EffectError(std::string command, std::int32_t code, std::string message,
                         std::optional<std::int32_t> frame)
    : EffectFault(sentence(command, code, message, frame)),
      command(std::move(command)),
      code(code),
      message(std::move(message)),
      frame(frame) {}

std::string sentenceOf(const std::exception& failure) {
    if (dynamic_cast<const std::bad_alloc*>(&failure) != nullptr) return "there is not enough memory";
    return failure.what();
}

}  // namespace perch
