// The built plug-in under hosts that keep no rule.

#include <gtest/gtest.h>

#include <climits>
#include <optional>

#include "HostCallbacks.h"
#include "HostileHost.h"
#include "PluginHost.h"
#include "RandomImage.h"

namespace {

class PluginHostileTest : public testing::Test {
protected:
    PluginHostileTest() {
        EXPECT_EQ(PF_Err_NONE, host.setUp()) << host.message();
        host.param(kSourceIndex).u.ld = source.def;
        host.output = &output.def;
        host.control = &control;
    }
    ~PluginHostileTest() override { EXPECT_EQ("", host.faults()); }
    void expectRightFrame() {
        ASSERT_EQ(PF_Err_NONE, host.renderFrame()) << host.message();
        const oracle::Image controlImage = control.image();
        EXPECT_EQ(ExpectedFrame(PanelValues(), host, source.image(), &controlImage, true).values,
                  output.image().values);
    }
    std::mt19937 random{7};
    HostWorld source{oracle::RandomImage(random, 12, 9, oracle::kFull8)};
    HostWorld control{oracle::RandomImage(random, 12, 9, oracle::kFull8)};
    HostWorld output{12, 9, false};
    PluginHost host;
};

TEST_F(PluginHostileTest, FlatDataAreRefusedUntilTheyAreRebuilt) {
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_FLATTEN)) << host.message();
    const PF_Handle flat = host.in.sequence_data;
    for (PF_Cmd command = PF_Cmd_SEQUENCE_FLATTEN; command <= PF_Cmd_ARBITRARY_CALLBACK; ++command) {
        EXPECT_EQ(512, host.call(command)) << command;
        EXPECT_EQ("Assert Failure - file: AELib/AELib Source/GlobalManager, line: 125 in Kestrel",
                  host.message());
    }
    ASSERT_EQ(PF_Err_NONE, host.call(PF_Cmd_SEQUENCE_RESETUP)) << host.message();
    host.utils.host_dispose_handle(flat);
    expectRightFrame();
}

TEST_F(PluginHostileTest, PopupsWithoutAnItemBelowTheirsAreRefused) {
    for (const std::size_t index : {kViewModeIndex, kBlurTypeIndex, kControlChannelIndex}) {
        host.set(PanelValues());
        host.param(index).u.pd.value = INT32_MIN;
        EXPECT_EQ(512, host.renderFrame()) << index;
        EXPECT_EQ("Assert Failure - file: AELib/AELib Source/AEContext, line: 3 in Kestrel", host.message());
    }
    host.set(PanelValues());
    expectRightFrame();
}

TEST_F(PluginHostileTest, IterationsThatCannotBeAreRefused) {
    struct Told {
        std::optional<A_long> index, iterations;
    };
    const Told lies[] = {{{}, 0},         {{}, -1}, {{}, INT32_MIN}, {-1, {}},
                         {INT32_MIN, {}}, {1, {}},  {INT32_MAX, {}}};
    host.threads = 1;
    for (const Told& told : lies) {
        host.toldIndex = told.index;
        host.toldIterations = told.iterations;
        EXPECT_EQ(512, host.renderFrame()) << told.index.value_or(0) << " of " << told.iterations.value_or(1);
        EXPECT_EQ("Assert Failure - file: PILib/PILib Source/ThreadRows, line: 1 in Kestrel", host.message());
        EXPECT_TRUE(output.guardsAreIntact());
    }
    host.toldIndex.reset();
    host.toldIterations.reset();
    expectRightFrame();
}

TEST_F(PluginHostileTest, ControlLayersOfImpossibleSizesAreNoneOrRefused) {
    for (const A_long extent : {INT32_MIN, -1, 0, (1 << 20) + 1, INT32_MAX}) {
        for (const bool wide : {true, false}) {
            (wide ? control.def.width : control.def.height) = extent;
            EXPECT_EQ(extent > 0 ? 512 : 0, host.renderFrame()) << extent << host.message();
            EXPECT_TRUE(host.transforms.empty());
            if (extent <= 0) {
                EXPECT_EQ(source.image().values, output.image().values);
            }
            control.def.width = 12;
            control.def.height = 9;
        }
    }
    expectRightFrame();
}

// Without it, the render answers with the host's code for a missing callback.
TEST_F(PluginHostileTest, MissingCallbacksAreRefused) {
    const auto refuses = [this](auto& entry) {
        const auto function = std::exchange(entry, nullptr);
        const PF_Err result = host.renderFrame();
        entry = function;
        return result == PF_Err_INVALID_CALLBACK && host.message() == "Error 515 in Kestrel";
    };
    PanelValues values;
    values.blend = 50;
    host.set(values);
    const HostWorld smaller(oracle::RandomImage(random, 5, 4, oracle::kFull8));
    host.control = &smaller;
    EXPECT_TRUE(refuses(host.in.inter.checkout_param));
    EXPECT_TRUE(refuses(host.in.inter.progress));
    EXPECT_TRUE(refuses(host.utils.get_pixel_data8));
    EXPECT_TRUE(refuses(host.utils.new_world));
    EXPECT_TRUE(refuses(host.utils.transform_world));
    EXPECT_TRUE(refuses(host.utils.blend));
    host.in.utils = nullptr;
    EXPECT_EQ(PF_Err_INVALID_CALLBACK, host.renderFrame());
    host.in.utils = &host.utils;
    host.set(PanelValues());
    host.control = &control;
    expectRightFrame();
}

// What cannot be given back stays lent; the frame is right.
TEST_F(PluginHostileTest, CallbacksThatGiveBackMayBeMissing) {
    host.in.inter.checkin_param = nullptr;
    expectRightFrame();
    EXPECT_EQ("1 checkouts are open\n", host.faults());
    host.endLoans();
    host.in.inter.checkin_param = HostCallbacks::checkinParam;

    const HostWorld smaller(oracle::RandomImage(random, 5, 4, oracle::kFull8));
    host.control = &smaller;
    host.utils.dispose_world = nullptr;
    EXPECT_EQ(PF_Err_NONE, host.renderFrame()) << host.message();
    EXPECT_EQ("1 worlds are lent\n", host.faults());
    host.endLoans();
}

TEST_F(PluginHostileTest, DeclaringNeedsItsCallback) {
    host.in.inter.add_param = nullptr;
    EXPECT_EQ(PF_Err_INVALID_CALLBACK, host.call(PF_Cmd_PARAMS_SETUP));
    EXPECT_EQ("Error 515 in Kestrel", host.message());
    EXPECT_EQ(0, host.out.num_params);
}

TEST(PluginHostileHostsTest, AnyOrderOfCommandsEndsWithThePluginsOwnErrors) {
    int refused = 0;
    int rendered = 0;
    static const LoadedPlugin& plugin = *new LoadedPlugin;  // never unloaded: it has instances that got lost
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        Choices choices(seed);
        HostileHost host(plugin.entryPoint(), choices);
        ASSERT_EQ("", host.run(60)) << "seed " << seed;
        refused += host.refused();
        rendered += host.rendered();
    }
    EXPECT_GT(refused, 3000);
    EXPECT_GT(rendered, 300);
}

}  // namespace
