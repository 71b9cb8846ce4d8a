// Pictures of the recording host: padded rows between guard bytes, so that a write outside shows.
#pragma once

#include <cstdint>
#include <vector>

#include "HostInterface.h"
#include "Image.h"

class HostWorld {
public:
    HostWorld(int width, int height, bool deep, int rowPadding = 8);
    HostWorld(const oracle::Image& image, int rowPadding = 8);
    HostWorld(const HostWorld&) = delete;
    HostWorld& operator=(const HostWorld&) = delete;

    oracle::Colour at(int x, int y) const;
    void set(int x, int y, const oracle::Colour& colour);
    oracle::Image image() const;
    // Whether all bytes outside the pixels still have their first value.
    bool guardsAreIntact() const;

    PF_EffectWorld def{};

private:
    std::vector<unsigned char> memory;
};

oracle::Colour PixelAt(const PF_EffectWorld& world, int x, int y);
void SetPixel(const PF_EffectWorld& world, int x, int y, const oracle::Colour& colour);

// The host's own mix: colours are weighted by alpha, too. `ratio` is the share of `b` in 16.16.
oracle::Colour HostMix(const oracle::Colour& a, const oracle::Colour& b, PF_Fixed ratio);

// The host's own resampling: the nearest pixel of a picture stretched to another size.
oracle::Image HostResampled(const oracle::Image& source, int width, int height);
