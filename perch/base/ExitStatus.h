// What the program ends with.
#pragma once

namespace perch {

enum ExitStatus {
    kDone = 0,
    kFailed = 1,  // for a reason that is none of the others
    kWrongUse = 2,
    kBadInput = 3,      // what is read
    kBadOutput = 4,     // what is to be written
    kNotLoaded = 5,     // the effect
    kEffectFailed = 6,  // it answered with an error, or broke a rule that is watched
    kSomeFailed = 7,    // frames; the others are done
    kEffectBroke = 8,   // it crashed, ended the program, threw, or did not come back
    // Ended by a signal, as shells report it: the signal's number is added.
    kSignalled = 128,
    kInterrupted = 130,
    kTerminated = 143,
};

}  // namespace perch
