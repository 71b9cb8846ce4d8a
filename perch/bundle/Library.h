// Code that the system loads, and what its file says of the effect; one source per system.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "PropertyList.h"

namespace perch {

// Unloaded when the last owner goes. Throws Error.
std::shared_ptr<void> openLibrary(const std::filesystem::path& path);

// The address of an exported function; null where there is none of that name.
void* findSymbol(const std::shared_ptr<void>& library, const std::string& name);

// The property list within the file, where the system keeps it there: on Windows. Runs none of the file's
// code. Throws Error.
std::optional<PropertyList> propertyListWithin(const std::filesystem::path& path);

}  // namespace perch
