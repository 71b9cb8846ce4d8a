#include "InstanceHandle.h"

#include <cstddef>
#include <cstring>
#include <map>
#include <new>
#include <set>

#include "PF_Values.h"

namespace AELib {

namespace {

struct Lists {
    std::map<const void*, const std::type_info*> instances;
    std::set<char**> handles;
};

// Never destroyed, as instances may outlive static objects.
Lists& TheLists() {
    alignas(Lists) static std::byte memory[sizeof(Lists)];
    static Lists& lists = *new (memory) Lists;
    return lists;
}

}  // namespace

void ListInstance(const void* instance, const std::type_info& level) {
    TheLists().instances[instance] = &level;
}

void UnlistInstance(const void* instance) {
    TheLists().instances.erase(instance);
}

char** NewInstanceHandle(AEContext& context, const void* instance) {
    char** const handle = context.newLockedHandle(sizeof instance);
    try {
        if (*handle == nullptr) throw int{PF_Err_OUT_OF_MEMORY};
        StoreInstance(handle, instance);
        TheLists().handles.insert(handle);
    } catch (...) {
        context.disposeHandle(handle);
        throw;
    }
    return handle;
}

void StoreInstance(char** handle, const void* instance) {
    std::memcpy(*handle, &instance, sizeof instance);
}

void DisposeInstanceHandle(AEContext& context, char** handle) {
    ForgetInstanceHandle(handle);
    context.disposeHandle(handle);
}

void ForgetInstanceHandle(char** handle) {
    TheLists().handles.erase(handle);
}

void ForgetAllInstanceHandles() {
    TheLists().handles.clear();
}

std::optional<void*> InstanceIn(AEContext& context, char** handle, const std::type_info& level) {
    void* instance = nullptr;
    const Lists& lists = TheLists();
    const bool isOurs = lists.handles.contains(handle);
    if (!isOurs && context.getHandleSize(handle) < sizeof instance) return std::nullopt;
    if (*handle == nullptr) return std::nullopt;
    std::memcpy(&instance, *handle, sizeof instance);
    if (instance == nullptr) return nullptr;
    const auto listed = lists.instances.find(instance);
    if (listed == lists.instances.end() || *listed->second != level) return std::nullopt;
    return instance;
}

}  // namespace AELib
