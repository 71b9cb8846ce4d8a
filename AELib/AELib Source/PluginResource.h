// The plug-in's own resources.
#pragma once

#include <cstdint>

namespace AELib {

// A resource of the running plug-in, in a platform handle (see HandleMemory.h) that is loaded once and kept:
// asking again gives the same handle. Null when the plug-in has no such resource.
char** Get1Resource(std::uint32_t type, int id);

// 0, or why the last memory operation on a resource failed.
int MemError();

}  // namespace AELib
