// The client vertex arrays that a draw call carries: the memory that its enabled arrays pointed at
// when it was recorded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "calls/model/data_values.h"

namespace kestrail {

/// A list that stands in the memory of a trace, as its call does.
template <typename T>
class TCallList {
public:
    TCallList() = default;
    TCallList(const TCallList&) = delete;
    TCallList& operator=(const TCallList&) = delete;
    ~TCallList() { std::destroy_n(m_items, m_size); }

    /// Adds an item at the end.
    template <typename... Values>
    T& Append(CObjectArena& memory, Values&&... values) {
        if (m_size == m_room) Grow(memory);
        return *new (m_items + m_size++) T(std::forward<Values>(values)...);
    }
    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    T* begin() { return m_items; }
    const T* begin() const { return m_items; }
    const T* end() const { return m_items + m_size; }
    T& operator[](std::size_t index) { return m_items[index]; }
    const T& operator[](std::size_t index) const { return m_items[index]; }

private:
    static_assert(alignof(T) <= CObjectArena::kAlignment);

    void Grow(CObjectArena& memory) {
        constexpr std::uint32_t kUsual = 2;
        m_room = m_room == 0 ? kUsual : 2 * m_room;
        T* const items = static_cast<T*>(memory.Take(m_room * sizeof(T)));
        std::uninitialized_move_n(m_items, m_size, items);
        std::destroy_n(m_items, m_size);
        m_items = items;
    }

    T* m_items = nullptr;
    std::uint32_t m_size = 0;
    std::uint32_t m_room = 0;
};

template <typename T>
struct TVectorItem {
    using Stored = T;
};
/// Pointed-at items are owned; one that was taken away is none.
template <typename T>
struct TVectorItem<T*> {
    using Stored = std::optional<T>;
};

/// A vector without a form of its own on the stream, and without a text.
template <typename T>
class SVectorData : public SApiTypeBase {
public:
    using Stored = typename TVectorItem<T>::Stored;

    TCallList<Stored> items;

    void AppendText(TextWriter&) const override {}
};

/// Reads captured arrays up to the end of the record. `start` is the stream's position behind the
/// record's error field. With `indexed`, each array has its attribute's index before it; without,
/// -1 stands for it.
void ReadClientArrays(CTrace& trace, std::uint32_t start, bool indexed,
                      SVectorData<SDataPtr*>& arrays, SVectorData<int>& indices);
void WriteClientArrays(CRecordWriter& out, bool indexed, const SVectorData<SDataPtr*>& arrays,
                       const SVectorData<int>& indices);

}  // namespace kestrail
