// The calls that make, bind and delete names, for any table of names.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "calls/model/array_values.h"
#include "exec/name_map.h"
#include "exec/played.h"

namespace kestrail {

using SNameArray = SArrayPtr<TGLuint, 1, 1>;

/// Room for the live names of one call, without an allocation for the usual few.
class CLiveNames {
public:
    explicit CLiveNames(std::int32_t count) {
        if (count > static_cast<std::int32_t>(m_few.size())) {
            m_many.resize(static_cast<std::size_t>(count));
        }
    }
    std::uint32_t* Data() { return m_many.empty() ? m_few.data() : m_many.data(); }
    std::uint32_t& operator[](std::int32_t index) { return Data()[index]; }

private:
    std::array<std::uint32_t, 16> m_few{};
    std::vector<std::uint32_t> m_many;
};

/// The live name of a recorded one. An application may bind a name that it never generated; the
/// bind then makes the object, so a name is generated here. 0 is no such name where 0 is the miss.
template <typename Generate>
std::uint32_t LiveOrGenerated(TNameMap<std::uint32_t>& names, std::uint32_t recorded,
                              Generate generate) {
    std::uint32_t live = names.Get(recorded);
    if (live != names.Miss() || (recorded == 0 && names.Miss() == 0)) return live;
    live = 0;
    generate(1, &live);
    names.Set(recorded, live);
    return live;
}

/// The host generates `count` names, which are stored under the recorded ones. Fails when the
/// record holds fewer.
template <typename Generate>
EPlayed GenerateNames(TNameMap<std::uint32_t>& names, std::int32_t count,
                      const SNameArray& recorded, Generate generate) {
    if (recorded.ItemCount() < std::int64_t{count}) return EPlayed::kFailed;
    CLiveNames live(count);
    generate(count, live.Data());
    for (std::int32_t i = 0; i < count; ++i) {
        names.Set(recorded.GetItem(static_cast<std::uint32_t>(i)), live[i]);
    }
    return EPlayed::kPlayed;
}

/// The same, left out when the first recorded name is known already.
template <typename Generate>
EPlayed GenerateNamesOnce(TNameMap<std::uint32_t>& names, std::int32_t count,
                          const SNameArray& recorded, Generate generate) {
    // Kept: the first name decides for all; recordings generate the same textures again.
    if (recorded.ItemCount() > 0 && names.Get(recorded.GetItem(0)) != 0) return EPlayed::kPlayed;
    return GenerateNames(names, count, recorded, generate);
}

/// One host call for all live names, whose translations are erased. Fails when the record holds
/// fewer than `count`.
template <typename Delete>
EPlayed DeleteNames(TNameMap<std::uint32_t>& names, std::int32_t count, const SNameArray& recorded,
                    Delete deleteNames) {
    if (recorded.ItemCount() < std::int64_t{count}) return EPlayed::kFailed;
    CLiveNames live(count);
    for (std::int32_t i = 0; i < count; ++i) {
        const std::uint32_t name = recorded.GetItem(static_cast<std::uint32_t>(i));
        live[i] = names.Get(name);
        names.Erase(name);
    }
    deleteNames(count, live.Data());
    return EPlayed::kPlayed;
}

}  // namespace kestrail
