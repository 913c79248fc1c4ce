// What the texture calls of OpenGL ES 1.1 do to the record: units, bindings, images, parameters and
// the environment of each unit.
#include <algorithm>
#include <functional>

#include "calls/pixels/pixel_layout.h"
#include "generated/calls/es1_calls.h"
#include "state/es1/es1_numbers.h"
#include "state/es1/es1_state.h"
#include "state/sub_image.h"

namespace kestrail {
namespace {

constexpr std::uint32_t kTexture2D = 3553;

/// A number as an integer, whatever it is: the ends of the range stand for what lies beyond.
std::int32_t ToInt(float value) {
    constexpr float kLimit = 2147483648.0F;
    if (!(value >= -kLimit)) return INT32_MIN;
    return value < kLimit ? static_cast<std::int32_t>(value) : INT32_MAX;
}

/// A number of a texture call, in both of the forms that the record holds.
struct SSetting {
    std::int32_t integer;
    float real;
};

SSetting Exact(std::int32_t value) {
    return {value, static_cast<float>(value)};
}
// Kept: enumerants are divided too; tools compare the record.
SSetting Scaled(std::int32_t raw) {
    return Exact(raw / kFixedDivisor);
}
SSetting Real(float value) {
    return {ToInt(value), value};
}

/// The name bound to the active unit; null when the record does not hold that unit.
const std::uint32_t* BoundTexture(const CEs1State& state, std::uint32_t target) {
    const std::int32_t unit = state.ActiveUnit();
    if (target != kTexture2D || unit < 0) return nullptr;
    return &state.binding2D[static_cast<std::size_t>(unit)];
}

STextureImage1State& WriteNamedImage(CEs1State& state, std::uint32_t name, std::int32_t level) {
    STextureImage1State& image = state.WriteImage(name, static_cast<std::uint32_t>(level));
    image.name = name;
    image.target = kTexture2D;
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

bool SetTexParameter(CEs1State& state, std::uint32_t target, std::uint32_t pname,
                     std::int32_t value) {
    const std::uint32_t* bound = BoundTexture(state, target);
    if (bound == nullptr || *bound == 0) return false;
    const int found = PlaceIn(kTexture1Parameters, pname);
    if (found < 0) return true;
    const auto place = static_cast<std::size_t>(found);
    const STextureImage1State* image = state.FindImage(*bound, 0);
    if (image != nullptr && image->parameters[place] == value) return true;
    WriteNamedImage(state, *bound, 0).parameters[place] = value;
    return true;
}

/// The first number of a vector form.
template <typename Array, typename Convert>
bool SetTexParameters(CEs1State& state, std::uint32_t target, std::uint32_t pname,
                      const Array& values, Convert convert) {
    return values.ItemCount() != 0 &&
           SetTexParameter(state, target, pname, convert(values.GetItem(0)));
}

/// Stores a value of the units' environments unless it is there already. `field` picks its place.
template <typename Field, typename Value>
void SetEnvValue(CEs1State& state, Field field, Value value) {
    if (field(*state.textureEnvs) != value) field(state.textureEnvs.Write()) = value;
}

bool SetTexEnv(CEs1State& state, std::uint32_t target, std::uint32_t pname, SSetting value) {
    constexpr std::uint32_t kTextureEnv = 8960;
    constexpr std::uint32_t kPointSprite = 34913;
    constexpr std::uint32_t kCoordReplace = 34914;
    constexpr std::uint32_t kRgbScale = 34163;
    constexpr std::uint32_t kAlphaScale = 3356;
    const std::int32_t active = state.ActiveUnit();
    if (active < 0) return false;
    const auto unit = static_cast<std::size_t>(active);
    // The pair that switches point sprites counts as target and pname, and as pname and value.
    const bool asTarget = target == kPointSprite && pname == kCoordReplace;
    const bool asName =
        pname == kPointSprite && value.integer == static_cast<std::int32_t>(kCoordReplace);
    if (asTarget || asName) {
        SetEnvValue(
            state, [unit](auto& envs) -> auto& { return envs.pointSpriteReplace[unit]; },
            value.integer);
        return true;
    }
    if (target != kTextureEnv) return false;
    if (pname == kRgbScale || pname == kAlphaScale) {
        const std::size_t scale = pname == kRgbScale ? 0 : 1;
        SetEnvValue(
            state, [=](auto& envs) -> auto& { return envs.scales[unit][scale]; }, value.real);
        return true;
    }
    const int found = PlaceIn(kTextureEnvParameters, pname);
    if (found < 0) return true;
    const auto place = static_cast<std::size_t>(found);
    SetEnvValue(
        state, [=](auto& envs) -> auto& { return envs.values[unit][place]; }, value.integer);
    return true;
}

template <typename Array, typename Convert>
bool SetTexEnvs(CEs1State& state, std::uint32_t target, std::uint32_t pname, const Array& values,
                Convert convert) {
    return values.ItemCount() != 0 && SetTexEnv(state, target, pname, convert(values.GetItem(0)));
}

}  // namespace

bool CEs1_glActiveTexture_v1::UpdateState(CEs1State& state, SUpdates&) {
    state.activeTexture = texture.GetValue();
    state.textureUnitsUsed = std::max(state.textureUnitsUsed, state.ActiveUnit() + 1);
    return true;
}

bool CEs1_glBindTexture_v1::UpdateState(CEs1State& state, SUpdates&) {
    if (BoundTexture(state, target.GetValue()) == nullptr) return false;
    const std::uint32_t name = texture.GetValue();
    state.binding2D[static_cast<std::size_t>(state.ActiveUnit())] = name;
    if (name != 0 && state.FindImage(name, 0) == nullptr) WriteNamedImage(state, name, 0);
    return true;
}

bool CEs1_glDeleteTextures_v1::UpdateState(CEs1State& state, SUpdates&) {
    const std::int64_t count = std::min<std::int64_t>(n.GetValue(), textures.ItemCount());
    const auto used = state.binding2D.begin() + state.textureUnitsUsed;
    for (std::int64_t i = 0; i < count; ++i) {
        const std::uint32_t name = textures.GetItem(static_cast<std::uint32_t>(i));
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
    image.internalFormat = static_cast<std::int32_t>(internalformat.GetValue());
    image.width = width.GetValue();
    image.height = height.GetValue();
    image.border = border.GetValue();
    image.format = internalformat.GetValue();
    image.type = 0;
    image.unpackAlignment = state.unpackAlignment;
    image.data = CSharedBytes::Borrow(data.GetData(), data.GetSize());
    image.imageSize = static_cast<std::uint32_t>(std::max(imageSize.GetValue(), 0));
    image.compressed = 1;
    return true;
}

bool CEs1_glTexSubImage2D_v1::UpdateState(CEs1State& state, SUpdates& updates) {
    const std::uint32_t* bound = BoundTexture(state, target.GetValue());
    if (pixels.GetData() == nullptr) return true;
    if (bound == nullptr || level.GetValue() < 0) return false;
    const std::uint32_t name = *bound;
    const auto place = static_cast<std::uint32_t>(level.GetValue());
    const SImagePart part = {pixels.GetData(),   pixels.GetSize(), xoffset.GetValue(),
                             yoffset.GetValue(), width.GetValue(), height.GetValue(),
                             format.GetValue(),  type.GetValue(),  state.unpackAlignment};
    return ApplySubImage(
        state.FindImage(name, place), part,
        updates, [&]() -> auto& { return state.WriteImage(name, place); });
}

bool CEs1_glTexParameterf_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexParameter(state, target.GetValue(), pname.GetValue(), ToInt(param.GetValue()));
}

bool CEs1_glTexParameterfv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexParameters(state, target.GetValue(), pname.GetValue(), params, ToInt);
}

bool CEs1_glTexParameteri_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexParameter(state, target.GetValue(), pname.GetValue(), param.GetValue());
}

bool CEs1_glTexParameteriv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexParameters(state, target.GetValue(), pname.GetValue(), params, std::identity());
}

bool CEs1_glTexParameterx_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexParameter(state, target.GetValue(), pname.GetValue(), param.GetValue());
}

bool CEs1_glTexParameterxv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexParameters(state, target.GetValue(), pname.GetValue(), params, std::identity());
}

bool CEs1_glTexEnvf_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexEnv(state, target.GetValue(), pname.GetValue(), Real(param.GetValue()));
}

bool CEs1_glTexEnvfv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexEnvs(state, target.GetValue(), pname.GetValue(), params, Real);
}

bool CEs1_glTexEnvi_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexEnv(state, target.GetValue(), pname.GetValue(), Exact(param.GetValue()));
}

bool CEs1_glTexEnviv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexEnvs(state, target.GetValue(), pname.GetValue(), params, Exact);
}

bool CEs1_glTexEnvx_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexEnv(state, target.GetValue(), pname.GetValue(), Scaled(param.GetValue()));
}

bool CEs1_glTexEnvxv_v1::UpdateState(CEs1State& state, SUpdates&) {
    return SetTexEnvs(state, target.GetValue(), pname.GetValue(), params, Scaled);
}

}  // namespace kestrail
