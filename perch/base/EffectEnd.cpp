#include "EffectEnd.h"

#include <fmt/format.h>

namespace perch {
std::string describeEffectEnd(const Whereabouts& at, std::string_view how, std::string_view detail) {
    const std::string name = at.effect.get();
    const std::string effect = name.empty() ? "the effect" : fmt::format("the effect \"{}\"", name);
    const std::string command = at.command.get();
    const std::string callback = at.callback.get();
    std::string sentence =
        at.frame != Whereabouts::kNoFrame ? fmt::format("frame {}: ", at.frame.load()) : "";
    sentence += fmt::format("{} {} {} {}", effect, how, at.busySince != 0 ? "at" : "after", command);
    std::string details(detail);
    if (!callback.empty())
        details += fmt::format("{}last callback: {}", details.empty() ? "" : "; ", callback);
    return details.empty() ? sentence : fmt::format("{} ({})", sentence, details);
}

}  // namespace perch
