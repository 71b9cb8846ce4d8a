// Blurs a row of three pixels by one pixel, all of it out of focus, through the renderer and through the
// frame pipeline, and checks the results.

#include <cstdint>
#include <cstdio>

#include "FocusPipeline.h"
#include "FrameBuffer.h"
#include "Kestrel.h"
#include "ThreadPoolContext.h"

using Pixel8 = PILib::Pixel<PILib::Channel8>;
using Picture = PILib::SimplePixelBuffer<Pixel8>;

// The mean of three pixels, the edge counted twice: (30 + 30 + 60) / 3, and so on.
bool IsBlurred(const char* by, const Picture& output) {
    const std::uint8_t expected[] = {40, 60, 80};
    for (int x = 0; x < 3; ++x) {
        const Pixel8 actual = output.row(0)[x];
        if (actual == Pixel8(255, expected[x], expected[x], expected[x])) continue;
        std::fprintf(stderr, "%s, pixel %d: expected grey %d, actual ARGB(%d, %d, %d, %d)\n", by, x,
                     expected[x], actual.alpha, actual.red, actual.green, actual.blue);
        return false;
    }
    return true;
}

int main() {
    const Picture input(3, 1);
    const Picture control(3, 1);
    const PILib::ChannelBuf<PILib::Channel8> map(3, 1);
    const std::uint8_t greys[] = {30, 60, 90};
    for (int x = 0; x < 3; ++x) {
        input.row(0)[x] = Pixel8(255, greys[x], greys[x], greys[x]);
        control.row(0)[x] = Pixel8(255, 255, 255, 255);
        map.row(0)[x] = 255;
    }
    PILib::ThreadPoolContext context(2);

    const Picture rendered(3, 1);
    Kestrel(context, rendered, input, map, false, 1.0F, 1.0F);

    const Picture frame(3, 1);
    RenderInputs inputs;
    inputs.maxBlur = 1.0F;
    RenderFrame(context, inputs, {}, frame, input, &control);

    return IsBlurred("Kestrel", rendered) && IsBlurred("RenderFrame", frame) ? 0 : 1;
}
