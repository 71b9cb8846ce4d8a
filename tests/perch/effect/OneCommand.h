// A fixture for what an effect finds and does at one command.
#pragma once

#include <gtest/gtest.h>

#include "ScriptedEffect.h"

namespace perch::test {

struct OneCommandTest : testing::Test {
    ScriptedEffect script;
    World picture{4, 3, false};
    FrameRequest request;
    std::vector<std::string> found;

    OneCommandTest() { request.input = &picture; }

    // Runs `body` at one command of a whole life; the faults end up in `found`.
    template <typename F>
    void runAt(PF_Cmd command, const F& body, HostOptions options = strictOptions()) {
        script.on(command, [&](const EffectCall& call) {
            body(call);
            return PF_Err_NONE;
        });
        Effect effect(ScriptedEffect::enter, {}, std::move(options));
        {
            Sequence sequence(effect);
            sequence.render(request);
            ParameterValues values = effect.defaultValues(4, 3);
            sequence.updateParamsUi(values);
        }
        effect.close();
        found = faults(effect);
    }
};

}  // namespace perch::test
