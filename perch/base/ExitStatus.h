// What the program ends with.
#pragma once

namespace perch {

enum ExitStatus {
    kDone = 0,
    kFailed = 1,
    kWrongUse = 2,
    kSomeFailed = 7,   // frames; the others are done
    kEffectBroke = 8,  // it crashed, ended the program, threw, or did not come back
    // Ended by a signal, as shells report it: the signal's number is added.
    kSignalled = 128,
    kInterrupted = 130,
    kTerminated = 143,
};

}  // namespace perch
