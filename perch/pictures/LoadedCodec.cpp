// The codec from a module that is loaded when it is first asked for.
#include <dlfcn.h>
#include <fmt/format.h>

#include <filesystem>
#include <string>

#include "Codec.h"
#include "PictureError.h"

namespace pictures {
namespace {

namespace fs = std::filesystem;

// Relative to the program's folder, so that an installed tree can be moved: where it is installed, and where
// the build leaves it.
constexpr const char* kModules[] = {PERCH_INSTALLED_MODULE, PERCH_BUILT_MODULE};

const Codec& load() {
    std::error_code error;
    const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
    std::string reason;
    for (const char* const module : kModules) {
        const fs::path path = (folder / module).lexically_normal();
        if (!fs::exists(path, error)) continue;
        void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        using Entry = const Codec*();
        auto* const entry =
            library != nullptr ? reinterpret_cast<Entry*>(dlsym(library, "perchCodec")) : nullptr;
        if (entry != nullptr) return *entry();
        reason = dlerror();
        break;
    }
    if (reason.empty()) {
        reason = fmt::format("there is no file \"{}\"", (folder / kModules[0]).lexically_normal().string());
    }
    throw PictureError(fmt::format("cannot read or write pictures: {}; install the program again", reason));
}

}  // namespace

const Codec& codec() {
    static const Codec& loaded = load();
    return loaded;
}

}  // namespace pictures
