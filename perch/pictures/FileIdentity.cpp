#include "FileIdentity.h"

#include <sys/stat.h>

namespace pictures {

std::optional<FileIdentity> identityOf(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino};
}

}  // namespace pictures
