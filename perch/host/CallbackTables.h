// What an effect finds in its PF_InData to call the host by.
#pragma once

#include <cstddef>
#include <span>

#include "PF_Entry.h"
#include "SP_Basic.h"

namespace perch {

// Borrowed; the tables live as long as the process.
struct CallbackTables {
    PF_InteractCallbacks interaction{};
    PF_UtilCallbacks* utilities = nullptr;
    SPBasicSuite* suites = nullptr;
    std::span<const std::span<std::byte>> suiteTables;  // the memory of what `suites` hands out
};

}  // namespace perch
