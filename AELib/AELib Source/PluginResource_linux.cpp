// Resources on Linux: the resource file of the bundle that contains the running library,
// NAME.plugin/Contents/Linux-x86-64/NAME.so beside NAME.plugin/Contents/Resources/NAME.rsrc. A library
// outside a bundle has its resource file beside it.

#include <dlfcn.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "HandleMemory.h"
#include "PluginResource.h"
#include "ResourceFile.h"

namespace AELib {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kLargestFile = 16U << 20U;  // a PiPL takes a few hundred bytes
constexpr int kNoMemory = -108;                      // the platform's code for a full heap

int lastError = 0;

fs::path LibraryPath() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&Get1Resource), &info) == 0 || info.dli_fname == nullptr)
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

char** Load(std::uint32_t type, int id) {
    const auto file = ReadFile(ResourcePath());
    if (!file) return nullptr;
    const auto resource = FindResource(*file, type, id);
    if (!resource) return nullptr;
    char** const handle = NewHandle(resource->size());
    lastError = handle == nullptr ? kNoMemory : 0;
    if (handle != nullptr && !resource->empty()) std::memcpy(*handle, resource->data(), resource->size());
    return handle;
}

}  // namespace

char** Get1Resource(std::uint32_t type, int id) {
    static std::map<std::pair<std::uint32_t, int>, char**> loaded;
    char**& handle = loaded[{type, id}];
    if (handle == nullptr) handle = Load(type, id);
    return handle;
}

int MemError() {
    return lastError;
}

}  // namespace AELib
