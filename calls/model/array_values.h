// Counted arrays and fixed items behind a pointer. Elements are held as plain native values, ready
// for the host entry, and become value objects only to be printed.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "calls/model/api_type.h"
#include "calls/model/data_values.h"

namespace kestrail {

/// The longest text that an array shows of its elements in the line of a call.
inline constexpr std::size_t kArrayTextLimit = 36;

/// Reads `count` elements of type T; what cannot be read is 0.
template <typename T>
void ReadElements(CTrace& trace, typename T::ValueType* elements, std::size_t count) {
    const std::int32_t width = trace.GetEsTypeSize(T::kTag);
    const bool native = width == 4 || width == -4 || width == 0;
    if (!native || (width != 4 && std::is_floating_point_v<typename T::ValueType>)) {
        for (std::size_t i = 0; i < count; ++i) elements[i] = T::ReadValue(trace);
        return;
    }
    // In pieces that fit into the stream's block whatever the count.
    constexpr std::size_t kPiece = 1 << 16;
    for (std::size_t done = 0; done < count; done += kPiece) {
        const std::size_t piece = count - done < kPiece ? count - done : kPiece;
        const auto bytes = static_cast<std::uint32_t>(piece * sizeof(*elements));
        if (!trace.Stream().Read(elements + done, bytes, true)) {
            std::memset(elements + done, 0, bytes);
        }
    }
}

template <typename T, typename Sink, typename Given>
void WriteElements(Sink& out, const Given* elements, std::size_t count) {
    if constexpr (std::is_arithmetic_v<Given>) {
        if (std::abs(out.Widths()[T::kTag]) == sizeof(Given)) {
            return out.Bytes(elements, count * sizeof(Given));
        }
    }
    for (std::size_t i = 0; i < count; ++i) T::Put(out, elements[i]);
}

/// How many items of an application's array there are.
inline std::uint32_t HeldItems(const void* items, std::int64_t count) {
    return items == nullptr || count < 0 ? 0 : static_cast<std::uint32_t>(count);
}

/// The pointer and the count of an array that holds `items`. False when no items follow.
bool WriteArrayHead(CRecordWriter& out, const TPointer& pointer, std::uint32_t count,
                    std::uint32_t items);

/// Appends one item: its element alone for the shape 1 by 1, else its rows in brackets. Stops early
/// once `out` is longer than `end`.
template <typename T, unsigned N, unsigned M>
void AppendItem(TextWriter& out, const typename T::ValueType* elements, std::size_t end) {
    T element;
    if constexpr (N * M == 1) {
        element.value = elements[0];
        element.AppendText(out);
    } else {
        out.Append("[ ");
        for (unsigned i = 0; i < N * M && out.Size() <= end; ++i) {
            if (i != 0) out.Append(i % M == 0 ? "; " : ", ");
            element.value = elements[i];
            element.AppendText(out);
        }
        out.Append(" ]");
    }
}

template <typename T, unsigned N, unsigned M>
void AppendItemDetail(TextWriter& out, const typename T::ValueType* elements, bool numeric) {
    T element;
    if constexpr (N * M > 1) out.Append("[ \n");
    for (unsigned i = 0; i < N * M; ++i) {
        if (i != 0) out.Append(i % M == 0 ? ";\n" : ", ");
        element.value = elements[i];
        if (numeric) {
            element.AppendNumericText(out);
        } else {
            element.AppendDetailText(out);
        }
    }
    if constexpr (N * M > 1) out.Append("\n]");
}

/// Appends "{ ", the items as far as they fit into the limit, and " }" or "... }".
/// `append(out, i, end)` appends item i, and may stop once `out` is longer than `end`.
template <typename Append>
void AppendItems(TextWriter& out, std::uint32_t count, Append append) {
    const std::size_t start = out.Size();
    const std::size_t end = start + kArrayTextLimit;
    out.Append("{ ");
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t before = out.Size();
        append(out, i, end);
        if (out.Size() >= end) {
            out.Truncate(before >= end ? before : end - 1);
            return out.Append("... }");
        }
        out.Append(i + 1 < count ? ", " : " }");
    }
}

/// An array of `count` items of N by M elements: pointer by width, count in 4 bytes, then the
/// elements unless the pointer is null.
template <typename T, unsigned N, unsigned M>
class SArrayPtr : public SApiTypeBase {
public:
    using ValueType = typename T::ValueType;
    static constexpr unsigned kItemSize = N * M;

    TPointer pointer;
    std::uint32_t count = 0;

    std::uint32_t GetCount() const { return count; }
    /// The items that are there, whatever the count says: none behind a null pointer, and no more
    /// than the record has bytes for.
    std::uint32_t ItemCount() const { return m_items; }
    ValueType GetItem(std::uint32_t index) const { return m_elements[index]; }
    /// All elements of all items in a row; null when there are none.
    ValueType* GetRawArray() const { return m_elements.get(); }

    void Read(CTrace& trace) {
        trace >> pointer;
        count = ReadStored(trace, 0, std::uint32_t{});
        CheckRecordedSize(trace, count);
        m_elements.reset();
        m_items = 0;
        // Kept: an array of no items is NULL, whatever was recorded; readers match the line.
        if (count == 0) pointer.value = 0;
        if (pointer.value == 0) return;
        m_items = std::min(count, Readable(trace));
        const std::size_t elements = std::size_t{m_items} * kItemSize;
        m_elements.reset(new ValueType[elements]);
        ReadElements<T>(trace, m_elements.get(), elements);
    }
    void Write(CRecordWriter& out) const {
        if (!WriteArrayHead(out, pointer, count, m_items)) return;
        WriteElements<T>(out, m_elements.get(), std::size_t{m_items} * kItemSize);
    }
    /// What is written of an application's array.
    template <typename Sink, typename Given>
    static void Put(Sink& out, const Given* elements, std::int64_t items) {
        const std::uint32_t held = HeldItems(elements, items);
        TPointer::Put(out, elements);
        out.UInt32(held);
        WriteElements<T>(out, elements, std::size_t{held} * kItemSize);
    }

    void AppendText(TextWriter& out) const override {
        if (!m_elements) return pointer.AppendText(out);
        AppendItems(out, m_items, [this](TextWriter& text, std::uint32_t i, std::size_t end) {
            AppendItem<T, N, M>(text, Item(i), end);
        });
    }
    void AppendNumericText(TextWriter& out) const override {
        if (!m_elements) return pointer.AppendText(out);
        out.Append("{ ");
        AppendAll(out, ", ", true);
        out.Append(" }");
    }
    void AppendDetailText(TextWriter& out) const override {
        if (!m_elements) return pointer.AppendText(out);
        AppendAll(out, "\n", false);
    }

protected:
    const ValueType* Item(std::uint32_t index) const {
        return m_elements.get() + std::size_t{index} * kItemSize;
    }
    std::unique_ptr<ValueType[]> m_elements;
    std::uint32_t m_items = 0;

private:
    /// How many items the rest of the record can hold.
    static std::uint32_t Readable(const CTrace& trace) {
        const std::int32_t width = trace.GetEsTypeSize(T::kTag);
        const std::int32_t bytes = width == 0 ? 4 : std::abs(width);
        return trace.RecordRemaining() / (static_cast<std::uint32_t>(bytes) * kItemSize);
    }
    void AppendAll(TextWriter& out, const char* separator, bool numeric) const {
        for (std::uint32_t i = 0; i < m_items; ++i) {
            if (i != 0) out.Append(separator);
            AppendItemDetail<T, N, M>(out, Item(i), numeric);
        }
    }
};

template <>
class SArrayPtr<SString, 1, 1> : public SApiTypeBase {
public:
    TPointer pointer;
    std::uint32_t count = 0;

    std::uint32_t GetCount() const { return count; }
    std::uint32_t ElementCount() const { return static_cast<std::uint32_t>(m_elements.size()); }
    const SString& GetItem(std::uint32_t index) const { return m_elements[index]; }

    void Read(CTrace& trace);
    void Write(CRecordWriter& out) const;
    template <typename Sink>
    static void Put(Sink& out, const char* const* texts, std::int64_t items) {
        const std::uint32_t held = HeldItems(texts, items);
        TPointer::Put(out, texts);
        out.UInt32(held);
        for (std::uint32_t i = 0; i < held; ++i) SString::Put(out, texts[i]);
    }
    void AppendText(TextWriter& out) const override;
    void AppendNumericText(TextWriter& out) const override;
    void AppendDetailText(TextWriter& out) const override;

private:
    std::vector<SString> m_elements;
};

/// One item of N by M elements, there unless the pointer is null.
template <typename T, unsigned N, unsigned M>
class SPtr : public SApiTypeBase {
public:
    using ValueType = typename T::ValueType;

    TPointer pointer;

    std::uint32_t ItemCount() const { return pointer.value != 0 ? 1 : 0; }
    /// The elements in a row; null behind a null pointer.
    const ValueType* GetRawArray() const { return pointer.value != 0 ? m_elements : nullptr; }

    void Read(CTrace& trace) {
        trace >> pointer;
        if (pointer.value != 0) ReadElements<T>(trace, m_elements, N * M);
    }
    void Write(CRecordWriter& out) const {
        out << pointer;
        if (pointer.value != 0) WriteElements<T>(out, m_elements, N * M);
    }
    template <typename Sink, typename Given>
    static void Put(Sink& out, const Given* elements) {
        TPointer::Put(out, elements);
        if (elements != nullptr) WriteElements<T>(out, elements, N * M);
    }

    void AppendText(TextWriter& out) const override {
        if (pointer.value == 0) return pointer.AppendText(out);
        AppendBracketed(out, "[ ", "; ", " ]", false);
    }
    void AppendNumericText(TextWriter& out) const override {
        if (pointer.value == 0) return pointer.AppendText(out);
        AppendBracketed(out, "[ \n", ";\n", "\n]", true);
    }
    void AppendDetailText(TextWriter& out) const override {
        if (pointer.value == 0) return pointer.AppendText(out);
        AppendBracketed(out, "[ \n", ";\n", "\n]", false);
    }

private:
    void AppendBracketed(TextWriter& out, const char* open, const char* row, const char* close,
                         bool numeric) const {
        T element;
        if constexpr (N * M > 1) out.Append(open);
        for (unsigned i = 0; i < N * M; ++i) {
            if (i != 0) out.Append(i % M == 0 ? row : ", ");
            element.value = m_elements[i];
            if (numeric) {
                element.AppendNumericText(out);
            } else {
                element.AppendText(out);
            }
        }
        if constexpr (N * M > 1) out.Append(close);
    }

    ValueType m_elements[N * M] = {};
};

}  // namespace kestrail
