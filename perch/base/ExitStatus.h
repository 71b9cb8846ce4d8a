// What the program ends with.
#pragma once

namespace perch {

enum ExitStatus {
    kDone = 0,
    kFailed = 1,
    kWrongUse = 2,
    kEffectBroke = 8,    // it crashed, ended the program, threw, or did not come back
    kInterrupted = 130,  // as shells report an end by the interrupt signal
    kTerminated = 143,   // and by the one that asks a program to end
};

}  // namespace perch
