#include "StartFolder.h"

#include <system_error>

namespace pictures {
namespace {

std::filesystem::path gStartFolder;  // empty: the current one

}  // namespace

void keepStartFolder() {
    std::error_code isGone;
    gStartFolder = std::filesystem::current_path(isGone);
}

std::filesystem::path placeOf(const std::filesystem::path& path) {
    return gStartFolder / path;
}

}  // namespace pictures
