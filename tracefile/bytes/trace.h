// What call constructors read from: the stream, the file's version and its table of type widths;
// and where the calls go.
#pragma once

#include <cstdint>
#include <optional>

#include "base/object_arena.h"
#include "tracefile/bytes/io_manager.h"

namespace kestrail {

class CTrace {
public:
    /// `typeSizes` holds one signed width for each type tag and one spare entry behind them, which
    /// the tag equal to `typeCount` reads. Calls stand in `callMemory`. Nothing of it is owned.
    CTrace(IOManager* stream, std::uint32_t version, bool recordData, const std::int8_t* typeSizes,
           std::int8_t typeCount, CObjectArena& callMemory)
        : m_version(version),
          m_stream(stream),
          m_callMemory(&callMemory),
          m_recordData(recordData),
          m_typeSizes(typeSizes),
          m_typeCount(typeCount),
          m_usualWidths(AreUsual(typeSizes, typeCount)) {}
    virtual ~CTrace() = default;

    /// The width in bytes of a type tag; negative for a signed type, 0 for the reader's own width.
    /// Throws the text "Undefined Es Type in record library" for a tag beyond the table.
    std::int32_t GetEsTypeSize(std::uint16_t tag) const {
        // Kept: the tag just behind the table passes; old recordings lack that entry.
        if (static_cast<std::int32_t>(tag) > m_typeCount) [[unlikely]]
            ThrowUndefinedType();
        return m_typeSizes[tag];
    }

    /// How wide a value of a tag usually is: 4 bytes, flags and bytes 1. 0 for tags that are not
    /// read that way.
    static constexpr std::uint32_t UsualWidth(std::uint16_t tag) {
        if (tag >= kUsualTags) return 0;
        return tag == kBooleanTag || tag == kUbyteTag ? 1 : 4;
    }
    /// All tags that have a usual width have it here.
    bool HasUsualWidths() const { return m_usualWidths; }

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
    static constexpr std::uint16_t kUsualTags = 28;
    static constexpr std::uint16_t kBooleanTag = 13;
    static constexpr std::uint16_t kUbyteTag = 19;

    [[noreturn]] static void ThrowUndefinedType();
    static bool AreUsual(const std::int8_t* typeSizes, std::int8_t typeCount);

    std::uint32_t m_version;
    IOManager* m_stream;
    CObjectArena* m_callMemory;
    bool m_recordData;
    const std::int8_t* m_typeSizes;
    std::int8_t m_typeCount;
    bool m_usualWidths;
    std::uint32_t m_recordSize = 0;
    std::uint64_t m_recordEnd = 0;
    std::uint32_t m_callNumber = 0;
    std::optional<std::uint32_t> m_pixmapLength;
};

}  // namespace kestrail
