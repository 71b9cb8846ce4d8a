#include "HostWorld.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr unsigned char kGuard = 0xA5;
constexpr std::size_t kGuardSize = 64;

bool IsDeep(const PF_EffectWorld& world) {
    return (world.world_flags & PF_WorldFlag_DEEP) != 0;
}

int PixelSize(bool deep) {
    return deep ? sizeof(PF_Pixel16) : sizeof(PF_Pixel8);
}

unsigned char* AddressOf(const PF_EffectWorld& world, int x, int y) {
    return reinterpret_cast<unsigned char*>(world.data) + std::ptrdiff_t{y} * world.rowbytes +
           std::ptrdiff_t{x} * PixelSize(IsDeep(world));
}

}  // namespace

oracle::Colour PixelAt(const PF_EffectWorld& world, int x, int y) {
    if (IsDeep(world)) {
        PF_Pixel16 p;
        std::memcpy(&p, AddressOf(world, x, y), sizeof p);
        return {p.alpha, p.red, p.green, p.blue};
    }
    PF_Pixel8 p;
    std::memcpy(&p, AddressOf(world, x, y), sizeof p);
    return {p.alpha, p.red, p.green, p.blue};
}

void SetPixel(const PF_EffectWorld& world, int x, int y, const oracle::Colour& c) {
    if (IsDeep(world)) {
        const PF_Pixel16 p = {static_cast<A_u_short>(c[0]), static_cast<A_u_short>(c[1]),
                              static_cast<A_u_short>(c[2]), static_cast<A_u_short>(c[3])};
        std::memcpy(AddressOf(world, x, y), &p, sizeof p);
    } else {
        const PF_Pixel8 p = {static_cast<A_u_char>(c[0]), static_cast<A_u_char>(c[1]),
                             static_cast<A_u_char>(c[2]), static_cast<A_u_char>(c[3])};
        std::memcpy(AddressOf(world, x, y), &p, sizeof p);
    }
}

HostWorld::HostWorld(int width, int height, bool deep, int rowPadding) {
    def.world_flags = PF_WorldFlag_WRITEABLE | (deep ? PF_WorldFlag_DEEP : 0);
    def.width = width;
    def.height = height;
    def.rowbytes = width * PixelSize(deep) + rowPadding;
    def.extent_hint = {0, 0, width, height};
    def.pix_aspect_ratio = {1, 1};
    memory.assign(2 * kGuardSize + static_cast<std::size_t>(def.rowbytes) * static_cast<std::size_t>(height),
                  kGuard);
    def.data = reinterpret_cast<PF_Pixel*>(memory.data() + kGuardSize);
}

HostWorld::HostWorld(const oracle::Image& image, int rowPadding)
    : HostWorld(image.width, image.height, image.full == oracle::kFull15, rowPadding) {
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x)
            set(x, y, image.at(x, y));
    }
}

oracle::Colour HostWorld::at(int x, int y) const {
    return PixelAt(def, x, y);
}

void HostWorld::set(int x, int y, const oracle::Colour& colour) {
    SetPixel(def, x, y, colour);
}

oracle::Image HostWorld::image() const {
    oracle::Image image(def.width, def.height, IsDeep(def) ? oracle::kFull15 : oracle::kFull8);
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x)
            image.at(x, y) = at(x, y);
    }
    return image;
}

bool HostWorld::guardsAreIntact() const {
    const auto isGuard = [](unsigned char byte) { return byte == kGuard; };
    const auto rowSize = std::ptrdiff_t{def.width} * PixelSize(IsDeep(def));
    auto at = memory.begin() + kGuardSize;
    bool intact = std::all_of(memory.begin(), at, isGuard);
    for (int y = 0; y < def.height; ++y, at += def.rowbytes)
        intact = intact && std::all_of(at + rowSize, at + def.rowbytes, isGuard);
    return intact && std::all_of(at, memory.end(), isGuard);
}

oracle::Colour HostMix(const oracle::Colour& a, const oracle::Colour& b, PF_Fixed ratio) {
    const std::int64_t weightA = (65536 - std::int64_t{ratio}) * a[oracle::kAlpha];
    const std::int64_t weightB = std::int64_t{ratio} * b[oracle::kAlpha];
    const std::int64_t weight = weightA + weightB;
    if (weight == 0) return {};
    oracle::Colour mixed = {static_cast<std::uint32_t>((weight + 32768) >> 16)};
    for (std::size_t channel = oracle::kRed; channel <= oracle::kBlue; ++channel)
        mixed[channel] =
            static_cast<std::uint32_t>((weightA * a[channel] + weightB * b[channel] + weight / 2) / weight);
    return mixed;
}

oracle::Image HostResampled(const oracle::Image& source, int width, int height) {
    oracle::Image result(width, height, source.full);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            result.at(x, y) = source.at((2 * x + 1) * source.width / (2 * width),
                                        (2 * y + 1) * source.height / (2 * height));
    }
    return result;
}
