#include "FramePlan.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <system_error>

#include "Error.h"
#include "FileIdentity.h"
#include "FramePattern.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

// The patterns among the names of a sequence.
struct Patterns {
    FramePattern input;
    FramePattern output;
    std::map<PF_ParamIndex, FramePattern> layers;
};

void requireFile(const fs::path& path, std::int32_t frame) {
    std::error_code ignored;
    if (fs::exists(path, ignored)) return;
    throw Error(fmt::format("frame {} is missing: there is no file \"{}\"; check --frames and the name",
                            frame, path.string()));
}

FrameFiles filesOf(const Patterns& patterns, std::int32_t frame) {
    FrameFiles files{frame, patterns.input.pathOf(frame), patterns.output.pathOf(frame), {}};
    requireFile(files.input, frame);
    for (const auto& [index, pattern] : patterns.layers) {
        const fs::path& layer = files.layers[index] = pattern.pathOf(frame);
        requireFile(layer, frame);
    }
    return files;
}

// A file that is really named as a pattern.
bool isFile(const std::string& name) {
    std::error_code ignored;
    return fs::exists(name, ignored);
}

Error noFileLike(const std::string& name) {
    return Error(fmt::format("no file is named like \"{}\"{}", name,
                             isFile(name) ? " with a number; --no-pattern takes the file of just this name"
                                          : "; check the name and the folder"));
}

std::vector<FrameFiles> framesOf(const Patterns& patterns, const PictureNames& names) {
    std::vector<FrameFiles> frames;
    for (const std::int32_t frame : names.frames ? *names.frames : patterns.input.framesOnDisk())
        frames.push_back(filesOf(patterns, frame));
    if (frames.empty()) throw noFileLike(names.input);
    return frames;
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

FramePlan planSequence(const PictureNames& names, const LayerNames& layers, const FramePattern& input) {
    FramePlan plan{.isSequence = true, .frames = {}, .stillLayers = {}};
    Patterns patterns{input, outputPattern(names, input), {}};
    for (const auto& [index, name] : layers) {
        if (const std::optional<FramePattern> layer = FramePattern::parse(name)) {
            patterns.layers.emplace(index, *layer);
        } else {
            plan.stillLayers[index] = name;
        }
    }
    plan.frames = framesOf(patterns, names);
    plan.lastFrame = std::ranges::max(plan.frames, {}, &FrameFiles::frame).frame;
    return plan;
}

void requireOneFile(const std::string& name, bool areFiles) {
    if (areFiles || !FramePattern::parse(name)) return;
    throw UsageError(
        fmt::format("\"{}\" stands for many files and --input for one; give --input a place for the frame "
                    "number too, or take the names as they are by --no-pattern",
                    name));
}

FramePlan planStill(const PictureNames& names, const LayerNames& layers) {
    if (names.frames) {
        throw UsageError(names.areFiles
                             ? "--frames is for sequences and --no-pattern for one picture; leave one"
                             : "--frames is for sequences; give --input a place for the frame "
                               "number, like in.####.png");
    }
    requireOneFile(names.output, names.areFiles);
    FramePlan plan{.isSequence = false, .frames = {{0, names.input, names.output, {}}}, .stillLayers = {}};
    for (const auto& [index, name] : layers) {
        requireOneFile(name, names.areFiles);
        plan.stillLayers[index] = name;
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

void refuseToOverwrite(const FramePlan& plan) {
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
            throw Error(
                fmt::format("cannot write \"{}\": {}; choose another name", files.output.string(), reason));
        };
        if (read.contain(files.output)) refuse("it is read by this render");
        if (written.contain(files.output)) refuse("another frame is written to the same file");
        written.add(files.output);
    }
}

}  // namespace

FramePlan planFrames(const PictureNames& names, const LayerNames& layers) {
    const std::optional<FramePattern> input =
        names.areFiles ? std::nullopt : FramePattern::parse(names.input);
    FramePlan plan = input ? planSequence(names, layers, *input) : planStill(names, layers);
    refuseToOverwrite(plan);
    return plan;
}

}  // namespace perch
