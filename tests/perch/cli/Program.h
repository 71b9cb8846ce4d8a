// Runs the built program as a shell would.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace perch::test {

struct ProgramResult {
    int status = 0;  // exit status; 128 and the signal's number when one ended it
    std::string out;
    std::string err;
};

// Where a program's stderr goes. A terminal holds a few thousand characters until they are read at the end.
enum class Messages { File, Terminal };

// A program under way, its outputs going to files.
class RunningProgram {
public:
    // `command` is the program and its arguments; it runs in `folder`, and its outputs are kept beside it.
    // `input` is all that it gets on standard input, at once.
    RunningProgram(const std::vector<std::string>& command, const std::filesystem::path& folder,
                   Messages messages = Messages::File, const std::string& input = "");
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    // Waits until the program's worker has a handler for the signal; false when the program ended before.
    bool waitUntilItCatches(int signal) const;
    // The first line of its results; empty when the program ended before.
    std::string waitForLine() const;
    void send(int signal) const;
    // Again and again, so that it comes at whatever time the program has got to.
    void sendUntilItEnds(int signal) const;
    ProgramResult finish();

private:
    const std::filesystem::path inPath;
    const std::filesystem::path outPath;
    const std::filesystem::path errPath;
    int terminal = -1;  // this end of it; the other stays open until the end
    int programsTerminal = -1;
    pid_t process = -1;
};

ProgramResult runProgram(const std::vector<std::string>& command, const std::filesystem::path& folder,
                         const std::string& input = "");

}  // namespace perch::test
