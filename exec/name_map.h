// One table of translations from the names of the recording to those of the host.
#pragma once

#include <cstdint>

#include "base/name_table.h"

namespace kestrail {

template <typename Live>
class TNameMap {
public:
    /// `miss` is what an unknown name translates to.
    explicit TNameMap(Live miss) : m_miss(miss) {}

    Live Get(std::uint32_t recorded) const {
        const Live* live = m_names.Find(recorded);
        return live != nullptr ? *live : m_miss;
    }
    void Set(std::uint32_t recorded, Live live) { m_names.GetOrCreate(recorded) = live; }
    void Erase(std::uint32_t recorded) { m_names.Erase(recorded); }
    void Clear() { m_names.Clear(); }
    Live Miss() const { return m_miss; }

private:
    TNameTable<std::uint32_t, Live> m_names;
    Live m_miss;
};

}  // namespace kestrail
