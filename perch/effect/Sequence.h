// An instance of an effect that is applied to a layer. See Effect.h for threads and errors.
#pragma once

#include <cstddef>
#include <map>
#include <vector>

#include "Effect.h"
#include "FrameRequest.h"
#include "RenderedFrame.h"

namespace perch {

struct Call;

// One applied instance. Must end before its Effect is closed.
class Sequence {
public:
    explicit Sequence(Effect& effect);  // SEQUENCE_SETUP
    // SEQUENCE_RESETUP from what flatten() gave.
    Sequence(Effect& effect, const std::vector<std::byte>& flattened);
    ~Sequence();  // SEQUENCE_SETDOWN
    Sequence(const Sequence&) = delete;
    Sequence& operator=(const Sequence&) = delete;

    // Saves: sends SEQUENCE_FLATTEN where the effect declares that it needs it, copies the bytes, and goes on
    // with SEQUENCE_RESETUP.
    std::vector<std::byte> flatten();
    // FRAME_SETUP, RENDER, FRAME_SETDOWN; or SMART_PRE_RENDER, SMART_RENDER, see SmartUse.
    RenderedFrame render(const FrameRequest& request);
    // The user has changed that value; the effect may change others and the look of controls in `values`.
    // Throws Error when there is no parameter of that index, or a value too many or too few.
    void userChangedParam(PF_ParamIndex index, ParameterValues& values);
    // The controls are about to be shown.
    void updateParamsUi(ParameterValues& values);
    // Any command with this instance's data; see Effect::send.
    CommandResult send(PF_Cmd command, void* extra = nullptr);

private:
    friend class Frame;
    void makeArbitraryValues();
    void saveArbitraryValues();
    void disposeArbitraryValues();
    void giveArbitraryValues(ParameterValues& values) const;
    FrameRequest completed(const FrameRequest& request) const;
    void requireEveryValue(const ParameterValues& values) const;
    void resetup();
    void throwIfFailed(const Call& call);
    void setDown() noexcept;
    void sendWithValues(PF_Cmd command, ParameterValues& values, void* extra);
    bool mayChange(PF_Cmd command, PF_ParamIndex index, const PF_ParamDef& left);
    void takeArbitraryValue(PF_Cmd command, const Parameter& parameter, const PF_ParamDef& left);
    void keepUnlessChanged(PF_Cmd command, const PF_ParamDef& given, PF_ParamIndex index, PF_ParamDef& left);

    Effect& effect;
    PF_Handle data = nullptr;  // the effect's, carried from command to command
    std::map<PF_ParamIndex, PF_ArbitraryH> arbitraryValues;
    bool isSetUp = false;
    bool declinesRender = false;  // has left a frame to smart rendering
};

}  // namespace perch
