// Command lines with what they must answer, kept in files:
//
//     $ perch render -i input.png
//     exit 2
//     --- stdout
//     --- stderr
//     perch: --output is missing; see perch render --help
//
// {plugins} stands for the folder of test effects, {time} for what a job or a step took. Several commands in
// one file run one after another in the same folder. What a command gets on standard input, which is empty
// else, stands behind "--- stdin" and before its exit status.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace perch::test {

struct CommandCase {
    std::string command{};
    std::string in{};
    int status = 0;
    std::string out{};
    std::string err{};
};

std::vector<CommandCase> readCases(const std::filesystem::path& file);
void writeCases(const std::filesystem::path& file, const std::vector<CommandCase>& cases);

// The words of a command line, separated by blanks; double quotes keep blanks.
std::vector<std::string> wordsOf(const std::string& command);

// What a job took is {time}: "4 frames done in {time}: out.####.png", and in JSON "renderSeconds":{time}.
std::string withoutTimes(const std::string& text);

// Without the lines of progress, which come every ten seconds.
std::string withoutProgress(const std::string& text);

std::string replaceAll(std::string text, const std::string& from, const std::string& to);

}  // namespace perch::test
