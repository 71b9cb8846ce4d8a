#include <dlfcn.h>
#include <fmt/format.h>

#include "Library.h"

namespace perch {

std::shared_ptr<void> openLibrary(const std::filesystem::path& path) {
    // With a folder in its name, or the system's library folders are searched.
    const std::string name = std::filesystem::absolute(path).string();
    void* const handle = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        const std::string reason = dlerror();  // begins with the path
        throw Error(fmt::format("cannot load \"{}\": {}", path.string(),
                                reason.substr(reason.starts_with(name) ? name.size() + 2 : 0)));
    }
    return {handle, [](void* library) { dlclose(library); }};
}

void* findSymbol(const std::shared_ptr<void>& library, const std::string& name) {
    return dlsym(library.get(), name.c_str());
}

std::optional<PropertyList> propertyListWithin(const std::filesystem::path& /*path*/) {
    return std::nullopt;
}

}  // namespace perch
