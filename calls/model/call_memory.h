// Where calls stand, with the small things that they hold. Those of a trace that is held whole go
// together, those of a streamed one before the next is read.
#pragma once

#include <cstddef>

#include "base/object_arena.h"

namespace kestrail {

inline constinit CObjectArena callMemory;

/// For the containers of a call.
template <typename T>
struct TCallAllocator {
    using value_type = T;

    TCallAllocator() = default;
    template <typename Other>
    // NOLINTNEXTLINE(google-explicit-constructor): containers convert allocators.
    TCallAllocator(const TCallAllocator<Other>&) {}

    T* allocate(std::size_t count) {
        static_assert(alignof(T) <= CObjectArena::kAlignment);
        return static_cast<T*>(callMemory.Take(count * sizeof(T)));
    }
    void deallocate(T* items, std::size_t count) { callMemory.GiveBack(items, count * sizeof(T)); }
    bool operator==(const TCallAllocator&) const { return true; }
};

}  // namespace kestrail
