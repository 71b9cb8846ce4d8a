// A folder with the pictures that the tests of the program name, and command lines that run in it.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Program.h"
#include "TemporaryFolder.h"

namespace perch::test {

class CommandLine {
public:
    CommandLine();

    // {plugins} in a command, and in what it answers, stands for the folder of test effects; {time} in what
    // it answers for what a job took. `input` is what it gets on standard input.
    ProgramResult run(const std::string& command, const std::string& input = "") const;
    std::vector<std::string> commandOf(const std::string& command) const;

    // The names in the folder, in order.
    std::vector<std::string> files() const;
    bool has(const std::string& name) const { return std::filesystem::exists(folder / name); }

private:
    TemporaryFolder parent;

public:
    const std::filesystem::path folder = parent / "work";
};

}  // namespace perch::test
