#include "FileBytes.h"

#include <fmt/format.h>

#include <fstream>
#include <system_error>

#include "PictureError.h"
#include "StartFolder.h"

namespace pictures {
namespace {

namespace fs = std::filesystem;

void requireFile(const fs::path& path) {
    std::error_code ignored;
    const fs::file_status status = fs::status(placeOf(path), ignored);
    if (!fs::exists(status)) refuseToRead(path, "there is no such file; check the name");
    if (fs::is_directory(status)) refuseToRead(path, "it is a folder; name a file");
    if (!fs::is_regular_file(status)) refuseToRead(path, "it is not a file; name a picture file");
}

}  // namespace

void refuseToRead(const fs::path& path, std::string_view reason) {
    throw PictureError(fmt::format("cannot read \"{}\": {}", path.string(), reason));
}

void refuseToWrite(const fs::path& path, std::string_view reason) {
    throw PictureError(fmt::format("cannot write \"{}\": {}", path.string(), reason));
}

fs::path folderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

FileBytes readFile(const fs::path& path) {
    requireFile(path);
    std::ifstream file(placeOf(path), std::ios::binary | std::ios::ate);
    if (!file) refuseToRead(path, "it cannot be opened; check its permissions");
    FileBytes bytes(static_cast<std::size_t>(file.tellg()));
    file.seekg(0);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file) refuseToRead(path, "its bytes cannot be read; copy it again");
    return bytes;
}

}  // namespace pictures
