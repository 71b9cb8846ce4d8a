#include "FramePlan.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <set>
#include <system_error>

#include "Error.h"
#include "FileIdentity.h"
#include "FrameList.h"
#include "FramePattern.h"
#include "LayerSequence.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

// The patterns among the names of a sequence.
struct Patterns {
    FramePattern input;
    FramePattern output;
    std::map<PF_ParamIndex, LayerSequence> layers;
};

FrameFiles filesOf(Patterns& patterns, std::int32_t frame) {
    FrameFiles files{frame, patterns.input.pathOf(frame), patterns.output.pathOf(frame), {}};
    for (auto& [index, layer] : patterns.layers) {
        if (const std::optional<fs::path> file = layer.fileFor(frame)) {
            files.layers[index] = *file;
        } else {
            files.missingLayers.insert(index);
        }
    }
    return files;
}

// A file that is really named as a pattern.
bool isFile(const std::string& name) {
    std::error_code ignored;
    return fs::exists(name, ignored);
}

InputError noFileLike(const std::string& name) {
    return InputError(fmt::format("no file is named like \"{}\"{}", name,
                                  isFile(name)
                                      ? " with a number; --no-pattern takes the file of just this name"
                                      : "; check the name and the folder"));
}

// The frames that the input's files would have without gaps. Where only every second frame or the like was
// ever made, the others are not gaps: the step is the greatest that meets all files.
std::vector<std::int32_t> framesAround(const std::vector<std::int32_t>& onDisk, const std::string& name) {
    if (onDisk.empty()) throw noFileLike(name);
    std::int32_t step = 0;
    for (std::size_t i = 1; i < onDisk.size(); ++i)
        step = std::gcd(step, onDisk[i] - onDisk[i - 1]);
    if (step == 0) return onDisk;
    const std::size_t count = static_cast<std::size_t>((onDisk.back() - onDisk.front()) / step) + 1;
    if (count > kMostFrames) {
        throw InputError(
            fmt::format("the files named like \"{}\" extend from frame {} to {}, with more than {} "
                        "frames; choose some by --frames",
                        name, onDisk.front(), onDisk.back(), kMostFrames));
    }
    std::vector<std::int32_t> frames(count);
    for (std::size_t i = 0; i < count; ++i)
        frames[i] = onDisk.front() + static_cast<std::int32_t>(i) * step;
    return frames;
}

std::vector<std::int32_t> wantedFrames(const PictureNames& names, const FramePattern& input) {
    return names.frames ? *names.frames : framesAround(input.framesOnDisk(), names.input);
}

// Whether there is a file for the frame. Throws where there must be one.
bool hasFile(const FramePattern& input, std::int32_t frame, MissingFrame missing) {
    const fs::path file = input.pathOf(frame);
    std::error_code ignored;
    if (fs::exists(file, ignored)) return true;
    if (missing == MissingFrame::Skip) return false;
    throw InputError(
        fmt::format("frame {} is missing: there is no file \"{}\"; check the name and --frames, or leave "
                    "it out by --missing-frame skip",
                    frame, file.string()));
}

FramePattern outputPattern(const PictureNames& names, const FramePattern& input) {
    const std::optional<FramePattern> output = FramePattern::parse(names.output);
    if (!output) {
        throw UsageError(fmt::format(
            "\"{}\" would hold every frame; give --output a place for the frame number, like out.####.png{}",
            names.output,
            isFile(names.input) ? ", or take the file of just the input's name by --no-pattern" : ""));
    }
    if (output->digits() != input.digits()) {
        throw UsageError(
            fmt::format("\"{}\" has {} digits for the frame number and --input has {}; give both "
                        "as many",
                        names.output, output->digits(), input.digits()));
    }
    return *output;
}

void requireNoOffset(const LayerName& layer) {
    if (layer.offset == 0) return;
    throw UsageError(fmt::format(
        "an offset is for a layer with a file per frame, and \"{}\" is one for all; leave the offset out, or "
        "give the layer a name like depth.####.png",
        layer.name));
}

FramePlan planSequence(const PictureNames& names, const LayerNames& layers, Patterns patterns,
                       const std::vector<std::int32_t>& wanted) {
    FramePlan plan{.isSequence = true, .frames = {}, .stillLayers = {}};
    for (const auto& [index, layer] : layers) {
        if (const std::optional<FramePattern> pattern = FramePattern::parse(layer.name)) {
            patterns.layers.try_emplace(index, layer.name, *pattern, layer.offset, names.missingLayerFrame);
        } else {
            requireNoOffset(layer);
            plan.stillLayers[index] = layer.name;
        }
    }
    for (const std::int32_t frame : wanted) {
        if (hasFile(patterns.input, frame, names.missingFrame)) {
            plan.frames.push_back(filesOf(patterns, frame));
        } else {
            plan.skipped.push_back(frame);
        }
    }
    for (const FrameFiles& files : plan.frames)
        plan.firstLayers.insert(files.layers.begin(), files.layers.end());
    if (plan.frames.empty()) {
        throw InputError(fmt::format("\"{}\" has no file for {}, which is all; check the name and --frames",
                                     names.input, countedFrames(plan.skipped)));
    }
    plan.firstFrame = plan.frames.front().frame;
    plan.lastFrame = std::ranges::max(plan.frames, {}, &FrameFiles::frame).frame;
    for (const std::int32_t frame : patterns.input.framesOnDisk())
        plan.lastFrame = std::max(plan.lastFrame, frame);
    if (!plan.skipped.empty()) {
        plan.notes.push_back({.isWarning = true,
                              .sentence = fmt::format("\"{}\" has no file for {}; check that all were made",
                                                      names.input, countedFrames(plan.skipped))});
    }
    for (const auto& [index, layer] : patterns.layers)
        if (!layer.note().empty()) plan.notes.push_back({.sentence = layer.note()});
    return plan;
}

// Frames fall to shards by their place in what was asked for, so that no two shards share one or leave one
// out, even where one finds a file that was missing when another began.
void keepShard(FramePlan& plan, const std::vector<std::int32_t>& wanted, const Shard& shard) {
    std::set<std::int32_t> own;
    for (std::size_t i = shard.number - 1; i < wanted.size(); i += shard.count)
        own.insert(wanted[i]);
    std::erase_if(plan.frames, [&](const FrameFiles& files) { return !own.contains(files.frame); });
    std::erase_if(plan.skipped, [&](std::int32_t frame) { return !own.contains(frame); });
    if (plan.frames.empty())
        plan.notes.push_back(
            {.sentence = fmt::format("shard {}/{} has no frame to render", shard.number, shard.count)});
}

void requireOneFile(const std::string& name, bool areFiles) {
    if (areFiles || !FramePattern::parse(name)) return;
    throw UsageError(
        fmt::format("\"{}\" stands for many files and --input for one; give --input a place for the frame "
                    "number too, or take the names as they are by --no-pattern",
                    name));
}

void requireNoFrames(const PictureNames& names) {
    if (!names.frames && !names.shard) return;
    throw UsageError(fmt::format("{} is for sequences{}", names.frames ? "--frames" : "--shard",
                                 names.areFiles
                                     ? " and --no-pattern for one picture; leave one"
                                     : "; give --input a place for the frame number, like in.####.png"));
}

FramePlan planStill(const PictureNames& names, const LayerNames& layers) {
    requireNoFrames(names);
    requireOneFile(names.output, names.areFiles);
    FramePlan plan{.isSequence = false, .frames = {{0, names.input, names.output, {}}}, .stillLayers = {}};
    for (const auto& [index, layer] : layers) {
        requireOneFile(layer.name, names.areFiles);
        requireNoOffset(layer);
        plan.stillLayers[index] = layer.name;
    }
    return plan;
}

// Tells folder entries apart however they are named.
class Entries {
public:
    fs::path of(const fs::path& path) {
        const auto [folder, isNew] = folders.try_emplace(path.parent_path());
        if (isNew) folder->second = resolved(path.parent_path());
        return folder->second / path.filename();
    }

private:
    static fs::path resolved(const fs::path& folder) {
        std::error_code ignored;
        const fs::path known = fs::canonical(folder.empty() ? fs::path(".") : folder, ignored);
        return ignored ? folder : known;
    }

    std::map<fs::path, fs::path> folders;
};

// The files of a plan, by their entries, which need not exist, and by what those lead to.
class Files {
public:
    void add(const fs::path& path) {
        names.insert(entries.of(path));
        if (const auto identity = pictures::identityOf(path)) identities.insert(*identity);
    }

    bool contain(const fs::path& path) {
        if (names.contains(entries.of(path))) return true;
        const auto identity = pictures::identityOf(path);
        return identity && identities.contains(*identity);
    }

private:
    Entries entries;
    std::set<fs::path> names;
    std::set<pictures::FileIdentity> identities;
};

void refuseToOverwrite(const FramePlan& plan, const std::vector<AccountName>& accounts) {
    Files read;
    const auto addLayers = [&](const std::map<PF_ParamIndex, fs::path>& layers) {
        for (const auto& [index, path] : layers)
            read.add(path);
    };
    addLayers(plan.stillLayers);
    for (const FrameFiles& files : plan.frames) {
        read.add(files.input);
        addLayers(files.layers);
    }
    Files written;
    for (const FrameFiles& files : plan.frames) {
        const auto refuse = [&](std::string_view reason) {
            throw UsageError(
                fmt::format("cannot write \"{}\": {}; choose another name", files.output.string(), reason));
        };
        if (read.contain(files.output)) refuse("it is read by this render");
        if (written.contain(files.output)) refuse("another frame is written to the same file");
        written.add(files.output);
    }
    for (const AccountName& account : accounts) {
        const auto refuse = [&](std::string_view reason) {
            throw UsageError(fmt::format("{} names \"{}\", {}; choose another name", account.option,
                                         account.path.string(), reason));
        };
        if (read.contain(account.path)) refuse("which is read by this render");
        if (written.contain(account.path)) refuse("to which this render writes something else");
        written.add(account.path);
    }
}

}  // namespace

std::vector<fs::path> outputsOf(const FramePlan& plan) {
    std::vector<fs::path> outputs;
    for (const FrameFiles& files : plan.frames)
        outputs.push_back(files.output);
    return outputs;
}

std::set<PF_ParamIndex> layersSetByUser(const FramePlan& plan) {
    std::set<PF_ParamIndex> layers = plan.emptyLayers;
    for (const auto& [index, path] : plan.stillLayers)
        layers.insert(index);
    if (plan.frames.empty()) return layers;
    const FrameFiles& first = plan.frames.front();
    for (const auto& [index, path] : first.layers)
        layers.insert(index);
    layers.insert(first.missingLayers.begin(), first.missingLayers.end());
    return layers;
}

FramePlan planFrames(const PictureNames& names, const LayerNames& layers) {
    const std::optional<FramePattern> input =
        names.areFiles ? std::nullopt : FramePattern::parse(names.input);
    if (!input) {
        FramePlan plan = planStill(names, layers);
        if (!names.output.empty()) refuseToOverwrite(plan, names.accounts);
        return plan;
    }
    const bool writesFrames = !names.output.empty();
    const Patterns patterns{*input, writesFrames ? outputPattern(names, *input) : *input, {}};
    const std::vector<std::int32_t> wanted = wantedFrames(names, *input);
    FramePlan plan = planSequence(names, layers, patterns, wanted);
    if (writesFrames) {
        refuseToOverwrite(plan, names.accounts);
    } else {
        for (FrameFiles& files : plan.frames)
            files.output.clear();
    }
    if (names.shard) keepShard(plan, wanted, *names.shard);
    return plan;
}

}  // namespace perch
