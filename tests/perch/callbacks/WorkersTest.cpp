// Calls from all threads at once. Strict mode finds fault with most of them; they are served all the same.
#include <gtest/gtest.h>

#include <atomic>

#include "PF_Suites.h"
#include "PixelAccess.h"
#include "ScriptedEffect.h"

namespace perch::test {
namespace {

struct Shared {
    const PF_InData* in;
    const PF_EffectWorld* input;
    std::atomic<int> failures{0};

    void expect(bool isRight) { failures += isRight ? 0 : 1; }
};

void useHandles(Shared& shared) {
    const PF_UtilCallbacks& utilities = *shared.in->utils;
    PF_Handle handle = utilities.host_new_handle(24);
    shared.expect(utilities.host_lock_handle(handle) == *handle);
    utilities.host_unlock_handle(handle);
    shared.expect(utilities.host_resize_handle(480, &handle) == PF_Err_NONE);
    shared.expect(utilities.host_get_handle_size(handle) == 480);
    utilities.host_dispose_handle(handle);
}

void useBlocks(Shared& shared) {
    SPBasicSuite& suites = *shared.in->pica_basicP;
    void* block = nullptr;
    shared.expect(suites.AllocateBlock(16, &block) == 0);
    void* moved = nullptr;
    shared.expect(suites.ReallocateBlock(block, 160, &moved) == 0);
    shared.expect(suites.FreeBlock(moved) == 0);
}

void useSuites(Shared& shared) {
    SPBasicSuite& suites = *shared.in->pica_basicP;
    const void* suite = nullptr;
    shared.expect(suites.AcquireSuite("PF Handle Suite", 2, &suite) == 0);
    shared.expect(suites.ReleaseSuite("PF Handle Suite", 2) == 0);
}

void takeSamples(Shared& shared) {
    PF_SampPB params{};
    params.x_radius = params.y_radius = 1 << 15;
    params.src = const_cast<PF_EffectWorld*>(shared.input);
    PF_Pixel sample{};
    shared.expect(shared.in->utils->subpixel_sample(shared.in->effect_ref, 1 << 16, 0, &params, &sample) ==
                  0);
    shared.expect(sample.blue == 200);
}

TEST(WorkersTest, CallsFromAllThreadsAtOnceAreServed) {
    World picture(2, 2, false);
    for (int y = 0; y < 2; ++y)
        for (PF_Pixel& pixel : pixelRow<PF_Pixel>(picture.record(), y))
            pixel = {255, 100, 50, 200};
    FrameRequest request;
    request.input = &picture;
    ScriptedEffect script;
    int failures = -1;
    script.on(PF_Cmd_RENDER, [&failures](const EffectCall& call) {
        Shared shared{call.in, &call.params[0]->u.ld};
        const PF_Err code = call.utilities().iterate_generic(
            2000, &shared, [](void* refcon, A_long, A_long, A_long) -> PF_Err {
                for (const auto use : {useHandles, useBlocks, useSuites, takeSamples})
                    use(*static_cast<Shared*>(refcon));
                return PF_Err_NONE;
            });
        failures = shared.failures;
        return code;
    });
    HostOptions options;
    options.threads = 4;
    Effect effect(ScriptedEffect::enter, {}, options);
    Sequence(effect).render(request);
    EXPECT_EQ(failures, 0);
}

}  // namespace
}  // namespace perch::test
