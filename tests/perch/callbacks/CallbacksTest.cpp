// The utility and interaction tables as a whole, and the functions of the C library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OneCommand.h"

namespace perch::test {
namespace {

using testing::IsEmpty;

using CallbacksTest = OneCommandTest;

TEST_F(CallbacksTest, EveryUtilityCallbackIsThere) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        // All but the last entry, which is reserved, and the number that ends the text functions.
        const auto* slots = reinterpret_cast<void* const*>(&call.utilities());
        for (std::size_t slot = 0; slot < offsetof(PF_UtilCallbacks, reserved) / sizeof(void*); ++slot) {
            const std::size_t offset = slot * sizeof(void*);
            if (offset == offsetof(PF_UtilCallbacks, ansi) + offsetof(PF_ANSICallbacksBlock, unused_longA))
                continue;
            EXPECT_NE(slots[slot], nullptr) << "at " << offset;
        }
        const auto* interactions = reinterpret_cast<void* const*>(&call.in->inter);
        for (int slot = 0; slot < 9; ++slot)
            EXPECT_NE(interactions[slot], nullptr) << "slot " << slot;
    });
}

TEST_F(CallbacksTest, WhatIsNotOfferedAnswersWithAnError) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        const PF_ProgPtr effect = call.in->effect_ref;
        PF_CallbackFunc function = nullptr;
        EXPECT_NE(call.in->inter.register_ui(effect, nullptr), 0);
        EXPECT_NE(call.in->inter.checkin_layer_audio(effect, nullptr), 0);
        EXPECT_NE(call.utilities().get_callback_addr(effect, 0, 0, 1, &function), 0);
        EXPECT_NE(call.utilities().get_platform_data(effect, 1, nullptr), 0);
        EXPECT_NE(call.utilities().app(effect, 1), 0);
    });
    EXPECT_THAT(found, IsEmpty());
}

TEST_F(CallbacksTest, TextIsFormattedAsByTheCFunction) {
    runAt(PF_Cmd_RENDER, [](const EffectCall& call) {
        char text[64] = "";
        EXPECT_EQ(call.utilities().ansi.sprintf(text, "%s %d %.2f %c", "frame", 12, 0.5, 'x'), 15);
        EXPECT_STREQ(text, "frame 12 0.50 x");
        EXPECT_EQ(call.utilities().ansi.hypot(3.0, 4.0), 5.0);
        EXPECT_EQ(call.utilities().ansi.strcpy(text, "short"), text);
        EXPECT_STREQ(text, "short");
    });
}

}  // namespace
}  // namespace perch::test
