// The payload of a record in the making, in the widths of a file.
//
// Each value writes itself beside where it reads itself. What was read from a record and lost
// nothing on the way is written back byte for byte. Where reading loses, this is written, which
// reads as the same call and is written back as itself:
//   a value wider than 32 bits    what was kept, with its sign if it has one, else zeros
//   bytes behind the last value   nothing
//   an array of no items          a null pointer
//   an array that the record      as many items as were there; with none, what it claims if it is
//   has no bytes for              the last value, else an array of no items
//   bytes that did not arrive     zeros
//   a text or block larger than   its size without its bytes; the record is filled up to where it
//   can be read                   could hold them
//   pixmaps                       the length of the first for all, filled with zeros or cut
// What a null pointer has with it stays: the bytes of a block, the count of an array or a text.
// A record that is read beyond its end takes bytes of the next one; they are written as its own.
// No record has the same captured arrays again where the table gives pointers, enumerants or
// integers another width or sign than recordings do, by which arrays are counted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>
#include <vector>

#include "tracefile/bytes/width_table.h"

namespace kestrail {

class CRecordWriter {
public:
    explicit CRecordWriter(const CWidthTable& widths) : m_widths(widths) {}

    const CWidthTable& Widths() const { return m_widths; }
    /// Begins the next record of the same file.
    void Start() {
        m_payload.clear();
        m_least = 0;
        m_starvedEnd = 0;
    }
    /// The record's payload, as long as no other is begun.
    std::span<const std::uint8_t> Finish();

    /// `width` bytes of the table, 0 for four.
    void Number(std::int32_t width, std::int64_t value);
    void UInt32(std::uint32_t value) { Bytes(&value, sizeof(value)); }
    void Bytes(const void* data, std::size_t size) {
        const auto* const bytes = static_cast<const std::uint8_t*>(data);
        m_payload.insert(m_payload.end(), bytes, bytes + size);
    }
    void Zeros(std::size_t size) { m_payload.resize(m_payload.size() + size); }
    /// A size is claimed that no bytes follow: readers compare it with the record's.
    void Claim(std::uint32_t size) { m_least = size > m_least ? size : m_least; }
    /// What was written from `start` on is the head of an array whose items the record had no bytes
    /// for. It keeps its claim at the record's end alone.
    void Starve(std::ptrdiff_t start);
    std::ptrdiff_t Size() const { return std::ssize(m_payload); }
    /// How many bytes every pixmap of the file has; none until one is written.
    std::optional<std::uint32_t>& PixmapLength() { return m_pixmapLength; }

private:
    void DropStarved();

    CWidthTable m_widths;
    std::vector<std::uint8_t> m_payload;
    std::size_t m_least = 0;
    std::ptrdiff_t m_starved = 0, m_starvedEnd = 0;
    std::optional<std::uint32_t> m_pixmapLength;
};

}  // namespace kestrail
