#include <dlfcn.h>
#include <fmt/format.h>
#if defined(__linux__)
#include <link.h>
#endif

#include "Error.h"
#include "Library.h"
#include "Whereabouts.h"

namespace perch {
namespace {

void* load(const std::string& name) {
    const InEffect inEffect("loading");
    return dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
}

// Whether the address is in the library itself, not in one that it is linked with.
bool isOwn([[maybe_unused]] void* library, [[maybe_unused]] const void* address) {
#if defined(__linux__)
    link_map* own = nullptr;
    link_map* found = nullptr;
    Dl_info about{};
    return dlinfo(library, RTLD_DI_LINKMAP, &own) == 0 &&
           dladdr1(address, &about, reinterpret_cast<void**>(&found), RTLD_DL_LINKMAP) != 0 && found == own;
#else
    return true;
#endif
}

}  // namespace

std::shared_ptr<void> openLibrary(const std::filesystem::path& path) {
    // With a folder in its name, or the system's library folders are searched.
    const std::string name = std::filesystem::absolute(path).string();
    void* const handle = load(name);
    if (handle == nullptr) {
        const std::string reason = dlerror();  // begins with the path
        throw LoadError(fmt::format("cannot load \"{}\": {}", path.string(),
                                    reason.substr(reason.starts_with(name) ? name.size() + 2 : 0)));
    }
    return {handle, [](void* library) {
                const InEffect inEffect("unloading");
                dlclose(library);
            }};
}

void* findSymbol(const std::shared_ptr<void>& library, const std::string& name) {
    void* const address = dlsym(library.get(), name.c_str());
    return address != nullptr && isOwn(library.get(), address) ? address : nullptr;
}

std::optional<PropertyList> propertyListWithin(const std::filesystem::path& /*path*/) {
    return std::nullopt;
}

}  // namespace perch
