// Renders one 3840 x 2160 frame of radius 100 and prints the process's peak memory beside what its tables and
// pictures take. Fails above 1.2 times that: another large allocation has come in, or cells have grown.
//
//   frame-memory coarse|fine 8|16

#include <sys/resource.h>

#include <cstddef>
#include <cstdio>
#include <string_view>

#include "FocusPipeline.h"
#include "Scenes.h"
#include "ThreadPoolContext.h"

namespace {

using PILib::Pixel;

constexpr int kWidth = 3840;
constexpr int kHeight = 2160;
constexpr int kRadius = 100;
constexpr double kLargestRatio = 1.2;

template <class C>
using Picture = PILib::SimplePixelBuffer<Pixel<C>>;

template <class C>
void Render(PILib::PIContext& context, const Picture<C>& picture, bool fine) {
    const Picture<C> control(kWidth, kHeight);
    const Picture<C> output(kWidth, kHeight);
    bench::PaintControl(control, bench::Matte::kObjects);
    RenderInputs inputs;
    inputs.blurType = fine ? 1 : 0;
    inputs.maxBlur = kRadius;
    RenderFrame(context, inputs, {}, output, picture, &control);
}

// Of picture, control, output and the channel of the map.
template <class C>
std::size_t PictureBytes() {
    return std::size_t{kWidth} * kHeight * (3 * sizeof(Pixel<C>) + sizeof(typename C::Type));
}

// Of four tables, whose cells have 32 bits except those of a 16-bit tent.
template <class C>
std::size_t TableBytes(bool fine) {
    constexpr std::size_t kExtra = 2;  // pixels of a tent's border beside the radius and one
    const std::size_t border = kRadius + 1 + (fine ? kExtra : 0);
    const std::size_t cellBytes = fine && sizeof(typename C::Type) > 1 ? 8 : 4;
    return 4 * cellBytes * (kWidth + 2 * border) * (kHeight + 2 * border);
}

std::size_t PeakBytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

// Returns the program's exit code.
template <class C>
int Measure(bool fine) {
    const Picture<C> picture(kWidth, kHeight);
    bench::PaintBeauty(picture);
    PILib::ThreadPoolContext context;
    Render(context, picture, fine);
    const auto peak = static_cast<double>(PeakBytes());

    const auto pictures = static_cast<double>(PictureBytes<C>());
    const auto tables = static_cast<double>(TableBytes<C>(fine));
    const double ratio = peak / (tables + pictures);
    std::printf("tables %.1f MB, pictures %.1f MB, peak %.1f MB: %.3f times, at most %.1f allowed\n",
                tables / 1e6, pictures / 1e6, peak / 1e6, ratio, kLargestRatio);
    return ratio <= kLargestRatio ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view blur = argc == 3 ? argv[1] : "";
    const std::string_view depth = argc == 3 ? argv[2] : "";
    if ((blur != "coarse" && blur != "fine") || (depth != "8" && depth != "16")) {
        std::fputs("usage: frame-memory coarse|fine 8|16\n", stderr);
        return 2;
    }
    const bool fine = blur == "fine";
    return depth == "8" ? Measure<PILib::Channel8>(fine) : Measure<PILib::Channel15>(fine);
}
