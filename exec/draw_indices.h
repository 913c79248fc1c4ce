// What an indexed draw reads.
#pragma once

#include <cstdint>

#include "exec/host_data.h"

namespace kestrail {

/// One more than the highest of `count` indices of that type; 0 for another type.
std::int64_t VerticesOf(const void* indices, std::int32_t count, std::uint32_t type);

struct SDrawIndices {
    const void* pointer;
    bool sound;             ///< the captured indices are as many as the draw reads
    std::int64_t vertices;  ///< 0 when the indices stand in a buffer of the host
};

/// The indices of a draw: `offset` into the bound element buffer, or the captured ones when there
/// is none bound.
SDrawIndices DrawIndices(bool elementBuffer, const SDataPtr& captured, std::uint32_t offset,
                         std::int32_t count, std::uint32_t type);

}  // namespace kestrail
