#pragma once

#include <chrono>
#include <exception>
#include <optional>
#include <string>

#include "Error.h"

namespace perch {

// A step of a frame, done or failed, with what it adds to the frame's account.
template <typename T>
struct Step {
    std::optional<T> result{};
    std::exception_ptr error{};  // an Error
    int retries = 0;
    std::chrono::nanoseconds time{0};
};

inline std::string messageOf(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const Error& known) {
        return known.what();
    }
}

}  // namespace perch
