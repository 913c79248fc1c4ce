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
    CGenCallInfo info;
    std::uint16_t id = 0;
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

/// Whether images come from a buffer of the host. The host is asked where the trace has bound one:
/// the other API's calls may have unbound it.
template <typename Context>
bool UnpackBufferBound(Context& c) {
    constexpr std::uint32_t kPixelUnpackBufferBinding = 0x88EF;
    if (c.Pixels().unpackBuffer == 0) return false;
    std::int32_t bound = 0;
    c.host.glGetIntegerv(kPixelUnpackBufferBinding, &bound);
    return bound != 0;
}

}  // namespace kestrail
