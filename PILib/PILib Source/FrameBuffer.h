// The family of image buffers.
//
//   FrameBuffer                     size, rows and memory; knows no element
//   ├─ PixelBuffer                  interface: four channels per element
//   ├─ ChannelBuffer                interface: one channel per element
//   └─ FrameBuf<T>                  typed rows; T is a channel type or a Pixel of one
//      ├─ PixelBuf<P>               also a PixelBuffer; subclasses supply the memory
//      │  └─ SimplePixelBuffer<P>   owns packed rows
//      └─ ChannelBuf<C>             also a ChannelBuffer; rows padded to 4 bytes
//
// Element (x, y) is at data + y * rowBytes + x * elementSize(); sizes are in elements, strides in bytes. A
// buffer is sized once, by its constructor or initialize(). Operations that write pixels are const: a buffer
// is a handle whose size and memory are fixed, its pixels are not part of its state. Factories return objects
// that the caller owns. No locks: threads may write disjoint rows at once; whole-plane operations and sizing
// belong to one thread.
//
// Generic operations take the interface classes and check the concrete class of their argument; a transfer
// never converts between depths. A wrong class is std::bad_cast, or a failed assertion where the operation
// says so; nothing is written before the check. A source must cover the destination, or an assertion fails.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <typeinfo>

#include "AssertSites.h"
#include "CompOver.h"
#include "Errors.h"
#include "Geometry.h"
#include "PIContext.h"
#include "Pixel.h"

namespace PILib {

class ChannelBuffer;
template <class C>
class ChannelBuf;

// Channels of a pixel to copy; any combination.
using ChannelSelector = std::int32_t;
inline constexpr ChannelSelector kSelectAlpha = 1;
inline constexpr ChannelSelector kSelectRed = 2;
inline constexpr ChannelSelector kSelectGreen = 4;
inline constexpr ChannelSelector kSelectBlue = 8;

// The elements of one row. Indexing is checked where PILIB_CHECK_BOUNDS is 1 and costs nothing elsewhere.
template <class E>
class Row {
public:
    Row(E* first, int count) : first(first), count(count) {}

    E& operator[](int x) const {
#if PILIB_CHECK_BOUNDS
        _Assert(x >= 0 && x < count, site::kElementInRow, site::kFrameBufferFile);
#endif
        return first[x];
    }
    E* begin() const {
        return first;
    }
    E* end() const {
        return first + count;
    }
    int size() const {
        return count;
    }

private:
    E* first;
    int count;
};

class FrameBuffer {
public:
    // Slot order is given; append only.
    virtual ~FrameBuffer() = default;
    virtual const std::type_info& elementType() const = 0;
    // Channel buffers 0 to 4, pixel buffers 5 to 9, each in the order Channel8, 15, 16, 32, 32f.
    virtual int elementKey() const = 0;
    virtual bool isMultiChannel() const = 0;
    virtual int elementSize() const = 0;  // bytes
    virtual int channelSize() const = 0;  // bytes
    // Scratch for one row or one column, to be freed with delete[]; null for channel buffers, which need
    // none.
    virtual unsigned char* newPremultRowCache() const = 0;
    virtual FrameBuffer* newFrameBuffer(int width, int height) const = 0;
    virtual ChannelBuffer* newChannelBuffer(int width, int height) const = 0;
    // Copies `source` here, its top-left element to `offset`; what it does not cover becomes zero. Loading a
    // buffer into itself does nothing.
    virtual void load(const FrameBuffer& source, Alignment align) const = 0;
    virtual void load(const FrameBuffer& source, TPoint<int> offset) const = 0;
    // Element (x, y) becomes the source's (y, x); asserts that the source has the same class. In place: does
    // nothing.
    virtual void transpose(const FrameBuffer& source) const = 0;
    virtual void allocate() = 0;
    virtual void deallocate() = 0;

    FrameBuffer(const FrameBuffer&) = delete;
    FrameBuffer& operator=(const FrameBuffer&) = delete;

    // Frees the memory, if any, and allocates for the new size.
    void initialize(int newWidth, int newHeight);

    // Zeroes every element; row padding keeps its bytes.
    void clear() const;

    std::int32_t width = -1;  // elements; -1 until sized
    std::int32_t height = -1;
    unsigned char* data = nullptr;  // first byte of row 0; rows follow top to bottom
    std::int32_t rowBytes = 0;      // from the start of one row to the next
    std::int32_t rowPadding = 0;    // bytes at the end of a row that belong to no element

protected:
    FrameBuffer() = default;

    unsigned char* rowAddress(int y) const {
#if PILIB_CHECK_BOUNDS
        _Assert(y >= 0 && y < height, site::kElementInRow, site::kFrameBufferFile);
#endif
        return data + static_cast<std::ptrdiff_t>(y) * rowBytes;
    }
    // Sets the strides for rows of `width` elements padded to a multiple of `rowAlignment` bytes and
    // allocates.
    void allocateRows(int rowAlignment);
    void freeRows();
    bool hasSizeOf(const FrameBuffer& other) const {
        return width == other.width && height == other.height;
    }
    // Asserts that every (x, y) of this buffer exists in `source`.
    void assertCoveredBy(const FrameBuffer& source) const;
};

class PixelBuffer : public virtual FrameBuffer {
public:
    // Slot order is given; append only. The destructor is declared, here and below, for its place in that
    // order: an implicit one comes last.
    ~PixelBuffer() override = default;
    virtual PixelBuffer* newPixelBuffer(int width, int height) const = 0;
    unsigned char* newPremultRowCache() const override;
    // alpha = channel; colours stay.
    virtual void loadAlpha(const ChannelBuffer& channel) const = 0;
    // An opaque grey picture of the channel.
    virtual void loadARGB(const ChannelBuffer& channel) const = 0;
    // alpha = alpha * mask; colours stay.
    virtual void multiplyAlpha(const ChannelBuffer& mask) const = 0;
    virtual ChannelBuffer* getAlpha() const = 0;
    virtual void loadChans(const PixelBuffer& source, ChannelSelector selector) const = 0;
    // Every pixel becomes the colour with the mask as its alpha: a copy, not a composite.
    virtual void paint(const ChannelBuffer& mask, const Pixel<Channel32f>& colour) const = 0;
    // The colour, with the mask as its alpha, composited over every pixel. The mask has 8 bits or this
    // buffer's depth.
    virtual void overlay(const ChannelBuffer& mask, const Pixel<Channel32f>& colour) const = 0;
    // Fills the part of the area that lies in the buffer, alpha included.
    virtual void paint(Rect area, const Pixel<Channel32f>& colour) const = 0;
    // Sets one pixel; outside the buffer nothing happens.
    virtual void paint(int x, int y, const Pixel<Channel32f>& colour) const = 0;
    // (x, y) must lie in the buffer.
    virtual Pixel<Channel32f> getPixel32f(int x, int y) const = 0;
    // Moves every channel toward `other` by `fraction`: 0 keeps this buffer, 1 loads `other`. Between the two
    // `other` must have the same class and, by assertion, the same size; its pixels are this buffer's own or
    // none of them.
    virtual void blend(PIContext& context, const PixelBuffer& other, float fraction) const = 0;
};

class ChannelBuffer : public virtual FrameBuffer {
public:
    // Slot order is given; append only.
    ~ChannelBuffer() override = default;
    unsigned char* newPremultRowCache() const override;
    // Copies the alpha plane; asserts that the source has this depth and size.
    virtual void loadAlpha(const PixelBuffer& source) const = 0;
};

namespace detail {

template <class C>
inline constexpr int kDepthIndex = std::is_same_v<C, Channel8>    ? 0
                                   : std::is_same_v<C, Channel15> ? 1
                                   : std::is_same_v<C, Channel16> ? 2
                                   : std::is_same_v<C, Channel32> ? 3
                                                                  : 4;

template <class T>
struct ElementTraits {  // a channel type
    using Element = typename T::Type;
    using Channel = T;
    static constexpr int kKey = kDepthIndex<T>;
};

template <class C>
struct ElementTraits<Pixel<C>> {
    using Element = Pixel<C>;
    using Channel = C;
    static constexpr int kKey = 5 + kDepthIndex<C>;
};

}  // namespace detail

// The element key of FrameBuf<T>, for dispatch.
template <class T>
inline constexpr int kElementKey = detail::ElementTraits<T>::kKey;

template <class T>
class FrameBuf : public virtual FrameBuffer {
public:
    using Element = typename detail::ElementTraits<T>::Element;
    using ChannelType = typename detail::ElementTraits<T>::Channel;

    // Slot order is given; append only.
    ~FrameBuf() override = default;
    int elementKey() const override;
    const std::type_info& elementType() const override;
    int elementSize() const override;
    void load(const FrameBuffer& source, TPoint<int> offset) const override;
    void load(const FrameBuffer& source, Alignment align) const override;
    ChannelBuffer* newChannelBuffer(int newWidth, int newHeight) const override;

    Row<Element> row(int y) const { return {reinterpret_cast<Element*>(rowAddress(y)), width}; }
};

template <class P>
class PixelBuf : public FrameBuf<P>, public PixelBuffer {
public:
    using C = typename P::ChannelType;
    using Colour = Pixel<Channel32f>;

    // Slot order is given; append only. A generic operation checks the class and calls the typed one beside
    // it.
    void transpose(const FrameBuffer& source) const override;
    void loadAlpha(const ChannelBuffer& channel) const override;
    virtual void loadAlpha(const ChannelBuf<C>& channel) const;
    void loadARGB(const ChannelBuffer& channel) const override;
    virtual void loadARGB(const ChannelBuf<C>& channel) const;
    void multiplyAlpha(const ChannelBuffer& mask) const override;
    virtual void multiplyAlpha(const ChannelBuf<C>& mask) const;
    ChannelBuffer* getAlpha() const override;
    void loadChans(const PixelBuffer& source, ChannelSelector selector) const override;
    virtual void loadChans(const PixelBuf<P>& source, ChannelSelector selector) const;
    void paint(const ChannelBuffer& mask, const Colour& colour) const override;
    virtual void paint(const ChannelBuf<C>& mask, const Colour& colour) const;
    void overlay(const ChannelBuffer& mask, const Colour& colour) const override;
    virtual void overlayT(const ChannelBuf<C>& mask, const Colour& colour) const;
    virtual void overlay8(const ChannelBuf<Channel8>& mask, const Colour& colour) const;
    void paint(Rect area, const Colour& colour) const override;
    void paint(int x, int y, const Colour& colour) const override;
    Colour getPixel32f(int x, int y) const override;
    void blend(PIContext& context, const PixelBuffer& other, float fraction) const override;
    FrameBuffer* newFrameBuffer(int newWidth, int newHeight) const override;
    PixelBuffer* newPixelBuffer(int newWidth, int newHeight) const override;
    bool isMultiChannel() const override;
    int channelSize() const override;
};

template <class C>
class ChannelBuf : public FrameBuf<C>, public ChannelBuffer {
public:
    ChannelBuf(int width, int height);
    ~ChannelBuf() override;

    // Slot order is given; append only.
    void loadAlpha(const PixelBuffer& source) const override;
    virtual void loadAlpha(const PixelBuf<Pixel<C>>& source) const;
    void transpose(const FrameBuffer& source) const override;
    FrameBuffer* newFrameBuffer(int newWidth, int newHeight) const override;
    bool isMultiChannel() const override;
    int channelSize() const override;
    void allocate() override;
    void deallocate() override;
};

template <class P>
class SimplePixelBuffer : public PixelBuf<P> {
public:
    SimplePixelBuffer(int width, int height);
    ~SimplePixelBuffer() override;

    void allocate() override;
    void deallocate() override;
};

// Only the host's two depths are ever created; the others exist for the image operations' dispatch.
extern template class FrameBuf<Channel8>;
extern template class FrameBuf<Channel15>;
extern template class FrameBuf<Channel16>;
extern template class FrameBuf<Channel32>;
extern template class FrameBuf<Channel32f>;
extern template class FrameBuf<Pixel<Channel8>>;
extern template class FrameBuf<Pixel<Channel15>>;
extern template class FrameBuf<Pixel<Channel16>>;
extern template class FrameBuf<Pixel<Channel32>>;
extern template class FrameBuf<Pixel<Channel32f>>;
extern template class PixelBuf<Pixel<Channel8>>;
extern template class PixelBuf<Pixel<Channel15>>;
extern template class PixelBuf<Pixel<Channel16>>;
extern template class PixelBuf<Pixel<Channel32>>;
extern template class PixelBuf<Pixel<Channel32f>>;
extern template class ChannelBuf<Channel8>;
extern template class ChannelBuf<Channel15>;
extern template class ChannelBuf<Channel16>;
extern template class ChannelBuf<Channel32>;
extern template class ChannelBuf<Channel32f>;
extern template class SimplePixelBuffer<Pixel<Channel8>>;
extern template class SimplePixelBuffer<Pixel<Channel15>>;
extern template class SimplePixelBuffer<Pixel<Channel16>>;
extern template class SimplePixelBuffer<Pixel<Channel32>>;
extern template class SimplePixelBuffer<Pixel<Channel32f>>;

}  // namespace PILib
