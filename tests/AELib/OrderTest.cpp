// The given orders: of the virtual functions in their tables, and of the fields in their objects.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "AEPixelBuffer.h"
#include "Archiver.h"
#include "PIContext.h"
#include "SlotOf.h"
#include "TestEffect.h"

namespace {

// Whether the fields lie at increasing addresses.
template <class... Fields>
bool InOrder(const Fields*... fields) {
    const std::vector<const void*> addresses = {fields...};
    return std::is_sorted(addresses.begin(), addresses.end(), std::less<>());
}

TEST(SlotOrderTest, GlobalManagerFollowsItsDestructorInOrder) {
    using M = AELib::GlobalManager;
    std::size_t slot = kAfterDestructor;
    EXPECT_EQ(slot++, SlotOf(&M::init));
    EXPECT_EQ(slot++, SlotOf(&M::handleCommand));
    EXPECT_EQ(slot++, SlotOf(&M::about));
    EXPECT_EQ(slot++, SlotOf(&M::paramsSetup));
    EXPECT_EQ(slot++, SlotOf(&M::sequenceSetup));
    EXPECT_EQ(slot++, SlotOf(&M::sequenceResetup));
    EXPECT_EQ(slot++, SlotOf(&M::sequenceFlatten));
    EXPECT_EQ(slot++, SlotOf(&M::sequenceSetdown));
    EXPECT_EQ(slot++, SlotOf(&M::newSequenceInstance));
}

TEST(SlotOrderTest, SequenceManagerFollowsItsDestructorInOrder) {
    using M = AELib::SequenceManager;
    std::size_t slot = kAfterDestructor;
    EXPECT_EQ(slot++, SlotOf(&M::dearchive));
    EXPECT_EQ(slot++, SlotOf(&M::handleCommand));
    EXPECT_EQ(slot++, SlotOf(&M::archive));
    EXPECT_EQ(slot++, SlotOf(&M::sequenceSetup));
    EXPECT_EQ(slot++, SlotOf(&M::sequenceSetdown));
    EXPECT_EQ(slot++, SlotOf(&M::frameSetup));
    EXPECT_EQ(slot++, SlotOf(&M::render));
    EXPECT_EQ(slot++, SlotOf(&M::frameSetdown));
    EXPECT_EQ(slot++, SlotOf(&M::doDialog));
    EXPECT_EQ(slot++, SlotOf(&M::userChangedParam));
    EXPECT_EQ(slot++, SlotOf(&M::updateParamsUI));
    EXPECT_EQ(slot++, SlotOf(&M::handleEvent));
    EXPECT_EQ(slot++, SlotOf(&M::getExternalDependencies));
    EXPECT_EQ(slot++, SlotOf(&M::audioRender));
    EXPECT_EQ(slot++, SlotOf(&M::audioSetup));
    EXPECT_EQ(slot++, SlotOf(&M::audioSetdown));
    EXPECT_EQ(slot++, SlotOf(&M::arbitraryCallback));
    EXPECT_EQ(slot++, SlotOf(&M::completelyGeneral));
    EXPECT_EQ(slot++, SlotOf(&M::queryDynamicFlags));
    EXPECT_EQ(slot++, SlotOf(&M::handleDraw));
    EXPECT_EQ(slot++, SlotOf(&M::handleClick));
    EXPECT_EQ(slot++, SlotOf(&M::handleDrag));
    EXPECT_EQ(slot++, SlotOf(&M::handleNewContext));
    EXPECT_EQ(slot++, SlotOf(&M::handleActivate));
    EXPECT_EQ(slot++, SlotOf(&M::handleDeactivate));
    EXPECT_EQ(slot++, SlotOf(&M::handleCloseContext));
    EXPECT_EQ(slot++, SlotOf(&M::handleIdle));
    EXPECT_EQ(slot++, SlotOf(&M::handleKeydown));
    EXPECT_EQ(slot++, SlotOf(&M::handleAdjustCursor));
    EXPECT_EQ(slot++, SlotOf(&M::newFrameInstance));
}

TEST(SlotOrderTest, FrameManagerFollowsItsDestructorInOrder) {
    using M = AELib::FrameManager;
    std::size_t slot = kAfterDestructor;
    EXPECT_EQ(slot++, SlotOf(&M::handleCommand));
    EXPECT_EQ(slot++, SlotOf(&M::cacheRenderParams));
    EXPECT_EQ(slot++, SlotOf(&M::frameSetup));
    EXPECT_EQ(slot++, SlotOf(&M::render));
    EXPECT_EQ(slot++, SlotOf(&M::frameSetdown));
}

template <class C>
class ContextSlotOrderTest : public testing::Test {};
using Contexts = testing::Types<PILib::PIContext, AELib::AEContext>;
TYPED_TEST_SUITE(ContextSlotOrderTest, Contexts);

TYPED_TEST(ContextSlotOrderTest, ContextFollowsItsDestructorInOrder) {
    using M = TypeParam;
    std::size_t slot = kAfterDestructor;
    EXPECT_EQ(slot++, SlotOf(&M::isDraftMode));
    EXPECT_EQ(slot++, SlotOf(&M::checkAbort));
    EXPECT_EQ(slot++, SlotOf(&M::progress));
    EXPECT_EQ(slot++, SlotOf(&M::setProgress));
    EXPECT_EQ(slot++, SlotOf(&M::getPixelAspectRatio));
    EXPECT_EQ(slot++, SlotOf(&M::newHandle));
    EXPECT_EQ(slot++, SlotOf(&M::newLockedHandle));
    EXPECT_EQ(slot++, SlotOf(&M::lockHandle));
    EXPECT_EQ(slot++, SlotOf(&M::unlockHandle));
    EXPECT_EQ(slot++, SlotOf(&M::disposeHandle));
    EXPECT_EQ(slot++, SlotOf(&M::getHandleSize));
    EXPECT_EQ(slot++, SlotOf(&M::resizeHandle));
    EXPECT_EQ(slot++, SlotOf(&M::getCurrentTime));
    EXPECT_EQ(slot++, SlotOf(&M::numProcessors));
    EXPECT_EQ(slot++, SlotOf(&M::multiThread));
}

class FieldOrderTest : public HostedEffectTest {};

TEST_F(FieldOrderTest, ManagersAndContext) {
    const TestFrame frame;
    const AELib::AEContext context;
    EXPECT_TRUE(InOrder(&manager.matchName, &manager.pluginName, &manager.category, &manager.version,
                        &manager.outFlags, &manager.outFlags2, &manager.paramCount, &manager.pluginID,
                        &manager.paramNumbers));
    EXPECT_TRUE(InOrder(&frame.context, &frame.inData, &frame.input, &frame.output, &frame.inputWidth,
                        &frame.inputHeight, &frame.outputWidth, &frame.outputHeight, &frame.downsampleX,
                        &frame.downsampleY, &frame.pixelAspectRatio));
    EXPECT_TRUE(InOrder(&context.paramCopies, &context.cmd, &context.inData, &context.outData,
                        &context.params, &context.output, &context.extra, &context.globalManager,
                        &context.sequenceManager, &context.downsampleX, &context.downsampleY,
                        &context.pixelAspectRatio, &context.progressOffset, &context.progressScale));
}

TEST_F(FieldOrderTest, WhatARenderBorrows) {
    AELib::AEContext context = makeContext();
    HostWorld picture(1, 1, false);
    const AELib::AEPixelBuffer<PILib::Pixel<PILib::Channel8>> buffer(context, picture.def);
    const AELib::LayerCheckout checkout;
    const AELib::PFEffectWorldHolder holder(context);
    EXPECT_TRUE(InOrder(&buffer.layer, &buffer.world, &buffer.ownsWorld, &buffer.inData));
    EXPECT_TRUE(InOrder(&checkout.param, &checkout.inData, &checkout.checkedOut));
    EXPECT_TRUE(InOrder(&holder.world, &holder.context));
}

TEST_F(FieldOrderTest, WhatSetUpAndStorageUse) {
    AELib::AEContext context = makeContext(PF_Cmd_PARAMS_SETUP);
    const AELib::AEParamCreator create(context);
    PILib::Archiver archiver(context);
    EXPECT_TRUE(InOrder(&create.def, &create.pending, &create.nextIndex, &create.context));
    EXPECT_TRUE(InOrder(&archiver.position, &archiver.size, &archiver.handle, &archiver.scratch));
    const void* const afterContext = reinterpret_cast<const char*>(&archiver.handle) + 2 * sizeof(void*);
    EXPECT_EQ(afterContext, &archiver.scratch) << "the reference to the context lies between";
    context.disposeHandle(archiver.getHandle());
}

}  // namespace
