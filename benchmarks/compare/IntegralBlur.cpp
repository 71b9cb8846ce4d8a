// The blur that a user of OpenCV would write: one integral image of four interleaved channels, the picture's
// edge replicated around it, and per pixel the mean over the whole radius below and the one above, mixed by
// the fraction. Colours are not premultiplied. Prints the milliseconds of each run on one thread, after one
// that is not timed; all buffers are kept.
//
//   integral-blur WIDTH HEIGHT RADIUS 8|16 RUNS

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <opencv2/imgproc.hpp>
#include <string_view>
#include <type_traits>

#include "SceneCache.h"

namespace {

using PILib::Channel8;

constexpr int kChannels = 4;

// The sums of 8-bit pictures may wrap; their differences over a box are right all the same.
template <class C>
using Sum = std::conditional_t<std::is_same_v<C, Channel8>, std::uint32_t, double>;

template <class C>
constexpr int kPictureType = std::is_same_v<C, Channel8> ? CV_8UC4 : CV_16UC4;

template <class C>
class IntegralBlur {
public:
    using Value = typename C::Type;

    IntegralBlur(const bench::Scene<C>& scene, int largest)
        : map(scene.size.width, scene.size.height),
          picture(scene.size.height, scene.size.width, kPictureType<C>, scene.beauty.data,
                  static_cast<std::size_t>(scene.beauty.rowBytes)),
          output(picture.size(), picture.type()),
          largest(largest) {
        bench::PaintMatte(map, scene.matte);
    }

    void render() {
        const int border = largest + 1;
        cv::copyMakeBorder(picture, bordered, border, border, border, border, cv::BORDER_REPLICATE);
        cv::integral(bordered, sums, std::is_same_v<C, Channel8> ? CV_32S : CV_64F);
        for (int y = 0; y < picture.rows; ++y)
            renderRow(y);
    }

private:
    void renderRow(int y) {
        const auto row = map.row(y);
        Value* const out = output.ptr<Value>(y);
        const float perCode = static_cast<float>(largest) / static_cast<float>(C::kOne);
        for (int x = 0; x < picture.cols; ++x) {
            const float radius = static_cast<float>(row[x]) * perCode;
            const int whole = static_cast<int>(radius);
            const float fraction = radius - static_cast<float>(whole);
            float below[kChannels];
            float above[kChannels];
            readMean(x, y, whole, below);
            readMean(x, y, whole + 1, above);
            for (int c = 0; c < kChannels; ++c) {
                const float mean = below[c] + fraction * (above[c] - below[c]);
                out[kChannels * x + c] = static_cast<Value>(mean + 0.5F);
            }
        }
    }

    // Of at most one past the largest radius, which the border covers.
    void readMean(int x, int y, int radius, float* mean) const {
        const int centreX = x + largest + 1;
        const int centreY = y + largest + 1;
        const auto* const top = sums.ptr<Sum<C>>(centreY - radius);
        const auto* const bottom = sums.ptr<Sum<C>>(centreY + radius + 1);
        const int left = kChannels * (centreX - radius);
        const int right = kChannels * (centreX + radius + 1);
        const int side = 2 * radius + 1;
        const float scale = 1.0F / static_cast<float>(side * side);
        for (int c = 0; c < kChannels; ++c) {
            const Sum<C> sum = bottom[right + c] - bottom[left + c] - top[right + c] + top[left + c];
            if constexpr (std::is_same_v<C, Channel8>)
                mean[c] = static_cast<float>(static_cast<std::int32_t>(sum)) * scale;
            else
                mean[c] = static_cast<float>(sum) * scale;
        }
    }

    PILib::ChannelBuf<C> map;
    cv::Mat picture;
    cv::Mat output;
    cv::Mat bordered;
    cv::Mat sums;
    int largest;
};

template <class C>
void PrintTimes(bench::Size size, int radius, int runs) {
    const bench::Scene<C> scene(size, bench::Matte::kObjects);
    IntegralBlur<C> blur(scene, radius);
    blur.render();
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        blur.render();
        const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
        std::printf("%.3f\n", elapsed.count());
    }
}

}  // namespace

int main(int argc, char** argv) {
    const auto number = [&](int i) { return argc == 6 ? std::atoi(argv[i]) : 0; };
    const bench::Size size = {number(1), number(2)};
    const int radius = number(3);
    const std::string_view depth = argc == 6 ? argv[4] : "";
    const int runs = number(5);
    const bool isKnownDepth = depth == "8" || depth == "16";
    if (size.width < 1 || size.height < 1 || radius < 1 || !isKnownDepth || runs < 1) {
        std::fputs("usage: integral-blur WIDTH HEIGHT RADIUS 8|16 RUNS\n", stderr);
        return 2;
    }
    cv::setNumThreads(1);
    if (depth == "8")
        PrintTimes<Channel8>(size, radius, runs);
    else
        PrintTimes<PILib::Channel15>(size, radius, runs);
    return 0;
}
