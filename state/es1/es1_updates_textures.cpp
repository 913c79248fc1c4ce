// What the texture calls of OpenGL ES 1.1 do to the record: units, bindings, images, parameters and
// the environment of each unit.
#include <algorithm>

#include "base/enumerants.h"
#include "calls/pixels/pixel_layout.h"
#include "generated/calls/es1_calls.h"
#include "state/es1/es1_updates.h"
#include "state/sub_image.h"

namespace kestrail {
namespace {

/// The name bound to the active unit; null when the record does not hold that unit.
const std::uint32_t* BoundTexture(const CEs1State& state, std::uint32_t target) {
    const std::uint32_t unit = state.ActiveUnit();
    return target == GL_TEXTURE_2D && unit < kTextureUnits ? &state.binding2D[unit] : nullptr;
}

STextureImage1State& WriteNamedImage(CEs1State& state, std::uint32_t name, std::int32_t level) {
    STextureImage1State& image = state.WriteImage(name, static_cast<std::uint32_t>(level));
    image.name = name;
    image.target = GL_TEXTURE_2D;
    image.level = level;
    return image;
}

/// The bytes that the image's layout takes, or those captured when the layout is unknown.
std::uint32_t LayoutSize(const STextureImage1State& image) {
    const std::uint64_t size = GetImageSize(image.format, image.type, image.width, image.height,
                                            image.unpackAlignment, image.border);
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(size != 0 ? size : image.data.Size(), UINT32_MAX));
}

/// Stores a value of the units' environments unless it is there already. `field` picks its place.
template <typename Field, typename Value>
void SetEnvValue(CEs1State& state, Field field, Value value) {
    if (field(*state.textureEnvs) != value) field(state.textureEnvs.Write()) = value;
}

}  // namespace

bool SetTexParameter(CEs1State& state, const TGLenum& target, const TGLenum& pname,
                     const CNumbers& value) {
    const std::uint32_t* bound = BoundTexture(state, target.GetValue());
    if (value.Count() == 0 || bound == nullptr || *bound == 0) return false;
    const std::size_t place = PlaceIn(kTexture1Parameters, pname.GetValue());
    if (place == kTexture1Parameters.size()) return true;
    const STextureImage1State* image = state.FindImage(*bound, 0);
    if (image != nullptr && image->parameters[place] == value.Integer()) return true;
    WriteNamedImage(state, *bound, 0).parameters[place] = value.Integer();
    return true;
}

bool SetTexEnv(CEs1State& state, const TGLenum& target, const TGLenum& pname,
               const CNumbers& value) {
    const std::uint32_t unit = state.ActiveUnit();
    if (unit == kTextureUnits || value.Count() == 0) return false;
    // Kept: enumerants are divided too; tools compare the record.
    const std::int32_t integer = value.Integer() / (value.AreFixed() ? kFixedDivisor : 1);
    const std::uint32_t name = pname.GetValue();
    // The pair that switches point sprites counts as target and pname, and as pname and value.
    const bool asTarget = target.GetValue() == GL_POINT_SPRITE_OES && name == GL_COORD_REPLACE_OES;
    const bool asName = name == GL_POINT_SPRITE_OES && integer == GL_COORD_REPLACE_OES;
    if (asTarget || asName) {
        SetEnvValue(
            state, [unit](auto& envs) -> auto& { return envs.pointSpriteReplace[unit]; }, integer);
        return true;
    }
    if (target.GetValue() != GL_TEXTURE_ENV) return false;
    if (name == GL_RGB_SCALE || name == GL_ALPHA_SCALE) {
        const std::size_t scale = name == GL_RGB_SCALE ? 0 : 1;
        SetEnvValue(
            state, [=](auto& envs) -> auto& { return envs.scales[unit][scale]; }, value.Real());
        return true;
    }
    const std::size_t place = PlaceIn(kTextureEnvParameters, name);
    if (place == kTextureEnvParameters.size()) return true;
    SetEnvValue(
        state, [=](auto& envs) -> auto& { return envs.values[unit][place]; }, integer);
    return true;
}

bool CEs1_glBindTexture_v1::UpdateState(CEs1State& state, SUpdates&) {
    if (BoundTexture(state, target.GetValue()) == nullptr) return false;
    const std::uint32_t name = texture.GetValue();
    state.binding2D[state.ActiveUnit()] = name;
    if (name != 0 && state.FindImage(name, 0) == nullptr) WriteNamedImage(state, name, 0);
    return true;
}

bool CEs1_glDeleteTextures_v1::UpdateState(CEs1State& state, SUpdates&) {
    const auto used = state.binding2D.begin() + state.textureUnitsUsed;
    for (const std::uint32_t name : NamesOf(textures, n.GetValue())) {
        std::replace(state.binding2D.begin(), used, name, 0u);
        if (state.textures->Find(name) != nullptr) state.textures.Write().Erase(name);
    }
    return true;
}

bool CEs1_glTexImage2D_v1::UpdateState(CEs1State& state, SUpdates&) {
    const std::uint32_t* bound = BoundTexture(state, target.GetValue());
    if (bound == nullptr || level.GetValue() < 0) return false;
    // An image that is there already hands its parameters on.
    STextureImage1State& image = WriteNamedImage(state, *bound, level.GetValue());
    SetWholeImage(image, *this, alignment.GetValue());
    image.imageSize = LayoutSize(image);
    image.compressed = 0;
    return true;
}

bool CEs1_glCompressedTexImage2D_v1::UpdateState(CEs1State& state, SUpdates&) {
    const std::uint32_t* bound = BoundTexture(state, target.GetValue());
    if (bound == nullptr || level.GetValue() < 0) return false;
    STextureImage1State& image = WriteNamedImage(state, *bound, level.GetValue());
    SetCompressedImage(image, *this, state.unpackAlignment);
    image.imageSize = static_cast<std::uint32_t>(std::max(imageSize.GetValue(), 0));
    return true;
}

bool CEs1_glTexSubImage2D_v1::UpdateState(CEs1State& state, SUpdates& updates) {
    const std::uint32_t* bound = BoundTexture(state, target.GetValue());
    if (pixels.GetData() == nullptr) return true;
    if (bound == nullptr || level.GetValue() < 0) return false;
    const std::uint32_t name = *bound;
    const auto place = static_cast<std::uint32_t>(level.GetValue());
    return ApplySubImage(
        state.FindImage(name, place), PartOf(*this, state.unpackAlignment),
        updates, [&]() -> auto& { return state.WriteImage(name, place); });
}

}  // namespace kestrail
