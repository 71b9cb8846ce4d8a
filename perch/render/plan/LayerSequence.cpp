#include "LayerSequence.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include "Error.h"
#include "FrameList.h"

namespace perch {

namespace fs = std::filesystem;

LayerSequence::LayerSequence(const std::string& name, const FramePattern& pattern, std::int32_t offset,
                             MissingLayerFrame missing)
    : name(name), pattern(pattern), offset(offset), missing(missing) {}

std::optional<fs::path> LayerSequence::fileFor(std::int32_t frame) {
    const fs::path file = pattern.pathOf(frame + offset);
    std::error_code ignored;
    if (fs::exists(file, ignored)) return file;
    if (missing == MissingLayerFrame::Error) {
        throw InputError(
            fmt::format("frame {} lacks a layer: there is no file \"{}\"; check the name, or go on "
                        "by --missing-layer-frame hold or none",
                        frame, file.string()));
    }
    requireAnyFile();
    framesWithout.push_back(frame);
    if (missing == MissingLayerFrame::None) return std::nullopt;
    return heldFor(frame + offset);
}

// A layer without any file is a name that is misspelt.
void LayerSequence::requireAnyFile() {
    if (framesOnDisk.empty()) framesOnDisk = pattern.framesOnDisk();
    if (framesOnDisk.empty())
        throw InputError(fmt::format("no file is named like \"{}\"; check the name and the folder", name));
}

fs::path LayerSequence::heldFor(std::int32_t frame) {
    const auto next = std::ranges::upper_bound(framesOnDisk, frame);
    if (next != framesOnDisk.begin()) return pattern.pathOf(*std::prev(next));
    isFirstHeld = true;
    return pattern.pathOf(*next);
}

std::string LayerSequence::note() const {
    if (framesWithout.empty()) return "";
    return fmt::format("\"{}\" has no file for {}; {}", name, countedFrames(framesWithout),
                       missing == MissingLayerFrame::None ? "rendered without"
                       : isFirstHeld ? "the one before is held, or the first where none is before"
                                     : "the one before is held");
}

}  // namespace perch
