// How a part of an image replaces that of a stored one, in the records of both APIs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "state/shared_bytes.h"

namespace kestrail {

/// How an image of a record is laid out.
struct SImageLayout {
    std::uint32_t format = 0;
    std::uint32_t type = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t layers = -1;  ///< -1 for an image of two dimensions
    std::int32_t alignment = 0;
    std::int32_t border = 0;
    bool empty = false;  ///< without pixels
};

/// What a call brings: pixels for a rectangle of an image, whose bytes outlive every record.
struct SImagePart {
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint32_t format = 0;
    std::uint32_t type = 0;
    std::int32_t alignment = 0;
};

/// A part in the format of the image that it goes to.
struct SFittedPart {
    std::uint32_t format = 0;
    std::uint32_t type = 0;
    std::size_t imageSize = 0;
    SByteRows rows;
    bool whole = false;            ///< the rows are all of the image, as it is laid out
    CSharedBytes::Made converted;  ///< where the rows stand, unless in the call
};

/// What a glTexImage2D or glTexImage3D sets of an image of a record.
template <typename Image, typename Call>
void SetWholeImage(Image& image, const Call& call, std::int32_t alignment) {
    image.format = call.format.GetValue();
    image.internalFormat = call.internalformat.GetValue();
    image.width = call.width.GetValue();
    image.height = call.height.GetValue();
    image.type = call.type.GetValue();
    image.unpackAlignment = alignment;
    image.border = call.border.GetValue();
    image.data = CSharedBytes::Borrow(call.pixels.GetData(), call.pixels.GetSize());
}

/// What a glCompressedTexImage2D sets but for the size.
template <typename Image, typename Call>
void SetCompressedImage(Image& image, const Call& call, std::int32_t alignment) {
    image.format = call.internalformat.GetValue();
    image.internalFormat = static_cast<std::int32_t>(call.internalformat.GetValue());
    image.width = call.width.GetValue();
    image.height = call.height.GetValue();
    image.type = 0;
    image.unpackAlignment = alignment;
    image.border = call.border.GetValue();
    image.data = CSharedBytes::Borrow(call.data.GetData(), call.data.GetSize());
    image.compressed = 1;
}

template <typename Call>
SImagePart PartOf(const Call& call, std::int32_t alignment) {
    return {call.pixels.GetData(),   call.pixels.GetSize(), call.xoffset.GetValue(),
            call.yoffset.GetValue(), call.width.GetValue(), call.height.GetValue(),
            call.format.GetValue(),  call.type.GetValue(),  alignment};
}

/// Makes a part ready for an image. False for a rectangle that reaches out of it (larger than the
/// image: with a message), for fewer bytes than a host reads, with which no call is played, and for
/// formats that don't convert.
bool FitPart(const SImageLayout& image, const SImagePart& part, SFittedPart& fitted,
             const SUpdates& updates);

/// Puts a part into an image of a record, if there is one. `write` gives the image to change, and
/// is called for a part that fits only: the record shares its tables with its snapshots until then.
/// False when nothing changes, but for compressed images, which are not to.
template <typename Image, typename Write>
bool ApplySubImage(const Image* image, const SImagePart& part, const SUpdates& updates,
                   Write write) {
    if (image == nullptr) return false;
    if (image->compressed != 0) return true;
    const SImageLayout layout = {image->format, image->type,        image->width,
                                 image->height, image->Layers(),    image->unpackAlignment,
                                 image->border, image->data.Empty()};
    SFittedPart fitted;
    if (!FitPart(layout, part, fitted, updates)) return false;
    if (!fitted.whole && !image->data.Takes(fitted.imageSize, updates)) return false;
    Image& changed = write();
    changed.format = fitted.format;
    changed.type = fitted.type;
    changed.imageSize = static_cast<std::uint32_t>(fitted.imageSize);
    if (fitted.whole) {
        changed.data = CSharedBytes::Borrow(part.data, fitted.imageSize);
    } else {
        changed.data.Put(fitted.imageSize, fitted.rows, part.data, updates, fitted.converted);
    }
    return true;
}

}  // namespace kestrail
