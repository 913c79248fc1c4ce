// Writes the record of one call to the end of the recording.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

#include "calls/model/array_values.h"
#include "recorder/library/recorder.h"
#include "recorder/library/thread.h"

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
        PutBytes(&id, sizeof id);
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

    /// A single value. Of handles and pointers the lower half is kept, but never 0 for one that
    /// isn't null.
    template <typename Value, typename Given>
    void Put(Given given) {
        using Stored = typename Value::ValueType;
        constexpr std::size_t kWidth = Width(Value::kTag);
        if constexpr (std::is_pointer_v<Given>) {
            const auto address = reinterpret_cast<std::uintptr_t>(given);
            auto low = static_cast<std::uint32_t>(address);
            if (low == 0 && address != 0) low = 1;
            PutNumber<kWidth>(low);
        } else if constexpr (std::is_floating_point_v<Stored>) {
            const float value = given;
            PutBytes(&value, sizeof value);
        } else {
            PutNumber<kWidth>(given);
        }
    }

    /// Single values one behind the other.
    template <typename... Values, typename... Given>
    requires(sizeof...(Values) > 1 &&
             sizeof...(Values) == sizeof...(Given)) void Put(Given... given) {
        (Put<Values>(given), ...);
    }

    /// A block: bytes, or none where the application gave none or an offset.
    void PutBlock(const void* pointer, std::int64_t size) {
        PutBlock(pointer, pointer, size < 0 ? 0 : static_cast<std::size_t>(size));
    }
    void PutBlock(const void* pointer, const void* bytes, std::size_t size) {
        const std::size_t held = bytes == nullptr ? 0 : size;
        Put<TPointer>(pointer);
        PutNumber<4>(held);
        PutBytes(bytes, held);
    }

    /// An array of `items` items behind a pointer.
    template <typename Value, unsigned kItemSize, typename Given>
    void PutArray(const Given* elements, std::int64_t items) {
        const std::size_t count =
            elements == nullptr || items < 0 ? 0 : static_cast<std::size_t>(items);
        Put<TPointer>(elements);
        PutNumber<4>(count);
        PutElements<Value>(elements, count * kItemSize);
    }
    /// The same of names of objects, raised.
    void PutNames(const GLuint* names, std::int64_t items, std::uint32_t raised) {
        const std::size_t count =
            names == nullptr || items < 0 ? 0 : static_cast<std::size_t>(items);
        Put<TPointer>(names);
        PutNumber<4>(count);
        for (std::size_t i = 0; i < count; ++i) PutNumber<4>(Raised(names[i], raised));
    }
    /// One item without a count.
    template <typename Value, unsigned kItemSize, typename Given>
    void PutItem(const Given* elements) {
        Put<TPointer>(elements);
        if (elements != nullptr) PutElements<Value>(elements, kItemSize);
    }

    void PutString(const void* text, std::size_t length) {
        Put<TPointer>(text);
        PutNumber<4>(text != nullptr ? length : 0);
        if (text != nullptr) PutBytes(text, length);
    }
    void PutString(const void* text) {
        PutString(text, text != nullptr ? std::strlen(static_cast<const char*>(text)) : 0);
    }

    /// A text that the host has written, which may have had no room.
    void PutText(const char* text, std::int64_t room) {
        const std::size_t size = text == nullptr || room <= 0 ? 0 : static_cast<std::size_t>(room);
        PutString(text, strnlen(text != nullptr ? text : "", size));
    }
    void PutStrings(const char* const* texts, std::int64_t count) {
        const std::size_t held =
            texts == nullptr || count < 0 ? 0 : static_cast<std::size_t>(count);
        Put<TPointer>(texts);
        PutNumber<4>(held);
        for (std::size_t i = 0; i < held; ++i) PutString(texts[i]);
    }

    /// Pairs that EGL_NONE ends, with it.
    template <typename Given>
    void PutAttributes(const Given* list) {
        std::uint32_t count = 0;
        if (list != nullptr) {
            while (list[count] != EGL_NONE) count += 2;
            ++count;
        }
        PutArray<TEGLint, 1>(list, count);
    }

    template <std::size_t kWidth, typename Number>
    void PutNumber(Number number) {
        if constexpr (kWidth == 1) {
            const auto value = static_cast<std::uint8_t>(number);
            PutBytes(&value, 1);
        } else if constexpr (kWidth == 4) {
            const auto value = static_cast<std::uint32_t>(number);
            PutBytes(&value, 4);
        } else {
            static_assert(kWidth == 8);
            const auto value = static_cast<std::uint64_t>(number);
            PutBytes(&value, 8);
        }
    }
    void PutBytes(const void* bytes, std::size_t size) {
        if (!MakeRoom(size, bytes)) return;
        if (size != 0) std::memcpy(m_at, bytes, size);
        m_at += size;
    }
    /// Items that stand apart in memory, put close together.
    void PutSpread(const void* items, std::size_t itemSize, std::size_t stride, std::size_t count) {
        if (stride == itemSize) return PutBytes(items, itemSize * count);
        MakeRoom(itemSize * count);
        const auto* from = static_cast<const std::uint8_t*>(items);
        for (std::size_t i = 0; i < count; ++i, from += stride, m_at += itemSize) {
            std::memcpy(m_at, from, itemSize);
        }
    }

    /// The record, small as it is, to which nothing is put any more.
    std::vector<std::uint8_t> Bytes() {
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

    /// The widths that a trace of ours says for its values.
    static constexpr std::size_t Width(std::uint16_t tag) {
        if (CWidthTable::Usual(tag) != 0) return CWidthTable::Usual(tag);
        return tag == TGLuint64::kTag ? 8 : 4;
    }

    template <typename Value, typename Given>
    void PutElements(const Given* elements, std::size_t count) {
        if constexpr (std::is_arithmetic_v<Given> && sizeof(Given) == Width(Value::kTag)) {
            PutBytes(elements, count * sizeof(Given));
        } else {
            for (std::size_t i = 0; i < count; ++i) Put<Value>(elements[i]);
        }
    }

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
