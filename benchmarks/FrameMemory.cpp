// Renders one 3840 x 2160 frame and prints the process's peak memory beside what tables and pictures take:
//   frame-memory coarse|fine 8|16
#include <sys/resource.h>

#include <cstdio>
#include <cstring>

#include "FocusPipeline.h"
#include "Scenes.h"
#include "ThreadPoolContext.h"

namespace {

constexpr int kWidth = 3840;
constexpr int kHeight = 2160;
constexpr int kRadius = 50;

template <class C>
void Render(bool fine) {
    using P = PILib::Pixel<C>;
    const PILib::SimplePixelBuffer<P> picture(kWidth, kHeight);
    const PILib::SimplePixelBuffer<P> control(kWidth, kHeight);
    const PILib::SimplePixelBuffer<P> output(kWidth, kHeight);
    bench::PaintBeauty<C>(picture);
    bench::PaintControl<C>(control, bench::Matte::Objects);
    RenderInputs inputs;
    inputs.blurType = fine ? 1 : 0;
    inputs.maxBlur = kRadius;
    PILib::ThreadPoolContext context;
    RenderFrame(context, inputs, {}, output, picture, &control);

    const double pixels = static_cast<double>(kWidth) * kHeight;
    const double border = 2.0 * (kRadius + (fine ? 3 : 1));
    const double tables = (kWidth + border) * (kHeight + border) * (fine ? 32 : 16);
    const double pictures = pixels * (3.0 * sizeof(P) + sizeof(typename C::Type));
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const double peak = static_cast<double>(usage.ru_maxrss) * 1024;
    std::printf("%s, %d bits: tables %.0f MB, pictures and map %.0f MB, peak %.0f MB: %.2f times\n",
                fine ? "Fine" : "Coarse", C::kOne == 255 ? 8 : 16, tables / 1e6, pictures / 1e6, peak / 1e6,
                peak / (tables + pictures));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: frame-memory coarse|fine 8|16\n", stderr);
        return 2;
    }
    const bool fine = std::strcmp(argv[1], "fine") == 0;
    if (std::strcmp(argv[2], "8") == 0) {
        Render<PILib::Channel8>(fine);
    } else {
        Render<PILib::Channel15>(fine);
    }
    return 0;
}
