#include "SaveFolder.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include "Error.h"
#include "WriteAll.h"

namespace perch {
namespace {

constexpr std::size_t kLongestName = 100;
constexpr char kEnding[] = ".json";

bool isPlain(char c) {
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    return isLetter || c == '-' || c == '_' || c == '.' || c == ' ';
}

void requirePlainName(const std::string& name) {
    const bool isNamed = name.size() > sizeof kEnding - 1 && name.size() <= kLongestName;
    if (isNamed && name.ends_with(kEnding) && name.front() != '.' && std::ranges::all_of(name, isPlain))
        return;
    throw UsageError(
        fmt::format("a preset is saved by a name of letters, digits, spaces, dots, dashes and underscores "
                    "that ends with {}",
                    kEnding));
}

[[noreturn]] void throwCannotWrite(const std::string& name) {
    throw Error(fmt::format("cannot write \"{}\": {}", name, std::generic_category().message(errno)));
}

}  // namespace

SaveFolder::SaveFolder(const std::string& path)
    : folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (folder < 0)
        throw Error(fmt::format("cannot save to \"{}\": {}; give --save-folder a folder that is there", path,
                                std::generic_category().message(errno)));
}

SaveFolder::~SaveFolder() {
    close(folder);
}

// The name is renamed over in the folder that was opened, so that no link is ever followed.
void SaveFolder::save(const std::string& name, std::string_view text) const {
    requirePlainName(name);
    const std::lock_guard lock(saving);
    struct stat there {};
    if (fstatat(folder, name.c_str(), &there, AT_SYMLINK_NOFOLLOW) == 0 && !S_ISREG(there.st_mode))
        throw UsageError(fmt::format("\"{}\" is there and no plain file; choose another name", name));
    const std::string temporary = fmt::format(".perch-{}-{}", getpid(), name);
    unlinkat(folder, temporary.c_str(), 0);
    const int file =
        openat(folder, temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (file < 0) throwCannotWrite(name);
    const bool isWritten = writeAll(file, text) && fsync(file) == 0;
    int reason = isWritten ? 0 : errno;
    if (close(file) != 0 && isWritten) reason = errno;
    if (reason == 0 && renameat(folder, temporary.c_str(), folder, name.c_str()) == 0) return;
    if (reason == 0) reason = errno;
    unlinkat(folder, temporary.c_str(), 0);
    errno = reason;
    throwCannotWrite(name);
}

}  // namespace perch
