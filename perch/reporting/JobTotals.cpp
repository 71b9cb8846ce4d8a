#include "JobTotals.h"

#include <fmt/format.h>

#include "FrameList.h"

namespace perch {

std::string summaryText(const JobTotals& totals, double seconds, const std::string& output) {
    std::string text = fmt::format("{} frame{} done", totals.done, totals.done == 1 ? "" : "s");
    if (totals.current > 0) text += fmt::format(", {} up to date", totals.current);
    if (!totals.skipped.empty()) text += fmt::format(", {} skipped", totals.skipped.size());
    if (!totals.failed.empty())
        text += fmt::format(", {} failed ({})", totals.failed.size(), frameListText(totals.failed));
    if (totals.notRendered > 0) text += fmt::format(", {} not rendered", totals.notRendered);
    if (totals.refusedLines > 0)
        text += fmt::format(", {} line{} refused", totals.refusedLines, totals.refusedLines == 1 ? "" : "s");
    if (totals.triedAgain > 0) text += fmt::format(", {} tried again", totals.triedAgain);
    text += fmt::format(" in {:.1f} s", seconds);
    if (totals.done > 1 && seconds > 0)
        text += fmt::format(", {:.3g} per second", static_cast<double>(totals.done) / seconds);
    return fmt::format("{}: {}", text, output);
}

}  // namespace perch
