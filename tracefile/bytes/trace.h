// What calls are read from: the stream, the file's version and its table of type widths;
// and where the calls go.
#pragma once

#include <cstdint>
#include <optional>

#include "base/object_arena.h"
#include "tracefile/bytes/io_manager.h"
#include "tracefile/bytes/width_table.h"

namespace kestrail {

class CTrace {
public:
    /// `typeSizes` and `typeCount` are a `CWidthTable`. Calls stand in `callMemory`. Nothing of it
    /// is owned.
    CTrace(IOManager* stream, std::uint32_t version, bool recordData, const std::int8_t* typeSizes,
           std::int8_t typeCount, CObjectArena& callMemory)
        : m_version(version),
          m_stream(stream),
          m_callMemory(&callMemory),
          m_recordData(recordData),
          m_widths(typeSizes, typeCount) {}
    virtual ~CTrace() = default;

    const CWidthTable& Widths() const { return m_widths; }
    std::int32_t GetEsTypeSize(std::uint16_t tag) const { return m_widths[tag]; }

    IOManager& Stream() const { return *m_stream; }
    CObjectArena& CallMemory() const { return *m_callMemory; }
    std::uint32_t Version() const { return m_version; }
    bool RecordData() const { return m_recordData; }
    std::uint32_t GetRecordSize() const { return m_recordSize; }
    /// Of the record whose payload the stream stands at.
    void SetRecordSize(std::uint32_t size) {
        m_recordSize = size;
        m_recordEnd = std::uint64_t{m_stream->Tell()} + size;
    }
    /// Bytes that the record still has. What claims more of them gets no room for it.
    std::uint32_t RecordRemaining() const {
        const std::uint32_t position = m_stream->Tell();
        return position < m_recordEnd ? static_cast<std::uint32_t>(m_recordEnd - position) : 0;
    }
    /// The 1-based number that the call being read will have.
    std::uint32_t& CallNumber() { return m_callNumber; }
    /// How many bytes every pixmap has; none until one is read.
    std::optional<std::uint32_t>& PixmapLength() { return m_pixmapLength; }

private:
    std::uint32_t m_version;
    IOManager* m_stream;
    CObjectArena* m_callMemory;
    bool m_recordData;
    CWidthTable m_widths;
    std::uint32_t m_recordSize = 0;
    std::uint64_t m_recordEnd = 0;
    std::uint32_t m_callNumber = 0;
    std::optional<std::uint32_t> m_pixmapLength;
};

}  // namespace kestrail
