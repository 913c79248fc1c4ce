// One call on its way through an executor.
#pragma once

#include <cstdint>

#include "base/enumerants.h"
#include "calls/model/call_info.h"
#include "exec/player_state.h"

namespace kestrail {

struct SEglHost;
struct SEs1Host;
struct SEs2Host;
struct SEs3Host;

template <typename Host, typename Names>
struct TPlayContext {
    SPlayerState& player;
    CCallEntry& entry;
    CGenCallInfo info;
    std::uint16_t id = 0;
    Host& host;
    Names& names;

    SPixelStore& Pixels() const { return player.eglNames.PixelStore(); }
};

using SEglPlay = TPlayContext<SEglHost, CEglNames>;
using SEs1Play = TPlayContext<SEs1Host, CEs1Names>;
using SEs2Play = TPlayContext<SEs2Host, CEs2Names>;
using SEs3Play = TPlayContext<SEs3Host, CEs2Names>;

/// The values of a call, by the places in the parameter list that its row gives them. Each call has
/// a class of its own made from this one, where they have their names.
class CCallValues {
public:
    explicit CCallValues(const CGenCallInfo& info) : m_info(info) {}

protected:
    template <typename Class>
    Class& At(std::uint32_t index) const {
        return static_cast<Class&>(*(*m_info.GetParameters())[index]);
    }
    template <typename Class>
    Class& Returned() const {
        return static_cast<Class&>(*m_info.GetReturnValue());
    }

private:
    const CGenCallInfo& m_info;
};

/// Whether images come from a buffer of the host. The host is asked where the trace has bound one:
/// the other API's calls may have unbound it.
template <typename Context>
bool UnpackBufferBound(Context& c) {
    if (c.Pixels().unpackBuffer == 0) return false;
    std::int32_t bound = 0;
    c.host.glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &bound);
    return bound != 0;
}

}  // namespace kestrail
