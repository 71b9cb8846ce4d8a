// A picture that the host owns, as an effect sees it: a PF_EffectWorld over rows that may be padded. A
// pattern fills the row gaps and both ends of the memory, so that writes outside the pixels are noticed.
// Pixels are zero at first.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "PF_World.h"
#include "PixelDepth.h"
#include "PixelMemory.h"

namespace perch {

// Of the width and height of worlds: more than any frame has. Keeps a hostile size from taking the machine's
// memory.
constexpr std::int32_t kLargestExtent = 30000;

class World {
public:
    // `rowPadding` is bytes at the end of each row, a multiple of the pixel size. Sizes of 0 are legal: such
    // a world has no pixels and a null address.
    World(std::int32_t width, std::int32_t height, PixelDepth depth, std::int32_t rowPadding = 0);
    World(std::int32_t width, std::int32_t height, bool isDeep, std::int32_t rowPadding = 0)
        : World(width, height, isDeep ? PixelDepth::Bits16 : PixelDepth::Bits8, rowPadding) {}
    World(const World& other);
    World& operator=(const World& other);
    World(World&&) = default;
    World& operator=(World&&) = default;

    // What the effect is given. Its address stays with this object, the pixels with their memory.
    const PF_EffectWorld& record() const { return world; }
    PF_EffectWorld& record() { return world; }

    std::int32_t width() const { return world.width; }
    std::int32_t height() const { return world.height; }
    PixelDepth depth() const { return pixelDepth; }
    bool isDeep() const { return pixelDepth == PixelDepth::Bits16; }

    // Where the pattern was overwritten, in a sentence's words; empty while it is whole.
    std::string damage() const;
    // Of the pixels alone.
    std::uint64_t checksum() const;

private:
    std::size_t rowSize() const;  // bytes that hold pixels
    const unsigned char* row(std::int32_t y) const;
    void pointAtPixels();

    std::vector<unsigned char, PixelAllocator<unsigned char>> memory;
    PF_EffectWorld world{};
    PixelDepth pixelDepth;
};

}  // namespace perch
