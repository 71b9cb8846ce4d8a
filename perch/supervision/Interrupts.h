// The signals by which somebody asks the program to end: the first asks the effect, the second does not.
#pragma once

#include <cstdint>

namespace perch {

class Interrupts {
public:
    // One that `sender` has sent, 0 for a terminal, at `now` in nanoseconds. False for an echo: the same
    // again from the same process, as of timeout(1), which sends to its child and to the group that the child
    // is in.
    bool take(int signal, std::int32_t sender, std::int64_t now) {
        constexpr std::int64_t kEchoes = 200'000'000;
        const bool isEcho =
            taken > 0 && sender != 0 && sender == lastSender && signal == lastSignal && now - time < kEchoes;
        if (isEcho) return false;
        ++taken;
        lastSignal = signal;
        lastSender = sender;
        time = now;
        return true;
    }

    int count() const { return taken; }  // without echoes
    int last() const { return lastSignal; }

private:
    int taken = 0;
    int lastSignal = 0;
    std::int32_t lastSender = 0;
    std::int64_t time = 0;
};

}  // namespace perch
