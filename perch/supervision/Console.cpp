#include "Console.h"

#include <fcntl.h>
#include <fmt/chrono.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <system_error>

#include "Error.h"
#include "WriteAll.h"

namespace perch {
namespace {

int gInput = STDIN_FILENO;
int gResults = STDOUT_FILENO;
int gMessages = STDERR_FILENO;
int gLog = -1;

// Beyond the descriptors that an effect may close because it counts on their numbers, if there are so many;
// -1 where there is none at all.
int duplicated(int descriptor) {
    constexpr int kFirst = 200;
    const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, kFirst);
    return copy >= 0 ? copy : fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

}  // namespace

std::string printable(std::string_view text) {
    std::string clean;
    int following = 0;  // bytes of a character in UTF-8
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : '\0');
        // In UTF-8 the control characters from U+0080 to U+009F are 0xC2 and a byte below 0xA0.
        const bool isHighControl = c == 0xC2 && next >= 0x80 && next < 0xA0;
        // A terminal of 8-bit characters takes these bytes for control characters where they stand alone.
        const bool isLone = c >= 0x80 && c < 0xA0 && following == 0;
        clean += c < ' ' || c == 0x7F || isHighControl || isLone ? '?' : text[i];
        following = c >= 0xF0 ? 3 : c >= 0xE0 ? 2 : c >= 0xC0 ? 1 : std::max(0, following - 1);
        if (isHighControl) {
            following = 0;
            ++i;
        }
    }
    return clean;
}

void say(std::string_view sentence) noexcept {
    try {
        sayAsItIs(fmt::format("perch: {}\n", printable(sentence)));
        sayInLog(sentence);
    } catch (...) {
        sayAsItIs("perch: there is not enough memory\n");
    }
}

void keepLog(const std::filesystem::path& path) {
    std::error_code noFolder;  // which opening tells of
    if (path.has_parent_path()) std::filesystem::create_directory(path.parent_path(), noFolder);
    const int file = open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (file < 0)
        throw OutputError(fmt::format("cannot write the log \"{}\": {}; name another file", path.string(),
                                      std::generic_category().message(errno)));
    char first = '0';  // of the year
    const bool isLog = pread(file, &first, 1, 0) >= 0 && first >= '0' && first <= '9';
    gLog = isLog ? duplicated(file) : -1;
    close(file);
    if (!isLog)
        throw UsageError(fmt::format("\"{}\" is there and is no log; name another file", path.string()));
}

void sayInLog(std::string_view sentence) noexcept {
    if (gLog < 0) return;
    try {
        writeAll(gLog, fmt::format("{:%FT%TZ} {}\n", fmt::gmtime(std::time(nullptr)), printable(sentence)));
    } catch (...) {
        return;  // standard error has it
    }
}

void sayAsItIs(std::string_view text) noexcept {
    if (!writeAll(gMessages, text) && errno == EBADF) writeAll(STDERR_FILENO, text);
}

void printResult(std::string_view text) {
    if (!writeAll(gResults, text))
        throw OutputError(
            fmt::format("cannot write to the standard output: {}", std::generic_category().message(errno)));
}

void occupyStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest free number is taken.
        if (fcntl(descriptor, F_GETFD) < 0) static_cast<void>(open("/dev/null", O_RDONLY));
    }
}

void keepStreamsApart() {
    const int input = duplicated(STDIN_FILENO);
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (input >= 0 && nothing >= 0) {
        gInput = input;
        dup2(nothing, STDIN_FILENO);
    }
    if (nothing >= 0) close(nothing);
    const int results = duplicated(STDOUT_FILENO);
    const int messages = duplicated(STDERR_FILENO);
    if (messages >= 0) gMessages = messages;
    if (results < 0) return;
    gResults = results;
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

int inputDescriptor() {
    return gInput;
}

}  // namespace perch
