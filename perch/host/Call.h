// One command under way: what the effect is given, and what it left.
#pragma once

#include <string>

#include "CommandResult.h"
#include "FrameRequest.h"
#include "PF_Entry.h"
#include "ParameterValues.h"

namespace perch {

class SmartExchange;

struct Call {
    PF_Cmd command = 0;
    const FrameRequest* frame = nullptr;  // null outside of frames
    ParameterValues values{};             // params[]; the effect may write to them
    PF_Handle* sequenceData = nullptr;    // carried over; null: the command has none
    PF_Handle* frameData = nullptr;
    PF_LayerDef* output = nullptr;  // null: an empty record
    void* extra = nullptr;
    SmartExchange* smart = nullptr;  // of the two commands of smart rendering alone

    PF_Err code = 0;
    PF_OutData out{};
    std::string refusal{};   // why a callback was refused last, for effects that answer with a bare code
    std::string breakage{};  // a sentence where the effect let an exception out, which no host goes on after
};

CommandResult resultOf(const Call& call);

}  // namespace perch
