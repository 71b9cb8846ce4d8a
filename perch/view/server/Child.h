// Processes that the server starts.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <initializer_list>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace perch {

// A descriptor of ours, and the number that the child has it by.
using PassedDescriptors = std::vector<std::pair<int, int>>;

constexpr char kThisProgram[] = "/proc/self/exe";

// `words` are the arguments from the program's name on. The child is in a process group of its own, so that a
// terminal's interrupt comes to the server alone, holds no signal back, and has no descriptors but the
// standard ones and those that are passed, so that it keeps no browser's connection open. Throws Error.
pid_t startChild(const std::string& program, std::vector<std::string> words,
                 const PassedDescriptors& descriptors);

// One that is waited for. Any thread.
class Child {
public:
    // As startChild.
    Child(const std::string& program, std::vector<std::string> words, const PassedDescriptors& descriptors);
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // False once it has ended, when its number may be another's.
    bool signal(int number);
    bool hasEnded();
    // Has it end: by each of the signals, of which 0 is none, and at last by SIGKILL; each has that time to
    // be obeyed.
    void end(std::initializer_list<int> signals, std::chrono::milliseconds grace);
    // Until it has ended; what waitpid tells. Once.
    int wait();

private:
    const pid_t process;
    std::mutex mutex;
    bool isWaitedFor = false;
};

// Gives the lines that come from a descriptor, without their ends, until nobody can write to it any more or
// the child has ended: what it has started and left behind may keep the descriptor.
void takeLines(int descriptor, Child& child, const std::function<void(const std::string&)>& take);

}  // namespace perch
