// The place of a virtual function in the table of the class that its pointer to member names.
#pragma once

#include <cstddef>
#include <cstring>

// A pointer to member holds the function's offset in the table, with or without a bit below it. A destructor
// takes two places of a table, so that what is declared after it begins at kAfterDestructor.
inline constexpr std::size_t kAfterDestructor = 2;

template <class Function>
std::size_t SlotOf(Function function) {
    std::size_t offset = 0;
    static_assert(sizeof function >= sizeof offset);
    std::memcpy(&offset, &function, sizeof offset);
    return offset / sizeof(void*);
}
