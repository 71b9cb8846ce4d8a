// The effect's classes without a render: what no render reaches.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "AEKestrel.h"
#include "Main.h"
#include "RecordingHost.h"

namespace {

using AELib::AEContext;
using PILib::Channel8;
using PILib::ChannelBuf;
using PILib::Pixel;
using PILib::SimplePixelBuffer;

class OtherSequence : public AELib::SequenceManager {
public:
    AELib::FrameManager* newFrameInstance(AEContext& /*context*/) override { return nullptr; }
};

class EffectClassesTest : public testing::Test {
protected:
    ~EffectClassesTest() override { EXPECT_EQ("", host.faults()); }
    AEContext makeContext(PF_Cmd command) {
        params = host.paramPointers();
        AEContext context(command, &host.in, &host.out, params.data(), host.output, nullptr);
        context.globalManager = &global;
        return context;
    }

    RecordingHost host{PluginMain};
    EffectGlobal global;
    std::vector<PF_ParamDef*> params;
};

TEST_F(EffectClassesTest, IdentifiersLieInTheOrderOfThePanel) {
    AEContext context = makeContext(PF_Cmd_PARAMS_SETUP);
    global.paramsSetup(context);
    std::vector<int> numbers;
    for (int id = 0; id <= kInFocusRange; ++id)
        numbers.push_back(context.getParamNumber(id));
    EXPECT_EQ(0, numbers[0]);
    std::vector<int> identifiers(host.declared.size());
    for (std::size_t i = 0; i < host.declared.size(); ++i)
        identifiers[i] = host.declared[i].uu.id;
    for (int id = 1; id <= kInFocusRange; ++id) {
        EXPECT_EQ(id, identifiers.at(static_cast<std::size_t>(numbers[static_cast<std::size_t>(id)] - 1)));
    }
    EXPECT_EQ(10, numbers[kConformControlSize]);
}

TEST_F(EffectClassesTest, AFrameKnowsItsSequenceOnlyWhereItIsTheEffects) {
    AEContext context = makeContext(PF_Cmd_RENDER);
    EXPECT_EQ(nullptr, EffectFrame(context).sequence);
    OtherSequence other;
    context.sequenceManager = &other;
    EXPECT_EQ(nullptr, EffectFrame(context).sequence);
    EffectSequence sequence;
    context.sequenceManager = &sequence;
    EXPECT_EQ(&sequence, EffectFrame(context).sequence);
}

TEST_F(EffectClassesTest, AFramesMapAndPaintAreThePipelines) {
    AEContext context = makeContext(PF_Cmd_RENDER);
    EffectFrame frame(context);
    const ChannelBuf<Channel8> map(2, 1);
    map.row(0)[0] = 200;
    map.row(0)[1] = 127;
    frame.ProcessChannel(map, 0.5F, 0.1F, false);
    EXPECT_EQ(48, map.row(0)[0]);
    EXPECT_EQ(0, map.row(0)[1]);

    auto input = std::make_unique<SimplePixelBuffer<Pixel<Channel8>>>(2, 1);
    auto output = std::make_unique<SimplePixelBuffer<Pixel<Channel8>>>(2, 1);
    input->row(0)[1] = {9, 8, 7, 6};
    const auto painted = output->row(0);
    frame.input = std::move(input);
    frame.output = std::move(output);
    frame.PaintFocus(map);
    EXPECT_EQ((Pixel<Channel8>{255, 48, 48, 48}), painted[0]);
    EXPECT_EQ((Pixel<Channel8>{9, 8, 7, 6}), painted[1]);
}

TEST_F(EffectClassesTest, SetupAndChangedParametersNeedNothingOfTheHost) {
    AEContext context = makeContext(PF_Cmd_SEQUENCE_SETUP);
    EffectSequence sequence;
    sequence.sequenceSetup(context);
    sequence.userChangedParam(context);
    EXPECT_TRUE(host.log.empty());
    EXPECT_EQ(0, host.out.out_flags);
}

}  // namespace
