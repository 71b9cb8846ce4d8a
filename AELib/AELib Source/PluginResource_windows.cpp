// Resources on Windows: those of the running library itself. The host reads its own form of a resource there,
// with little-endian numbers; the plug-in's is a second resource whose type has BE_ before its name.

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <string>

#include "PluginResourceBytes.h"

namespace AELib {

namespace {

HMODULE RunningLibrary() {
    HMODULE library = nullptr;
    constexpr DWORD kByAddress =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    // The system takes any address within a library in place of its name.
    const auto* address = reinterpret_cast<LPCWSTR>(&ReadPluginResource);
    return GetModuleHandleExW(kByAddress, address, &library) != 0 ? library : nullptr;
}

// BE_ and the four characters of the code.
std::wstring TypeName(std::uint32_t type) {
    std::wstring name = L"BE_";
    for (int shift = 24; shift >= 0; shift -= 8)
        name.push_back(static_cast<wchar_t>(type >> shift & 0xFFU));
    return name;
}

}  // namespace

std::optional<std::vector<char>> ReadPluginResource(std::uint32_t type, int id) {
    const HMODULE library = RunningLibrary();
    if (library == nullptr) return std::nullopt;
    const HRSRC found =
        FindResourceW(library, MAKEINTRESOURCEW(static_cast<WORD>(id)), TypeName(type).c_str());
    if (found == nullptr) return std::nullopt;
    const HGLOBAL resource = LoadResource(library, found);
    const auto* bytes = resource == nullptr ? nullptr : static_cast<const char*>(LockResource(resource));
    if (bytes == nullptr) return std::nullopt;
    return std::vector<char>(bytes, bytes + SizeofResource(library, found));
}

}  // namespace AELib
