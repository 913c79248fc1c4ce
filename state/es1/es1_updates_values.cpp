// The calls of OpenGL ES 1.1 that set plain values of the record.
#include "base/enumerants.h"
#include "generated/calls/es1_calls.h"
#include "state/es1/es1_updates.h"

namespace kestrail {
namespace {

bool SetCapability(CEs1State& state, std::uint32_t capability, std::uint8_t enabled) {
    if (capability == GL_TEXTURE_2D) {
        const std::uint32_t unit = state.ActiveUnit();
        if (unit == kTextureUnits) return false;
        state.texture2DEnabled[unit] = enabled;
        return true;
    }
    const std::size_t place = PlaceIn(kEs1Capabilities, capability);
    if (place < kEs1Capabilities.size()) state.capabilities[place] = enabled;
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
    const std::uint32_t unit = CEs1State::UnitOf(texture.GetValue());
    if (unit == kTextureUnits) return false;
    const SVector4 coord = {s.Real(), t.Real(), r.Real(), q.Real()};
    if (!SameBits((*state.currentTexCoord)[unit], coord)) {
        state.currentTexCoord.Write()[unit] = coord;
    }
    return true;
}

bool SetPointParameter(CEs1State& state, const TGLenum& pname, const CNumbers& numbers) {
    const std::size_t place = PlaceIn(kPointParameters, pname.GetValue());
    return place == kPointParameters.size() ||
           numbers.Store(state.pointParameters[place].data(), 3);
}

bool CEs1_glEnable_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetCapability(state, cap.GetValue(), 1);
}

bool CEs1_glDisable_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetCapability(state, cap.GetValue(), 0);
}

bool CEs1_glHint_v1::UpdateState(CEs1State& state, SUpdates&) {
    const std::size_t place = PlaceIn(kEs1Hints, target.GetValue());
    if (place < kEs1Hints.size()) state.hints[place] = mode.GetValue();
    return true;
}

}  // namespace kestrail
