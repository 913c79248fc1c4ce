// The contents of an object in a record, of which there is one for every frame: bytes that a copy
// shares with the original, but for the pieces in which one of them was changed. For one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "base/shared.h"
#include "base/shared_array.h"
#include "state/state_table.h"

namespace kestrail {

/// Rows of bytes on their way into contents.
struct SByteRows {
    std::size_t offset = 0;  ///< of the first row in the contents
    std::size_t stride = 0;  ///< from one row to the next in the contents
    std::size_t length = 0;  ///< of each row
    std::size_t count = 0;
    const std::uint8_t* data = nullptr;
    std::size_t dataStride = 0;
};

/// A run of bytes: those of a recorded call, which outlive every record, and pieces of its own in
/// front of them.
class CSharedBytes {
public:
    /// The largest contents, in bytes, that take parts, and what all that do may come to. A call
    /// can claim any size with a few bytes of trace, and a seek puts the bytes of each together.
    static constexpr std::uint64_t kLargest = std::uint64_t{1} << 28;
    static constexpr std::uint64_t kLargestOfAll = std::uint64_t{1} << 30;

    CSharedBytes() = default;

    /// Refers to bytes that somebody else keeps.
    static CSharedBytes Borrow(const std::uint8_t* data, std::size_t size);

    std::size_t Size() const { return m_size; }
    bool Empty() const { return m_size == 0; }
    /// Without a piece of its own.
    bool Borrowed() const { return m_size != 0 && m_parts == nullptr; }
    /// Different for contents that may differ.
    std::uintptr_t Identity() const {
        return reinterpret_cast<std::uintptr_t>(m_parts ? m_pieces.Identity() : m_data);
    }
    /// All bytes in a row: where they stand, or in `room`. Null when there are none.
    const std::uint8_t* Get(std::vector<std::uint8_t>& room) const;

    /// Whether rows can be put into these contents, as `size` bytes.
    bool Takes(std::uint64_t size) const;
    /// Sets rows within the first `size` bytes, which is how many the contents have from then on,
    /// zeros where there were fewer. The rows are copied.
    void Put(std::size_t size, const SByteRows& rows);

private:
    /// Counts contents with pieces for as long as any record has them.
    class CParts;
    using Piece = TSharedArray<std::uint8_t>;
    using Pieces = TStateTable<Piece>;

    static constexpr std::size_t kPiece = 1024;

    void PutRow(std::size_t offset, const std::uint8_t* data, std::size_t length);
    std::uint8_t* WritePiece(std::uint32_t number);

    const std::uint8_t* m_data = nullptr;
    std::size_t m_dataSize = 0;
    std::size_t m_size = 0;
    TShared<Pieces> m_pieces;
    std::shared_ptr<CParts> m_parts;
};

}  // namespace kestrail
