// How a part of an image replaces that of a stored one, and how much of contents the records keep.
// Works on plain parameters: the records of both APIs use it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/shared.h"

namespace kestrail {

/// The largest contents, in bytes, that a partial update makes a private copy of. A call can claim
/// any size with a few bytes of trace; no driver has contents as large as this.
inline constexpr std::uint64_t kPrivateContentsLimit = std::uint64_t{1} << 28;

/// An image of a record, by reference to what an update changes.
struct SStoredImage {
    CSharedBytes& data;
    std::uint32_t& format;
    std::uint32_t& type;
    std::int32_t width;
    std::int32_t height;
    std::int32_t alignment;
    std::int32_t border;
};

/// What a call brings: a rectangle of pixels, whose bytes outlive every record.
struct SImagePart {
    const std::uint8_t* data;
    std::size_t size;
    std::int32_t x;
    std::int32_t y;
    std::int32_t width;
    std::int32_t height;
    std::uint32_t format;
    std::uint32_t type;
    std::int32_t alignment;
};

/// Puts the rectangle into the image, converted to the image's format. False, with the image as it
/// was, for a rectangle that reaches out of it (larger than the image: with a message), for missing
/// bytes and for formats that don't convert. One that covers the whole image is borrowed.
bool ApplySubImage(const SStoredImage& image, const SImagePart& part);

/// Puts `size` bytes at `offset` into contents of `total` bytes, which read as zeros where there
/// are none yet. False, with the contents as they were, when the range reaches out of them.
bool ApplySubData(CSharedBytes& contents, std::uint64_t total, std::int64_t offset,
                  const std::uint8_t* data, std::size_t size);

}  // namespace kestrail
