#include "ExistingFrames.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "Error.h"
#include "FileWorlds.h"
#include "FrameList.h"
#include "OrderedTasks.h"

namespace perch {
namespace {

bool hasFingerprint(const FrameFiles& frame, pictures::ReadOptions reading) {
    reading.acceptsDamage = false;  // of inputs, which may be all that there is
    try {
        return fingerprintIn(readPictureFile(frame.output, "", reading)->software) == frame.fingerprint;
    } catch (const Error&) {
        return false;  // damaged or cut short
    }
}

bool isCurrent(const FrameFiles& frame, const FrameTraces& traces, const pictures::ReadOptions& reading) {
    const std::optional<FileState> state = fileState(frame.output);
    if (!state) return false;
    const auto trace = traces.find({frame.frame, frame.output.string()});
    if (trace != traces.end() && trace->second.fingerprint == frame.fingerprint &&
        trace->second.output == *state) {
        return true;
    }
    return hasFingerprint(frame, reading);
}

}  // namespace

void takeCurrentFrames(FramePlan& plan, const FrameTraces& traces, const pictures::ReadOptions& reading,
                       std::size_t tasks) {
    std::vector<FrameFiles> frames = std::exchange(plan.frames, {});
    OrderedTasks<bool> answers(tasks);
    std::size_t next = 0;
    for (FrameFiles& frame : frames) {
        for (; !answers.isFull() && next < frames.size(); ++next)
            answers.start(
                [&asked = frames[next], &traces, &reading] { return isCurrent(asked, traces, reading); });
        (answers.next() ? plan.current : plan.frames).push_back(std::move(frame));
    }
}

void refuseExistingFrames(const FramePlan& plan) {
    std::vector<std::int32_t> existing;
    std::string first;
    for (const FrameFiles& frame : plan.frames) {
        if (!fileState(frame.output)) continue;
        if (existing.empty()) first = frame.output.string();
        existing.push_back(frame.frame);
    }
    if (existing.empty()) return;
    if (!plan.isSequence)
        throw OutputError(
            fmt::format("\"{}\" exists; remove it, or take --existing skip or overwrite", first));
    throw OutputError(fmt::format(
        "files of {}, exist, the first is \"{}\"; remove them, or take --existing skip or overwrite",
        countedFrames(existing), first));
}

}  // namespace perch
