// The property list of an effect: what a host knows of it before its code is loaded.
#pragma once

#include <cstdint>
#include <string>

#include "Bytes.h"
#include "PF_Types.h"

namespace perch {

// Strings are as in the list, without a known encoding; those of absent properties are empty.
struct PropertyList {
    std::string name;
    std::string category;
    std::string matchName;
    std::string entryPoint;     // symbol, the one for this processor where the list has several
    std::uint32_t version = 0;  // packed, see PF_VERSION
    PF_OutFlags flags = 0;
    PF_OutFlags2 flags2 = 0;
};

// How the system keeps the list. On Windows it follows the bytes 01 00, and its numbers are little-endian.
enum class ListForm { kMac, kWindows };

// Reads resource 'PiPL'. Throws Error when the bytes are damaged or of another kind
// than an effect. Properties that are not known are passed over; of two of one key the first counts.
PropertyList readPropertyList(ByteSpan bytes, ListForm form = ListForm::kMac);

}  // namespace perch
