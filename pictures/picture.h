// A picture as a window holds it, and what can be told of two of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestrail {

/// Rows of R, G, B, A bytes from the bottom on, tightly packed. One without pixels is none.
struct SPicture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> pixels;

    /// From the top, 0-based.
    const std::uint8_t* Row(std::uint32_t y) const {
        return pixels.data() + std::size_t{4} * width * (height - 1 - y);
    }
    std::uint8_t* Row(std::uint32_t y) {
        return pixels.data() + std::size_t{4} * width * (height - 1 - y);
    }
};

/// What stands in the way of two pictures being equal. Alpha doesn't count: in windows without, it
/// is whatever the driver makes of it.
struct SDifference {
    bool sized = true;       ///< both have the same size; without, nothing else is told
    std::size_t pixels = 0;  ///< how many differ in a channel by more than was let pass
    int largest = 0;         ///< in any channel of any pixel

    bool Equal() const { return sized && pixels == 0; }
};

/// `threshold`: how far a channel may be off.
SDifference Compare(const SPicture& left, const SPicture& right, int threshold = 0);

/// What pixels differ by, bright enough to be seen however little it is; black where they are
/// equal. Of pictures of the same size.
SPicture PictureOfDifference(const SPicture& left, const SPicture& right);

/// The picture scaled to the largest size of its proportions that fits in there, each pixel the
/// mean of what it covers.
SPicture FitInto(const SPicture& picture, std::uint32_t width, std::uint32_t height);

/// CRC-32, as in PNG and zip files, of the R, G, B bytes of all rows from the top on.
std::uint32_t ChecksumOf(const SPicture& picture);

}  // namespace kestrail
