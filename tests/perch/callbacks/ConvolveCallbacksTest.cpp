// An effect that has the host convolve its input: kernels of every element type and shape against direct
// sums, at both depths, and the kernels of the host itself.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "ScriptedEffect.h"
#include "WorldPictures.h"

namespace perch::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class P>
struct ConvolveCallbacksTest : testing::Test {
    static constexpr int kWidth = 13;
    static constexpr int kHeight = 9;
    ScriptedEffect script;
    World source = noise<P>(kWidth, kHeight, 5);
    std::vector<std::string> found;

    template <typename F>
    RenderedFrame render(const F& body) {
        script.declareFlags(PF_OutFlag_DEEP_COLOR_AWARE);
        script.on(PF_Cmd_RENDER, body);
        Effect effect(ScriptedEffect::enter, {}, strictOptions());
        FrameRequest request;
        request.input = &source;
        RenderedFrame frame = Sequence(effect).render(request);
        found = faults(effect);
        return frame;
    }
    // A channel of the source as a number; 0 off its edges.
    std::int64_t channel(int x, int y, int c) {
        if (x < 0 || y < 0 || x >= kWidth || y >= kHeight) return 0;
        const P& p = at<P>(source, x, y);
        return c == 0 ? p.alpha : c == 1 ? p.red : c == 2 ? p.green : p.blue;
    }
};

using Depths = testing::Types<PF_Pixel, PF_Pixel16>;
TYPED_TEST_SUITE(ConvolveCallbacksTest, Depths);

// Kernels as numbers; stored in the flagged type, where the mean element stands for one.
struct KernelCase {
    const char* name;
    PF_KernelFlags flags;
    A_long size;
    std::vector<std::int64_t> elements;
};

const KernelCase kKernels[] = {
    {"identity", 0, 3, {0, 0, 0, 0, 9 * 256, 0, 0, 0, 0}},
    {"sharpened", 0, 3, {-512, -512, -512, -512, 17 * 256 + 2048, -512, -512, -512, -512}},
    {"line of chars", PF_KernelFlag_1D | PF_KernelFlag_USE_CHAR, 3, {255, 120, 10}},
    {"column of fixeds",
     PF_KernelFlag_1D | PF_KernelFlag_VERTICAL | PF_KernelFlag_USE_FIXED,
     5,
     {65536, 0, 30000, 7, 200000}},
    {"even", PF_KernelFlag_USE_FIXED, 2, {65536, 1000, 65536, 131072}},
};

std::vector<std::byte> stored(const KernelCase& kernel) {
    const bool isChar = (kernel.flags & PF_KernelFlag_USE_UNDEFINED) == PF_KernelFlag_USE_CHAR;
    std::vector<std::byte> bytes(kernel.elements.size() * (isChar ? 1 : sizeof(A_long)));
    for (std::size_t i = 0; i < kernel.elements.size(); ++i) {
        if (isChar) {
            bytes[i] = static_cast<std::byte>(kernel.elements[i]);
        } else {
            reinterpret_cast<A_long*>(bytes.data())[i] = static_cast<A_long>(kernel.elements[i]);
        }
    }
    return bytes;
}

double unityOf(const KernelCase& kernel) {
    const PF_KernelFlags type = kernel.flags & PF_KernelFlag_USE_UNDEFINED;
    const double one = type == PF_KernelFlag_USE_CHAR ? 255 : type == PF_KernelFlag_USE_FIXED ? 65536 : 256;
    return one * static_cast<double>(kernel.elements.size());
}

TYPED_TEST(ConvolveCallbacksTest, EveryPixelIsTheWeightedSumOfItsNeighbours) {
    for (const KernelCase& kernel : kKernels) {
        std::vector<std::byte> bytes = stored(kernel);
        const RenderedFrame frame = this->render([&](const EffectCall& call) {
            return call.utilities().convolve(call.in->effect_ref, &call.params[0]->u.ld, nullptr,
                                             kernel.flags, kernel.size, bytes.data(), bytes.data(),
                                             bytes.data(), bytes.data(), call.output);
        });
        EXPECT_THAT(this->found, IsEmpty());
        const bool isLine = (kernel.flags & PF_KernelFlag_1D) != 0;
        const bool isColumn = isLine && (kernel.flags & PF_KernelFlag_VERTICAL) != 0;
        const int columns = isColumn ? 1 : kernel.size;
        const int rows = isLine && !isColumn ? 1 : kernel.size;
        for (int y = 0; y < this->kHeight; ++y) {
            for (int x = 0; x < this->kWidth; ++x) {
                for (int c = 0; c < 4; ++c) {
                    double sum = 0;
                    for (int row = 0; row < rows; ++row)
                        for (int column = 0; column < columns; ++column)
                            sum += static_cast<double>(
                                kernel.elements[static_cast<std::size_t>(row * columns + column)] *
                                this->channel(x + column - columns / 2, y + row - rows / 2, c));
                    const double white = kWhite<TypeParam>;
                    const double want = std::clamp(std::floor(sum / unityOf(kernel) + 0.5), 0.0, white);
                    const TypeParam& p = rowOf<TypeParam>(frame.picture.record(), y)[x];
                    const double given = c == 0 ? p.alpha : c == 1 ? p.red : c == 2 ? p.green : p.blue;
                    ASSERT_EQ(given, want) << kernel.name << " at " << x << ", " << y << ", channel " << c;
                }
            }
        }
    }
}

TYPED_TEST(ConvolveCallbacksTest, AreaAloneIsWrittenAndEachChannelHasItsKernel) {
    A_long none[1] = {0};
    A_long whole[1] = {256};
    const PF_Rect area{2, 3, 5, 6};
    const RenderedFrame frame = this->render([&](const EffectCall& call) {
        return call.utilities().convolve(call.in->effect_ref, &call.params[0]->u.ld, &area, PF_KernelFlag_1D,
                                         1, whole, none, whole, none, call.output);
    });
    for (int y = 0; y < this->kHeight; ++y) {
        for (int x = 0; x < this->kWidth; ++x) {
            const bool isInside = x >= 2 && x < 5 && y >= 3 && y < 6;
            const TypeParam& p = rowOf<TypeParam>(frame.picture.record(), y)[x];
            EXPECT_EQ(p.alpha, isInside ? this->channel(x, y, 0) : 0);
            EXPECT_EQ(p.red, 0);
            EXPECT_EQ(p.green, isInside ? this->channel(x, y, 2) : 0);
            EXPECT_EQ(p.blue, 0);
        }
    }
}

TYPED_TEST(ConvolveCallbacksTest, CallsThatCannotBeServedAreRefused) {
    this->render([&](const EffectCall& call) {
        A_long kernel[9] = {};
        const auto convolve = [&](PF_EffectWorld* from, A_long size, PF_KernelFlags flags, void* elements) {
            return call.utilities().convolve(call.in->effect_ref, from, nullptr, flags, size, kernel, kernel,
                                             elements, kernel, call.output);
        };
        PF_EffectWorld* const input = &call.params[0]->u.ld;
        EXPECT_EQ(convolve(call.output, 3, 0, kernel), PF_Err_BAD_CALLBACK_PARAM);
        EXPECT_EQ(convolve(input, 0, 0, kernel), PF_Err_BAD_CALLBACK_PARAM);
        EXPECT_EQ(convolve(input, 1 << 30, 0, kernel), PF_Err_BAD_CALLBACK_PARAM);
        EXPECT_EQ(convolve(input, 3, PF_KernelFlag_USE_UNDEFINED, kernel), PF_Err_BAD_CALLBACK_PARAM);
        EXPECT_EQ(convolve(input, 3, 0, nullptr), PF_Err_BAD_CALLBACK_PARAM);
        return PF_Err_NONE;
    });
}

TYPED_TEST(ConvolveCallbacksTest, GaussianKernelsHaveTheirBellAndTheirSum) {
    this->render([&](const EffectCall& call) {
        const double radius = 2.5;
        A_long diameter = 0;
        A_long line[7] = {};
        EXPECT_EQ(call.utilities().gaussian_kernel(call.in->effect_ref, radius,
                                                   PF_KernelFlag_1D | PF_KernelFlag_USE_FIXED, 1.0, &diameter,
                                                   line),
                  0);
        EXPECT_EQ(diameter, 7);
        for (int i = 0; i < 7; ++i) {
            const double distance = (i - 3) / (radius / 3);
            EXPECT_EQ(line[i], std::lround(65536 * std::exp(-distance * distance / 2))) << i;
        }
        for (const double multiplier : {1.0, 0.5}) {
            A_long square[49] = {};
            EXPECT_EQ(call.utilities().gaussian_kernel(call.in->effect_ref, radius, PF_KernelFlag_NORMALIZED,
                                                       multiplier, &diameter, square),
                      0);
            std::int64_t sum = 0;
            for (const A_long element : square)
                sum += element;
            EXPECT_EQ(sum, std::lround(49 * 256 * multiplier));
            EXPECT_EQ(square[0], square[48]);
            EXPECT_EQ(square[3], square[21]);
        }
        A_long one = 0;
        EXPECT_EQ(call.utilities().gaussian_kernel(call.in->effect_ref, 0, 0, 1, &diameter, &one), 0);
        EXPECT_EQ(diameter, 1);
        EXPECT_EQ(one, 256);
        for (const double wrong : {-1.0, std::nan(""), 1e9}) {
            EXPECT_NE(call.utilities().gaussian_kernel(call.in->effect_ref, wrong, 0, 1, &diameter, &one), 0);
        }
        return PF_Err_NONE;
    });
}

TYPED_TEST(ConvolveCallbacksTest, NormalisedGaussianKeepsAFlatPicture) {
    this->source = filled<TypeParam>(this->kWidth, this->kHeight, grey<TypeParam>(kWhite<TypeParam>, 77));
    const RenderedFrame frame = this->render([&](const EffectCall& call) {
        A_long diameter = 0;
        A_long kernel[25] = {};
        call.utilities().gaussian_kernel(call.in->effect_ref, 2, PF_KernelFlag_NORMALIZED, 1, &diameter,
                                         kernel);
        return call.utilities().convolve(call.in->effect_ref, &call.params[0]->u.ld, nullptr,
                                         PF_KernelFlag_NORMALIZED, diameter, kernel, kernel, kernel, kernel,
                                         call.output);
    });
    for (int y = 2; y < this->kHeight - 2; ++y)
        for (int x = 2; x < this->kWidth - 2; ++x)
            EXPECT_TRUE(
                same(rowOf<TypeParam>(frame.picture.record(), y)[x], grey<TypeParam>(kWhite<TypeParam>, 77)));
}

}  // namespace
}  // namespace perch::test
