// What `perch check` holds an effect to.
#pragma once

#include <filesystem>

namespace perch {

struct CheckRule {
    const char* name;
    void (*check)(const std::filesystem::path& plugin);
};

}  // namespace perch
