// Which files belong to which frame, from the names that the user gave.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "MissingFrame.h"
#include "Notes.h"
#include "PF_Params.h"
#include "Shard.h"

namespace perch {

// A file that a job writes beside its pictures.
struct AccountName {
    std::string option;  // as --report
    std::filesystem::path path;
};

// As given. A name may be a FramePattern; an input that is one makes a sequence.
struct PictureNames {
    std::string input;
    std::string output;                               // empty: no file for each frame
    std::optional<std::vector<std::int32_t>> frames;  // absent: all that the input's pattern finds
    bool areFiles = false;                            // whatever they look like
    MissingFrame missingFrame = MissingFrame::Error;
    MissingLayerFrame missingLayerFrame = MissingLayerFrame::Error;
    std::optional<Shard> shard{};  // absent: all frames
    std::vector<AccountName> accounts{};
};

struct LayerName {
    std::string name;
    std::int32_t offset = 0;  // of its frames' numbers from those of the input
};

using LayerNames = std::map<PF_ParamIndex, LayerName>;

struct FrameFiles {
    std::int32_t frame = 0;  // number
    std::filesystem::path input;
    std::filesystem::path output;
    std::map<PF_ParamIndex, std::filesystem::path> layers;  // of this frame alone
    std::set<PF_ParamIndex> missingLayers{};                // that it is rendered without
    std::string fingerprint{};                              // of what it is made from; see Fingerprint.h
};

struct FramePlan {
    bool isSequence = false;
    std::vector<FrameFiles> frames;  // in the order to render
    std::int32_t firstFrame = 0;     // the first to render, other shards' too
    std::int32_t lastFrame = 0;      // the greatest number of the input's files, rendered or not
    std::map<PF_ParamIndex, std::filesystem::path> stillLayers;  // the same for every frame
    // The first picture of each layer that has one for every frame, other shards' too.
    std::map<PF_ParamIndex, std::filesystem::path> firstLayers{};
    std::set<PF_ParamIndex> emptyLayers{};  // that the user has set to none
    std::vector<std::int32_t> skipped{};    // that have no file
    std::vector<FrameFiles> current{};      // whose outputs are up to date; not among the frames
    std::vector<Note> notes{};              // about files that are missing
};

std::vector<std::filesystem::path> outputsOf(const FramePlan& plan);

// The layer parameters that the user has set, to none as well.
std::set<PF_ParamIndex> layersSetByUser(const FramePlan& plan);

// Empty only where the shard has no frame. Throws UsageError where the names do not go together, as where a
// file would be written over one that is read or written, also by another shard; InputError where a frame's
// file is missing and must not be, the first one by name.
FramePlan planFrames(const PictureNames& names, const LayerNames& layers);

}  // namespace perch
