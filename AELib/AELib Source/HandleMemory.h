// Relocatable memory of the platform: used if a host offers no handle callbacks, and for the plug-in's own
// resources. IsPlatformHandle tells handles of this allocator from the host's. For any thread.
#pragma once

#include <cstddef>

namespace AELib {

char** NewHandle(std::size_t size);  // null when memory is short
void DisposeHandle(char** handle);
std::size_t GetHandleSize(char** handle);

// Blocks of this allocator never move, so that locking is only giving the address.
char* HLock(char** handle);
void HUnlock(char** handle);

// Whether `handle` came from NewHandle here and is alive.
bool IsPlatformHandle(char** handle);

}  // namespace AELib
