// What the calls of lights, material, light model and fog do to the record.
#include "state/es1/es1_numbers.h"
#include "state/es1/es1_updates.h"

namespace kestrail {
namespace {

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

}  // namespace

bool SetFog(CEs1State& state, const TGLenum& pname, const CNumbers& numbers) {
    switch (pname.GetValue()) {
        case 2917:  // GL_FOG_MODE
            if (numbers.Count() != 0) state.fogMode = numbers.Unscaled();
            return numbers.Count() != 0;
        case 2914:
            return numbers.Store(&state.fogDensity, 1);
        case 2915:
            return numbers.Store(&state.fogStart, 1);
        case 2916:
            return numbers.Store(&state.fogEnd, 1);
        case 2918:
            return numbers.Store(state.fogColor.data(), 4);
        default:
            return true;
    }
}

bool SetLight(CEs1State& state, const TGLenum& light, const TGLenum& pname,
              const CNumbers& numbers) {
    constexpr std::uint32_t kLight0 = 16384;
    const std::uint32_t index = light.GetValue() - kLight0;
    if (index >= state.lights->values.size()) return false;
    const int found = PlaceIn(kLightParameters, pname.GetValue());
    if (found < 0) return true;
    const auto place = static_cast<std::size_t>(found);
    const SVector4& current = state.lights->values[index][place];
    SVector4 value = current;
    const bool stored = numbers.Store(value.data(), ComponentsOf(pname.GetValue()));
    if (!SameBits(value, current)) state.lights.Write().values[index][place] = value;
    return stored;
}

bool SetMaterial(CEs1State& state, const TGLenum& /*face*/, const TGLenum& pname,
                 const CNumbers& numbers) {
    const int place = PlaceIn(kMaterialParameters, pname.GetValue());
    if (place < 0) return true;
    return numbers.Store(state.material[static_cast<std::size_t>(place)].data(),
                         ComponentsOf(pname.GetValue()));
}

bool SetLightModel(CEs1State& state, const TGLenum& pname, const CNumbers& numbers) {
    constexpr std::uint32_t kTwoSide = 2898;
    constexpr std::uint32_t kAmbient = 2899;
    if (pname.GetValue() == kAmbient) return numbers.Store(state.lightModelAmbient.data(), 4);
    if (pname.GetValue() != kTwoSide) return true;
    if (numbers.Count() == 0) return false;
    state.lightModelTwoSide = numbers.Unscaled() != 0.0F ? 1 : 0;
    return true;
}

}  // namespace kestrail
