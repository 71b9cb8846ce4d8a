// The plug-in's instances live in handles of the host, whose first word is the pointer to the instance:
//
//   handle -> block address -> [ pointer to the instance ]
//
// Between SEQUENCE_FLATTEN and SEQUENCE_RESETUP the same field of the host holds flat bytes instead, and a
// host may hand back the handle of another level, an old one, or a cleared one. So the framework keeps a list
// of the instances that are alive and of the handles that it made for them. A pointer is followed only if its
// instance is alive and of the wanted level. Of a handle that the framework did not make, the first word is
// read only if the host says that the handle is that long; for its own it need not ask.
//
// What cannot be noticed is a host that frees one of these handles itself, in place of the set-down, and
// hands it back later.
//
// The lists have no lock: a host sends the commands of a plug-in one after another.
#pragma once

#include <optional>
#include <typeinfo>

#include "AEContext.h"

namespace AELib {

// For the constructors and destructors of the managers: `level` is the manager's own class.
void ListInstance(const void* instance, const std::type_info& level);
void UnlistInstance(const void* instance);

// A locked handle of a pointer's size that holds `instance`, a manager's own pointer or null; the instance
// stays the caller's should this throw.
char** NewInstanceHandle(AEContext& context, const void* instance);

// Replaces the instance in a handle that NewInstanceHandle made.
void StoreInstance(char** handle, const void* instance);

// Gives a handle back to the host, whoever made it; null is nothing.
void DisposeInstanceHandle(AEContext& context, char** handle);

// From now on the host is asked for the size before the handle is read, as it may be disposed elsewhere.
void ForgetInstanceHandle(char** handle);
void ForgetAllInstanceHandles();

// The pointer in a handle, which is not null, to a living instance of the level; null if the first word is 0;
// nothing for all other handles.
std::optional<void*> InstanceIn(AEContext& context, char** handle, const std::type_info& level);

template <class Manager>
std::optional<Manager*> InstanceIn(AEContext& context, char** handle) {
    const auto instance = InstanceIn(context, handle, typeid(Manager));
    if (!instance) return std::nullopt;
    return static_cast<Manager*>(*instance);
}

}  // namespace AELib
