// How many bytes the pixels of an image take, and how pixels of one format become those of another.
// Knows the published format and type enumerants only and touches no driver.
#pragma once

#include <cstdint>

namespace kestrail {

/// Bytes of one component, or of one pixel of a packed type; 0 for an unknown type.
std::uint32_t GetTypeSize(std::uint32_t type);
/// Bytes of one pixel; 0 for a pair that has no known size.
std::uint32_t GetPixelSize(std::uint32_t format, std::uint32_t type);
/// Bytes of one row, padded to `alignment` unless that is 0 or less; 0 for a row without pixels.
std::uint64_t GetRowSize(std::int32_t width, std::uint32_t pixelSize, std::int32_t alignment,
                         std::int32_t border);
/// Bytes of a 2D image; all ones when they don't fit into 64 bits.
std::uint64_t GetImageSize(std::uint32_t format, std::uint32_t type, std::int32_t width,
                           std::int32_t height, std::int32_t alignment, std::int32_t border);
/// Bytes of `depth` such images, with the same limit.
std::uint64_t GetImage3DSize(std::uint32_t format, std::uint32_t type, std::int32_t width,
                             std::int32_t height, std::int32_t depth, std::int32_t alignment,
                             std::int32_t border);

/// Whether pixels of the pair take part in conversion.
bool IsConvertible(std::uint32_t type, std::uint32_t format);
/// Converts one pixel. False, with nothing written, for two pairs of one type and for a pair that
/// isn't convertible. A pixel of bytes reads as zeros, and one to be written stays as it is.
bool ConvertPixel(std::uint32_t srcType, std::uint32_t srcFormat, const std::uint8_t* src,
                  std::uint32_t dstType, std::uint32_t dstFormat, std::uint8_t* dst);
/// Converts an image, its border left out. The blocks must hold all rows, each padded to its
/// alignment except the last. False when a pixel could not be converted.
bool ConvertImage(std::int32_t width, std::int32_t height, std::int32_t border,
                  std::uint32_t srcType, std::uint32_t srcFormat, std::int32_t srcAlignment,
                  const std::uint8_t* src, std::uint32_t dstType, std::uint32_t dstFormat,
                  std::int32_t dstAlignment, std::uint8_t* dst);

}  // namespace kestrail
