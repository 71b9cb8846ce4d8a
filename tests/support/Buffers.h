// Buffers for tests: filled with noise, compared element by element, and with guard bytes around their rows.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <random>
#include <type_traits>
#include <vector>

#include "FrameBuffer.h"

namespace PILib {

// How a failed expectation shows a pixel.
template <class C>
void PrintTo(const Pixel<C>& p, std::ostream* out) {
    *out << "ARGB(" << +p.alpha << ", " << +p.red << ", " << +p.green << ", " << +p.blue << ")";
}

}  // namespace PILib

enum class AlphaMode { kAny, kZero, kFull, kMixed };  // kMixed: a third zero, a third full

// One component from 0 to full intensity inclusive; the same on every machine for the same generator.
template <class C>
typename C::Type RandomComponent(std::mt19937& random) {
    if constexpr (std::is_same_v<C, PILib::Channel32f>) {
        return static_cast<float>(random() % 4097) / 4096.0F;
    } else {
        return static_cast<typename C::Type>(random() % (static_cast<std::uint32_t>(C::kOne) + 1));
    }
}

template <class C>
typename C::Type RandomAlpha(std::mt19937& random, AlphaMode mode) {
    constexpr auto kFull = static_cast<typename C::Type>(C::kFloatOne);
    if (mode == AlphaMode::kMixed) {
        const AlphaMode modes[] = {AlphaMode::kAny, AlphaMode::kZero, AlphaMode::kFull};
        mode = modes[random() % 3];
    }
    if (mode == AlphaMode::kZero) return C::kZeroValue;
    return mode == AlphaMode::kFull ? kFull : RandomComponent<C>(random);
}

template <class C>
void FillRandom(const PILib::FrameBuf<PILib::Pixel<C>>& buffer, std::mt19937& random,
                AlphaMode mode = AlphaMode::kMixed) {
    for (int y = 0; y < buffer.height; ++y) {
        for (auto& pixel : buffer.row(y)) {
            pixel.alpha = RandomAlpha<C>(random, mode);
            pixel.red = RandomComponent<C>(random);
            pixel.green = RandomComponent<C>(random);
            pixel.blue = RandomComponent<C>(random);
        }
    }
}

template <class C>
void FillRandom(const PILib::FrameBuf<C>& buffer, std::mt19937& random, AlphaMode mode = AlphaMode::kMixed) {
    for (int y = 0; y < buffer.height; ++y) {
        for (auto& value : buffer.row(y))
            value = RandomAlpha<C>(random, mode);
    }
}

// Every element of a buffer, rows top to bottom.
template <class T>
std::vector<typename PILib::FrameBuf<T>::Element> ElementsOf(const PILib::FrameBuf<T>& buffer) {
    std::vector<typename PILib::FrameBuf<T>::Element> elements;
    for (int y = 0; y < buffer.height; ++y)
        elements.insert(elements.end(), buffer.row(y).begin(), buffer.row(y).end());
    return elements;
}

// Compares every element with expected(x, y); a failure names the first that differs.
template <class T, class Expected>
testing::AssertionResult ElementsAre(const PILib::FrameBuf<T>& actual, Expected expected) {
    for (int y = 0; y < actual.height; ++y) {
        for (int x = 0; x < actual.width; ++x) {
            const auto want = static_cast<typename PILib::FrameBuf<T>::Element>(expected(x, y));
            if (actual.row(y)[x] == want) continue;
            return testing::AssertionFailure() << actual.width << " x " << actual.height << ", element (" << x
                                               << ", " << y << "): expected " << testing::PrintToString(want)
                                               << ", actual " << testing::PrintToString(actual.row(y)[x]);
        }
    }
    return testing::AssertionSuccess();
}

template <class T>
testing::AssertionResult SameElements(const PILib::FrameBuf<T>& expected, const PILib::FrameBuf<T>& actual) {
    if (expected.width != actual.width || expected.height != actual.height) {
        return testing::AssertionFailure() << "expected " << expected.width << " x " << expected.height
                                           << ", actual " << actual.width << " x " << actual.height;
    }
    return ElementsAre(actual, [&](int x, int y) { return expected.row(y)[x]; });
}

// Guard bytes in the gaps at the ends of the rows.
inline constexpr unsigned char kGuard = 0xA5;

inline void FillGaps(const PILib::FrameBuffer& buffer) {
    for (int y = 0; y < buffer.height; ++y) {
        unsigned char* const next = buffer.data + static_cast<std::ptrdiff_t>(y + 1) * buffer.rowBytes;
        std::memset(next - buffer.rowPadding, kGuard, static_cast<std::size_t>(buffer.rowPadding));
    }
}

inline testing::AssertionResult GapsIntact(const PILib::FrameBuffer& buffer) {
    for (int y = 0; y < buffer.height; ++y) {
        const unsigned char* const next = buffer.data + static_cast<std::ptrdiff_t>(y + 1) * buffer.rowBytes;
        for (int b = -buffer.rowPadding; b < 0; ++b) {
            if (next[b] == kGuard) continue;
            return testing::AssertionFailure()
                   << "row " << y << ", byte " << b << " before its end: " << +next[b];
        }
    }
    return testing::AssertionSuccess();
}

// A pixel buffer whose rows end in a gap of `padding` guard bytes (a multiple of the pixel's alignment), with
// guard bytes before the first row and after the last too.
template <class P>
class PaddedPixelBuffer : public PILib::PixelBuf<P> {
public:
    PaddedPixelBuffer(int width, int height, int padding) {
        this->width = width;
        this->height = height;
        this->rowPadding = padding;
        this->rowBytes = width * static_cast<int>(sizeof(P)) + padding;
        PaddedPixelBuffer::allocate();
    }

    void allocate() override {
        bytes.assign(static_cast<std::size_t>(this->rowBytes * this->height) + 2 * kMargin, kGuard);
        this->data = bytes.data() + kMargin;
    }
    void deallocate() override { this->data = nullptr; }

    testing::AssertionResult guardsIntact() const {
        for (std::size_t b = 0; b < kMargin; ++b) {
            if (bytes[b] != kGuard) return testing::AssertionFailure() << "written before row 0";
            if (bytes[bytes.size() - 1 - b] != kGuard) {
                return testing::AssertionFailure() << "written after the last row";
            }
        }
        return GapsIntact(*this);
    }

private:
    static constexpr std::size_t kMargin = 64;
    std::vector<unsigned char> bytes;
};
