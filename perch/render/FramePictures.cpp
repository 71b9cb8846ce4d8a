#include "FramePictures.h"

#include <cstddef>
#include <variant>

namespace perch {
namespace {

std::int64_t bytesOf(const FileWorld& picture) {
    const std::int64_t pixels = std::int64_t{picture.pixels.width()} * picture.pixels.height();
    const std::size_t samples =
        std::visit([](const auto& all) { return all.size() * sizeof(all.front()); }, picture.source->samples);
    return pixels * (picture.pixels.isDeep() ? 8 : 4) + static_cast<std::int64_t>(samples);
}

}  // namespace

std::int64_t bytesOf(const FramePictures& pictures) {
    std::int64_t bytes = 2 * bytesOf(*pictures.input);  // the output has as many
    for (const auto& [index, layer] : pictures.layers)
        bytes += bytesOf(*layer);
    return bytes;
}

}  // namespace perch
