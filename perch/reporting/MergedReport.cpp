#include "MergedReport.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <time.h>

#include <algorithm>
#include <ctime>
#include <map>
#include <set>
#include <vector>

#include "Error.h"
#include "FrameList.h"

namespace perch {
namespace {

using State = FrameRecord::State;

std::time_t secondsSince1970(const std::string& time) {
    std::tm parts{};
    strptime(time.c_str(), "%Y-%m-%dT%H:%M:%SZ", &parts);
    return timegm(&parts);
}

// What is the task's own.
std::vector<std::string> withoutShard(const std::vector<std::string>& arguments) {
    std::vector<std::string> kept;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--shard" || arguments[i] == "--report") {
            ++i;  // and its value
        } else if (!arguments[i].starts_with("--shard=") && !arguments[i].starts_with("--report=")) {
            kept.push_back(arguments[i]);
        }
    }
    return kept;
}

class Merger {
public:
    explicit Merger(std::span<const NamedRecord> tasks) : tasks(tasks) {
        const JobRecord& first = tasks.front().record;
        merged = {.version = first.version,
                  .arguments = withoutShard(first.arguments),
                  .effect = first.effect,
                  .effectBuild = first.effectBuild,
                  .parameters = first.parameters,
                  .state = "done",
                  .frames = {}};
    }

    JobRecord result() {
        for (const NamedRecord& task : tasks) {
            requireSameJob(task);
            addShard(task);
            for (const FrameRecord& frame : task.record.frames)
                add(task, frame);
        }
        requireFilesOfTheirOwn();
        if (!conflicts.empty())
            throw InputError(fmt::format("the reports are not of one job: {}", fmt::join(conflicts, "; ")));
        for (const auto& [number, chosen] : frames)
            merged.frames.push_back(*chosen.frame);
        for (const NamedRecord& task : tasks)
            addState(task.record);
        requireAllShards();
        addTimes();
        addTexts();
        return merged;
    }

private:
    struct Chosen {
        const NamedRecord* task;
        const FrameRecord* frame;
    };

    void requireSameJob(const NamedRecord& task) {
        const NamedRecord& first = tasks.front();
        const auto compare = [&](const char* what, const auto& one, const auto& other) {
            if (one != other)
                conflicts.push_back(fmt::format("\"{}\" has {} than \"{}\"", task.name, what, first.name));
        };
        compare("another version of perch", task.record.version, first.record.version);
        compare("another effect", task.record.effect, first.record.effect);
        compare("another build of the effect", task.record.effectBuild, first.record.effectBuild);
        compare("other parameters", task.record.parameters, first.record.parameters);
    }

    // A report of no shard, as of frames that were rendered once more by hand, stands for none.
    void addShard(const NamedRecord& task) {
        if (!task.record.shard) return;
        if (sharded == nullptr) sharded = &task;
        shards.insert(task.record.shard->number);
        if (task.record.shard->count != sharded->record.shard->count)
            conflicts.push_back(fmt::format("\"{}\" is of {} shards and \"{}\" of {}", task.name,
                                            task.record.shard->count, sharded->name,
                                            sharded->record.shard->count));
    }

    // What a task that is missing has done is in no report, not even which frames are its own.
    void requireAllShards() {
        if (sharded == nullptr) return;
        const std::size_t count = sharded->record.shard->count;
        std::vector<std::int32_t> missing;
        for (std::size_t number = 1; number <= count; ++number)
            if (!shards.contains(number)) missing.push_back(static_cast<std::int32_t>(number));
        if (missing.empty()) return;
        merged.state = kIncomplete;
        merged.error = fmt::format("the report{} of shard{} {} of {} {} missing; name those of all tasks",
                                   missing.size() == 1 ? "" : "s", missing.size() == 1 ? "" : "s",
                                   frameListText(missing), count, missing.size() == 1 ? "is" : "are");
    }

    void add(const NamedRecord& task, const FrameRecord& frame) {
        const auto [place, isNew] = frames.try_emplace(frame.frame, Chosen{&task, &frame});
        if (isNew) return;
        const Chosen& before = place->second;
        if (before.frame->fingerprint != frame.fingerprint || before.frame->output != frame.output) {
            conflicts.push_back(fmt::format("frame {} is not the same in \"{}\" and \"{}\"", frame.frame,
                                            before.task->name, task.name));
        } else if (before.frame->state != State::Done && frame.state != State::Waiting) {
            place->second = {&task, &frame};
        }
    }

    void requireFilesOfTheirOwn() {
        std::map<std::string, std::int32_t> written;
        for (const auto& [number, chosen] : frames) {
            const auto [place, isNew] = written.try_emplace(chosen.frame->output, number);
            if (!isNew)
                conflicts.push_back(fmt::format("frames {} and {} are both \"{}\"", place->second, number,
                                                chosen.frame->output));
        }
    }

    // A task that did not end well counts where another has not done its frames instead, or where its frames
    // were not at fault.
    void addState(const JobRecord& task) {
        const auto isDone = [](const FrameRecord& frame) { return frame.state == State::Done; };
        const auto isDoneNow = [&](const FrameRecord& frame) {
            return isDone(*frames.at(frame.frame).frame);
        };
        if (task.state == "done") return;
        if (std::ranges::all_of(task.frames, isDoneNow) &&
            (task.state != "failed" || !std::ranges::all_of(task.frames, isDone)))
            return;
        if (merged.state == "failed") return;
        merged.state = task.state;
        merged.error = task.error;
    }

    void addTimes() {
        std::time_t begin = secondsSince1970(tasks.front().record.begin);
        for (const NamedRecord& task : tasks)
            begin = std::min(begin, secondsSince1970(task.record.begin));
        merged.begin = fmt::format("{:%FT%TZ}", fmt::gmtime(begin));
        for (const NamedRecord& task : tasks) {
            const auto since = static_cast<double>(secondsSince1970(task.record.begin) - begin);
            merged.seconds = std::max(merged.seconds, since + task.record.seconds);
        }
    }

    void addTexts() {
        std::set<std::int32_t> skipped;
        for (const NamedRecord& task : tasks) {
            // One task may have found the file that another lacked.
            for (const std::int32_t frame : task.record.skipped)
                if (!frames.contains(frame)) skipped.insert(frame);
            for (const std::string& note : task.record.notes)
                if (std::ranges::find(merged.notes, note) == merged.notes.end()) merged.notes.push_back(note);
        }
        merged.skipped.assign(skipped.begin(), skipped.end());
    }

    const std::span<const NamedRecord> tasks;
    JobRecord merged;
    std::map<std::int32_t, Chosen> frames;
    const NamedRecord* sharded = nullptr;  // the first of a shard
    std::set<std::size_t> shards;          // numbers
    std::vector<std::string> conflicts;
};

}  // namespace

JobRecord mergedRecord(std::span<const NamedRecord> tasks) {
    return Merger(tasks).result();
}

}  // namespace perch
