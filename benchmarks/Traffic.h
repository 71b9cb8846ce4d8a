// Bytes that a render cannot but move between the processor and memory once its buffers outgrow the caches.
// The report turns them into the time that the machine's copy takes for as many.
#pragma once

#include <cstddef>
#include <cstdint>

#include "FrameBuffer.h"
#include "PIContext.h"
#include "SATBlur.h"
#include "SATExactTentBlur.h"

namespace bench {

template <class T>
std::size_t BytesOf(const PILib::FrameBuf<T>& buffer) {
    return static_cast<std::size_t>(buffer.rowBytes) * static_cast<std::size_t>(buffer.height);
}

// Of the four tables that the blur has allocated.
template <class P>
std::size_t TableBytes(const PILib::SATBlur<P>& blur, std::size_t cellBytes) {
    return 4 * cellBytes * static_cast<std::size_t>(blur.tableWidth) *
           static_cast<std::size_t>(blur.tableHeight);
}

template <class P>
std::size_t TableBytes(const PILib::SATBoxBlur<P>& blur) {
    return TableBytes(blur, sizeof(std::uint32_t));
}

template <class P>
std::size_t TableBytes(const PILib::SATExactTentBlur<P>& blur) {
    return TableBytes(blur, blur.tables.index() == 0 ? sizeof(std::uint32_t) : sizeof(std::uint64_t));
}

// Of the tables of a blur with that largest radius.
template <class P>
std::size_t TableBytes(PILib::PIContext& context, const PILib::PixelBuf<P>& picture, bool fine, int radius) {
    if (fine) return TableBytes(PILib::SATExactTentBlur<P>(context, picture, radius, radius));
    return TableBytes(PILib::SATBoxBlur<P>(context, picture, radius, radius));
}

// Of a frame: input and control are read, the map is written and read, the tables are written and read, and
// the output is written.
template <class P>
std::size_t FrameTraffic(PILib::PIContext& context, const PILib::PixelBuf<P>& picture, bool fine,
                         int radius) {
    const auto pixels = static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
    return 3 * pixels * sizeof(P) + 2 * pixels * sizeof(typename P::Type) +
           2 * TableBytes(context, picture, fine, radius);
}

}  // namespace bench
