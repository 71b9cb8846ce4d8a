// Blurs a row of three pixels by one pixel, all of it out of focus, and checks the result.

#include <cstdint>
#include <cstdio>

#include "FrameBuffer.h"
#include "Kestrel.h"
#include "ThreadPoolContext.h"

using Pixel8 = PILib::Pixel<PILib::Channel8>;

int main() {
    const PILib::SimplePixelBuffer<Pixel8> input(3, 1);
    const PILib::SimplePixelBuffer<Pixel8> output(3, 1);
    const PILib::ChannelBuf<PILib::Channel8> map(3, 1);
    const std::uint8_t greys[] = {30, 60, 90};
    for (int x = 0; x < 3; ++x) {
        input.row(0)[x] = Pixel8(255, greys[x], greys[x], greys[x]);
        map.row(0)[x] = 255;
    }

    PILib::ThreadPoolContext context(2);
    Kestrel(context, output, input, map, false, 1.0F, 1.0F);

    // The mean of three pixels, the edge counted twice: (30 + 30 + 60) / 3, and so on.
    const std::uint8_t expected[] = {40, 60, 80};
    for (int x = 0; x < 3; ++x) {
        const Pixel8 actual = output.row(0)[x];
        if (actual == Pixel8(255, expected[x], expected[x], expected[x])) continue;
        std::fprintf(stderr, "pixel %d: expected grey %d, actual ARGB(%d, %d, %d, %d)\n", x, expected[x],
                     actual.alpha, actual.red, actual.green, actual.blue);
        return 1;
    }
    return 0;
}
