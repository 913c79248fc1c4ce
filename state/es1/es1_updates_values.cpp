// The calls of OpenGL ES 1.1 that set plain values of the record.
#include "generated/calls/es1_calls.h"
#include "state/es1/es1_numbers.h"
#include "state/es1/es1_state.h"

namespace kestrail {
namespace {

template <typename Equation>
bool SetClipPlane(CEs1State& state, std::uint32_t plane, const Equation& equation) {
    constexpr std::uint32_t kClipPlane0 = 12288;
    const std::uint32_t index = plane - kClipPlane0;
    const auto* elements = equation.GetRawArray();
    if (index >= state.clipPlanes.size() || elements == nullptr) return false;
    state.clipPlaneIndex = plane;
    for (std::size_t i = 0; i < 4; ++i) {
        if constexpr (std::is_same_v<typename Equation::ValueType, float>) {
            state.clipPlanes[index][i] = elements[i];
        } else {
            state.clipPlanes[index][i] = FixedValue(elements[i]);
        }
    }
    return true;
}

template <typename Call>
bool SetTexCoord(CEs1State& state, std::uint32_t texture, const Call& call) {
    const std::int32_t unit = CEs1State::UnitOf(texture);
    if (unit < 0) return false;
    const auto index = static_cast<std::size_t>(unit);
    const SVector4 coord = {Stored(call.s), Stored(call.t), Stored(call.r), Stored(call.q)};
    if (!SameBits((*state.currentTexCoord)[index], coord)) {
        state.currentTexCoord.Write()[index] = coord;
    }
    return true;
}

bool SetCapability(CEs1State& state, std::uint32_t capability, std::uint8_t enabled) {
    constexpr std::uint32_t kTexture2D = 3553;
    if (capability == kTexture2D) {
        const std::int32_t unit = state.ActiveUnit();
        if (unit < 0) return false;
        state.texture2DEnabled[static_cast<std::size_t>(unit)] = enabled;
        return true;
    }
    const int place = PlaceIn(kEs1Capabilities, capability);
    if (place >= 0) state.capabilities[static_cast<std::size_t>(place)] = enabled;
    return true;
}

bool SetPointParameter(CEs1State& state, std::uint32_t pname, const SParameters& parameters) {
    const int place = PlaceIn(kPointParameters, pname);
    if (place < 0) return true;
    return parameters.Store(state.pointParameters[static_cast<std::size_t>(place)].data(), 3);
}

}  // namespace

bool CEs1_glClipPlanef_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetClipPlane(state, p.GetValue(), eqn);
}

bool CEs1_glClipPlanex_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetClipPlane(state, plane.GetValue(), equation);
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

bool CEs1_glMultiTexCoord4f_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexCoord(state, target.GetValue(), *this);
}

bool CEs1_glMultiTexCoord4x_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexCoord(state, texture.GetValue(), *this);
}

bool CEs1_glPixelStorei_v1::UpdateState(CEs1State& state, SUpdates&) {
    constexpr std::uint32_t kPackAlignment = 3333;
    constexpr std::uint32_t kUnpackAlignment = 3317;
    if (pname.GetValue() == kPackAlignment) state.packAlignment = param.GetValue();
    if (pname.GetValue() == kUnpackAlignment) state.unpackAlignment = param.GetValue();
    return true;
}

bool CEs1_glPointParameterf_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetPointParameter(state, pname.GetValue(), SParameters::Of(param));
}

bool CEs1_glPointParameterfv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetPointParameter(state, pname.GetValue(), SParameters::Of(params));
}

bool CEs1_glPointParameterx_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetPointParameter(state, pname.GetValue(), SParameters::Of(param));
}

bool CEs1_glPointParameterxv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetPointParameter(state, pname.GetValue(), SParameters::Of(params));
}

}  // namespace kestrail
