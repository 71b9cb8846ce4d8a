#include "WholeFile.h"

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <system_error>

namespace {

namespace fs = std::filesystem;

std::uint32_t ByteAt(const std::string& bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

// Chunks from byte 8 on: 4 bytes of length, 4 of type, the data, 4 of check sum. The last one is IEND.
bool PngHasEnd(const std::string& bytes) {
    constexpr std::size_t kFrame = 12;
    std::size_t at = 8;
    while (at + kFrame <= bytes.size()) {
        if (bytes.compare(at + 4, 4, "IEND") == 0) return true;
        const std::uint32_t length = ByteAt(bytes, at) << 24 | ByteAt(bytes, at + 1) << 16 |
                                     ByteAt(bytes, at + 2) << 8 | ByteAt(bytes, at + 3);
        at += kFrame + length;
    }
    return false;
}

// Segments from byte 2 on: FF, a marker, 2 bytes of length. The end marker follows the scans; those inside
// the segments before them belong to thumbnails.
bool JpegHasEnd(const std::string& bytes) {
    constexpr std::uint32_t kStartOfScan = 0xDA;
    constexpr std::uint32_t kFill = 0xFF;
    std::size_t at = 2;
    while (at + 4 <= bytes.size()) {
        const std::uint32_t marker = ByteAt(bytes, at + 1);
        if (marker == kStartOfScan) return bytes.find("\xFF\xD9", at) != std::string::npos;
        at += marker == kFill ? 1 : 2 + (ByteAt(bytes, at + 2) << 8 | ByteAt(bytes, at + 3));
    }
    return false;
}

// A name beside the final one, which keeps the rename within one file system. A file that still has it when
// the object goes is removed.
class PartialFile {
public:
    explicit PartialFile(const fs::path& path)
        : path(path.parent_path() / (".partial-" + std::to_string(std::random_device()()))) {}
    ~PartialFile() {
        std::error_code ignored;
        fs::remove(path, ignored);
    }
    PartialFile(const PartialFile&) = delete;
    PartialFile& operator=(const PartialFile&) = delete;

    const fs::path path;
};

[[noreturn]] void Fail(const std::string& what, const std::string& path, const std::string& mend) {
    const std::string reason = errno != 0 ? " (" + std::generic_category().message(errno) + ")" : "";
    throw std::runtime_error(what + " \"" + path + "\"" + reason + "; " + mend);
}

}  // namespace

std::string ReadWhole(const std::string& path) {
    std::error_code ignored;
    if (fs::exists(path, ignored) && !fs::is_regular_file(path, ignored)) {
        throw std::runtime_error("\"" + path + "\" is a folder or a device; name a picture file");
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) Fail("cannot open", path, "check its name and permissions");
    std::string bytes(std::istreambuf_iterator<char>(file), {});
    if (file.bad()) Fail("cannot read", path, "copy it again");
    return bytes;
}

bool IsCutShort(const std::string& bytes) {
    if (bytes.starts_with("\x89PNG")) return !PngHasEnd(bytes);
    if (bytes.starts_with("\xFF\xD8")) return !JpegHasEnd(bytes);
    return false;
}

void WriteWhole(const std::string& path, std::span<const unsigned char> bytes) {
    const PartialFile partial(path);
    errno = 0;
    std::ofstream file(partial.path, std::ios::binary);
    if (!file) Fail("cannot create", path, "check its folder and the folder's permissions");
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) Fail("cannot write", path, "make room on its disk");
    std::error_code error;
    fs::rename(partial.path, path, error);
    errno = error.value();
    if (error) Fail("cannot create", path, "choose another name");
}
