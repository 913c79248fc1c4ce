// The table of a state record's objects, keyed by recorded names: a list in the order in which the
// names came up. Records are copied at every frame and change in a few entries, so copies share
// what none of them changed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>

#include "base/shared_vector.h"

namespace kestrail {

/// 2 to the power of `kRunBits` entries are copied when one of them is written.
template <typename Value, std::uint32_t kRunBits = 3>
class TStateTable {
public:
    using Key = std::uint32_t;
    using ValueType = Value;

    TStateTable() = default;
    /// The index goes with the copy: tables are copied to be written, and the original is only
    /// kept.
    TStateTable(const TStateTable& other)
        : m_keys(other.m_keys),
          m_values(other.m_values),
          m_index(std::move(other.m_index)),
          m_lastHit(other.m_lastHit) {}
    TStateTable(TStateTable&&) noexcept = default;
    TStateTable& operator=(TStateTable other) noexcept {
        std::swap(m_keys, other.m_keys);
        std::swap(m_values, other.m_values);
        std::swap(m_index, other.m_index);
        std::swap(m_lastHit, other.m_lastHit);
        return *this;
    }
    ~TStateTable() = default;

    /// The value of `key`, or null.
    const Value* Find(Key key) const {
        const std::int32_t slot = IndexOf(key);
        return slot < 0 ? nullptr : &At(slot);
    }
    /// The value to change. Valid until the table is changed otherwise.
    Value* Find(Key key) {
        const std::int32_t slot = IndexOf(key);
        return slot < 0 ? nullptr : &WriteAt(slot);
    }

    /// The value of `key`; a new entry with a default value when there is none.
    Value& GetOrCreate(Key key) {
        if (Value* found = Find(key)) return *found;
        m_lastHit = Count();
        Value& made = m_values.Append();
        m_keys.Append() = key;
        if (m_index) m_index->emplace(key, m_lastHit);
        return made;
    }

    /// Removes the entry. The last entry takes its slot, so a sweep that erases looks at the same
    /// index again.
    void Erase(Key key) {
        const std::int32_t slot = IndexOf(key);
        if (slot < 0) return;
        const std::int32_t last = Count() - 1;
        const Key lastKey = KeyAt(last);
        if (m_index) {
            (*m_index)[lastKey] = slot;
            m_index->erase(key);
        }
        if (slot != last) {
            Value moved = At(last);
            WriteAt(slot) = std::move(moved);
            m_keys.Write(static_cast<std::uint32_t>(slot)) = lastKey;
        }
        m_values.RemoveLast();
        m_keys.RemoveLast();
    }

    void Clear() { *this = {}; }

    std::int32_t Count() const { return static_cast<std::int32_t>(m_keys.Size()); }
    /// -1 when there is none.
    std::int32_t IndexOf(Key key) const {
        if (Holds(static_cast<std::uint32_t>(m_lastHit), key)) return m_lastHit;
        return IndexOfAnother(key);
    }
    /// 0 out of range.
    Key KeyAt(std::int32_t index) const {
        return InUse(index) ? m_keys[static_cast<std::uint32_t>(index)] : 0;
    }
    /// Null out of range.
    const Value* ValueAt(std::int32_t index) const { return InUse(index) ? &At(index) : nullptr; }
    Value* ValueAt(std::int32_t index) { return InUse(index) ? &WriteAt(index) : nullptr; }

private:
    /// The keys of a table that is no longer than one run of them are searched one by one.
    using Keys = TSharedVector<Key, 6>;
    /// A tree and no hash table: a trace may hold names that were chosen to collide.
    using Index = std::map<Key, std::int32_t>;

    bool InUse(std::int32_t index) const { return index >= 0 && index < Count(); }

    const Value& At(std::int32_t slot) const { return m_values[static_cast<std::uint32_t>(slot)]; }
    Value& WriteAt(std::int32_t slot) { return m_values.Write(static_cast<std::uint32_t>(slot)); }

    bool Holds(std::uint32_t slot, Key key) const {
        return slot < m_keys.Size() && m_keys[slot] == key;
    }
    /// The slot of another key than the last one.
    [[gnu::noinline]] std::int32_t IndexOfAnother(Key key) const {
        // Objects are used in their order; hosts hand out names upwards from 1.
        for (const std::uint32_t guess : {static_cast<std::uint32_t>(m_lastHit) + 1, key - 1}) {
            if (Holds(guess, key)) return m_lastHit = static_cast<std::int32_t>(guess);
        }
        const std::int32_t slot = m_keys.Size() <= Keys::kRun ? Search(key) : LookUp(key);
        if (slot >= 0) m_lastHit = slot;
        return slot;
    }
    std::int32_t Search(Key key) const {
        const Key* keys = m_keys.OnlyRun();
        const Key* found = std::find(keys, keys + m_keys.Size(), key);
        return found != keys + m_keys.Size() ? static_cast<std::int32_t>(found - keys) : -1;
    }
    std::int32_t LookUp(Key key) const {
        if (!m_index) BuildIndex();
        const auto found = m_index->find(key);
        return found != m_index->end() ? found->second : -1;
    }
    void BuildIndex() const {
        m_index = std::make_unique<Index>();
        for (std::int32_t slot = 0; slot < Count(); ++slot) m_index->emplace(KeyAt(slot), slot);
    }

    /// Keys and values by slot. Keys hardly ever change, so they stand apart.
    Keys m_keys;
    TSharedVector<Value, kRunBits> m_values;
    /// Slots by key, once a key was looked for in a long table.
    mutable std::unique_ptr<Index> m_index;
    mutable std::int32_t m_lastHit = 0;
};

}  // namespace kestrail
