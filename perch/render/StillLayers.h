// The pictures of layers that stay the same for all frames, read once and converted once per depth.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>

#include "FileWorlds.h"
#include "LayerReader.h"

namespace perch {

using LayerPictures = std::map<PF_ParamIndex, SharedPicture>;
using LayerWorlds = std::map<PF_ParamIndex, std::shared_ptr<const FileWorld>>;

// Any thread. Keeps references to what it is made of.
class StillLayers {
public:
    StillLayers(const std::map<PF_ParamIndex, std::filesystem::path>& paths, const LayerReader& reader,
                const PF_RationalScale& scale)
        : paths(paths), reader(reader), scale(scale) {}

    LayerPictures read();
    // After `read`.
    LayerWorlds worlds(Depth depth);

private:
    const std::map<PF_ParamIndex, std::filesystem::path>& paths;
    const LayerReader& reader;
    const PF_RationalScale scale;
    std::mutex mutex;
    LayerPictures pictures;
    std::map<Depth, LayerWorlds> worldsByDepth;
};

}  // namespace perch
