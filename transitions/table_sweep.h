// Walking through the tables of two records that are compared, and finding the entries of one in
// the other, at any number of objects.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "state/state_table.h"

namespace kestrail {

/// The value at a position below `Count()`, of a table that is only read.
template <typename Table>
const typename Table::ValueType& ValueAt(const Table& table, std::int32_t position) {
    return *table.ValueAt(position);
}

/// Positions in a table by key. The table must not change while this is used.
template <typename Value>
class TKeyIndex {
public:
    using Table = TStateTable<Value>;

    explicit TKeyIndex(const Table& table) : m_table(table) {}

    /// The position of `key`, -1 when it is absent. Records of nearby frames have most of their
    /// entries at the same places, so `likely` is looked at before an index is made.
    std::int32_t Find(std::uint32_t key, std::int32_t likely) {
        if (likely < m_table.Count() && m_table.KeyAt(likely) == key) return likely;
        if (m_positions.empty()) Build();
        const auto found = std::lower_bound(m_positions.begin(), m_positions.end(),
                                            std::pair<std::uint32_t, std::int32_t>(key, 0));
        return found != m_positions.end() && found->first == key ? found->second : -1;
    }

    const Value* FindValue(std::uint32_t key, std::int32_t likely) {
        const std::int32_t position = Find(key, likely);
        return position >= 0 ? &ValueAt(m_table, position) : nullptr;
    }

private:
    void Build() {
        m_positions.reserve(static_cast<std::size_t>(m_table.Count()));
        for (std::int32_t i = 0; i < m_table.Count(); ++i) {
            m_positions.emplace_back(m_table.KeyAt(i), i);
        }
        std::sort(m_positions.begin(), m_positions.end());
    }

    const Table& m_table;
    std::vector<std::pair<std::uint32_t, std::int32_t>> m_positions;
};

}  // namespace kestrail
