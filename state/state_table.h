// The table of a state record's objects, keyed by recorded names: flat, searched linearly. Records
// are copied at every frame and change in a few entries, so entries stand in small runs that copies
// share until one of them is written.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "base/shared_array.h"

namespace kestrail {

/// `kRun` entries are copied when one of them is written.
template <typename Value, std::uint32_t kRun = 8>
class TStateTable {
public:
    using Key = std::uint32_t;
    using ValueType = Value;

    /// The value of `key`, or null.
    const Value* Find(Key key) const {
        const std::int32_t slot = SlotOf(key);
        return slot < 0 ? nullptr : &At(slot);
    }
    /// The value to change. Valid until the table is changed otherwise.
    Value* Find(Key key) {
        const std::int32_t slot = SlotOf(key);
        return slot < 0 ? nullptr : &WriteAt(slot);
    }

    /// The value of `key`; a new entry with a default value when there is none.
    Value& GetOrCreate(Key key) {
        if (Value* found = Find(key)) return *found;
        if (m_runs.size() * kRun == m_keys.Size()) m_runs.emplace_back();
        Value& made = m_runs.back().Append();
        m_keys.Append() = key;
        m_lastHit = Count() - 1;
        return made;
    }

    /// Removes the entry. The last entry takes its slot, so a sweep that erases looks at the same
    /// index again.
    void Erase(Key key) {
        const std::int32_t slot = SlotOf(key);
        if (slot < 0) return;
        const std::int32_t last = Count() - 1;
        if (slot != last) {
            WriteAt(slot) = At(last);
            m_keys.Write(static_cast<std::uint32_t>(slot)) = KeyAt(last);
        }
        m_keys.RemoveLast();
        m_runs.back().RemoveLast();
        if (m_runs.back().Empty()) m_runs.pop_back();
    }

    void Clear() {
        m_keys = {};
        m_runs.clear();
    }

    std::int32_t Count() const { return static_cast<std::int32_t>(m_keys.Size()); }
    /// 0 out of range.
    Key KeyAt(std::int32_t index) const {
        return InUse(index) ? m_keys[static_cast<std::uint32_t>(index)] : 0;
    }
    /// Null out of range.
    const Value* ValueAt(std::int32_t index) const { return InUse(index) ? &At(index) : nullptr; }
    Value* ValueAt(std::int32_t index) { return InUse(index) ? &WriteAt(index) : nullptr; }

private:
    bool InUse(std::int32_t index) const { return index >= 0 && index < Count(); }

    const Value& At(std::int32_t slot) const {
        const auto index = static_cast<std::uint32_t>(slot);
        return m_runs[index / kRun][index % kRun];
    }
    Value& WriteAt(std::int32_t slot) {
        const auto index = static_cast<std::uint32_t>(slot);
        return m_runs[index / kRun].Write(index % kRun);
    }

    std::int32_t SlotOf(Key key) const {
        const auto holds = [&](std::uint32_t slot) {
            return slot < m_keys.Size() && m_keys[slot] == key;
        };
        if (holds(static_cast<std::uint32_t>(m_lastHit))) return m_lastHit;
        // Hosts hand out names upwards from 1, and locations from 0.
        for (const std::uint32_t guess : {key - 1, key}) {
            if (holds(guess)) return m_lastHit = static_cast<std::int32_t>(guess);
        }
        const Key* found = std::find(m_keys.begin(), m_keys.end(), key);
        if (found == m_keys.end()) return -1;
        return m_lastHit = static_cast<std::int32_t>(found - m_keys.begin());
    }

    TSharedArray<Key> m_keys;
    std::vector<TSharedArray<Value>> m_runs;
    mutable std::int32_t m_lastHit = 0;
};

}  // namespace kestrail
