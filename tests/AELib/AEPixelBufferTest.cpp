// Host pictures as library buffers, and what a render borrows from the host.

#include "AEPixelBuffer.h"

#include <limits>
#include <typeinfo>

#include "Errors.h"
#include "OracleBuffers.h"
#include "RandomImage.h"
#include "TestEffect.h"
#include "ThreadPoolContext.h"

namespace {

using AELib::AEContext;
using AELib::AEPixelBuffer;
using AELib::LayerCheckout;
using AELib::MakeAEPixelBuffer;
using PILib::Channel15;
using PILib::Channel8;
using PILib::kAlignCenter;
using PILib::Pixel;
using PILib::PixelBuffer;

template <class C>
constexpr bool kDeep = oracle::kFull<C> == oracle::kFull15;

template <class C>
class AEPixelBufferTest : public HostedEffectTest {
protected:
    using Buffer = AEPixelBuffer<Pixel<C>>;
    static oracle::Image noise(unsigned seed, int width, int height) {
        std::mt19937 random(seed);
        return oracle::RandomImage(random, width, height, oracle::kFull<C>);
    }
    AEContext context = makeContext();
};
using Depths = testing::Types<Channel8, Channel15>;
TYPED_TEST_SUITE(AEPixelBufferTest, Depths);

using DeepWorldTest = AEPixelBufferTest<Channel15>;

TYPED_TEST(AEPixelBufferTest, ViewsAWorldInPlaceByItsDepth) {
    HostWorld world(this->noise(1, 5, 3), 24);
    const std::unique_ptr<PixelBuffer> made(MakeAEPixelBuffer(this->context, world.def));
    auto& buffer = dynamic_cast<typename TestFixture::Buffer&>(*made);
    EXPECT_EQ(5, buffer.width);
    EXPECT_EQ(3, buffer.height);
    EXPECT_EQ(world.def.rowbytes, buffer.rowBytes);
    EXPECT_EQ(24, buffer.rowPadding);
    EXPECT_EQ(&world.def, buffer.layer);
    EXPECT_FALSE(buffer.ownsWorld);
    EXPECT_EQ(world.image().values, oracle::Fetched<TypeParam>(buffer).values);
    EXPECT_EQ(1, this->host.failures.calls(kDeep<TypeParam> ? Callback::kGetPixelData16
                                                            : Callback::kGetPixelData8));
}

TYPED_TEST(AEPixelBufferTest, WritesReachTheWorldAndNothingElse) {
    HostWorld world(4, 4, kDeep<TypeParam>);
    typename TestFixture::Buffer buffer(this->context, world.def);
    const oracle::Image image = this->noise(2, 4, 4);
    oracle::Store<TypeParam>(image, buffer);
    EXPECT_EQ(image.values, world.image().values);
    EXPECT_TRUE(world.guardsAreIntact());
}

TYPED_TEST(AEPixelBufferTest, RowsMayRunBottomUp) {
    HostWorld world(this->noise(3, 3, 4));
    PF_EffectWorld flipped = world.def;
    flipped.data =
        reinterpret_cast<PF_Pixel*>(reinterpret_cast<char*>(world.def.data) + 3 * world.def.rowbytes);
    flipped.rowbytes = -world.def.rowbytes;
    typename TestFixture::Buffer buffer(this->context, flipped);
    EXPECT_EQ(world.at(0, 3), oracle::ColourOf(buffer.row(0)[0]));
    EXPECT_EQ(world.at(2, 0), oracle::ColourOf(buffer.row(3)[2]));
}

TYPED_TEST(AEPixelBufferTest, SizedViewOfTheSameSizeAllocatesNothing) {
    HostWorld world(6, 2, kDeep<TypeParam>);
    const std::unique_ptr<PixelBuffer> made(MakeAEPixelBuffer(this->context, world.def, 6, 2, kAlignCenter));
    const auto& buffer = dynamic_cast<typename TestFixture::Buffer&>(*made);
    EXPECT_EQ(&world.def, buffer.layer);
    EXPECT_FALSE(buffer.ownsWorld);
    EXPECT_EQ(0, this->host.failures.calls(Callback::kNewWorld));
    EXPECT_TRUE(this->host.transforms.empty());
}

TYPED_TEST(AEPixelBufferTest, SizedBufferOfAnotherSizeIsResampledByTheHost) {
    HostWorld world(this->noise(4, 6, 4));
    {
        const std::unique_ptr<PixelBuffer> made(
            MakeAEPixelBuffer(this->context, world.def, 9, 2, kAlignCenter));
        auto& buffer = dynamic_cast<typename TestFixture::Buffer&>(*made);
        EXPECT_TRUE(buffer.ownsWorld);
        EXPECT_EQ(&buffer.world, buffer.layer);
        EXPECT_EQ(9, buffer.width);
        EXPECT_EQ(2, buffer.height);
        EXPECT_EQ(HostResampled(world.image(), 9, 2).values, oracle::Fetched<TypeParam>(buffer).values);
        EXPECT_EQ(1, this->host.liveWorlds());
    }
    EXPECT_EQ(0, this->host.liveWorlds());

    ASSERT_EQ(1U, this->host.transforms.size());
    const TransformCall& call = this->host.transforms[0];
    EXPECT_EQ(PF_Quality_HI, call.quality);
    EXPECT_EQ(PF_MF_Alpha_STRAIGHT, call.modeFlags);
    EXPECT_EQ(PF_Field_FRAME, call.field);
    EXPECT_EQ(PF_Xfer_COPY, call.mode.xfer);
    EXPECT_EQ(0, call.mode.rand_seed);
    EXPECT_EQ(255, call.mode.opacity);
    EXPECT_EQ(0, call.mode.rgb_only);
    EXPECT_EQ(32768, call.mode.opacitySu);
    EXPECT_FALSE(call.hasMask);
    EXPECT_EQ(1, call.matrices);
    EXPECT_EQ(1, call.sourceToDestination);
    EXPECT_TRUE(call.wholeDestination);
    const double expected[3][3] = {{1.5, 0, 0}, {0, 0.5, 0}, {0, 0, 1}};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            EXPECT_EQ(expected[row][column], call.matrix.mat[row][column]) << row << ", " << column;
    }
}

TYPED_TEST(AEPixelBufferTest, ScaleIsASinglePrecisionRatio) {
    HostWorld world(7, 3, kDeep<TypeParam>);
    const std::unique_ptr<PixelBuffer> made(MakeAEPixelBuffer(this->context, world.def, 5, 10, kAlignCenter));
    EXPECT_EQ(double{5.0F / 7.0F}, this->host.transforms.at(0).matrix.mat[0][0]);
    EXPECT_EQ(double{10.0F / 3.0F}, this->host.transforms.at(0).matrix.mat[1][1]);
}

TYPED_TEST(AEPixelBufferTest, FailedResamplingGivesTheWorldBack) {
    HostWorld world(6, 4, kDeep<TypeParam>);
    const Callback pixels = kDeep<TypeParam> ? Callback::kGetPixelData16 : Callback::kGetPixelData8;
    for (const Callback callback : {Callback::kNewWorld, pixels, Callback::kTransformWorld}) {
        this->host.failures.at(callback, 1, 91);
        EXPECT_EQ(91, CodeOf([&] { delete MakeAEPixelBuffer(this->context, world.def, 3, 3, kAlignCenter); }))
            << NameOf(callback);
        EXPECT_EQ(0, this->host.liveWorlds()) << NameOf(callback);
    }
}

TYPED_TEST(AEPixelBufferTest, DeallocateOfAViewOnlyLetsItGo) {
    HostWorld world(2, 2, kDeep<TypeParam>);
    typename TestFixture::Buffer buffer(this->context, world.def);
    const unsigned char* const data = buffer.data;
    buffer.deallocate();
    EXPECT_EQ(nullptr, buffer.layer);
    EXPECT_EQ(data, buffer.data);
    EXPECT_EQ(2, buffer.width);
    EXPECT_EQ(2, buffer.height);
    EXPECT_EQ(world.def.rowbytes, buffer.rowBytes);
    EXPECT_EQ(0, this->host.failures.calls(Callback::kDisposeWorld));
}

TYPED_TEST(AEPixelBufferTest, DeallocateOfAnOwnedWorldDisposesItOnce) {
    HostWorld world(2, 2, kDeep<TypeParam>);
    typename TestFixture::Buffer buffer(this->context, world.def, 3, 3, kAlignCenter);
    buffer.deallocate();
    EXPECT_EQ(nullptr, buffer.layer);
    EXPECT_FALSE(buffer.ownsWorld);
    EXPECT_EQ(0, this->host.liveWorlds());
    buffer.deallocate();
    EXPECT_EQ(1, this->host.failures.calls(Callback::kDisposeWorld));
}

TYPED_TEST(AEPixelBufferTest, SizingAgainReplacesAnOwnedWorldAndLetsAViewedOneGo) {
    HostWorld world(2, 2, kDeep<TypeParam>);
    {
        typename TestFixture::Buffer owner(this->context, world.def, 3, 3, kAlignCenter);
        typename TestFixture::Buffer view(this->context, world.def);
        owner.initialize(5, 4);
        EXPECT_EQ(1, this->host.failures.calls(Callback::kDisposeWorld));
        view.initialize(5, 4);
        EXPECT_EQ(1, this->host.failures.calls(Callback::kDisposeWorld)) << "the viewed world is not its own";
        EXPECT_EQ(2, this->host.liveWorlds());
        for (const auto* buffer : {&owner, &view}) {
            EXPECT_TRUE(buffer->ownsWorld);
            EXPECT_EQ(&buffer->world, buffer->layer);
            EXPECT_EQ(5, buffer->world.width);
            EXPECT_EQ(4, buffer->world.height);
            EXPECT_EQ(5, buffer->width);
            EXPECT_EQ(4, buffer->height);
            EXPECT_EQ(static_cast<const void*>(buffer->world.data), buffer->data);
        }
        this->host.failures.at(Callback::kNewWorld, 1, 91);
        EXPECT_EQ(91, CodeOf([&] { owner.initialize(6, 6); }));
        EXPECT_EQ(1, this->host.liveWorlds()) << "the old world is given back first, and only once";
    }
    EXPECT_EQ(0, this->host.liveWorlds());
}

TYPED_TEST(AEPixelBufferTest, WorldsThatCannotHoldTheirPixelsFail) {
    HostWorld world(4, 2, kDeep<TypeParam>);
    PF_EffectWorld empty = world.def;
    empty.data = nullptr;
    ExpectAssertion("AELib/AELib Source/AEPixelBuffer", 1,
                    [&] { typename TestFixture::Buffer(this->context, empty); });
    PF_EffectWorld narrow = world.def;
    narrow.rowbytes = 4 * static_cast<A_long>(sizeof(Pixel<TypeParam>)) - 1;
    ExpectAssertion("AELib/AELib Source/AEPixelBuffer", 2,
                    [&] { typename TestFixture::Buffer(this->context, narrow); });
    PF_EffectWorld far = world.def;
    far.rowbytes = std::numeric_limits<A_long>::min();
    ExpectAssertion("AELib/AELib Source/AEPixelBuffer", 2,
                    [&] { typename TestFixture::Buffer(this->context, far); });
}

TEST_F(DeepWorldTest, PixelsAtOddAddressesAreRefused) {
    HostWorld world(4, 2, true);
    PF_EffectWorld oddRows = world.def;
    ++oddRows.rowbytes;
    ExpectAssertion("AELib/AELib Source/AEPixelBuffer", 2,
                    [&] { AEPixelBuffer<Pixel<Channel15>>(context, oddRows); });
    PF_EffectWorld oddBase = world.def;
    oddBase.data = reinterpret_cast<PF_Pixel*>(reinterpret_cast<char*>(oddBase.data) + 1);
    ExpectAssertion("AELib/AELib Source/AEPixelBuffer", 2,
                    [&] { AEPixelBuffer<Pixel<Channel15>>(context, oddBase); });
}

TYPED_TEST(AEPixelBufferTest, BlendIsTheHostsBetweenHostPictures) {
    HostWorld first(this->noise(5, 4, 3)), second(this->noise(6, 4, 3));
    const oracle::Image before = first.image();
    typename TestFixture::Buffer a(this->context, first.def), b(this->context, second.def);
    a.blend(this->context, b, 0.3F);
    ASSERT_EQ(1U, this->host.blends.size());
    EXPECT_EQ(&first.def, this->host.blends[0].first);
    EXPECT_EQ(&second.def, this->host.blends[0].second);
    EXPECT_EQ(19661, this->host.blends[0].ratio);
    EXPECT_EQ(&first.def, this->host.blends[0].destination);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(HostMix(before.at(x, y), second.at(x, y), 19661), first.at(x, y)) << x << ", " << y;
    }
    this->host.failures.at(Callback::kBlend, 1, 17);
    EXPECT_EQ(17, CodeOf([&] { a.blend(this->context, b, 0.3F); }));
}

TYPED_TEST(AEPixelBufferTest, BlendOfNothingAndOfAllNeedsNoHost) {
    HostWorld first(this->noise(7, 4, 3)), second(this->noise(8, 4, 3));
    const oracle::Image before = first.image();
    typename TestFixture::Buffer a(this->context, first.def), b(this->context, second.def);
    a.blend(this->context, b, 0.0F);
    EXPECT_EQ(before.values, first.image().values);
    a.blend(this->context, b, 1.0F);
    EXPECT_EQ(second.image().values, first.image().values);
    EXPECT_TRUE(this->host.blends.empty());
}

TYPED_TEST(AEPixelBufferTest, BlendWithALibraryBufferIsTheLibrarys) {
    HostWorld first(this->noise(9, 4, 3));
    const oracle::Image before = first.image();
    const oracle::Image other = this->noise(10, 4, 3);
    const PILib::SimplePixelBuffer<Pixel<TypeParam>> plain(4, 3);
    oracle::Store<TypeParam>(other, plain);
    typename TestFixture::Buffer a(this->context, first.def);
    a.blend(this->context, plain, 0.3F);
    EXPECT_TRUE(this->host.blends.empty());
    oracle::Image expected = before;
    for (std::size_t i = 0; i < expected.values.size(); ++i) {
        for (std::size_t c = 0; c < 4; ++c) {
            const std::int64_t from = before.values[i][c], to = other.values[i][c];
            expected.values[i][c] = static_cast<std::uint32_t>(from + ((19661 * (to - from) + 32768) >> 16));
        }
    }
    EXPECT_EQ(expected.values, first.image().values);
}

TYPED_TEST(AEPixelBufferTest, BlendNeedsAHostContext) {
    HostWorld first(2, 2, kDeep<TypeParam>), second(2, 2, kDeep<TypeParam>);
    typename TestFixture::Buffer a(this->context, first.def), b(this->context, second.def);
    PILib::ThreadPoolContext elsewhere(1);
    EXPECT_THROW(a.blend(elsewhere, b, 0.5F), std::bad_cast);
    EXPECT_NO_THROW(a.blend(elsewhere, b, 0.0F));
    EXPECT_NO_THROW(a.blend(elsewhere, b, 1.0F));
}

TYPED_TEST(AEPixelBufferTest, BlendWithAnotherDepthIsBadCast) {
    using Other = std::conditional_t<kDeep<TypeParam>, PILib::Channel8, PILib::Channel15>;
    HostWorld world(2, 2, kDeep<TypeParam>);
    typename TestFixture::Buffer a(this->context, world.def);
    const PILib::SimplePixelBuffer<Pixel<Other>> other(2, 2);
    EXPECT_THROW(a.blend(this->context, other, 0.5F), std::bad_cast);
}

class LayerCheckoutTest : public HostedEffectTest {
protected:
    LayerCheckoutTest() { manager.setParamNumber(2, 3); }
};

TEST_F(LayerCheckoutTest, IsCheckedInOnDestruction) {
    const HostWorld layer(3, 2, false);
    host.control = &layer;
    host.in.time_step = -2002;
    host.in.time_scale = 30;
    AEContext context = makeContext();
    {
        const LayerCheckout checkout(context, 2);
        EXPECT_TRUE(checkout.checkedOut);
        EXPECT_TRUE(checkout.hasPixels());
        EXPECT_EQ(3, checkout.param.u.ld.width);
        EXPECT_EQ(1, host.openCheckouts());
    }
    EXPECT_EQ(0, host.openCheckouts());
    ASSERT_EQ(1U, host.checkouts.size());
    EXPECT_EQ(3, host.checkouts[0].index);
    EXPECT_EQ(host.in.current_time, host.checkouts[0].time);
    EXPECT_EQ(-2002, host.checkouts[0].step);
    EXPECT_EQ(30U, host.checkouts[0].scale);
}

TEST_F(LayerCheckoutTest, TimeMayBeAnother) {
    AEContext context = makeContext();
    const LayerCheckout checkout(context, 2, 777);
    EXPECT_EQ(777, host.checkouts.at(0).time);
    EXPECT_FALSE(checkout.hasPixels());
}

TEST_F(LayerCheckoutTest, DefaultIsNotCheckedOut) {
    { const LayerCheckout checkout; }
    EXPECT_TRUE(host.log.empty());
}

TEST_F(LayerCheckoutTest, FailedCheckoutIsCheckedInToo) {
    AEContext context = makeContext();
    const std::function<void()> checkouts[] = {
        [&] { const LayerCheckout checkout(context, 2); },
        [&] { const LayerCheckout checkout(context, 2, 5); },
        [&] {
            LayerCheckout checkout;
            checkout.initialize(context, 2, 5);
        },
    };
    for (const auto& checkOut : checkouts) {
        host.failures.at(Callback::kCheckoutParam, 1, 71);
        EXPECT_EQ(71, CodeOf(checkOut));
        EXPECT_EQ(0, host.openCheckouts());
        EXPECT_EQ(1, host.failures.calls(Callback::kCheckinParam));
    }
}

class PFEffectWorldHolderTest : public HostedEffectTest {};

TEST_F(PFEffectWorldHolderTest, DisposesAWorldThatHoldsPixels) {
    AEContext context = makeContext();
    { const AELib::PFEffectWorldHolder empty(context); }
    EXPECT_EQ(0, host.failures.calls(Callback::kDisposeWorld));
    {
        AELib::PFEffectWorldHolder holder(context);
        ASSERT_EQ(0, host.utils.new_world(host.in.effect_ref, 2, 2, 0, &holder.world));
    }
    EXPECT_EQ(0, host.liveWorlds());
}

}  // namespace
