// What the host's client arrays point at. They outlive the draw that set them: the host reads them
// again in every later draw whose record has no bytes of its own for them, by when a streamed call
// is gone.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "calls/model/data_values.h"

namespace kestrail {

class CClientMemory {
public:
    /// The host now reads array `index` from `array`, `vertexBytes` a vertex. With `keep` the call
    /// that holds it will be gone after the draw, and the array is taken over.
    void Point(std::uint32_t index, std::unique_ptr<SDataPtr>& array, std::int64_t vertexBytes,
               bool keep);
    /// Whether the host can read that many vertices through `pointer`, which it has for `index`:
    /// the bytes of an earlier draw, or an address of the recording, behind which zeros are put.
    bool Reaches(std::uint32_t index, const void* pointer, std::int64_t vertexBytes,
                 std::int64_t vertices) const;
    /// The same for all arrays from `index` on, by what they were pointed at last.
    bool ReachFrom(std::uint32_t index, std::int64_t vertices) const;

private:
    struct SHeld {
        const std::uint8_t* data = nullptr;
        std::int64_t size = 0;
        std::int64_t vertexBytes = 0;
        std::unique_ptr<SDataPtr> kept;
    };
    std::vector<SHeld> m_arrays;
};

}  // namespace kestrail
