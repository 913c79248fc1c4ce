#include "state/sub_image.h"

#include <memory>
#include <utility>

#include "calls/pixels/pixel_layout.h"
#include "state/updates.h"

namespace kestrail {
namespace {

bool IsLarger(const SImageLayout& image, const SImagePart& part) {
    return (image.height != 0 && part.height > image.height) || part.width > image.width;
}

bool IsInside(const SImageLayout& image, const SImagePart& part) {
    return part.x >= 0 && part.y >= 0 && part.width > 0 && part.height > 0 &&
           std::int64_t{part.x} + part.width <= image.width &&
           std::int64_t{part.y} + part.height <= image.height;
}

/// Converts the part's rows to the format of the image. False when that can't be done.
bool Convert(const SImagePart& part, SFittedPart& fitted) {
    SByteRows& rows = fitted.rows;
    auto converted = std::make_shared<std::vector<std::uint8_t>>(rows.length * rows.count);
    if (!ConvertImage(part.width, part.height, 0, part.type, part.format, part.alignment, part.data,
                      fitted.type, fitted.format, 0, converted->data())) {
        return false;
    }
    rows.data = converted->data();
    rows.dataStride = rows.length;
    fitted.converted = std::move(converted);
    return true;
}

}  // namespace

bool FitPart(const SImageLayout& image, const SImagePart& part, SFittedPart& fitted,
             const SUpdates& updates) {
    if (IsLarger(image, part)) {
        if (!updates.repeated) {
            updates.diagnostics.Tell(EDiagnostic::kError,
                                     "glTexSubImage2D: trying to update a texture out of limits.");
        }
        return false;
    }
    if (part.data == nullptr || image.border < 0 || !IsInside(image, part)) return false;
    const bool adopts = image.empty && image.format == 0;
    fitted.format = adopts ? part.format : image.format;
    fitted.type = adopts ? part.type : image.type;

    const std::uint32_t partPixel = GetPixelSize(part.format, part.type);
    const std::uint64_t partRow = GetRowSize(part.width, partPixel, part.alignment, 0);
    const std::uint32_t pixel = GetPixelSize(fitted.format, fitted.type);
    const std::uint64_t total =
        image.layers >= 0 ? GetImage3DSize(fitted.format, fitted.type, image.width, image.height,
                                           image.layers, image.alignment, image.border)
                          : GetImageSize(fitted.format, fitted.type, image.width, image.height,
                                         image.alignment, image.border);
    const auto columns = static_cast<std::uint64_t>(part.width);
    const auto count = static_cast<std::uint64_t>(part.height);
    // The padding of the last row may be missing.
    const std::uint64_t needed = partRow * (count - 1) + columns * partPixel;
    if (total == 0 || total > CSharedBytes::kLargest || needed == 0 || part.size < needed) {
        return false;
    }

    const std::uint64_t row = GetRowSize(image.width, pixel, image.alignment, image.border);
    const auto left = static_cast<std::uint64_t>(std::int64_t{image.border} + part.x);
    const auto above = static_cast<std::uint64_t>(std::int64_t{image.border} + part.y);
    fitted.imageSize = total;
    fitted.rows = {above * row + left * pixel, row, columns * pixel, count, part.data, partRow};
    if (part.format != fitted.format || part.type != fitted.type) return Convert(part, fitted);
    // Of an image in layers too, a part as wide and as high is all of it, if it has the bytes.
    fitted.whole = part.width == image.width && part.height == image.height && image.border == 0 &&
                   partRow == row && part.size >= total;
    return true;
}

}  // namespace kestrail
