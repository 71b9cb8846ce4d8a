#include "World.h"

#include <algorithm>

#include <fmt/format.h>

#include "PF_Values.h"

namespace perch {
namespace {

constexpr unsigned char kPattern = 0xA5;
constexpr std::size_t kGuardSize = 64;

bool isWhole(const unsigned char* first, std::size_t count) {
    return std::all_of(first, first + count, [](unsigned char byte) { return byte == kPattern; });
}

}  // namespace

World::World(std::int32_t width, std::int32_t height, PixelDepth depth, std::int32_t rowPadding)
    : pixelDepth(depth) {
    world.width = width;
    world.height = height;
    world.world_flags = PF_WorldFlag_WRITEABLE | (depth == PixelDepth::Bits16 ? PF_WorldFlag_DEEP : 0);
    if (depth == PixelDepth::Float) world.reserved0 = &gFloatWorldMark;
    world.extent_hint = {0, 0, width, height};
    world.pix_aspect_ratio = {1, 1};
    world.rowbytes = static_cast<A_long>(rowSize()) + rowPadding;
    const std::size_t rows = static_cast<std::size_t>(world.rowbytes) * static_cast<std::size_t>(height);
    memory.assign(kGuardSize + rows + kGuardSize, kPattern);
    pointAtPixels();
    for (std::int32_t y = 0; y < height; ++y) {
        std::fill_n(memory.begin() + (row(y) - memory.data()), rowSize(), static_cast<unsigned char>(0));
    }
}

World::World(const World& other) : memory(other.memory), world(other.world), pixelDepth(other.pixelDepth) {
    pointAtPixels();
}

World& World::operator=(const World& other) {
    if (this != &other) *this = World(other);
    return *this;
}

std::size_t World::rowSize() const {
    return static_cast<std::size_t>(world.width) * static_cast<std::size_t>(pixelSize(pixelDepth));
}

const unsigned char* World::row(std::int32_t y) const {
    return memory.data() + kGuardSize +
           static_cast<std::size_t>(y) * static_cast<std::size_t>(world.rowbytes);
}

void World::pointAtPixels() {
    const bool hasPixels = world.width > 0 && world.height > 0;
    world.data =
        hasPixels ? static_cast<PF_PixelPtr>(static_cast<void*>(memory.data() + kGuardSize)) : nullptr;
}

std::string World::damage() const {
    if (!isWhole(memory.data(), kGuardSize)) return "bytes before the first row were written";
    if (!isWhole(memory.data() + memory.size() - kGuardSize, kGuardSize)) {
        return "bytes after the last row were written";
    }
    const std::size_t gap = static_cast<std::size_t>(world.rowbytes) - rowSize();
    for (std::int32_t y = 0; y < world.height; ++y) {
        if (!isWhole(row(y) + rowSize(), gap))
            return fmt::format("bytes in the gap after row {} were written", y);
    }
    return {};
}

std::uint64_t World::checksum() const {
    std::uint64_t sum = 14695981039346656037ULL;  // FNV-1a
    for (std::int32_t y = 0; y < world.height; ++y) {
        for (std::size_t i = 0; i < rowSize(); ++i)
            sum = (sum ^ row(y)[i]) * 1099511628211ULL;
    }
    return sum;
}

}  // namespace perch
