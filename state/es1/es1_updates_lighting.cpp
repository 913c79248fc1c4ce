// What the calls of lights, material, light model, shading and fog do to the record. The forms of a
// call differ in how they give their numbers, and share the rest.
#include "generated/calls/es1_calls.h"
#include "state/es1/es1_numbers.h"
#include "state/es1/es1_state.h"

namespace kestrail {
namespace {

constexpr std::uint32_t kFogMode = 2917;
constexpr std::uint32_t kTwoSide = 2898;

/// The components of a parameter of a light or of the material.
std::uint32_t ComponentsOf(std::uint32_t pname) {
    switch (pname) {
        case 4608:  // GL_AMBIENT
        case 4609:  // GL_DIFFUSE
        case 4610:  // GL_SPECULAR
        case 4611:  // GL_POSITION
        case 5632:
            return 4;  // GL_EMISSION
        case 4612:
            return 3;  // GL_SPOT_DIRECTION
        default:
            return 1;
    }
}

bool SetFog(CEs1State& state, std::uint32_t pname, const SParameters& parameters) {
    switch (pname) {
        case kFogMode:
            return parameters.Store(&state.fogMode, 1);
        case 2914:
            return parameters.Store(&state.fogDensity, 1);
        case 2915:
            return parameters.Store(&state.fogStart, 1);
        case 2916:
            return parameters.Store(&state.fogEnd, 1);
        case 2918:
            return parameters.Store(state.fogColor.data(), 4);
        default:
            return true;
    }
}

/// The numbers of a fixed-point fog call: those of the mode are an enumerant.
template <typename Values>
SParameters FogParameters(std::uint32_t pname, const Values& values) {
    return pname == kFogMode ? SParameters::Unscaled(values) : SParameters::Of(values);
}

bool SetLight(CEs1State& state, std::uint32_t light, std::uint32_t pname,
              const SParameters& parameters) {
    constexpr std::uint32_t kLight0 = 16384;
    const std::uint32_t index = light - kLight0;
    if (index >= state.lights->values.size()) return false;
    const int found = PlaceIn(kLightParameters, pname);
    if (found < 0) return true;
    const auto place = static_cast<std::size_t>(found);
    const SVector4& current = state.lights->values[index][place];
    SVector4 value = current;
    const bool stored = parameters.Store(value.data(), ComponentsOf(pname));
    if (!SameBits(value, current)) state.lights.Write().values[index][place] = value;
    return stored;
}

bool SetMaterial(CEs1State& state, std::uint32_t pname, const SParameters& parameters) {
    const int place = PlaceIn(kMaterialParameters, pname);
    if (place < 0) return true;
    return parameters.Store(state.material[static_cast<std::size_t>(place)].data(),
                            ComponentsOf(pname));
}

bool SetLightModel(CEs1State& state, std::uint32_t pname, const SParameters& parameters) {
    constexpr std::uint32_t kAmbient = 2899;
    if (pname == kAmbient) return parameters.Store(state.lightModelAmbient.data(), 4);
    if (pname != kTwoSide) return true;
    if (parameters.count == 0) return false;
    state.lightModelTwoSide = parameters.values[0] != 0.0F ? 1 : 0;
    return true;
}

/// The numbers of a fixed-point light model call: the switch is on for any raw value but 0.
template <typename Values>
SParameters LightModelParameters(std::uint32_t pname, const Values& values) {
    return pname == kTwoSide ? SParameters::Unscaled(values) : SParameters::Of(values);
}

}  // namespace

bool CEs1_glFogf_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetFog(state, pname.GetValue(), SParameters::Of(param));
}

bool CEs1_glFogfv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetFog(state, pname.GetValue(), SParameters::Of(params));
}

bool CEs1_glFogx_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetFog(state, pname.GetValue(), FogParameters(pname.GetValue(), param));
}

bool CEs1_glFogxv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetFog(state, pname.GetValue(), FogParameters(pname.GetValue(), param));
}

bool CEs1_glLightf_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetLight(state, light.GetValue(), pname.GetValue(), SParameters::Of(param));
}

bool CEs1_glLightfv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetLight(state, light.GetValue(), pname.GetValue(), SParameters::Of(params));
}

bool CEs1_glLightx_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetLight(state, light.GetValue(), pname.GetValue(), SParameters::Of(param));
}

bool CEs1_glLightxv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetLight(state, light.GetValue(), pname.GetValue(), SParameters::Of(params));
}

bool CEs1_glLightModelf_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetLightModel(state, pname.GetValue(), SParameters::Of(param));
}

bool CEs1_glLightModelfv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetLightModel(state, pname.GetValue(), SParameters::Of(params));
}

bool CEs1_glLightModelx_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetLightModel(state, pname.GetValue(), LightModelParameters(pname.GetValue(), param));
}

bool CEs1_glLightModelxv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetLightModel(state, pname.GetValue(), LightModelParameters(pname.GetValue(), param));
}

bool CEs1_glMaterialf_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetMaterial(state, pname.GetValue(), SParameters::Of(param));
}

bool CEs1_glMaterialfv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetMaterial(state, pname.GetValue(), SParameters::Of(params));
}

bool CEs1_glMaterialx_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetMaterial(state, pname.GetValue(), SParameters::Of(param));
}

bool CEs1_glMaterialxv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetMaterial(state, pname.GetValue(), SParameters::Of(param));
}

}  // namespace kestrail
