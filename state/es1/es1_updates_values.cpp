// The calls of OpenGL ES 1.1 that set plain values of the record.
#include "base/enumerants.h"
#include "generated/calls/es1_calls.h"
#include "state/es1/es1_numbers.h"
#include "state/es1/es1_updates.h"

namespace kestrail {
namespace {

bool SetCapability(CEs1State& state, std::uint32_t capability, std::uint8_t enabled) {
    if (capability == GL_TEXTURE_2D) {
        const std::int32_t unit = state.ActiveUnit();
        if (unit < 0) return false;
        state.texture2DEnabled[static_cast<std::size_t>(unit)] = enabled;
        return true;
    }
    const int place = PlaceIn(kEs1Capabilities, capability);
    if (place >= 0) state.capabilities[static_cast<std::size_t>(place)] = enabled;
    return true;
}

}  // namespace

bool SetClipPlane(CEs1State& state, const TGLenum& plane, const CNumbers& equation) {
    const std::uint32_t index = plane.GetValue() - GL_CLIP_PLANE0;
    if (index >= state.clipPlanes.size() || equation.Count() == 0) return false;
    state.clipPlaneIndex = plane.GetValue();
    return equation.Store(state.clipPlanes[index].data(), 4);
}

bool SetTexCoord(CEs1State& state, const TGLenum& texture, const CNumbers& s, const CNumbers& t,
                 const CNumbers& r, const CNumbers& q) {
    const std::int32_t unit = CEs1State::UnitOf(texture.GetValue());
    if (unit < 0) return false;
    const auto index = static_cast<std::size_t>(unit);
    const SVector4 coord = {s.Real(), t.Real(), r.Real(), q.Real()};
    if (!SameBits((*state.currentTexCoord)[index], coord)) {
        state.currentTexCoord.Write()[index] = coord;
    }
    return true;
}

bool SetPointParameter(CEs1State& state, const TGLenum& pname, const CNumbers& numbers) {
    const int place = PlaceIn(kPointParameters, pname.GetValue());
    if (place < 0) return true;
    return numbers.Store(state.pointParameters[static_cast<std::size_t>(place)].data(), 3);
}

bool CEs1_glEnable_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetCapability(state, cap.GetValue(), 1);
}

bool CEs1_glDisable_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetCapability(state, cap.GetValue(), 0);
}

bool CEs1_glHint_v1::UpdateState(CEs1State& state, SUpdates&) {
    const int place = PlaceIn(kEs1Hints, target.GetValue());
    if (place >= 0) state.hints[static_cast<std::size_t>(place)] = mode.GetValue();
    return true;
}

bool CEs1_glPixelStorei_v1::UpdateState(CEs1State& state, SUpdates&) {
    if (pname.GetValue() == GL_PACK_ALIGNMENT) state.packAlignment = param.GetValue();
    if (pname.GetValue() == GL_UNPACK_ALIGNMENT) state.unpackAlignment = param.GetValue();
    return true;
}

}  // namespace kestrail
