#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "base/enumerants.h"
#include "base/output.h"
#include "calls/pixels/pixel_layout.h"
#include "generated/calls/es2_calls.h"
#include "state/es2/es2_updates.h"

namespace kestrail {
namespace {

/// What the units have bound to `target`; null for a target that the record doesn't hold.
TShared<SUnitBindings>* UnitsOf(CEs2State& state, std::uint32_t target) {
    switch (target) {
        case GL_TEXTURE_2D:
            return &state.binding2D;
        case GL_TEXTURE_CUBE_MAP:
            return &state.bindingCube;
        case GL_TEXTURE_3D:
            return &state.binding3D;
        case GL_TEXTURE_2D_ARRAY:
            return &state.binding2DArray;
        default:
            return nullptr;
    }
}

bool IsCubeFace(std::uint32_t target) {
    return target >= GL_TEXTURE_CUBE_MAP_POSITIVE_X && target <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z;
}

/// Which texture and face the active unit has for the target of a 2D image. False for any other
/// target and for a unit beyond the record's.
bool PlaceOf(const CEs2State& state, std::uint32_t target, SImagePlace& place) {
    const std::uint32_t unit = state.ActiveUnit();
    if (unit == kTextureUnits) return false;
    if (target == GL_TEXTURE_2D) {
        place = {(*state.binding2D)[unit], 0};
    } else if (IsCubeFace(target)) {
        place = {(*state.bindingCube)[unit], target - GL_TEXTURE_CUBE_MAP_POSITIVE_X};
    } else {
        return false;
    }
    return true;
}

/// The image that holds a texture's parameters, made where there is none.
STextureImageState& WriteFirstImage(CEs2State& state, std::uint32_t name, std::uint32_t target) {
    const bool made = !state.HasFirstImage(name);
    STextureImageState& image = state.WriteImage(name, 0, 0);
    if (made) {
        image.name = name;
        image.bindTarget = target;
    }
    return image;
}

std::uint32_t Saturated(std::uint64_t size) {
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(size, std::numeric_limits<std::uint32_t>::max()));
}

}  // namespace

bool SetTexParameter(CEs2State& state, const TGLenum& target, const TGLenum& pname,
                     const CNumbers& numbers) {
    const TShared<SUnitBindings>* units = UnitsOf(state, target.GetValue());
    const std::uint32_t unit = state.ActiveUnit();
    if (numbers.Count() == 0 || units == nullptr || unit == kTextureUnits) return false;
    const std::uint32_t name = (**units)[unit];
    if (name == 0) return false;
    const std::size_t index = TextureParameterIndex(pname.GetValue());
    if (index == kTextureParameters.size()) return true;
    const std::int32_t value = std::isnan(numbers.Real()) ? 0 : numbers.Integer();
    const STextureImageState* held = state.FindImage(name, 0, 0);
    if (held == nullptr || held->parameters[index] != value) {
        WriteFirstImage(state, name, target.GetValue()).parameters[index] = value;
    }
    return true;
}

std::uint64_t LayoutSize(const STextureImageState& image) {
    const std::int32_t layers = image.Layers();
    if (layers >= 0) {
        return GetImage3DSize(image.format, image.type, image.width, image.height, layers,
                              image.unpackAlignment, image.border);
    }
    return GetImageSize(image.format, image.type, image.width, image.height, image.unpackAlignment,
                        image.border);
}

bool ReplaceImage(CEs2State& state, const SImagePlace& place, STextureImageState& image) {
    if (image.level < 0) return false;
    const auto level = static_cast<std::uint32_t>(image.level);
    image.name = place.name;
    image.bindTarget = IsCubeFace(image.target) ? GL_TEXTURE_CUBE_MAP : image.target;
    if (image.compressed == 0) {
        const std::uint64_t size = LayoutSize(image);
        image.imageSize = size != 0 ? Saturated(size) : Saturated(image.data.Size());
    }
    STextureImageState& stored = state.WriteImage(place.name, place.face, level);
    image.parameters = stored.parameters;
    stored = std::move(image);
    return true;
}

bool UpdateSubImage(CEs2State& state, const SImagePlace& place, std::uint32_t level,
                    const SImagePart& part, const SUpdates& updates) {
    return ApplySubImage(
        state.FindImage(place.name, place.face, level), part,
        updates, [&]() -> auto& { return state.WriteImage(place.name, place.face, level); });
}

bool CEs2_glBindTexture_v1::UpdateState(CEs2State& state, SUpdates&) {
    const std::uint32_t name = texture.GetValue();
    const std::uint32_t unit = state.ActiveUnit();
    TShared<SUnitBindings>* units = UnitsOf(state, target.GetValue());
    if (unit == kTextureUnits || units == nullptr) return false;
    if ((**units)[unit] != name) units->Write()[unit] = name;
    if (name != 0 && !state.HasFirstImage(name)) {
        WriteFirstImage(state, name, target.GetValue());
    }
    return true;
}

bool CEs2_glDeleteTextures_v1::UpdateState(CEs2State& state, SUpdates&) {
    const auto used = static_cast<std::size_t>(state.textureUnitsUsed);
    const std::uint32_t count = textures.ItemCount();
    for (TShared<SUnitBindings>* units :
         {&state.binding2D, &state.bindingCube, &state.binding3D, &state.binding2DArray}) {
        for (std::size_t unit = 0; unit < used; ++unit) {
            const std::uint32_t bound = (**units)[unit];
            if (bound == 0) continue;
            for (std::uint32_t i = 0; i < count; ++i) {
                if (textures.GetItem(i) != bound) continue;
                units->Write()[unit] = 0;
                break;
            }
        }
    }
    return EraseRecords(state.textures, NamesOf(textures));
}

bool CEs2_glTexImage2D_v1::UpdateState(CEs2State& state, SUpdates&) {
    SImagePlace place;
    if (!PlaceOf(state, target.GetValue(), place)) return false;
    STextureImageState image;
    image.target = target.GetValue();
    image.level = level.GetValue();
    SetWholeImage(image, *this, alignment.GetValue());
    return ReplaceImage(state, place, image);
}

bool CEs2_glCompressedTexImage2D_v1::UpdateState(CEs2State& state, SUpdates&) {
    SImagePlace place;
    if (!PlaceOf(state, target.GetValue(), place) || imageSize.GetValue() < 0) return false;
    STextureImageState image;
    image.target = target.GetValue();
    image.level = level.GetValue();
    SetCompressedImage(image, *this, state.unpackAlignment);
    image.imageSize = static_cast<std::uint32_t>(imageSize.GetValue());
    if (image.data.Size() != 0) image.imageSize = std::min(image.imageSize, data.GetSize());
    return ReplaceImage(state, place, image);
}

bool CEs2_glTexSubImage2D_v1::UpdateState(CEs2State& state, SUpdates& updates) {
    if (pixels.GetData() == nullptr) return true;
    SImagePlace place;
    if (!PlaceOf(state, target.GetValue(), place) || level.GetValue() < 0) return false;
    return UpdateSubImage(state, place, static_cast<std::uint32_t>(level.GetValue()),
                          PartOf(*this, state.unpackAlignment), updates);
}

}  // namespace kestrail
