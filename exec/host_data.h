// Captured bytes on their way to the host. The host reads as much as the other arguments of a call
// say, and a damaged record may hold less: every such call is measured here before it is made.
#pragma once

#include <cstdint>

#include "calls/model/data_values.h"
#include "calls/reach/host_reach.h"

namespace kestrail {

/// A recorded address or offset as an argument.
inline const void* AsPointer(std::uint32_t recorded) {
    return reinterpret_cast<const void*>(std::uintptr_t{recorded});
}

struct SHostData {
    const void* pointer;
    /// False when the host would read past the captured bytes.
    bool sound;
};

/// The pointer to pass for `block`, of which the host reads `needed` bytes: the captured bytes; or,
/// when there are none, the recorded pointer as an offset where a buffer is bound for it, else
/// null. `nullAllowed`: the entry point knows null.
inline SHostData HostData(const SBlock& block, std::int64_t needed, bool nullAllowed,
                          bool bufferBound) {
    if (block.GetData() != nullptr) return {block.GetData(), block.GetSize() >= needed};
    if (bufferBound) return {AsPointer(block.pointer.value), true};
    return {nullptr, nullAllowed || needed <= 0};
}

}  // namespace kestrail
