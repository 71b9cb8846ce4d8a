// The host keeps the plug-in's instances in handles whose first word is the pointer to the instance.
#pragma once

#include <cstring>

#include "AEContext.h"

namespace AELib {

// The instance in a handle that is not null.
template <class T>
T* InstanceIn(char** handle) {
    T* instance = nullptr;
    std::memcpy(&instance, *handle, sizeof instance);
    return instance;
}

template <class T>
void StoreInstance(char** handle, T* instance) {
    std::memcpy(*handle, &instance, sizeof instance);
}

// A locked handle of a pointer's size that holds `instance`, which stays the caller's should this throw.
template <class T>
char** NewInstanceHandle(AEContext& context, T* instance) {
    char** const handle = context.newLockedHandle(sizeof instance);
    StoreInstance(handle, instance);
    return handle;
}

}  // namespace AELib
