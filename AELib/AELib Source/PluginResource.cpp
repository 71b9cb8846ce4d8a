#include "PluginResource.h"

#include <cstring>
#include <map>
#include <utility>

#include "HandleMemory.h"
#include "PluginResourceBytes.h"

namespace AELib {

namespace {

constexpr int kNoMemory = -108;  // the platform's code for a full heap

int lastError = 0;

char** Load(std::uint32_t type, int id) {
    const auto resource = ReadPluginResource(type, id);
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
