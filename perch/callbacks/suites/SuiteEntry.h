// How the tables of suites are listed, and filled where this host offers no function.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <span>

#include "AEGP_Suites.h"

namespace perch {

struct SuiteEntry {
    template <typename Suite>
    SuiteEntry(const char* name, A_long version, Suite* table)
        : name(name), version(version), table(std::as_writable_bytes(std::span(table, 1))) {}

    const char* name;
    A_long version;
    std::span<std::byte> table;  // can be written, so that what an effect has written there can be undone
};

// What is offered, by family.
std::span<const SuiteEntry> pixelSuites();
std::span<const SuiteEntry> parameterSuites();
std::span<const SuiteEntry> valueSuites();
std::span<const SuiteEntry> appSuites();
std::span<const SuiteEntry> projectSuites();

// Answers any call with an error; the arguments are not looked at.
PF_Err refuseSuiteCall();

// A table of function pointers in which every slot refuses.
template <typename Suite>
Suite refusingSuite() {
    std::array<PF_UnusedSlot, sizeof(Suite) / sizeof(PF_UnusedSlot)> slots;
    static_assert(sizeof slots == sizeof(Suite));
    slots.fill(reinterpret_cast<PF_UnusedSlot>(refuseSuiteCall));
    return std::bit_cast<Suite>(slots);
}

}  // namespace perch
