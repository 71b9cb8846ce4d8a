#include "FileBytes.h"

#include <fmt/format.h>

#include <cerrno>
#include <fstream>
#include <random>
#include <system_error>

#include "PictureError.h"

namespace pictures {
namespace {

namespace fs = std::filesystem;

// A file beside the final one, so that a rename puts it in place; removed with the object if it is still
// there.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& finalPath)
        : path(folderOf(finalPath) /
               fmt::format(".perch-{:08x}{}", std::random_device()(), finalPath.extension().string())) {}
    ~TemporaryFile() {
        std::error_code ignored;
        fs::remove(path, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const fs::path path;
};

void requireFile(const fs::path& path) {
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    if (!fs::exists(status)) refuseToRead(path, "there is no such file; check the name");
    if (fs::is_directory(status)) refuseToRead(path, "it is a folder; name a picture file");
    if (!fs::is_regular_file(status)) refuseToRead(path, "it is not a file; name a picture file");
}

// Whether all of it has reached the file system; errno tells why not.
bool writeBytes(const fs::path& path, std::span<const unsigned char> bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    return file.good();
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
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file) refuseToRead(path, "it cannot be opened; check its permissions");
    FileBytes bytes(static_cast<std::size_t>(file.tellg()));
    file.seekg(0);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file) refuseToRead(path, "its bytes cannot be read; copy it again");
    return bytes;
}

void replaceFile(const fs::path& path, std::span<const unsigned char> bytes) {
    const TemporaryFile temporary(path);
    errno = 0;
    if (!writeBytes(temporary.path, bytes)) {
        refuseToWrite(path, fmt::format("{}; check its folder and the room on its disk",
                                        std::generic_category().message(errno)));
    }
    std::error_code error;
    fs::rename(temporary.path, path, error);
    if (error) refuseToWrite(path, error.message());
}

}  // namespace pictures
