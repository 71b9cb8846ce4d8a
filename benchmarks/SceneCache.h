// The scene that was rendered last, kept because painting a large one takes longer than rendering it and the
// repetitions of a benchmark come one after another.
#pragma once

#include <memory>

#include "Cases.h"
#include "FrameBuffer.h"
#include "Scenes.h"

namespace bench {

template <class C>
struct Scene {
    Scene(Size size, Matte matte)
        : size(size), matte(matte), beauty(size.width, size.height), control(size.width, size.height) {
        PaintBeauty(beauty);
        PaintControl(control, matte);
    }

    const Size size;
    const Matte matte;
    PILib::SimplePixelBuffer<PILib::Pixel<C>> beauty;
    PILib::SimplePixelBuffer<PILib::Pixel<C>> control;
};

// Valid until the next call for the same depth. For one thread.
template <class C>
const Scene<C>& SceneOf(Size size, Matte matte) {
    static std::unique_ptr<const Scene<C>> last;
    const bool isLast = last != nullptr && last->size.width == size.width &&
                        last->size.height == size.height && last->matte == matte;
    if (!isLast) {
        last.reset();
        last = std::make_unique<const Scene<C>>(size, matte);
    }
    return *last;
}

}  // namespace bench
