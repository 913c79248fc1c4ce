#include "calls/reach/host_reach.h"

#include <algorithm>
#include <limits>

#include "base/enumerants.h"

namespace kestrail {
namespace {

/// Bytes of a whole pixel or vertex in a packed type; 0 for a type of single components.
std::int64_t PackedBytes(std::uint32_t type) {
    switch (type) {
        case GL_UNSIGNED_SHORT_5_6_5:
        case GL_UNSIGNED_SHORT_4_4_4_4:
        case GL_UNSIGNED_SHORT_5_5_5_1:
        case GL_UNSIGNED_SHORT_4_4_4_4_REV_EXT:
        case GL_UNSIGNED_SHORT_1_5_5_5_REV_EXT:
            return 2;
        case GL_UNSIGNED_INT_2_10_10_10_REV:
        case GL_INT_2_10_10_10_REV:
        case GL_UNSIGNED_INT_10F_11F_11F_REV:
        case GL_UNSIGNED_INT_5_9_9_9_REV:
        case GL_UNSIGNED_INT_24_8:
        case GL_INT_10_10_10_2_OES:
        case GL_UNSIGNED_INT_10_10_10_2_OES:
            return 4;
        case GL_FLOAT_32_UNSIGNED_INT_24_8_REV:
            return 8;
        default:
            return 0;
    }
}

std::int64_t FormatComponents(std::uint32_t format) {
    switch (format) {
        case GL_ALPHA:
        case GL_LUMINANCE:
        case GL_RED:
        case GL_RED_INTEGER:
        case GL_DEPTH_COMPONENT:
        case GL_STENCIL_INDEX_OES:
        case GL_SLUMINANCE_NV:
            return 1;
        case GL_LUMINANCE_ALPHA:
        case GL_RG:
        case GL_RG_INTEGER:
        case GL_DEPTH_STENCIL:
        case GL_SLUMINANCE_ALPHA_NV:
            return 2;
        case GL_RGB:
        case GL_RGB_INTEGER:
        case GL_SRGB_EXT:
            return 3;
        case GL_BGRA_EXT:
        default:
            return 4;
    }
}

}  // namespace

std::int32_t* SPixelStore::Find(std::uint32_t name) {
    switch (name) {
        case GL_UNPACK_ALIGNMENT:
            return &unpackAlignment;
        case GL_UNPACK_ROW_LENGTH:
            return &unpackRowLength;
        case GL_UNPACK_IMAGE_HEIGHT:
            return &unpackImageHeight;
        case GL_UNPACK_SKIP_PIXELS:
            return &unpackSkipPixels;
        case GL_UNPACK_SKIP_ROWS:
            return &unpackSkipRows;
        case GL_UNPACK_SKIP_IMAGES:
            return &unpackSkipImages;
        case GL_PACK_ALIGNMENT:
            return &packAlignment;
        case GL_PACK_ROW_LENGTH:
            return &packRowLength;
        case GL_PACK_SKIP_PIXELS:
            return &packSkipPixels;
        case GL_PACK_SKIP_ROWS:
            return &packSkipRows;
        case GL_PACK_REVERSE_ROW_ORDER_ANGLE:
        case GL_PACK_INVERT_MESA:
            return &packReversed;
        default:
            return nullptr;
    }
}

void SPixelStore::Set(std::uint32_t name, std::int32_t value) {
    std::int32_t* const held = Find(name);
    if (held == nullptr || value < 0) return;
    const bool alignment = held == &unpackAlignment || held == &packAlignment;
    if (alignment && value != 1 && value != 2 && value != 4 && value != 8) return;
    *held = value;
}

std::int64_t ImageBytes(std::uint32_t format, std::uint32_t type, std::int32_t width,
                        std::int32_t height, std::int32_t depth, const SPixelStore& store) {
    if (width <= 0 || height <= 0 || depth <= 0) return 0;
    const std::int64_t packed = PackedBytes(type);
    const std::int64_t pixel =
        packed != 0 ? packed : FormatComponents(format) * ComponentBytes(type);
    const std::int64_t alignment = store.unpackAlignment;
    const std::int64_t rowPixels = store.unpackRowLength != 0 ? store.unpackRowLength : width;
    const std::int64_t row = (rowPixels * pixel + alignment - 1) / alignment * alignment;
    // Sizes beyond any image that a host can hold stop here, before products leave 64 bits.
    constexpr std::int64_t kBeyond = std::int64_t{1} << 40;
    const std::int64_t imageRows = store.unpackImageHeight != 0 ? store.unpackImageHeight : height;
    const std::int64_t images = std::int64_t{store.unpackSkipImages} + depth - 1;
    const std::int64_t rows = std::int64_t{store.unpackSkipRows} + height - 1;
    const std::int64_t last = (std::int64_t{store.unpackSkipPixels} + width) * pixel;
    if (images != 0 && imageRows > kBeyond / images) return kBeyond;
    const std::int64_t allRows = images * imageRows + rows;
    if (allRows != 0 && row > kBeyond / allRows) return kBeyond;
    return std::min(allRows * row + last, kBeyond);
}

std::int64_t ImageBytes(std::uint32_t format, std::uint32_t type, std::int32_t width,
                        std::int32_t height, const SPixelStore& store) {
    SPixelStore flat = store;
    flat.unpackImageHeight = 0;
    flat.unpackSkipImages = 0;
    return ImageBytes(format, type, width, height, 1, flat);
}

std::int64_t ComponentBytes(std::uint32_t type) {
    switch (type) {
        case GL_BYTE:
        case GL_UNSIGNED_BYTE:
            return 1;
        case GL_SHORT:
        case GL_UNSIGNED_SHORT:
        case GL_HALF_FLOAT:
        case GL_HALF_FLOAT_OES:
            return 2;
        case GL_FIXED:
        default:
            return 4;
    }
}

std::int64_t VertexBytes(std::uint32_t type, std::int32_t size) {
    const std::int64_t packed = PackedBytes(type);
    return packed != 0 ? packed : ComponentBytes(type) * size;
}

std::uint32_t ParameterCount(std::uint32_t pname) {
    switch (pname) {
        case GL_LIGHT_MODEL_AMBIENT:
        case GL_FOG_COLOR:
        case GL_TEXTURE_BORDER_COLOR_OES:
        case GL_AMBIENT:
        case GL_DIFFUSE:
        case GL_SPECULAR:
        case GL_POSITION:
        case GL_EMISSION:
        case GL_AMBIENT_AND_DIFFUSE:
        case GL_TEXTURE_ENV_COLOR:
        case GL_TEXTURE_CROP_RECT_OES:
            return 4;
        case GL_SPOT_DIRECTION:
        case GL_POINT_DISTANCE_ATTENUATION:
            return 3;
        default:
            return 1;
    }
}

std::uint32_t ClearValueCount(std::uint32_t buffer) {
    return buffer == GL_COLOR ? 4 : 1;
}

std::int64_t SArrayReach::Bytes() const {
    if (vertices <= 0) return 0;
    constexpr std::int64_t kBeyond = std::numeric_limits<std::int64_t>::max() / 2;
    const std::int64_t step = stride != 0 ? stride : vertexBytes;
    if (step < 0 || (step != 0 && vertices > kBeyond / step)) return kBeyond;
    return (vertices - 1) * step + vertexBytes;
}

std::int64_t IndexLimit(std::uint32_t type) {
    switch (type) {
        case GL_UNSIGNED_BYTE:
            return std::int64_t{1} << 8;
        case GL_UNSIGNED_SHORT:
            return std::int64_t{1} << 16;
        case GL_UNSIGNED_INT:
            return std::int64_t{1} << 32;
        default:
            return 0;
    }
}

std::int64_t VerticesOf(const void* indices, std::int32_t count, std::uint32_t type, bool restart) {
    const auto highest = [count, restart, limit = IndexLimit(type)](const auto* values) {
        std::int64_t vertices = 0;
        for (std::int32_t i = 0; i < count; ++i) {
            const std::int64_t needed = std::int64_t{values[i]} + 1;
            if (needed > vertices && !(restart && needed == limit)) vertices = needed;
        }
        return vertices;
    };
    switch (type) {
        case GL_UNSIGNED_BYTE:
            return highest(static_cast<const GLubyte*>(indices));
        case GL_UNSIGNED_SHORT:
            return highest(static_cast<const GLushort*>(indices));
        case GL_UNSIGNED_INT:
            return highest(static_cast<const GLuint*>(indices));
        default:
            return 0;
    }
}

}  // namespace kestrail
