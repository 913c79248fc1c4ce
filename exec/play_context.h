// One call on its way through an executor.
#pragma once

#include <cstdint>

#include "calls/model/call_info.h"
#include "exec/player_state.h"

namespace kestrail {

template <typename Host, typename Names>
struct TPlayContext {
    SPlayerState& player;
    CCallEntry& entry;
    CGenCallInfo& info;
    std::uint16_t id;
    Host& host;
    Names& names;

    /// The parameter at a position of the call's row, whose class the row gives.
    template <typename Class>
    Class& At(std::uint32_t index) const {
        return static_cast<Class&>(*(*info.GetParameters())[index]);
    }
    template <typename Class>
    auto Value(std::uint32_t index) const {
        return At<Class>(index).GetValue();
    }
    /// The recorded return value.
    template <typename Class>
    auto Returned() const {
        return static_cast<Class&>(*info.GetReturnValue()).GetValue();
    }
    SPixelStore& Pixels() const { return player.eglNames.PixelStore(); }
};

}  // namespace kestrail
