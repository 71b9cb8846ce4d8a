// How a worker has ended.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace perch {

struct Outcome {
    int status = 0;        // for the program to end with
    std::string sentence;  // why it is not 0; empty where the worker has told it
    int signal = 0;        // that has asked the program to end, the user's interrupt above all; 0 without one
    std::vector<std::string> findings;  // of strict mode, where the worker could not tell them itself
    std::string log{};                  // file that what is said goes to as well; empty without one
    std::string report{};  // file that the worker may have left as of a running job; empty without one
    std::optional<std::int32_t> frame{};  // that the effect was at then
    std::string lastLine{};               // of the job, where the worker could not tell it
    bool isQuiet = false;                 // that line is for the log alone
    // As in Whereabouts; empty where the effect has not ended the worker.
    std::string unanswered{};
    std::string totals{};
};

}  // namespace perch
