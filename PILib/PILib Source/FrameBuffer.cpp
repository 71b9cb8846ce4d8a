#include "FrameBuffer.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>

// The members of the templates by family; every instantiation stands at the end of this file.
#include "FrameBufferPaint.ipp"
#include "FrameBufferTransfer.ipp"

namespace PILib {

void FrameBuffer::initialize(int newWidth, int newHeight) {
    deallocate();
    width = newWidth;
    height = newHeight;
    allocate();
}

void FrameBuffer::clear() const {
    if (height <= 0 || data == nullptr) return;
    if (rowPadding == 0) {
        std::memset(data, 0, static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(height));
        return;
    }
    for (int y = 0; y < height; ++y) {
        std::memset(rowAddress(y), 0, static_cast<std::size_t>(rowBytes - rowPadding));
    }
}

void FrameBuffer::allocateRows(int rowAlignment) {
    _Assert(width >= 0 && height >= 0, site::kSizeNotNegative, site::kFrameBufferFile);
    const std::int64_t used = std::int64_t{width} * elementSize();
    const std::int64_t padded = (used + rowAlignment - 1) / rowAlignment * rowAlignment;
    constexpr auto kMaxBytes = static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max());
    if (padded > std::numeric_limits<std::int32_t>::max() ||
        static_cast<std::uint64_t>(padded) * static_cast<std::uint64_t>(height) > kMaxBytes) {
        throw std::bad_alloc();
    }
    data = new unsigned char[static_cast<std::size_t>(padded) * static_cast<std::size_t>(height)];
    rowBytes = static_cast<std::int32_t>(padded);
    rowPadding = static_cast<std::int32_t>(padded - used);
}

void FrameBuffer::freeRows() {
    delete[] data;
    data = nullptr;
}

void FrameBuffer::assertCoveredBy(const FrameBuffer& source) const {
    _Assert(source.width >= width && source.height >= height, site::kSourceCoversDestination,
            site::kFrameBufferFile);
}

unsigned char* PixelBuffer::newPremultRowCache() const {
    const auto longest = static_cast<std::size_t>(std::max({width, height, 0}));
    return new unsigned char[longest * static_cast<std::size_t>(elementSize())];
}

unsigned char* ChannelBuffer::newPremultRowCache() const {
    return nullptr;
}

template <class T>
int FrameBuf<T>::elementKey() const {
    return kElementKey<T>;
}

template <class T>
const std::type_info& FrameBuf<T>::elementType() const {
    return typeid(Element);
}

template <class T>
int FrameBuf<T>::elementSize() const {
    return static_cast<int>(sizeof(Element));
}

template <class T>
ChannelBuffer* FrameBuf<T>::newChannelBuffer(int newWidth, int newHeight) const {
    return new ChannelBuf<ChannelType>(newWidth, newHeight);
}

template <class P>
FrameBuffer* PixelBuf<P>::newFrameBuffer(int newWidth, int newHeight) const {
    return newPixelBuffer(newWidth, newHeight);
}

template <class P>
PixelBuffer* PixelBuf<P>::newPixelBuffer(int newWidth, int newHeight) const {
    return new SimplePixelBuffer<P>(newWidth, newHeight);
}

template <class P>
bool PixelBuf<P>::isMultiChannel() const {
    return true;
}

template <class P>
int PixelBuf<P>::channelSize() const {
    return static_cast<int>(sizeof(typename P::Type));
}

template <class C>
ChannelBuf<C>::ChannelBuf(int width, int height) {
    this->initialize(width, height);
}

template <class C>
ChannelBuf<C>::~ChannelBuf() {
    this->freeRows();
}

template <class C>
FrameBuffer* ChannelBuf<C>::newFrameBuffer(int newWidth, int newHeight) const {
    return this->newChannelBuffer(newWidth, newHeight);
}

template <class C>
bool ChannelBuf<C>::isMultiChannel() const {
    return false;
}

template <class C>
int ChannelBuf<C>::channelSize() const {
    return static_cast<int>(sizeof(typename C::Type));
}

template <class C>
void ChannelBuf<C>::allocate() {
    _Assert(this->data == nullptr, site::kAllocateChannel, site::kFrameBufferFile);
    this->allocateRows(4);
}

template <class C>
void ChannelBuf<C>::deallocate() {
    this->freeRows();
}

template <class P>
SimplePixelBuffer<P>::SimplePixelBuffer(int width, int height) {
    this->width = width;
    this->height = height;
    SimplePixelBuffer::allocate();
}

template <class P>
SimplePixelBuffer<P>::~SimplePixelBuffer() {
    this->freeRows();
}

template <class P>
void SimplePixelBuffer<P>::allocate() {
    _Assert(this->data == nullptr, site::kAllocatePixel, site::kFrameBufferFile);
    this->allocateRows(1);
}

template <class P>
void SimplePixelBuffer<P>::deallocate() {
    this->freeRows();
}

template class FrameBuf<Channel8>;
template class FrameBuf<Channel15>;
template class FrameBuf<Channel16>;
template class FrameBuf<Channel32>;
template class FrameBuf<Channel32f>;
template class FrameBuf<Pixel<Channel8>>;
template class FrameBuf<Pixel<Channel15>>;
template class FrameBuf<Pixel<Channel16>>;
template class FrameBuf<Pixel<Channel32>>;
template class FrameBuf<Pixel<Channel32f>>;
template class PixelBuf<Pixel<Channel8>>;
template class PixelBuf<Pixel<Channel15>>;
template class PixelBuf<Pixel<Channel16>>;
template class PixelBuf<Pixel<Channel32>>;
template class PixelBuf<Pixel<Channel32f>>;
template class ChannelBuf<Channel8>;
template class ChannelBuf<Channel15>;
template class ChannelBuf<Channel16>;
template class ChannelBuf<Channel32>;
template class ChannelBuf<Channel32f>;
template class SimplePixelBuffer<Pixel<Channel8>>;
template class SimplePixelBuffer<Pixel<Channel15>>;
template class SimplePixelBuffer<Pixel<Channel16>>;
template class SimplePixelBuffer<Pixel<Channel32>>;
template class SimplePixelBuffer<Pixel<Channel32f>>;

namespace detail {

template void BlendRows(const PixelBuf<Pixel<Channel8>>&, const PixelBuf<Pixel<Channel8>>&, std::int32_t,
                        SimdLevel);
template void BlendRows(const PixelBuf<Pixel<Channel15>>&, const PixelBuf<Pixel<Channel15>>&, std::int32_t,
                        SimdLevel);

}  // namespace detail

}  // namespace PILib
