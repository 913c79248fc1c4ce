// The associative container of name translation: a flat array of entries, searched linearly. Keys
// stand packed in an array of their own, so that a search through a thousand names reads
// consecutive memory; longer tables have an index. Entries never move, so a pointer to a value
// stays valid until that entry is erased. Includes nothing of ours: every room may use it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>

namespace kestrail {

template <typename Key, typename Value>
class TNameTable {
public:
    struct SNameEntry {
        Key key{};
        Value value{};
    };

    TNameTable() : m_keys(new Key[kFirstCapacity]), m_entries(new Slot[kFirstCapacity]) {}
    TNameTable(const TNameTable& other) : TNameTable() { *this = other; }
    TNameTable& operator=(const TNameTable& other) {
        if (this == &other) return *this;
        m_capacity = other.m_capacity;
        m_keys.reset(new Key[static_cast<std::size_t>(m_capacity)]);
        m_entries.reset(new Slot[static_cast<std::size_t>(m_capacity)]);
        m_lastHit = 0;
        m_index.clear();
        for (m_count = 0; m_count < other.m_count; ++m_count) {
            m_keys[m_count] = other.m_keys[m_count];
            m_entries[m_count] = std::make_unique<SNameEntry>(*other.m_entries[m_count]);
        }
        return *this;
    }
    ~TNameTable() = default;

    /// The value of `key`, or null.
    Value* Find(Key key) {
        const std::int32_t slot = SlotOf(key);
        return slot < 0 ? nullptr : &m_entries[slot]->value;
    }
    const Value* Find(Key key) const { return const_cast<TNameTable*>(this)->Find(key); }

    /// The value of `key`; a new entry with a default value when there is none.
    Value& GetOrCreate(Key key) {
        if (Value* found = Find(key)) return *found;
        if (m_count == m_capacity) Grow();
        m_keys[m_count] = key;
        m_entries[m_count] = std::make_unique<SNameEntry>(SNameEntry{key, Value{}});
        m_lastHit = m_count;
        if (!m_index.empty()) m_index.emplace(key, m_count);
        return m_entries[m_count++]->value;
    }

    /// Removes the entry. The last entry takes its slot, so a sweep that erases looks at the same
    /// index again.
    void Erase(Key key) {
        const std::int32_t slot = SlotOf(key);
        if (slot < 0) return;
        const std::int32_t last = m_count - 1;
        if (!m_index.empty()) {
            m_index[m_keys[last]] = slot;
            m_index.erase(key);
        }
        m_entries[slot] = std::move(m_entries[last]);
        m_keys[slot] = m_keys[last];
        m_entries[last].reset();
        m_count = last;
    }

    /// Removes all entries and keeps the capacity.
    void Clear() {
        for (std::int32_t i = 0; i < m_count; ++i) m_entries[i].reset();
        m_count = 0;
        m_lastHit = 0;
        m_index.clear();
    }

    std::int32_t Count() const { return m_count; }
    std::int32_t Capacity() const { return m_capacity; }
    Key KeyAt(std::int32_t index) const { return InUse(index) ? m_keys[index] : Key{}; }
    Value* ValueAt(std::int32_t index) { return InUse(index) ? &m_entries[index]->value : nullptr; }

private:
    using Slot = std::unique_ptr<SNameEntry>;
    static constexpr std::int32_t kFirstCapacity = 10;

    bool InUse(std::int32_t index) const { return index >= 0 && index < m_count; }

    bool Holds(std::int32_t slot, Key key) const { return slot < m_count && m_keys[slot] == key; }

    std::int32_t SlotOf(Key key) const {
        // Objects are named again and again, or one after the other.
        if (Holds(m_lastHit, key)) return m_lastHit;
        if (Holds(m_lastHit + 1, key)) return ++m_lastHit;
        constexpr std::int32_t kLongestSearch = 1024;
        const std::int32_t slot = m_count <= kLongestSearch ? Search(key) : LookUp(key);
        if (slot >= 0) m_lastHit = slot;
        return slot;
    }

    std::int32_t Search(Key key) const {
        // Whole blocks are compared without a branch for each key, which compilers turn into
        // vector instructions; the block with the hit is then looked at key by key.
        constexpr std::int32_t kBlock = 32;
        const Key* keys = m_keys.get();
        std::int32_t first = 0;
        for (; first + kBlock <= m_count; first += kBlock) {
            Key hit = 0;
            for (std::int32_t i = 0; i < kBlock; ++i) {
                hit |= static_cast<Key>(keys[first + i] == key ? ~Key{0} : Key{0});
            }
            if (hit != 0) break;
        }
        for (; first < m_count; ++first) {
            if (keys[first] == key) return first;
        }
        return -1;
    }

    std::int32_t LookUp(Key key) const {
        if (m_index.empty()) {
            for (std::int32_t slot = 0; slot < m_count; ++slot) m_index.emplace(m_keys[slot], slot);
        }
        const auto found = m_index.find(key);
        return found != m_index.end() ? found->second : -1;
    }

    void Grow() {
        const std::int32_t capacity = m_capacity * 2;
        std::unique_ptr<Key[]> keys(new Key[static_cast<std::size_t>(capacity)]);
        std::unique_ptr<Slot[]> entries(new Slot[static_cast<std::size_t>(capacity)]);
        for (std::int32_t i = 0; i < m_count; ++i) {
            keys[i] = m_keys[i];
            entries[i] = std::move(m_entries[i]);
        }
        m_keys = std::move(keys);
        m_entries = std::move(entries);
        m_capacity = capacity;
    }

    std::unique_ptr<Key[]> m_keys;
    std::unique_ptr<Slot[]> m_entries;
    std::int32_t m_count = 0;
    std::int32_t m_capacity = kFirstCapacity;
    mutable std::int32_t m_lastHit = 0;
    /// Of a long table, once it has been searched. Names come from the trace, so that no hash would
    /// be safe from a trace made to meet it.
    mutable std::map<Key, std::int32_t> m_index;
};

}  // namespace kestrail
