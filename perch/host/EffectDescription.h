// What an effect says of itself, in its files and in its answers.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "PF_Entry.h"
#include "Parameter.h"

namespace perch {

struct EffectDescription {
    std::filesystem::path path;
    std::string entryPoint;  // symbol
    // From the PiPL; empty where the file has none.
    std::string name;
    std::string category;
    std::string matchName;
    bool hasPropertyList = false;
    std::uint32_t propertyListVersion = 0;  // packed, see PF_VERSION
    PF_OutFlags propertyListFlags = 0;
    PF_OutFlags2 propertyListFlags2 = 0;
    // From GLOBAL_SETUP.
    std::uint32_t version = 0;
    PF_OutFlags flags = 0;
    PF_OutFlags2 flags2 = 0;
    std::vector<Parameter> parameters;
};

}  // namespace perch
