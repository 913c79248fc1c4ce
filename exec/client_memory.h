// What the host's client arrays point at. They outlive the draw that set them: the host reads them
// again in every later draw whose record has no bytes of its own for them, by when a streamed call
// is gone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "calls/model/data_values.h"
#include "calls/reach/host_reach.h"

namespace kestrail {

/// Bytes with zeros behind them, and in front of them where drivers may look there; zeros take no
/// memory.
class CZeroTailed {
public:
    CZeroTailed() = default;
    CZeroTailed(CZeroTailed&& other) noexcept;
    CZeroTailed& operator=(CZeroTailed&& other) noexcept;
    ~CZeroTailed();

    /// The array's bytes, readable as far as `reach`; null where the process has no room for it.
    const std::uint8_t* Put(const SDataPtr& array, std::int64_t reach);
    std::int64_t Reach() const { return static_cast<std::int64_t>(m_size); }
    bool Holds(const void* start) const { return m_start != nullptr && m_start == start; }

private:
    void Unmap();

    std::uint8_t* m_start = nullptr;
    std::size_t m_front = 0;
    std::size_t m_size = 0;
    std::size_t m_written = 0;
};

class CClientMemory {
public:
    struct STaken {
        const void* pointer;  ///< what the host is to read the array from
        bool sound;           ///< it can be read as far as the draw does
    };
    /// Holds the captured bytes of array `index` for the host. Where it is not known how far the
    /// draw really reads, `known` false, zeros are put behind bytes that are fewer. With `keep` the
    /// call that holds the bytes will be gone after the draw, and the array is taken over.
    STaken Take(std::uint32_t index, std::optional<SDataPtr>& array, const SArrayReach& reach,
                bool known, bool keep);
    /// Whether the host can read as far as that through `pointer`, which it has for `index`: the
    /// bytes of an earlier draw, or an address of the recording, behind which zeros are put.
    bool Reaches(std::uint32_t index, const void* pointer, const SArrayReach& reach) const;

private:
    struct SHeld {
        const std::uint8_t* data = nullptr;
        std::int64_t size = 0;
        std::optional<SDataPtr> kept;
        std::vector<std::uint8_t> copy;
        CZeroTailed tailed;
    };

    /// Takes the array over, which is none then.
    static void Keep(SHeld& held, std::optional<SDataPtr>& array);

    std::vector<SHeld> m_arrays;
};

}  // namespace kestrail
