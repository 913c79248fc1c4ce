#include "exec/viewport_correction.h"

#include <limits>

namespace kestrail {

std::int32_t ToPixel(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (value != value) return 0;
    if (value <= Limits::min()) return Limits::min();
    if (value >= Limits::max()) return Limits::max();
    return static_cast<std::int32_t>(value);
}

SViewport CorrectedViewport(const SViewport& recorded, std::int32_t liveWidth,
                            std::int32_t liveHeight, std::int32_t recordedWidth,
                            std::int32_t recordedHeight) {
    const double width = static_cast<double>(recorded.width) / recordedWidth * liveWidth;
    const double height = static_cast<double>(recorded.height) / recordedHeight * liveHeight;
    const double x = static_cast<double>(recordedWidth) / liveWidth * recorded.x;
    const double y = static_cast<double>(recordedHeight) / liveHeight * recorded.y;
    return {ToPixel(x), ToPixel(y), ToPixel(width), ToPixel(height)};
}

}  // namespace kestrail
