#include "calls/pixels/pixel_layout.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "base/enumerants.h"

namespace kestrail {
namespace {

constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

std::uint64_t Product(std::uint64_t a, std::uint64_t b) {
    return b != 0 && a > kNoLimit / b ? kNoLimit : a * b;
}

/// Pixels along one side, its border included; 0 for a side of less than one.
std::uint64_t SideLength(std::int32_t length, std::int32_t border) {
    const std::int64_t pixels = 2 * std::int64_t{border} + length;
    return static_cast<std::uint64_t>(std::max<std::int64_t>(pixels, 0));
}

std::uint64_t PadRow(std::uint64_t size, std::int32_t alignment) {
    if (alignment <= 0) return size;
    const std::uint64_t over = size % static_cast<std::uint64_t>(alignment);
    return over == 0 ? size : size + static_cast<std::uint64_t>(alignment) - over;
}

struct SColor {
    std::uint32_t r = 0;
    std::uint32_t g = 0;
    std::uint32_t b = 0;
    std::uint32_t a = 0;
};

SColor Decode(std::uint32_t type, const std::uint8_t* src) {
    // Kept: pixels of bytes are read as zeros; tools compare pictures of sought frames.
    if (type == GL_UNSIGNED_BYTE) return {};
    std::uint16_t packed;
    std::memcpy(&packed, src, sizeof packed);
    const std::uint32_t v = packed;
    if (type == GL_UNSIGNED_SHORT_4_4_4_4) {
        return {((v >> 8) & 0xF0) | (v >> 12), ((v & 0xF00) >> 4) | ((v >> 8) & 0xF),
                ((v & 0xF0) >> 4) | (v & 0xF0), ((v & 0xF) << 4) | (v & 0xF)};
    }
    if (type == GL_UNSIGNED_SHORT_5_5_5_1) {
        return {((v >> 8) & 0xF8) | (v >> 13), ((v >> 3) & 0xF8) | ((v >> 8) & 7),
                ((v & 0x3E) << 2) | ((v >> 3) & 7), (v & 1) != 0 ? 255u : 0u};
    }
    return {((v >> 8) & 0xF8) | (v >> 13), ((v >> 3) & 0xFC) | ((v >> 9) & 3),
            ((v & 0x1F) << 3) | ((v >> 2) & 7), 255};
}

void Encode(std::uint32_t type, const SColor& c, std::uint8_t* dst) {
    std::uint32_t v;
    if (type == GL_UNSIGNED_SHORT_4_4_4_4) {
        v = ((c.r & 0xF0) << 8) | ((c.g & 0xF0) << 4) | (c.b & 0xF0) | (c.a >> 4);
    } else if (type == GL_UNSIGNED_SHORT_5_5_5_1) {
        v = ((c.r & 0xF8) << 8) | ((c.g & 0xF8) << 3) | ((c.b & 0xF8) >> 2) | (c.a != 0 ? 1u : 0u);
    } else if (type == GL_UNSIGNED_SHORT_5_6_5) {
        v = ((c.r & 0xF8) << 8) | ((c.g & 0xFC) << 3) | (c.b >> 3);
    } else {
        // Kept: and are never written, though they count as converted.
        return;
    }
    const auto packed = static_cast<std::uint16_t>(v);
    std::memcpy(dst, &packed, sizeof packed);
}

}  // namespace

std::uint32_t GetTypeSize(std::uint32_t type) {
    switch (type) {
        case GL_BYTE:
        case GL_UNSIGNED_BYTE:
            return 1;
        case GL_SHORT:
        case GL_UNSIGNED_SHORT:
        case GL_UNSIGNED_SHORT_4_4_4_4:
        case GL_UNSIGNED_SHORT_5_5_5_1:
        case GL_UNSIGNED_SHORT_5_6_5:
        case GL_HALF_FLOAT_OES:
            return 2;
        case GL_INT:
        case GL_UNSIGNED_INT:
        case GL_FLOAT:
        case GL_FIXED:
            return 4;
        default:
            return 0;
    }
}

std::uint32_t GetPixelSize(std::uint32_t format, std::uint32_t type) {
    const bool packed =
        (type == GL_UNSIGNED_SHORT_5_6_5 && format == GL_RGB) ||
        ((type == GL_UNSIGNED_SHORT_5_5_5_1 || type == GL_UNSIGNED_SHORT_4_4_4_4) &&
         format == GL_RGBA) ||
        ((type == GL_UNSIGNED_SHORT_1_5_5_5_REV_EXT || type == GL_UNSIGNED_SHORT_4_4_4_4_REV_EXT) &&
         format == GL_BGRA_EXT);
    if (packed) return 2;
    const std::uint32_t component = GetTypeSize(type);
    switch (format) {
        case GL_ALPHA:
        case GL_LUMINANCE:
            return component;
        case GL_LUMINANCE_ALPHA:
            return 2 * component;
        case GL_RGB:
            return 3 * component;
        case GL_RGBA:
        case GL_BGRA_EXT:
            return 4 * component;
        default:
            return 0;
    }
}

std::uint64_t GetRowSize(std::int32_t width, std::uint32_t pixelSize, std::int32_t alignment,
                         std::int32_t border) {
    return PadRow(SideLength(width, border) * pixelSize, alignment);
}

std::uint64_t GetImageSize(std::uint32_t format, std::uint32_t type, std::int32_t width,
                           std::int32_t height, std::int32_t alignment, std::int32_t border) {
    const std::uint64_t row = GetRowSize(width, GetPixelSize(format, type), alignment, border);
    return Product(row, SideLength(height, border));
}

std::uint64_t GetImage3DSize(std::uint32_t format, std::uint32_t type, std::int32_t width,
                             std::int32_t height, std::int32_t depth, std::int32_t alignment,
                             std::int32_t border) {
    return Product(GetImageSize(format, type, width, height, alignment, border),
                   SideLength(depth, 0));
}

bool IsConvertible(std::uint32_t type, std::uint32_t format) {
    switch (type) {
        case GL_UNSIGNED_BYTE:
            return format >= GL_ALPHA && format <= GL_LUMINANCE_ALPHA;
        case GL_UNSIGNED_SHORT_4_4_4_4:
        case GL_UNSIGNED_SHORT_5_5_5_1:
            return format == GL_RGBA;
        case GL_UNSIGNED_SHORT_5_6_5:
            return format == GL_RGB;
        default:
            return false;
    }
}

bool ConvertPixel(std::uint32_t srcType, std::uint32_t srcFormat, const std::uint8_t* src,
                  std::uint32_t dstType, std::uint32_t dstFormat, std::uint8_t* dst) {
    if (srcType == dstType || !IsConvertible(srcType, srcFormat) ||
        !IsConvertible(dstType, dstFormat)) {
        return false;
    }
    Encode(dstType, Decode(srcType, src), dst);
    return true;
}

bool ConvertImage(std::int32_t width, std::int32_t height, std::int32_t border,
                  std::uint32_t srcType, std::uint32_t srcFormat, std::int32_t srcAlignment,
                  const std::uint8_t* src, std::uint32_t dstType, std::uint32_t dstFormat,
                  std::int32_t dstAlignment, std::uint8_t* dst) {
    const std::uint64_t srcPixel = GetImageSize(srcFormat, srcType, 1, 1, 1, 0);
    const std::uint64_t dstPixel = GetImageSize(dstFormat, dstType, 1, 1, 1, 0);
    const std::uint64_t srcRow = PadRow(SideLength(width, border) * srcPixel, srcAlignment);
    const std::uint64_t dstRow = PadRow(SideLength(width, border) * dstPixel, dstAlignment);
    const auto first = static_cast<std::uint64_t>(std::max(border, 0));
    const std::uint64_t endX = first + SideLength(width, 0);
    const std::uint64_t endY = first + SideLength(height, 0);
    for (std::uint64_t x = first; x < endX; ++x) {
        for (std::uint64_t y = first; y < endY; ++y) {
            if (!ConvertPixel(srcType, srcFormat, src + srcPixel * x + srcRow * y, dstType,
                              dstFormat, dst + dstPixel * x + dstRow * y)) {
                return false;
            }
        }
    }
    return true;
}

}  // namespace kestrail
