// The contents of an object in a record, of which there is one for every frame: the bytes of
// recorded calls, which outlive every record, and which of them stand where. For one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "base/shared.h"
#include "base/shared_vector.h"

namespace kestrail {

struct SUpdates;

/// Rows of bytes on their way into contents.
struct SByteRows {
    std::size_t offset = 0;  ///< of the first row in the contents
    std::size_t stride = 0;  ///< from one row to the next in the contents
    std::size_t length = 0;  ///< of each row
    std::size_t count = 0;
    const std::uint8_t* data = nullptr;
    std::size_t dataStride = 0;
};

/// A run of bytes, and parts that were put into it since. Copies share both.
class CSharedBytes {
public:
    /// Bytes that are in no call.
    using Made = std::shared_ptr<const std::vector<std::uint8_t>>;

    /// The largest contents, in bytes, that take parts, and what all of a trace that do may come
    /// to. A call can claim any size with a few bytes of trace, and a seek puts the bytes of each
    /// together.
    static constexpr std::uint64_t kLargest = std::uint64_t{1} << 28;
    static constexpr std::uint64_t kLargestOfAll = std::uint64_t{1} << 30;

    CSharedBytes() = default;

    /// Refers to bytes that somebody else keeps.
    static CSharedBytes Borrow(const std::uint8_t* data, std::size_t size);

    std::size_t Size() const { return m_size; }
    bool Empty() const { return m_size == 0; }
    /// All as they came with one call.
    bool Borrowed() const { return m_size != 0 && !IsChanged(); }
    /// Different for contents that may differ, the same for what the same calls bring about.
    std::uint64_t Identity() const { return m_identity; }
    /// All bytes in a row: where they stand, or in `room`. Null when there are none.
    const std::uint8_t* Get(std::vector<std::uint8_t>& room) const;

    /// Whether rows can be put into these contents, as `size` bytes.
    bool Takes(std::uint64_t size, const SUpdates& updates) const;
    /// Sets rows within the first `size` bytes, which is how many the contents have from then on,
    /// zeros where there were fewer. The rows stay where they are: with their call, or in `made`,
    /// from what the call has at `source`.
    void Put(std::size_t size, const SByteRows& rows, const void* source, const SUpdates& updates,
             Made made = nullptr);

private:
    /// Counts contents with parts for as long as any record has them.
    class CTaking;
    struct SPart {
        SByteRows rows;
        Made made;
    };
    struct SChanged {
        std::shared_ptr<CTaking> taking;
        Made start;  ///< in place of the borrowed bytes, when parts were put together
        TSharedVector<SPart, 3> parts;
        std::uint64_t partBytes = 0;
    };

    bool IsChanged() const { return m_changed.Identity() != nullptr; }

    const std::uint8_t* m_data = nullptr;
    std::size_t m_dataSize = 0;
    std::size_t m_size = 0;
    std::uint64_t m_identity = 0;
    TShared<SChanged> m_changed;
};

}  // namespace kestrail
