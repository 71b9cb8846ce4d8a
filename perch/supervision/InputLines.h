// The lines of a stream that somebody writes while the program waits for them, as a pipe's other end.
#pragma once

#include <atomic>
#include <optional>
#include <string>

namespace perch {

// Used by one thread.
class InputLines {
public:
    // `descriptor` stays the caller's. Where `isCancelled` is set, a wait for a line soon ends.
    InputLines(int descriptor, const std::atomic<bool>& isCancelled)
        : descriptor(descriptor), isCancelled(isCancelled) {}

    // Waits for a line, and returns it without its end. Absent at the end of the stream and where it is
    // cancelled. Throws InputError where the stream cannot be read or a line is too long for one.
    std::optional<std::string> next();
    // The same where a line is there already; absent without one.
    std::optional<std::string> nextThatIsThere();

private:
    bool takesMore(int milliseconds);
    bool hasLine() const { return text.find('\n') != std::string::npos || (hasEnded && !text.empty()); }
    std::string takeLine();

    const int descriptor;
    const std::atomic<bool>& isCancelled;
    std::string text;  // read and not yet returned
    bool hasEnded = false;
};

}  // namespace perch
