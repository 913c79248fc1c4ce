#include <GLES3/gl3.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "base/output.h"
#include "calls/pixels/pixel_layout.h"
#include "generated/calls/es2_calls.h"
#include "state/es2/es2_updates.h"

namespace kestrail {
namespace {

/// An image without pixels gets zeros when a part of it is set. The size is whatever the trace
/// says, so one above this keeps none: a small file must not take gigabytes.
constexpr std::uint64_t kMaxZeroedImage = 256u << 20;

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
    const std::uint32_t unit = ActiveUnit(state);
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

bool SetTexParameter(CEs2State& state, std::uint32_t target, std::uint32_t pname,
                     std::int32_t value) {
    const TShared<SUnitBindings>* units = UnitsOf(state, target);
    const std::uint32_t unit = ActiveUnit(state);
    if (units == nullptr || unit == kTextureUnits) return false;
    const std::uint32_t name = (**units)[unit];
    if (name == 0) return false;
    const int found = TextureParameterIndex(pname);
    if (found < 0) return true;
    const auto index = static_cast<std::size_t>(found);
    const STextureImageState* held = state.FindImage(name, 0, 0);
    if (held == nullptr || held->parameters[index] != value) {
        WriteFirstImage(state, name, target).parameters[index] = value;
    }
    return true;
}

/// A parameter given as a float: the nearest value that an int can hold, 0 for what is no number.
std::int32_t ParameterFromFloat(float value) {
    if (!(value == value)) return 0;
    constexpr auto kMax = std::numeric_limits<std::int32_t>::max();
    constexpr auto kMin = std::numeric_limits<std::int32_t>::min();
    if (value >= 2147483648.0F) return kMax;
    return value < -2147483648.0F ? kMin : static_cast<std::int32_t>(value);
}

std::uint32_t Saturated(std::uint64_t size) {
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(size, std::numeric_limits<std::uint32_t>::max()));
}

/// Rows of pixels somewhere in a block.
struct SRows {
    std::uint64_t first = 0;   ///< offset of the first pixel
    std::uint64_t stride = 0;  ///< from one row to the next
};

/// Copies as many whole rows as both blocks hold.
void CopyRows(std::uint8_t* dst, std::size_t dstSize, const SRows& to, const std::uint8_t* src,
              std::size_t srcSize, const SRows& from, std::uint64_t rowBytes, std::int32_t rows) {
    std::uint64_t target = to.first;
    std::uint64_t source = from.first;
    for (std::int32_t i = 0; i < rows; ++i) {
        if (target + rowBytes > dstSize || source + rowBytes > srcSize) return;
        std::memcpy(dst + target, src + source, rowBytes);
        target += to.stride;
        source += from.stride;
    }
}

/// Where pixel (x, y) of an image stands in its bytes, and its rows from there.
SRows RowsFrom(const STextureImageState& image, std::int32_t x, std::int32_t y) {
    const std::uint32_t pixel = GetPixelSize(image.format, image.type);
    const std::uint64_t row = GetRowSize(image.width, pixel, image.unpackAlignment, image.border);
    const auto left = std::uint64_t{pixel} * static_cast<std::uint64_t>(x);
    const auto above = static_cast<std::uint64_t>(y);
    // A recorded size may be any number: what lies beyond all memory is behind every block.
    constexpr std::uint64_t kBeyond = std::uint64_t{1} << 62;
    return {above > kBeyond / (row + 1) ? kBeyond : row * above + left, row};
}

/// Whether the call's pixels are the whole image, laid out as the image is.
bool IsWhole(const STextureImageState& image, const SSubImage& sub, std::int32_t alignment) {
    const std::uint32_t pixel = GetPixelSize(image.format, image.type);
    const std::uint64_t row = GetRowSize(sub.width, pixel, alignment, 0);
    const std::uint64_t size = LayoutSize(image);
    return sub.width == image.width && sub.height == image.height &&
           row == GetRowSize(image.width, pixel, image.unpackAlignment, image.border) &&
           size == row * static_cast<std::uint64_t>(sub.height) && sub.pixels->GetSize() >= size;
}

/// Whether pixels of the call's format can be made pixels of the image, and are all there.
bool CanConvert(const STextureImageState& image, const SSubImage& sub, std::int32_t alignment) {
    if (sub.type == image.type || !IsConvertible(sub.type, sub.format) ||
        !IsConvertible(image.type, image.format)) {
        return false;
    }
    const std::uint32_t pixel = GetPixelSize(sub.format, sub.type);
    const std::uint64_t row = GetRowSize(sub.width, pixel, alignment, 0);
    const std::uint64_t lastRow = GetRowSize(sub.width, pixel, 1, 0);
    const std::uint64_t captured = sub.pixels->GetSize();
    return lastRow <= captured &&
           static_cast<std::uint64_t>(sub.height - 1) <= (captured - lastRow) / row;
}

/// Copies the pixels in, converted when their format is not that of the image.
void CopyPixels(STextureImageState& image, const SSubImage& sub, std::int32_t alignment) {
    if (image.data.Size() == 0) {
        const std::uint64_t size = LayoutSize(image);
        image.data = CSharedBytes::Zeroed(static_cast<std::size_t>(size));
        image.imageSize = Saturated(size);
    }
    const std::uint32_t pixel = GetPixelSize(image.format, image.type);
    const std::uint64_t rowBytes = GetRowSize(sub.width, pixel, 1, 0);
    const SRows to = RowsFrom(image, sub.x, sub.y);
    if (sub.format == image.format && sub.type == image.type) {
        const std::uint64_t row = GetRowSize(sub.width, pixel, alignment, 0);
        return CopyRows(image.data.Write(), image.data.Size(), to, sub.pixels->GetData(),
                        sub.pixels->GetSize(), {0, row}, rowBytes, sub.height);
    }
    std::vector<std::uint8_t> converted(rowBytes * static_cast<std::uint64_t>(sub.height));
    ConvertImage(sub.width, sub.height, 0, sub.type, sub.format, alignment, sub.pixels->GetData(),
                 image.type, image.format, 1, converted.data());
    CopyRows(image.data.Write(), image.data.Size(), to, converted.data(), converted.size(),
             {0, rowBytes}, rowBytes, sub.height);
}

}  // namespace

std::uint32_t ActiveUnit(const CEs2State& state) {
    return std::min(state.activeTexture - GL_TEXTURE0, kTextureUnits);
}

std::uint64_t LayoutSize(const STextureImageState& image) {
    if (image.target == GL_TEXTURE_3D || image.target == GL_TEXTURE_2D_ARRAY) {
        return GetImage3DSize(image.format, image.type, image.width, image.height, image.depth,
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
                    const SSubImage& sub) {
    const STextureImageState* found = state.FindImage(place.name, place.face, level);
    if (found == nullptr) return false;
    if (found->compressed != 0) return true;
    if ((found->height != 0 && sub.height > found->height) || sub.width > found->width) {
        output::Error("glTexSubImage2D: trying to update a texture out of limits.");
        return false;
    }
    if (sub.x < 0 || sub.y < 0 || sub.width <= 0 || sub.height <= 0 ||
        sub.x > found->width - sub.width || sub.y > found->height - sub.height) {
        return false;
    }
    const bool adopts = found->format == 0 && found->data.Size() == 0;
    STextureImageState layout = *found;
    layout.data = CSharedBytes();
    if (adopts) {
        layout.format = sub.format;
        layout.type = sub.type;
    }
    const std::int32_t alignment = state.unpackAlignment;
    const bool same = sub.format == layout.format && sub.type == layout.type;
    const bool whole = same && IsWhole(layout, sub, alignment);
    const std::uint64_t size = LayoutSize(layout);
    // All is known before the record is written: it parts from its snapshots for a reason only.
    if (size == 0 || (found->data.Size() == 0 && !whole && size > kMaxZeroedImage) ||
        (!same && !CanConvert(layout, sub, alignment))) {
        return false;
    }
    STextureImageState& image = state.WriteImage(place.name, place.face, level);
    image.format = layout.format;
    image.type = layout.type;
    if (whole) {
        image.data = Captured(*sub.pixels);
        image.imageSize = Saturated(size);
    } else {
        CopyPixels(image, sub, alignment);
    }
    return true;
}

bool CEs2_glActiveTexture_v1::UpdateState(CEs2State& state) {
    state.activeTexture = texture.GetValue();
    const std::uint32_t unit = ActiveUnit(state);
    if (unit == kTextureUnits) return true;
    state.textureUnitsUsed = std::max(state.textureUnitsUsed, static_cast<std::int32_t>(unit + 1));
    return true;
}

bool CEs2_glBindTexture_v1::UpdateState(CEs2State& state) {
    const std::uint32_t name = texture.GetValue();
    const std::uint32_t unit = ActiveUnit(state);
    TShared<SUnitBindings>* units = UnitsOf(state, target.GetValue());
    if (unit == kTextureUnits || units == nullptr) return false;
    if ((**units)[unit] != name) units->Write()[unit] = name;
    if (name != 0 && !state.HasFirstImage(name)) {
        WriteFirstImage(state, name, target.GetValue());
    }
    return true;
}

bool CEs2_glDeleteTextures_v1::UpdateState(CEs2State& state) {
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
    return EraseRecords(state.textures, textures);
}

bool CEs2_glTexImage2D_v1::UpdateState(CEs2State& state) {
    SImagePlace place;
    if (!PlaceOf(state, target.GetValue(), place)) return false;
    STextureImageState image;
    image.target = target.GetValue();
    image.level = level.GetValue();
    image.data = Captured(pixels);
    image.format = format.GetValue();
    image.internalFormat = internalformat.GetValue();
    image.width = width.GetValue();
    image.height = height.GetValue();
    image.type = type.GetValue();
    image.unpackAlignment = alignment.GetValue();
    image.border = border.GetValue();
    return ReplaceImage(state, place, image);
}

bool CEs2_glCompressedTexImage2D_v1::UpdateState(CEs2State& state) {
    SImagePlace place;
    if (!PlaceOf(state, target.GetValue(), place) || imageSize.GetValue() < 0) return false;
    STextureImageState image;
    image.target = target.GetValue();
    image.level = level.GetValue();
    image.data = Captured(data);
    image.format = internalformat.GetValue();
    image.internalFormat = static_cast<std::int32_t>(internalformat.GetValue());
    image.width = width.GetValue();
    image.height = height.GetValue();
    image.unpackAlignment = state.unpackAlignment;
    image.border = border.GetValue();
    image.imageSize = static_cast<std::uint32_t>(imageSize.GetValue());
    if (image.data.Size() != 0) image.imageSize = std::min(image.imageSize, data.GetSize());
    image.compressed = 1;
    return ReplaceImage(state, place, image);
}

bool CEs2_glTexSubImage2D_v1::UpdateState(CEs2State& state) {
    if (pixels.GetData() == nullptr) return true;
    SImagePlace place;
    if (!PlaceOf(state, target.GetValue(), place) || level.GetValue() < 0) return false;
    return UpdateSubImage(state, place, static_cast<std::uint32_t>(level.GetValue()),
                          {xoffset.GetValue(), yoffset.GetValue(), width.GetValue(),
                           height.GetValue(), format.GetValue(), type.GetValue(), &pixels});
}

bool CEs2_glTexParameterf_v1::UpdateState(CEs2State& state) {
    return SetTexParameter(state, target.GetValue(), pname.GetValue(),
                           ParameterFromFloat(param.GetValue()));
}

bool CEs2_glTexParameterfv_v1::UpdateState(CEs2State& state) {
    return params.ItemCount() != 0 && SetTexParameter(state, target.GetValue(), pname.GetValue(),
                                                      ParameterFromFloat(params.GetItem(0)));
}

bool CEs2_glTexParameteri_v1::UpdateState(CEs2State& state) {
    return SetTexParameter(state, target.GetValue(), pname.GetValue(), param.GetValue());
}

bool CEs2_glTexParameteriv_v1::UpdateState(CEs2State& state) {
    return params.ItemCount() != 0 &&
           SetTexParameter(state, target.GetValue(), pname.GetValue(), params.GetItem(0));
}

}  // namespace kestrail
