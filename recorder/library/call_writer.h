// Writes the record of one call to the end of the recording.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

#include "calls/model/egl_values.h"
#include "recorder/library/recorder.h"
#include "recorder/library/thread.h"
#include "tracefile/bytes/file_frame.h"

namespace kestrail::recorder {

/// What a pointer points at, or `room` where it is null.
template <typename Number>
std::int64_t Pointed(const Number* pointer, std::int64_t room) {
    return pointer != nullptr ? *pointer : room;
}

/// The name of an object in the recording; 0 stays what it is.
inline std::uint32_t Raised(GLuint name, std::uint32_t by) {
    return name != 0 ? name + by : 0;
}

/// Holds the lock of the recording for as long as it lives: what takes time is found out before.
/// What is put has to stay as long.
class CCallWriter {
public:
    CCallWriter(CThread& thread, std::uint16_t id) : m_recorder(CRecorder::Instance()) {
        const std::uint32_t number = thread.Number();
        const bool taken = m_recorder.Lock().Take(number);
        if (taken) [[likely]] {
            if (!m_recorder.IsThread(number)) [[unlikely]]
                thread.BeRecorded();
            m_start = m_recorder.Room(kUsualRoom);
        }
        if (m_start == nullptr) [[unlikely]]
            GoElsewhere(0, !taken);
        m_at = m_start;
        m_limit = m_start + kUsualRoom;
        m_at += sizeof(std::uint32_t);
        Bytes(&id, sizeof id);
    }
    ~CCallWriter() {
        if (m_elsewhere != nullptr) [[unlikely]] {
            AppendElsewhere();
            return;
        }
        m_recorder.Commit(Finish());
        m_recorder.Lock().Release();
    }
    CCallWriter(const CCallWriter&) = delete;
    CCallWriter& operator=(const CCallWriter&) = delete;

    /// A value as its class has it written.
    template <typename Value, typename... Given>
    void Put(Given... given) {
        Value::Put(*this, given...);
    }
    /// Single values one behind the other.
    template <typename... Values, typename... Given>
    void PutAll(Given... given) {
        (Values::Put(*this, given), ...);
    }
    /// Names of objects, raised.
    void PutNames(const GLuint* names, std::int64_t items, std::uint32_t raised) {
        const std::uint32_t held = HeldItems(names, items);
        Put<TPointer>(names);
        UInt32(held);
        for (std::uint32_t i = 0; i < held; ++i) UInt32(Raised(names[i], raised));
    }
    /// A text that the host has written, which may have had no room.
    void PutText(const char* text, std::int64_t room) {
        const std::size_t size = text == nullptr || room <= 0 ? 0 : static_cast<std::size_t>(room);
        Put<SString>(text, strnlen(text != nullptr ? text : "", size));
    }

    // What values are written by.
    struct SWidths {
        constexpr std::int32_t operator[](std::uint16_t tag) const { return kWrittenWidths[tag]; }
    };
    static constexpr SWidths Widths() { return {}; }
    [[gnu::always_inline]] void Number(std::int32_t width, std::int64_t number) {
        // Of a known size, each is a single move.
        if (width == 1 || width == -1) return Bytes(&number, 1);
        if (width == -8) return Bytes(&number, 8);
        Bytes(&number, 4);
    }
    void UInt32(std::uint32_t number) { Bytes(&number, sizeof number); }
    void Bytes(const void* bytes, std::size_t size) {
        if (!MakeRoom(size, bytes)) return;
        if (size != 0) std::memcpy(m_at, bytes, size);
        m_at += size;
    }

    /// Items that stand apart in memory, put close together.
    void Spread(const void* items, std::size_t itemSize, std::size_t stride, std::size_t count) {
        if (stride == itemSize) return Bytes(items, itemSize * count);
        MakeRoom(itemSize * count);
        const auto* from = static_cast<const std::uint8_t*>(items);
        for (std::size_t i = 0; i < count; ++i, from += stride, m_at += itemSize) {
            std::memcpy(m_at, from, itemSize);
        }
    }

    /// The record, small as it is, to which nothing is put any more.
    std::vector<std::uint8_t> Record() {
        Finish();
        return {m_start, m_at};
    }

    /// Where in the recording what is put next will stand.
    std::uint64_t Place() const {
        return m_recorder.End() + static_cast<std::uint64_t>(m_at - m_start);
    }

private:
    static constexpr std::size_t kUsualRoom = 4096;
    static constexpr std::size_t kFrameBytes = sizeof(std::uint32_t) + sizeof(std::uint16_t);

    /// Bytes that stay where they are, and how many of the others come before them.
    struct SLarge {
        std::size_t before;
        const std::uint8_t* bytes;
        std::size_t size;
    };
    /// A record that has no room in the ring, or isn't to be appended.
    struct SElsewhere {
        std::vector<std::uint8_t> bytes;
        std::vector<SLarge> large;
        bool dropped = false;
    };

    /// Fills in the size of a record that stands in one piece.
    std::size_t Finish() {
        const auto size = static_cast<std::size_t>(m_at - m_start);
        const auto payload = static_cast<std::uint32_t>(size - kFrameBytes);
        std::memcpy(m_start, &payload, sizeof payload);
        return size;
    }
    /// Makes room for more bytes, in the ring or, for large records, beside it. False when `bytes`
    /// are left where they are until the record is appended.
    bool MakeRoom(std::size_t size, const void* bytes = nullptr) {
        return size <= static_cast<std::size_t>(m_limit - m_at) || Grow(size, bytes);
    }
    bool Grow(std::size_t size, const void* bytes);
    void GoElsewhere(std::size_t size, bool dropped = false);
    void AppendElsewhere();

    CRecorder& m_recorder;
    std::uint8_t* m_start = nullptr;
    std::uint8_t* m_at = nullptr;
    std::uint8_t* m_limit = nullptr;
    std::unique_ptr<SElsewhere> m_elsewhere;
};

}  // namespace kestrail::recorder
