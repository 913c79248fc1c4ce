// What the calls of lights, material, light model and fog do to the record.
#include "base/enumerants.h"
#include "state/es1/es1_updates.h"

namespace kestrail {
namespace {

/// The components of a parameter of a light or of the material.
std::uint32_t ComponentsOf(std::uint32_t pname) {
    switch (pname) {
        case GL_AMBIENT:
        case GL_DIFFUSE:
        case GL_SPECULAR:
        case GL_POSITION:
        case GL_EMISSION:
            return 4;
        case GL_SPOT_DIRECTION:
            return 3;
        default:
            return 1;
    }
}

}  // namespace

bool SetFog(CEs1State& state, const TGLenum& pname, const CNumbers& numbers) {
    switch (pname.GetValue()) {
        case GL_FOG_MODE:
            if (numbers.Count() != 0) state.fogMode = numbers.Unscaled();
            return numbers.Count() != 0;
        case GL_FOG_DENSITY:
            return numbers.Store(&state.fogDensity, 1);
        case GL_FOG_START:
            return numbers.Store(&state.fogStart, 1);
        case GL_FOG_END:
            return numbers.Store(&state.fogEnd, 1);
        case GL_FOG_COLOR:
            return numbers.Store(state.fogColor.data(), 4);
        default:
            return true;
    }
}

bool SetLight(CEs1State& state, const TGLenum& light, const TGLenum& pname,
              const CNumbers& numbers) {
    const std::uint32_t index = light.GetValue() - GL_LIGHT0;
    if (index >= state.lights->values.size()) return false;
    const std::size_t place = PlaceIn(kLightParameters, pname.GetValue());
    if (place == kLightParameters.size()) return true;
    const SVector4& current = state.lights->values[index][place];
    SVector4 value = current;
    const bool stored = numbers.Store(value.data(), ComponentsOf(pname.GetValue()));
    if (!SameBits(value, current)) state.lights.Write().values[index][place] = value;
    return stored;
}

bool SetMaterial(CEs1State& state, const TGLenum& /*face*/, const TGLenum& pname,
                 const CNumbers& numbers) {
    const std::size_t place = PlaceIn(kMaterialParameters, pname.GetValue());
    return place == kMaterialParameters.size() ||
           numbers.Store(state.material[place].data(), ComponentsOf(pname.GetValue()));
}

bool SetLightModel(CEs1State& state, const TGLenum& pname, const CNumbers& numbers) {
    if (pname.GetValue() == GL_LIGHT_MODEL_AMBIENT) {
        return numbers.Store(state.lightModelAmbient.data(), 4);
    }
    if (pname.GetValue() != GL_LIGHT_MODEL_TWO_SIDE) return true;
    if (numbers.Count() == 0) return false;
    state.lightModelTwoSide = numbers.Unscaled() != 0.0F ? 1 : 0;
    return true;
}

}  // namespace kestrail
