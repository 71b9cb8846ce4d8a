// A shared object loaded from disk, through the whole path.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ScriptedEffect.h"

namespace perch::test {
namespace {

using testing::IsEmpty;

enum Parameter { kAmount = 1, kKeepBlue = 5, kMode = 8, kSource = 9 };

struct InvertPluginTest : testing::Test {
    Effect effect{std::filesystem::path(PERCH_TEST_PLUGINS) / "Invert.so", strictOptions()};
    FrameRequest request;

    RenderedFrame render(const World& input) {
        request.input = &input;
        Sequence sequence(effect);
        return sequence.render(request);
    }
    void TearDown() override {
        effect.close();
        EXPECT_THAT(effect.findings(), IsEmpty());
    }
};

TEST_F(InvertPluginTest, IsFoundByItsEntryPoint) {
    EXPECT_EQ(effect.description().entryPoint, "EffectMain");
    EXPECT_FALSE(effect.description().hasPropertyList);
    EXPECT_EQ(effect.description().parameters.size(), 10U);
    EXPECT_TRUE(effect.supportsDeepColor());
    EXPECT_EQ(effect.about(), "Invert 1.2");
}

TEST_F(InvertPluginTest, EightBitPictureIsInverted) {
    World input(5, 3, false);
    input.record().data[0] = {200, 10, 20, 30};
    const RenderedFrame frame = render(input);
    const PF_Pixel& first = frame.picture.record().data[0];
    EXPECT_EQ(first.alpha, 200);
    EXPECT_EQ(first.red, 245);
    EXPECT_EQ(first.green, 235);
    EXPECT_EQ(first.blue, 225);
}

TEST_F(InvertPluginTest, DeepPictureIsInverted) {
    World input(5, 3, true);
    auto* pixels = static_cast<PF_Pixel16*>(static_cast<void*>(input.record().data));
    pixels[0] = {32768, 100, 200, 32768};
    const RenderedFrame frame = render(input);
    const auto& first =
        *static_cast<const PF_Pixel16*>(static_cast<const void*>(frame.picture.record().data));
    EXPECT_EQ(first.red, 32668);
    EXPECT_EQ(first.blue, 0);
}

TEST_F(InvertPluginTest, ValuesReachTheEffect) {
    World input(1, 1, false);
    input.record().data[0] = {255, 10, 20, 30};
    request.values = effect.defaultValues(1, 1);
    request.values[kAmount].u.fs_d.value = 50.0;
    request.values[kKeepBlue].u.bd.value = 1;
    const RenderedFrame frame = render(input);
    EXPECT_EQ(frame.picture.record().data[0].red, 128);
    EXPECT_EQ(frame.picture.record().data[0].blue, 30);
}

TEST_F(InvertPluginTest, LayerParameterReplacesTheInput) {
    const World input(2, 2, false);
    World layer(2, 2, false);
    layer.record().data[0] = {255, 55, 0, 0};
    request.layers[kSource] = &layer;
    EXPECT_EQ(render(input).picture.record().data[0].red, 200);
}

TEST_F(InvertPluginTest, FailureComesWithItsMessage) {
    const World input(2, 2, false);
    request.values = effect.defaultValues(2, 2);
    request.values[kMode].u.pd.value = 3;
    request.frame = 7;
    request.time = 7;
    try {
        render(input);
        FAIL() << "the failed render was taken for a good one";
    } catch (const EffectError& error) {
        EXPECT_STREQ(error.what(), "frame 7: plug-in returned 516 at RENDER: \"Asked to fail at time 7\"");
    }
}

TEST(LoadingTest, FileThatIsNoEffectIsNamed) {
    EXPECT_THROW(Effect(std::filesystem::path(PERCH_TEST_PLUGINS) / "Missing.so", HostOptions{}), Error);
}

}  // namespace
}  // namespace perch::test
