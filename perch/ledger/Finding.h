// What strict mode found: a breach of the interface's rules, named with the command and the callback.
#pragma once

#include <string>

namespace perch {

struct Finding {
    enum class Severity {
        Fault,  // the effect breaks a rule
        Note,   // hosts put up with it
    };
    Severity severity = Severity::Fault;
    std::string command;   // "RENDER"; empty between commands
    std::string callback;  // "checkin_param"; empty when no callback took part
    std::string sentence;
};

// "RENDER, checkin_param: ..."
std::string describe(const Finding& finding);

}  // namespace perch
