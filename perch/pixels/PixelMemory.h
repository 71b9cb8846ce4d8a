// Which memory a world's record may point at. What the worlds of this process hold is known; a record that an
// effect hands over is looked up there before anything follows its address. Any thread.
#pragma once

#include <cstddef>
#include <new>

#include "PF_World.h"

namespace perch {

// For the memory of worlds, so that it is known for as long as it is held.
void addPixelMemory(const void* begin, std::size_t size);
void removePixelMemory(const void* begin);

template <typename T>
struct PixelAllocator {
    using value_type = T;

    PixelAllocator() = default;
    template <typename U>
    PixelAllocator(const PixelAllocator<U>&) {}

    T* allocate(std::size_t count) {
        T* const begin = static_cast<T*>(::operator new(count * sizeof(T)));
        try {
            addPixelMemory(begin, count * sizeof(T));
        } catch (...) {
            ::operator delete(begin);
            throw;
        }
        return begin;
    }
    void deallocate(T* begin, std::size_t) {
        removePixelMemory(begin);
        ::operator delete(begin);
    }

    bool operator==(const PixelAllocator&) const { return true; }
};

// Why the record cannot be followed; null where it can. One that begins in the memory of a world has to stay
// in it. Any other is over memory of the effect's own, of which only the system knows whether it is there.
const char* flawOf(const PF_EffectWorld& world);
// Of the record itself as well, which may be at any address.
const char* flawOf(const PF_EffectWorld* world);
// Whether the record can be read, whatever it says.
bool isInMemory(const PF_EffectWorld* world);

}  // namespace perch
