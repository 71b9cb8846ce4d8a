#include "Bundle.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <string_view>
#include <system_error>
#include <vector>

#include "Library.h"
#include "PiPL.h"
#include "ResourceFile.h"
#include "SharedObject.h"
#include "Whereabouts.h"

namespace perch {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kLargestResourceFile = 16U << 20;

// The entries of the folder with that extension, sorted; none when there is no such folder.
std::vector<fs::path> filesWithExtension(const fs::path& folder, std::string_view extension) {
    std::vector<fs::path> files;
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored)) {
        if (entry.path().extension() == extension) files.push_back(entry.path());
    }
    std::ranges::sort(files);
    return files;
}

std::string namesOf(const std::vector<fs::path>& files) {
    std::string names;
    for (const fs::path& file : files) {
        if (!names.empty()) names += ", ";
        names += file.filename().string();
    }
    return names;
}

// The file of the bundle's own name, else the only one; empty when the folder has none.
fs::path chooseFile(const fs::path& folder, const fs::path& bundleName, std::string_view extension) {
    const std::vector<fs::path> files = filesWithExtension(folder, extension);
    fs::path own = folder / bundleName.stem();
    own += extension;
    if (std::ranges::find(files, own) != files.end()) return own;
    if (files.size() > 1) {
        throw LoadError(fmt::format("\"{}\" has several files and none named after the bundle: {}",
                                    folder.string(), namesOf(files)));
    }
    return files.empty() ? fs::path() : files.front();
}

std::vector<std::byte> readResourceFile(const fs::path& path) {
    std::error_code error;
    // Opening a pipe would wait for somebody to write to it.
    if (!fs::is_regular_file(path, error) && !error)
        throw LoadError(fmt::format("\"{}\" is not a file", path.string()));
    const std::uintmax_t size = error ? 0 : fs::file_size(path, error);
    if (error) throw LoadError(fmt::format("cannot read \"{}\": {}", path.string(), error.message()));
    if (size > kLargestResourceFile) {
        throw LoadError(fmt::format("\"{}\" is too large for a resource file: {} bytes, at most {}",
                                    path.string(), size, kLargestResourceFile));
    }
    std::vector<std::byte> bytes(static_cast<std::size_t>(size));
    std::ifstream file(path, std::ios::binary);
    if (!file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size))) {
        throw LoadError(fmt::format("cannot read \"{}\"; check its permissions", path.string()));
    }
    return bytes;
}

std::optional<PropertyList> readPropertyListOf(const fs::path& resourceFile) {
    const std::vector<std::byte> bytes = readResourceFile(resourceFile);
    try {
        const auto resource = findResource(bytes, PiPL_RESOURCE_TYPE, PiPL_RESOURCE_ID);
        if (!resource) return std::nullopt;
        return readPropertyList(*resource);
    } catch (const Error& error) {
        throw LoadError(fmt::format("\"{}\" is damaged: {}; install the plug-in again", resourceFile.string(),
                                    error.what()));
    }
}

fs::path libraryOf(const fs::path& bundle, const fs::path& bundleName) {
    constexpr std::string_view kArchitecture = PERCH_ARCHITECTURE;
    const fs::path folder = bundle / "Contents" / fmt::format("Linux-{}", kArchitecture);
    const fs::path library = chooseFile(folder, bundleName, ".so");
    if (!library.empty()) return library;
    throw LoadError(fmt::format("\"{}\" has no library for this machine; expected a .so file in \"{}\"",
                                bundle.string(), folder.string()));
}

// "Kestrel.plugin" of "build/Kestrel.plugin/".
fs::path nameOf(const fs::path& path) {
    const fs::path whole = fs::absolute(path).lexically_normal();
    return whole.has_filename() ? whole.filename() : whole.parent_path().filename();
}

}  // namespace

Bundle openBundle(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::is_regular_file(status)) {
        requireLoadable(path);
        return {path, path, propertyListWithin(path)};
    }
    if (!fs::is_directory(status)) {
        throw LoadError(
            fmt::format("there is no plug-in \"{}\"; name a .plugin folder or a .so file", path.string()));
    }
    const fs::path name = nameOf(path);
    Bundle bundle{path, libraryOf(path, name), std::nullopt};
    const fs::path resourceFile = chooseFile(path / "Contents" / "Resources", name, ".rsrc");
    if (!resourceFile.empty()) bundle.propertyList = readPropertyListOf(resourceFile);
    requireLoadable(bundle.library);
    return bundle;
}

LoadedLibrary loadLibrary(const Bundle& bundle) {
    whereabouts().effect.set(nameOf(bundle.path).string());
    LoadedLibrary loaded;
    loaded.library = openLibrary(bundle.library);
    std::vector<std::string> candidates{"PluginMain", "EffectMain"};
    if (bundle.propertyList && !bundle.propertyList->entryPoint.empty()) {
        candidates = {bundle.propertyList->entryPoint};
    }
    for (const std::string& symbol : candidates) {
        loaded.entryPoint = reinterpret_cast<PF_EntryPoint>(findSymbol(loaded.library, symbol));
        loaded.symbol = symbol;
        if (loaded.entryPoint != nullptr) return loaded;
    }
    throw LoadError(fmt::format("\"{}\" is not an effect: it does not export {}", bundle.library.string(),
                                fmt::join(candidates, " or ")));
}

fs::path findBundleBeside(const fs::path& programFolder) {
    const fs::path prefix = programFolder.parent_path();
    for (const fs::path& folder :
         {programFolder, prefix, prefix / "lib", prefix / "lib64", prefix / "lib" / PERCH_MULTIARCH}) {
        const std::vector<fs::path> bundles = filesWithExtension(folder, ".plugin");
        if (bundles.size() == 1) return bundles.front();
        if (bundles.size() > 1) {
            throw LoadError(
                fmt::format("\"{}\" has several plug-ins: {}; name one of them on the command line",
                            folder.string(), namesOf(bundles)));
        }
    }
    throw LoadError("there is no plug-in beside the program; name one on the command line");
}

fs::path chooseBundle(const fs::path& given) {
    return given.empty() ? findBundleBeside(fs::canonical("/proc/self/exe").parent_path()) : given;
}

}  // namespace perch
