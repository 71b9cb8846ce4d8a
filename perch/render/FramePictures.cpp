#include "FramePictures.h"

#include <fmt/format.h>

#include <algorithm>
#include <variant>

#include "Error.h"

namespace perch {

std::int64_t bytesOf(const FileWorld& picture) {
    const std::int64_t pixels = std::int64_t{picture.pixels.width()} * picture.pixels.height();
    const std::size_t samples =
        std::visit([](const auto& all) { return all.size() * sizeof(all.front()); }, picture.source->samples);
    return pixels * (picture.pixels.isDeep() ? 8 : 4) + static_cast<std::int64_t>(samples);
}

std::int64_t bytesOf(const FramePictures& pictures) {
    std::int64_t bytes = 2 * bytesOf(*pictures.input);  // the output has as many
    for (const auto& [index, layer] : pictures.layers)
        bytes += bytesOf(*layer);
    return bytes;
}

std::size_t framesWithin(std::int64_t memory, const FramePictures& pictures) {
    return static_cast<std::size_t>(std::max<std::int64_t>(memory / bytesOf(pictures), 1));
}

void requireMemory(std::int64_t memory, const FramePictures& pictures) {
    const std::int64_t bytes = bytesOf(pictures);
    if (bytes <= memory) return;
    throw InputError(
        fmt::format("its pictures take {} MB, and --max-memory allows {}; make them smaller, or allow more",
                    (bytes >> 20) + 1, memory >> 20));
}

}  // namespace perch
