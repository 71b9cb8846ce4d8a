// Effects as files: a bundle, or a bare shared object, and the entry point of its code.
//
//     NAME.plugin/Contents/Linux-x86-64/NAME.so        one folder per processor
//     NAME.plugin/Contents/Resources/NAME.rsrc         the property list; may be absent
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "PF_Entry.h"
#include "PropertyList.h"

namespace perch {

struct Bundle {
    std::filesystem::path path;     // as given
    std::filesystem::path library;  // the shared object for this processor
    std::optional<PropertyList> propertyList;
};

// Reads the bundle or bare shared object without running any of its code. Throws Error.
Bundle openBundle(const std::filesystem::path& path);

struct LoadedLibrary {
    std::shared_ptr<void> library;  // unloads the code when the last owner goes
    PF_EntryPoint entryPoint = nullptr;
    std::string symbol;  // name of the entry point
};

// Loads the code. The entry point is the property list's, without a list PluginMain or EffectMain. Throws
// Error.
LoadedLibrary loadLibrary(const Bundle& bundle);

// The only *.plugin in the program's folder, else in the folder above, else where distributions install
// libraries: ../lib, ../lib64, ../lib/x86_64-linux-gnu and the like. Throws Error when there is none or, in
// the folder that has some, more than one.
std::filesystem::path findBundleBeside(const std::filesystem::path& programFolder);

// `given`, or where it is empty the bundle beside the running program. Throws as findBundleBeside does.
std::filesystem::path chooseBundle(const std::filesystem::path& given);

}  // namespace perch
