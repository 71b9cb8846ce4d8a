// The virtual functions of the buffers: their places in the tables, and what the generic ones call.
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "ChannelTypes.h"
#include "FrameBuffer.h"
#include "SlotOf.h"

namespace {

using PILib::Channel32f;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::ChannelBuffer;
using PILib::ChannelSelector;
using PILib::FrameBuf;
using PILib::FrameBuffer;
using PILib::Pixel;
using PILib::PixelBuf;
using PILib::PixelBuffer;
using PILib::SimplePixelBuffer;
using Colour = Pixel<Channel32f>;

template <class C>
class FrameBufferSlotTest : public testing::Test {};
TYPED_TEST_SUITE(FrameBufferSlotTest, AllChannels, ChannelNames);

TYPED_TEST(FrameBufferSlotTest, TypedBuffersFollowTheirDestructorInOrder) {
    using P = Pixel<TypeParam>;
    using Typed = ChannelBuf<TypeParam>;
    using B = PixelBuf<P>;
    std::size_t slot = kAfterDestructor;
    EXPECT_EQ(slot++, SlotOf(&FrameBuf<P>::elementKey));
    EXPECT_EQ(slot++, SlotOf(&FrameBuf<P>::elementType));
    EXPECT_EQ(slot++, SlotOf(&FrameBuf<P>::elementSize));
    EXPECT_EQ(slot++, SlotOf<void (FrameBuf<P>::*)(const FrameBuffer&, PILib::TPoint<int>) const>(
                          &FrameBuf<P>::load));
    EXPECT_EQ(slot++,
              SlotOf<void (FrameBuf<P>::*)(const FrameBuffer&, PILib::Alignment) const>(&FrameBuf<P>::load));
    EXPECT_EQ(slot++, SlotOf(&FrameBuf<P>::newChannelBuffer));
    EXPECT_EQ(slot++, SlotOf(&B::transpose));
    EXPECT_EQ(slot++, SlotOf<void (B::*)(const ChannelBuffer&) const>(&B::loadAlpha));
    EXPECT_EQ(slot++, SlotOf<void (B::*)(const Typed&) const>(&B::loadAlpha));
    EXPECT_EQ(slot++, SlotOf<void (B::*)(const ChannelBuffer&) const>(&B::loadARGB));
    EXPECT_EQ(slot++, SlotOf<void (B::*)(const Typed&) const>(&B::loadARGB));
    EXPECT_EQ(slot++, SlotOf<void (B::*)(const ChannelBuffer&) const>(&B::multiplyAlpha));
    EXPECT_EQ(slot++, SlotOf<void (B::*)(const Typed&) const>(&B::multiplyAlpha));
    EXPECT_EQ(slot++, SlotOf(&B::getAlpha));
    EXPECT_EQ(slot++, SlotOf<void (B::*)(const PixelBuffer&, ChannelSelector) const>(&B::loadChans));
    EXPECT_EQ(slot++, SlotOf<void (B::*)(const B&, ChannelSelector) const>(&B::loadChans));
    EXPECT_EQ(slot++, SlotOf<void (B::*)(const ChannelBuffer&, const Colour&) const>(&B::paint));
    EXPECT_EQ(slot++, SlotOf<void (B::*)(const Typed&, const Colour&) const>(&B::paint));
    EXPECT_EQ(slot++, SlotOf(&B::overlay));
    EXPECT_EQ(slot++, SlotOf(&B::overlayT));
    EXPECT_EQ(slot++, SlotOf(&B::overlay8));
    EXPECT_EQ(slot++, SlotOf<void (B::*)(PILib::Rect, const Colour&) const>(&B::paint));
    EXPECT_EQ(slot++, SlotOf<void (B::*)(int, int, const Colour&) const>(&B::paint));
    EXPECT_EQ(slot++, SlotOf(&B::getPixel32f));
    EXPECT_EQ(slot++, SlotOf(&B::blend));
    EXPECT_EQ(slot++, SlotOf(&B::newFrameBuffer));
    EXPECT_EQ(slot++, SlotOf(&B::newPixelBuffer));
    EXPECT_EQ(slot++, SlotOf(&B::isMultiChannel));
    EXPECT_EQ(slot++, SlotOf(&B::channelSize));
    EXPECT_EQ(slot++, SlotOf(&SimplePixelBuffer<P>::allocate));
    EXPECT_EQ(slot++, SlotOf(&SimplePixelBuffer<P>::deallocate));
}

TYPED_TEST(FrameBufferSlotTest, ChannelBuffersFollowTheirTypedRowsInOrder) {
    using B = ChannelBuf<TypeParam>;
    std::size_t slot = SlotOf(&FrameBuf<TypeParam>::newChannelBuffer) + 1;
    EXPECT_EQ(kAfterDestructor + 6, slot);
    EXPECT_EQ(slot++, SlotOf<void (B::*)(const PixelBuffer&) const>(&B::loadAlpha));
    EXPECT_EQ(slot++, SlotOf<void (B::*)(const PixelBuf<Pixel<TypeParam>>&) const>(&B::loadAlpha));
    EXPECT_EQ(slot++, SlotOf(&B::transpose));
    EXPECT_EQ(slot++, SlotOf(&B::newFrameBuffer));
    EXPECT_EQ(slot++, SlotOf(&B::isMultiChannel));
    EXPECT_EQ(slot++, SlotOf(&B::channelSize));
    EXPECT_EQ(slot++, SlotOf(&B::allocate));
    EXPECT_EQ(slot++, SlotOf(&B::deallocate));
}

TEST(FrameBufferSlotTest, InterfacesFollowTheirDestructorInOrder) {
    using F = FrameBuffer;
    std::size_t slot = kAfterDestructor;
    EXPECT_EQ(slot++, SlotOf(&F::elementType));
    EXPECT_EQ(slot++, SlotOf(&F::elementKey));
    EXPECT_EQ(slot++, SlotOf(&F::isMultiChannel));
    EXPECT_EQ(slot++, SlotOf(&F::elementSize));
    EXPECT_EQ(slot++, SlotOf(&F::channelSize));
    EXPECT_EQ(slot++, SlotOf(&F::newPremultRowCache));
    EXPECT_EQ(slot++, SlotOf(&F::newFrameBuffer));
    EXPECT_EQ(slot++, SlotOf(&F::newChannelBuffer));
    EXPECT_EQ(slot++, SlotOf<void (F::*)(const F&, PILib::Alignment) const>(&F::load));
    EXPECT_EQ(slot++, SlotOf<void (F::*)(const F&, PILib::TPoint<int>) const>(&F::load));
    EXPECT_EQ(slot++, SlotOf(&F::transpose));
    EXPECT_EQ(slot++, SlotOf(&F::allocate));
    EXPECT_EQ(slot++, SlotOf(&F::deallocate));

    using P = PixelBuffer;
    slot = kAfterDestructor;
    EXPECT_EQ(slot++, SlotOf(&P::newPixelBuffer));
    EXPECT_EQ(slot++, SlotOf(&P::newPremultRowCache));
    EXPECT_EQ(slot++, SlotOf(&P::loadAlpha));
    EXPECT_EQ(slot++, SlotOf(&P::loadARGB));
    EXPECT_EQ(slot++, SlotOf(&P::multiplyAlpha));
    EXPECT_EQ(slot++, SlotOf(&P::getAlpha));
    EXPECT_EQ(slot++, SlotOf(&P::loadChans));
    EXPECT_EQ(slot++, SlotOf<void (P::*)(const ChannelBuffer&, const Colour&) const>(&P::paint));
    EXPECT_EQ(slot++, SlotOf(&P::overlay));
    EXPECT_EQ(slot++, SlotOf<void (P::*)(PILib::Rect, const Colour&) const>(&P::paint));
    EXPECT_EQ(slot++, SlotOf<void (P::*)(int, int, const Colour&) const>(&P::paint));
    EXPECT_EQ(slot++, SlotOf(&P::getPixel32f));
    EXPECT_EQ(slot++, SlotOf(&P::blend));

    EXPECT_EQ(kAfterDestructor, SlotOf(&ChannelBuffer::newPremultRowCache));
    EXPECT_EQ(kAfterDestructor + 1, SlotOf(&ChannelBuffer::loadAlpha));
}

// Notes which typed function was called, with what, and does nothing else.
template <class C>
struct NotingPixels : SimplePixelBuffer<Pixel<C>> {
    using Base = SimplePixelBuffer<Pixel<C>>;
    using Base::Base;
    using Base::loadAlpha, Base::loadARGB, Base::multiplyAlpha, Base::loadChans, Base::paint;

    void loadAlpha(const ChannelBuf<C>& channel) const override { note("loadAlpha", channel); }
    void loadARGB(const ChannelBuf<C>& channel) const override { note("loadARGB", channel); }
    void multiplyAlpha(const ChannelBuf<C>& mask) const override { note("multiplyAlpha", mask); }
    void loadChans(const PixelBuf<Pixel<C>>& source, ChannelSelector selector) const override {
        note("loadChans " + std::to_string(selector), source);
    }
    void paint(const ChannelBuf<C>& mask, const Colour& colour) const override {
        notePaint("paint", mask, colour);
    }
    void overlayT(const ChannelBuf<C>& mask, const Colour& colour) const override {
        notePaint("overlayT", mask, colour);
    }
    void overlay8(const ChannelBuf<Channel8>& mask, const Colour& colour) const override {
        notePaint("overlay8", mask, colour);
    }

    void note(const std::string& name, const FrameBuffer& operand) const {
        calls.push_back(name);
        operands.push_back(&operand);
    }
    void notePaint(const std::string& name, const FrameBuffer& mask, const Colour& colour) const {
        note(name, mask);
        EXPECT_EQ(0.25F, colour.red);
    }
    mutable std::vector<std::string> calls;
    mutable std::vector<const FrameBuffer*> operands;
};

template <class C>
struct NotingChannel : ChannelBuf<C> {
    using ChannelBuf<C>::ChannelBuf;
    using ChannelBuf<C>::loadAlpha;
    void loadAlpha(const PixelBuf<Pixel<C>>& source) const override { seen = &source; }
    mutable const FrameBuffer* seen = nullptr;
};

TYPED_TEST(FrameBufferSlotTest, GenericOperationsCallTheTypedOneOfTheirDepth) {
    const NotingPixels<TypeParam> noting(1, 1);
    const SimplePixelBuffer<Pixel<TypeParam>> source(1, 1);
    const ChannelBuf<TypeParam> typed(1, 1);
    const ChannelBuf<Channel8> typed8(1, 1);
    const PixelBuffer& pixels = noting;
    const ChannelBuffer& mask = typed;
    const ChannelBuffer& mask8 = typed8;
    const Colour colour(1.0F, 0.25F, 0.5F, 0.75F);

    pixels.loadAlpha(mask);
    pixels.loadARGB(mask);
    pixels.multiplyAlpha(mask);
    pixels.loadChans(source, 6);
    pixels.paint(mask, colour);
    pixels.overlay(mask, colour);
    pixels.overlay(mask8, colour);
    const char* const overlay = std::is_same_v<TypeParam, Channel8> ? "overlay8" : "overlayT";
    EXPECT_EQ((std::vector<std::string>{"loadAlpha", "loadARGB", "multiplyAlpha", "loadChans 6", "paint",
                                        overlay, "overlay8"}),
              noting.calls);
    const FrameBuffer *const source0 = &source, *const mask0 = &typed;
    EXPECT_EQ((std::vector<const FrameBuffer*>{mask0, mask0, mask0, source0, mask0, mask0, &typed8}),
              noting.operands);

    const NotingChannel<TypeParam> channel(1, 1);
    const ChannelBuffer& generic = channel;
    generic.loadAlpha(pixels);
    EXPECT_EQ(static_cast<const FrameBuffer*>(&noting), channel.seen);
}

}  // namespace
