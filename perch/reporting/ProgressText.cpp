#include "ProgressText.h"

#include <fmt/format.h>

#include <cmath>

namespace perch {
namespace {

// "0:07", "1:02:03".
std::string clockText(double seconds) {
    constexpr long long kMinute = 60;
    constexpr long long kHour = 60 * kMinute;
    const long long whole = std::llround(seconds);
    if (whole < kHour) return fmt::format("{}:{:02}", whole / kMinute, whole % kMinute);
    return fmt::format("{}:{:02}:{:02}", whole / kHour, whole % kHour / kMinute, whole % kMinute);
}

}  // namespace

std::string progressText(const JobProgress& progress) {
    const double frames = static_cast<double>(progress.number - 1) + progress.fraction;
    const double share = frames / static_cast<double>(progress.count);
    std::string text =
        fmt::format("frame {} of {}: {:3}%", progress.number, progress.count, static_cast<int>(share * 100));
    constexpr double kLeastSeconds = 1;
    if (progress.seconds < kLeastSeconds || frames <= 0) return text;
    const double left = progress.seconds * (1 - share) / share;
    constexpr double kMostSeconds = 100 * 3600;
    text += fmt::format(", {:.2g} per second", frames / progress.seconds);
    return left < kMostSeconds ? text + fmt::format(", {} left", clockText(left)) : text;
}

}  // namespace perch
