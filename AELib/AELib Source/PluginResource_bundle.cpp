// Resources on Linux and macOS: the resource file of the bundle that contains the running library,
// NAME.plugin/Contents/MacOS/NAME or Contents/Linux-x86-64/NAME.so, beside Contents/Resources/NAME.rsrc. A
// library outside a bundle has its resource file beside it.

#include <dlfcn.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "PluginResourceBytes.h"
#include "ResourceFile.h"

namespace AELib {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kLargestFile = 16U << 20U;  // a PiPL takes a few hundred bytes

fs::path LibraryPath() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&ReadPluginResource), &info) == 0 || info.dli_fname == nullptr)
        return {};
    return info.dli_fname;
}

fs::path ResourcePath() {
    const fs::path library = LibraryPath();
    const fs::path name = fs::path(library.stem()).concat(".rsrc");
    const fs::path contents = library.parent_path().parent_path();
    return contents.filename() == "Contents" ? contents / "Resources" / name : library.parent_path() / name;
}

std::optional<std::vector<char>> ReadFile(const fs::path& path) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(path, error);
    if (error || size > kLargestFile) return std::nullopt;
    std::vector<char> bytes(static_cast<std::size_t>(size));
    std::ifstream file(path, std::ios::binary);
    if (!file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))) return std::nullopt;
    return bytes;
}

}  // namespace

std::optional<std::vector<char>> ReadPluginResource(std::uint32_t type, int id) {
    const auto file = ReadFile(ResourcePath());
    if (!file) return std::nullopt;
    const auto resource = FindResource(*file, type, id);
    if (!resource) return std::nullopt;
    return std::vector<char>(resource->begin(), resource->end());
}

}  // namespace AELib
