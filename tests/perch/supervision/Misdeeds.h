// The ways in which Hostile.so can misbehave, and how each has to end.
#pragma once

#include <cstdlib>
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

// Has Hostile.so do what the mode says, "abort@RENDER", for as long as the object lives; a file named as its
// mark is made just before.
class HostileMode {
public:
    explicit HostileMode(const std::string& mode, const std::string& mark = "") {
        setenv(kName, mode.c_str(), 1);
        if (!mark.empty()) setenv(kMark, mark.c_str(), 1);
    }
    ~HostileMode() {
        unsetenv(kName);
        unsetenv(kMark);
    }
    HostileMode(const HostileMode&) = delete;
    HostileMode& operator=(const HostileMode&) = delete;

private:
    static constexpr char kName[] = "PERCH_HOSTILE";
    static constexpr char kMark[] = "PERCH_HOSTILE_MARK";
};

bool endsTheEffect(End end);

// Whether the text says that the effect crashed at the command, or what else the end is.
bool tellsOfTheEnd(const std::string& text, End end, const std::string& command);

}  // namespace perch::test
