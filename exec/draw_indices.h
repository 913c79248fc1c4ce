// What an indexed draw reads.
#pragma once

#include <cstdint>

#include "base/enumerants.h"
#include "calls/model/client_arrays.h"
#include "exec/host_data.h"

namespace kestrail {

using CapturedArrays = SVectorData<SDataPtr*>;
using CapturedIndices = SVectorData<int>;

/// How many vertices a draw reads, from the first on.
struct SVertices {
    std::int64_t count = 0;
    /// False when no more than the type of the indices limits them: they stand in the host's
    /// memory.
    bool known = true;
};

struct SDrawIndices {
    const void* pointer = nullptr;
    bool sound = false;  ///< the captured indices are as many as the draw reads
    SVertices vertices;
};

/// The indices of a draw: `offset` into the bound element buffer, or the captured ones when there
/// is none bound.
SDrawIndices DrawIndices(bool elementBuffer, const SDataPtr& captured, std::uint32_t offset,
                         std::int32_t count, std::uint32_t type);

/// Whether the element buffer has all the indices of a draw. A host reads ahead of the draw which
/// vertices they name, when there are client arrays, and does not ask how many there are.
template <typename Host>
bool ElementsFit(Host& host, std::uint32_t offset, std::int32_t count, std::uint32_t type) {
    std::int32_t size = 0;
    host.glGetBufferParameteriv(GL_ELEMENT_ARRAY_BUFFER, GL_BUFFER_SIZE, &size);
    return std::int64_t{offset} + std::int64_t{count} * ComponentBytes(type) <= size;
}

}  // namespace kestrail
