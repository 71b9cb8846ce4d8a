#include "InputLines.h"

#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "Error.h"

namespace perch {

std::optional<std::string> InputLines::next() {
    // A signal that cancels may come to another thread or just before the wait, and ends no wait then.
    constexpr int kTick = 100;
    while (!hasLine()) {
        if (hasEnded || isCancelled) return std::nullopt;
        takesMore(kTick);
    }
    return takeLine();
}

std::optional<std::string> InputLines::nextThatIsThere() {
    while (!hasLine())
        if (hasEnded || !takesMore(0)) return std::nullopt;
    return takeLine();
}

// Reads what is there, waiting for it so long; whether there was anything, the end included.
bool InputLines::takesMore(int milliseconds) {
    pollfd stream{.fd = descriptor, .events = POLLIN, .revents = 0};
    if (poll(&stream, 1, milliseconds) <= 0) return false;
    char part[4096];
    const ssize_t size = read(descriptor, part, sizeof part);
    if (size < 0 && (errno == EINTR || errno == EAGAIN)) return false;
    if (size < 0) {
        throw InputError(fmt::format("cannot read the standard input: {}; give it a pipe or a file",
                                     std::generic_category().message(errno)));
    }
    if (size == 0) hasEnded = true;
    text.append(part, static_cast<std::size_t>(size));
    constexpr std::size_t kLongestLine = 1 << 20;
    if (text.size() > kLongestLine && !hasLine())
        throw InputError(fmt::format("a line of the standard input is longer than {} bytes", kLongestLine));
    return true;
}

std::string InputLines::takeLine() {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string line = text.substr(0, end);
    text.erase(0, end + 1);
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

}  // namespace perch
