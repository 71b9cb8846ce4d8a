// The server from a module that is loaded when it is asked for: its libraries take longer to load than most
// commands take.
#include <dlfcn.h>
#include <fmt/format.h>

#include <filesystem>
#include <string>

#include "Error.h"
#include "ViewOptions.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

// Relative to the program's folder: where it is installed, and where the build leaves it.
constexpr const char* kModules[] = {PERCH_INSTALLED_VIEW, PERCH_BUILT_VIEW};

}  // namespace

int serveView(const ViewOptions& options) {
    std::error_code error;
    const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
    for (const char* const module : kModules) {
        const fs::path path = (folder / module).lexically_normal();
        if (!fs::exists(path, error)) continue;
        void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        using Entry = int(const ViewOptions*);
        auto* const entry =
            library != nullptr ? reinterpret_cast<Entry*>(dlsym(library, "perchServeView")) : nullptr;
        if (entry != nullptr) return entry(&options);
        throw Error(fmt::format("cannot show pages: {}; install the program again", dlerror()));
    }
    throw Error(fmt::format("cannot show pages: there is no file \"{}\"; install the program again",
                            (folder / kModules[0]).lexically_normal().string()));
}

}  // namespace perch
