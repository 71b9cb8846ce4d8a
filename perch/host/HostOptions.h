// How a host behaves towards the effect it loads.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "PF_Entry.h"
#include "PF_Values.h"
#include "PiPL.h"
#include "ThreadBudget.h"

namespace perch {

// Lets the n-th call of one callback fail, counted from 1 over the life of the effect.
struct CallFailure {
    std::string callback;  // "checkout_param", "AcquireSuite", "PF_NewWorld"; as named in its table
    int call = 1;          // 0: every call
    PF_Err code = PF_Err_OUT_OF_MEMORY;  // callbacks that return a pointer answer null instead
};

struct SuiteName {
    std::string name;
    std::int32_t version = 0;  // 0: every version
};

// This host's own identity, as four characters; effects may look for those that they know.
constexpr A_AppID kPerchApplication = static_cast<A_AppID>(PF_FOUR_CC('p', 'r', 'c', 'h'));

struct HostOptions {
    int threads = 0;  // workers of the iterate calls, the calling thread included; 0: one per processor
    ThreadBudget* budget = nullptr;  // which the workers share with the program; outlives the effect
    bool strict = false;             // account for everything the effect does; see Effect::findings
    PF_SpecVersion interfaceVersion{PF_INTERFACE_MAJOR, PF_INTERFACE_MINOR};
    A_AppID application = kPerchApplication;
    bool offersSuites = true;               // else pica_basicP is null
    bool keepsFrameData = true;             // else frame_data is null at every command
    std::vector<SuiteName> withheldSuites;  // answered as not found
    std::vector<CallFailure> failures;
    // On the thread of the command; may throw, which ends the command.
    std::function<void(std::string_view command)> onCommand;  // before each: "FRAME_SETUP"
    // The effect's return_msg after a command that did not fail.
    std::function<void(std::string_view command, std::string_view message)> onMessage;
    // At each callback, from several threads at once.
    std::function<void(std::string_view callback)> onCallback;
};

}  // namespace perch
