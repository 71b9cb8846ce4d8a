// Failures of the host, each one sentence for the user: what failed, on what, why, and what to do.
#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>

#include "ExitStatus.h"

namespace perch {

class Error : public std::runtime_error {
public:
    // `status` is what the program ends with where nobody deals with the failure.
    explicit Error(const std::string& sentence, ExitStatus status = kFailed)
        : std::runtime_error(sentence), exitStatus(status) {}

    ExitStatus status() const { return exitStatus; }

private:
    ExitStatus exitStatus;
};

// Wrong use of the command line, or text that an option does not take.
class UsageError : public Error {
public:
    explicit UsageError(const std::string& sentence) : Error(sentence, kWrongUse) {}
};

// A file that is read is missing or damaged, or does not go with the others.
class InputError : public Error {
public:
    explicit InputError(const std::string& sentence) : Error(sentence, kBadInput) {}
};

// A file cannot be written, or must not be.
class OutputError : public Error {
public:
    explicit OutputError(const std::string& sentence) : Error(sentence, kBadOutput) {}
};

// There is no effect to load, or the system refuses to.
class LoadError : public Error {
public:
    explicit LoadError(const std::string& sentence) : Error(sentence, kNotLoaded) {}
};

// The effect did what it must not do, or cannot do what it is asked for.
class EffectFault : public Error {
public:
    explicit EffectFault(const std::string& sentence) : Error(sentence, kEffectFailed) {}
};

// The effect answered a command with an error code, or reported a failure in its return message.
class EffectError : public EffectFault {
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
    explicit EffectBroke(const std::string& sentence) : Error(sentence, kEffectBroke) {}
};

// The sentence for the user of any exception.
std::string sentenceOf(const std::exception& failure);

}  // namespace perch
