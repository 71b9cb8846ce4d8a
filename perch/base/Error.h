// Failures of the host, each one sentence for the user: what failed, on what, why, and what to do.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

namespace perch {

class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Wrong use of the command line, or text that an option does not take.
class UsageError : public Error {
public:
    using Error::Error;
};

// The effect answered a command with an error code, or reported a failure in its return message.
class EffectError : public Error {
public:
    // `message` is the effect's return_msg, empty when it gave none; `frame` is absent outside a frame.
    EffectError(std::string command, std::int32_t code, std::string message,
                std::optional<std::int32_t> frame);

    const std::string command;  // "RENDER"
    const std::int32_t code;    // PF_Err; 0 when only the message tells of the failure
    const std::string message;
    const std::optional<std::int32_t> frame;
};

// The effect stopped because the abort or progress callback told it of the user's cancel.
class Cancelled : public EffectError {
public:
    using EffectError::EffectError;
};

// The effect did what no host can go on after, and what a crash or an end of the program would be as well.
class EffectBroke : public Error {
public:
    using Error::Error;
};

}  // namespace perch
