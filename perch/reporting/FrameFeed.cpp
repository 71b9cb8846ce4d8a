#include "FrameFeed.h"

#include <fmt/format.h>

#include <algorithm>

#include "Error.h"
#include "FrameList.h"

namespace perch {

FrameFeed::FrameFeed(const FramePlan& plan, const InputLines& lines, JobDisplay& display)
    : lines(lines), display(display) {
    for (std::size_t place = 0; place < plan.frames.size(); ++place)
        places[plan.frames[place].frame] = place;
    for (const FrameFiles& files : plan.current)
        currentOnes[files.frame] = &files;
}

std::optional<std::vector<std::size_t>> FrameFeed::next() {
    constexpr std::size_t kMostAtOnce = 1000;  // whoever never stops asking gets answers in between
    while (asked.empty()) {
        const std::optional<std::string> line = lines.next();
        if (!line) return std::nullopt;
        take(*line);
    }
    while (asked.size() < kMostAtOnce) {
        const std::optional<std::string> line = lines.nextThatIsThere();
        if (!line) break;
        take(*line);
    }
    const auto end = asked.begin() + static_cast<std::ptrdiff_t>(std::min(asked.size(), kMostAtOnce));
    const std::vector<std::size_t> handedOut(asked.begin(), end);
    asked.erase(asked.begin(), end);
    return handedOut;
}

void FrameFeed::take(const std::string& line) {
    try {
        for (const std::int32_t frame : parseFrameList(line, "standard input"))
            take(frame);
    } catch (const UsageError& error) {
        display.refuseLine(line, error.what());
    }
}

void FrameFeed::take(std::int32_t frame) {
    if (const auto place = places.find(frame); place != places.end()) {
        asked.push_back(place->second);
    } else if (const auto current = currentOnes.find(frame); current != currentOnes.end()) {
        display.tellCurrent(*current->second);
    } else {
        display.refuseFrame(frame, fmt::format("frame {} is not one of the job's; --frames names them, or "
                                               "they are those that the input had when the job began",
                                               frame));
    }
}

}  // namespace perch
