#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <fmt/format.h>
#include <windows.h>

#include "Library.h"
#include "PiPL.h"

namespace perch {
namespace {

std::shared_ptr<void> load(const std::filesystem::path& path, DWORD flags) {
    const HMODULE library = LoadLibraryExW(std::filesystem::absolute(path).c_str(), nullptr, flags);
    if (library == nullptr)
        throw LoadError(
            fmt::format("cannot load \"{}\": error {} of the system", path.string(), GetLastError()));
    return {library, [](void* module) { FreeLibrary(static_cast<HMODULE>(module)); }};
}

}  // namespace

std::shared_ptr<void> openLibrary(const std::filesystem::path& path) {
    return load(path, LOAD_WITH_ALTERED_SEARCH_PATH);
}

void* findSymbol(const std::shared_ptr<void>& library, const std::string& name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library.get()), name.c_str()));
}

std::optional<PropertyList> propertyListWithin(const std::filesystem::path& path) {
    const auto file = load(path, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    const auto module = static_cast<HMODULE>(file.get());
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(PiPL_RESOURCE_ID), L"PiPL");
    const HGLOBAL resource = found == nullptr ? nullptr : LoadResource(module, found);
    if (resource == nullptr) return std::nullopt;
    const auto* bytes = static_cast<const std::byte*>(LockResource(resource));
    try {
        return readPropertyList({bytes, SizeofResource(module, found)}, ListForm::kWindows);
    } catch (const Error& error) {
        throw LoadError(
            fmt::format("\"{}\" is damaged: {}; install the plug-in again", path.string(), error.what()));
    }
}

}  // namespace perch
