// The ways in which Hostile.so can misbehave, and how each has to end.
#pragma once

#include <string>
#include <vector>

namespace perch::test {

enum class End {
    Crash,      // a signal ends it
    Exit,       // it ends the program, or is replaced
    Throw,      // an exception comes out of it
    Hang,       // the time limit ends it
    Signal,     // it sends the program a signal
    Failure,    // an error of the effect: exit code 1
    Tolerated,  // nothing without strict mode
};

struct Misdeed {
    std::string deed;
    std::string place;
    End end = End::Tolerated;
    std::string strict;          // what strict mode says as well; empty: nothing
    bool isOfTheMatrix = false;  // of every end at every command

    std::string mode() const { return deed + '@' + place; }
};

const std::vector<Misdeed>& misdeeds();

}  // namespace perch::test
