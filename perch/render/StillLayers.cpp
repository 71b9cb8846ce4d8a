#include "StillLayers.h"

namespace perch {

LayerPictures StillLayers::read() {
    const std::lock_guard lock(mutex);
    for (const auto& [index, path] : paths) {
        SharedPicture& layer = pictures[index];
        if (layer == nullptr) layer = reader.read(index, path, 0);
    }
    return pictures;
}

LayerWorlds StillLayers::worlds(Depth depth) {
    const std::lock_guard lock(mutex);
    LayerWorlds& layers = worldsByDepth[depth];
    for (const auto& [index, picture] : pictures) {
        auto& layer = layers[index];
        if (layer == nullptr)
            layer = std::make_shared<const FileWorld>(resized(worldOf(picture, depth), scale));
    }
    return layers;
}

}  // namespace perch
