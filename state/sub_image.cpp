#include "state/sub_image.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "base/output.h"
#include "calls/pixels/pixel_layout.h"

namespace kestrail {
namespace {

bool IsLarger(const SStoredImage& image, const SImagePart& part) {
    return (image.height != 0 && part.height > image.height) || part.width > image.width;
}

bool IsInside(const SStoredImage& image, const SImagePart& part) {
    return part.x >= 0 && part.y >= 0 && part.width > 0 && part.height > 0 &&
           std::int64_t{part.x} + part.width <= image.width &&
           std::int64_t{part.y} + part.height <= image.height;
}

/// The bytes to change, of `total`, whatever the contents had before. The size is within the limit.
std::uint8_t* WriteAll(CSharedBytes& contents, std::uint64_t total) {
    const auto wanted = static_cast<std::size_t>(total);
    if (contents.Size() < wanted) {
        CSharedBytes whole = CSharedBytes::Zeroed(wanted);
        if (contents.Size() != 0) std::memcpy(whole.Write(), contents.Data(), contents.Size());
        contents = std::move(whole);
    }
    return contents.Write();
}

/// A rectangle's pixels in the format of the image they go to.
struct SPixels {
    const std::uint8_t* data;
    std::uint64_t rowSize;
};

}  // namespace

bool ApplySubImage(const SStoredImage& image, const SImagePart& part) {
    if (IsLarger(image, part)) {
        output::Error("glTexSubImage2D: trying to update a texture out of limits.");
        return false;
    }
    if (part.data == nullptr || image.border < 0 || !IsInside(image, part)) return false;
    const bool empty = image.data.Data() == nullptr && image.format == 0;
    const std::uint32_t format = empty ? part.format : image.format;
    const std::uint32_t type = empty ? part.type : image.type;

    const std::uint32_t partPixel = GetPixelSize(part.format, part.type);
    const std::uint32_t pixel = GetPixelSize(format, type);
    const std::uint64_t total =
        GetImageSize(format, type, image.width, image.height, image.alignment, image.border);
    const std::uint64_t rowSize = GetRowSize(image.width, pixel, image.alignment, image.border);
    SPixels source = {part.data, GetRowSize(part.width, partPixel, part.alignment, 0)};
    const auto rows = static_cast<std::uint64_t>(part.height);
    const auto columns = static_cast<std::uint64_t>(part.width);
    // The padding of the last row may be missing.
    const std::uint64_t needed = source.rowSize * (rows - 1) + columns * partPixel;
    if (total == 0 || total > kPrivateContentsLimit || needed == 0 || part.size < needed) {
        return false;
    }

    std::vector<std::uint8_t> converted;
    const bool same = part.format == format && part.type == type;
    if (!same) {
        converted.resize(static_cast<std::size_t>(columns * rows * pixel));
        if (!ConvertImage(part.width, part.height, 0, part.type, part.format, part.alignment,
                          part.data, type, format, 0, converted.data())) {
            return false;
        }
        source = {converted.data(), columns * pixel};
    }

    image.format = format;
    image.type = type;
    const bool whole = part.width == image.width && part.height == image.height;
    if (same && whole && source.rowSize == rowSize && image.border == 0 && part.size >= total) {
        image.data = CSharedBytes::Borrow(part.data, static_cast<std::size_t>(total));
        return true;
    }
    const auto left = static_cast<std::uint64_t>(image.border) + static_cast<std::uint64_t>(part.x);
    const auto bottom =
        static_cast<std::uint64_t>(image.border) + static_cast<std::uint64_t>(part.y);
    std::uint8_t* target = WriteAll(image.data, total) + bottom * rowSize + left * pixel;
    for (std::uint64_t row = 0; row < rows; ++row) {
        std::memcpy(target + row * rowSize, source.data + row * source.rowSize,
                    static_cast<std::size_t>(columns * pixel));
    }
    return true;
}

bool ApplySubData(CSharedBytes& contents, std::uint64_t total, std::int64_t offset,
                  const std::uint8_t* data, std::size_t size) {
    if (data == nullptr || offset < 0 || total > kPrivateContentsLimit) return false;
    const auto start = static_cast<std::uint64_t>(offset);
    if (start > total || size > total - start) return false;
    if (size == 0) return true;
    if (size == total) {
        contents = CSharedBytes::Borrow(data, size);
        return true;
    }
    std::memcpy(WriteAll(contents, total) + start, data, size);
    return true;
}

}  // namespace kestrail
