// The table of a state record's objects, keyed by recorded names: flat, searched linearly. Records
// are copied at every frame and change in a few entries, so entries stand in small runs that copies
// share until one of them is written.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "base/shared.h"

namespace kestrail {

template <typename Value>
class TStateTable {
public:
    using Key = std::uint32_t;

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
        if (m_runs.size() * kRun == m_keys->size()) m_runs.emplace_back();
        m_keys.Write().push_back(key);
        m_lastHit = Count() - 1;
        return m_runs.back().Write().emplace_back();
    }

    /// Removes the entry. The last entry takes its slot, so a sweep that erases looks at the same
    /// index again.
    void Erase(Key key) {
        const std::int32_t slot = SlotOf(key);
        if (slot < 0) return;
        const std::int32_t last = Count() - 1;
        if (slot != last) WriteAt(slot) = At(last);
        std::vector<Key>& keys = m_keys.Write();
        keys[static_cast<std::size_t>(slot)] = keys.back();
        keys.pop_back();
        m_runs.back().Write().pop_back();
        if (m_runs.back()->empty()) m_runs.pop_back();
    }

    void Clear() {
        m_keys = {};
        m_runs.clear();
    }

    std::int32_t Count() const { return static_cast<std::int32_t>(m_keys->size()); }
    /// 0 out of range.
    Key KeyAt(std::int32_t index) const {
        return InUse(index) ? (*m_keys)[static_cast<std::size_t>(index)] : 0;
    }
    /// Null out of range.
    const Value* ValueAt(std::int32_t index) const { return InUse(index) ? &At(index) : nullptr; }
    Value* ValueAt(std::int32_t index) { return InUse(index) ? &WriteAt(index) : nullptr; }

private:
    static constexpr std::size_t kRun = 16;

    bool InUse(std::int32_t index) const { return index >= 0 && index < Count(); }

    const Value& At(std::int32_t slot) const {
        const auto index = static_cast<std::size_t>(slot);
        return (*m_runs[index / kRun])[index % kRun];
    }
    Value& WriteAt(std::int32_t slot) {
        const auto index = static_cast<std::size_t>(slot);
        return m_runs[index / kRun].Write()[index % kRun];
    }

    std::int32_t SlotOf(Key key) const {
        const std::vector<Key>& keys = *m_keys;
        const auto hint = static_cast<std::size_t>(m_lastHit);
        if (hint < keys.size() && keys[hint] == key) return m_lastHit;
        const auto found = std::find(keys.begin(), keys.end(), key);
        if (found == keys.end()) return -1;
        return m_lastHit = static_cast<std::int32_t>(found - keys.begin());
    }

    TShared<std::vector<Key>> m_keys;
    std::vector<TShared<std::vector<Value>>> m_runs;
    mutable std::int32_t m_lastHit = 0;
};

}  // namespace kestrail
