// Orders that other binaries may rely on: virtual slots and fields stay where they are.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <vector>

#include "ChannelTypes.h"
#include "FakeContext.h"
#include "SATTentBlur.h"

namespace PILib {
namespace {

#if defined(__x86_64__) && defined(__GNUC__)

// The virtual table's entry of a member function, counted from 0; a destructor takes two. A pointer to a
// virtual member function holds the entry's offset plus 1 there.
template <class Function>
std::size_t SlotOf(Function function) {
    std::ptrdiff_t words[2];
    static_assert(sizeof words == sizeof function);
    std::memcpy(words, &function, sizeof words);
    return static_cast<std::size_t>(words[0] - 1) / sizeof(void*);
}

TEST(GivenOrderTest, SlotsOfTheContext) {
    using C = PIContext;
    const std::vector<std::size_t> slots = {
        SlotOf(&C::isDraftMode),     SlotOf(&C::checkAbort),          SlotOf(&C::progress),
        SlotOf(&C::setProgress),     SlotOf(&C::getPixelAspectRatio), SlotOf(&C::newHandle),
        SlotOf(&C::newLockedHandle), SlotOf(&C::lockHandle),          SlotOf(&C::unlockHandle),
        SlotOf(&C::disposeHandle),   SlotOf(&C::getHandleSize),       SlotOf(&C::resizeHandle),
        SlotOf(&C::getCurrentTime),  SlotOf(&C::numProcessors),       SlotOf(&C::multiThread)};
    EXPECT_EQ((std::vector<std::size_t>{2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}), slots);
}

TEST(GivenOrderTest, SlotsOfTheBlurs) {
    using B = SATBlur<Pixel<Channel8>>;
    const std::vector<std::size_t> slots = {SlotOf(&B::getBlur), SlotOf(&B::getBlurInt),
                                            SlotOf(&B::initialize), SlotOf(&B::getBlurRow)};
    EXPECT_EQ((std::vector<std::size_t>{2, 3, 4, 5}), slots);
}

// References are stored as addresses, side by side.
TEST(GivenOrderTest, ContextAndSourceFollowTheFieldsOfABlur) {
    FakeContext context;
    const SimplePixelBuffer<Pixel<Channel8>> source(3, 2);
    const SATBoxBlur<Pixel<Channel8>> blur(context, source, 1, 1);
    const void* stored[2];
    const auto* const begin = reinterpret_cast<const unsigned char*>(&blur);
    const auto* const end = reinterpret_cast<const unsigned char*>(&blur.maxFixedRadiusY + 1);
    std::memcpy(stored, begin + (end - begin), sizeof stored);
    EXPECT_EQ(static_cast<const PIContext*>(&context), stored[0]);
    EXPECT_EQ(static_cast<const FrameBuf<Pixel<Channel8>>*>(&source), stored[1]);
}

#endif

bool areAscending(std::initializer_list<const void*> addresses) {
    return std::is_sorted(addresses.begin(), addresses.end(), std::less<>());
}

template <class C>
class BlurFieldOrderTest : public testing::Test {};

TYPED_TEST_SUITE(BlurFieldOrderTest, HostChannels, ChannelNames);

template <class Blur, class P>
void ExpectFieldsInOrder() {
    FakeContext context;
    const SimplePixelBuffer<P> source(3, 2);
    const Blur blur(context, source, 1, 1);
    EXPECT_TRUE(
        areAscending({&blur, &blur.width, &blur.height, &blur.borderX, &blur.borderY, &blur.tableWidth,
                      &blur.tableHeight, &blur.maxFixedRadiusX, &blur.maxFixedRadiusY, &blur.sumRed,
                      &blur.sumGreen, &blur.sumBlue, &blur.sumAlpha}));
}

TYPED_TEST(BlurFieldOrderTest, SizesThenTablesOfRedGreenBlueAndAlpha) {
    using P = Pixel<TypeParam>;
    ExpectFieldsInOrder<SATBoxBlur<P>, P>();
    ExpectFieldsInOrder<SATTentBlur<P>, P>();
}

}  // namespace
}  // namespace PILib
