#include "pictures/picture.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace kestrail {
namespace {

/// Calls `take(x, share)` for the pixels of a line that a pixel of its scaled one covers.
template <typename Take>
void ForCovered(std::uint32_t index, std::uint32_t scaled, std::uint32_t length, Take take) {
    // In units of 1/scaled of a pixel, so that nothing is rounded.
    const std::uint64_t begin = std::uint64_t{index} * length;
    const std::uint64_t end = begin + length;
    for (std::uint64_t at = begin; at < end;) {
        const std::uint64_t pixel = at / scaled;
        const std::uint64_t next = std::min(end, (pixel + 1) * scaled);
        take(static_cast<std::uint32_t>(pixel), static_cast<float>(next - at));
        at = next;
    }
}

}  // namespace

SDifference Compare(const SPicture& left, const SPicture& right, int threshold) {
    SDifference found;
    found.sized = left.width == right.width && left.height == right.height;
    if (!found.sized) return found;
    for (std::size_t pixel = 0; pixel < left.pixels.size(); pixel += 4) {
        int largest = 0;
        for (std::size_t i = pixel; i < pixel + 3; ++i) {
            largest = std::max(largest, std::abs(left.pixels[i] - right.pixels[i]));
        }
        if (largest > threshold) ++found.pixels;
        found.largest = std::max(found.largest, largest);
    }
    return found;
}

SPicture PictureOfDifference(const SPicture& left, const SPicture& right) {
    SPicture picture = left;
    for (std::size_t i = 0; i < left.pixels.size(); ++i) {
        const int by = std::abs(left.pixels[i] - right.pixels[i]);
        const int shown = by == 0 ? 0 : std::min(255, 64 + by);
        picture.pixels[i] = i % 4 == 3 ? 255 : static_cast<std::uint8_t>(shown);
    }
    return picture;
}

SPicture FitInto(const SPicture& picture, std::uint32_t width, std::uint32_t height) {
    const double scale =
        std::min(double{1} * width / picture.width, double{1} * height / picture.height);
    const auto scaled = [scale](std::uint32_t length) {
        return static_cast<std::uint32_t>(std::max(1L, std::lround(length * scale)));
    };
    SPicture fitted;
    fitted.width = scaled(picture.width);
    fitted.height = scaled(picture.height);
    fitted.pixels.resize(std::size_t{4} * fitted.width * fitted.height);
    std::uint8_t* out = fitted.pixels.data();
    const float area = static_cast<float>(picture.width) * static_cast<float>(picture.height);
    for (std::uint32_t y = 0; y < fitted.height; ++y) {
        for (std::uint32_t x = 0; x < fitted.width; ++x) {
            float sum[4] = {};
            ForCovered(y, fitted.height, picture.height, [&](std::uint32_t row, float rows) {
                const std::uint8_t* const line =
                    picture.pixels.data() + std::size_t{4} * picture.width * row;
                ForCovered(x, fitted.width, picture.width, [&](std::uint32_t column, float share) {
                    for (std::size_t i = 0; i < 4; ++i) {
                        const std::uint8_t value = line[std::size_t{4} * column + i];
                        sum[i] += rows * share * static_cast<float>(value);
                    }
                });
            });
            for (const float channel : sum) {
                *out++ = static_cast<std::uint8_t>(std::lround(channel / area));
            }
        }
    }
    return fitted;
}

std::uint32_t ChecksumOf(const SPicture& picture) {
    uLong sum = crc32(0, nullptr, 0);
    std::vector<std::uint8_t> line(std::size_t{3} * picture.width);
    for (std::uint32_t y = 0; y < picture.height; ++y) {
        const std::uint8_t* const row = picture.Row(y);
        for (std::size_t x = 0; x < picture.width; ++x) {
            std::copy_n(row + 4 * x, 3, line.data() + 3 * x);
        }
        sum = crc32(sum, line.data(), static_cast<uInt>(line.size()));
    }
    return static_cast<std::uint32_t>(sum);
}

}  // namespace kestrail
