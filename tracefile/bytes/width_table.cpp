#include "tracefile/bytes/width_table.h"

#include <algorithm>

namespace kestrail {

void CWidthTable::ThrowUndefinedType() {
    throw "Undefined Es Type in record library";
}

bool CWidthTable::AreUsual(const std::int8_t* widths, std::int8_t count) {
    // No value is of these.
    constexpr std::uint16_t kUnused[] = {15, 16, 20};
    // Floats know no other width, and that without a sign.
    constexpr std::uint16_t kFloats[] = {22, 23};
    if (count < kUsualTags) return false;
    for (std::uint16_t tag = 0; tag < kUsualTags; ++tag) {
        const std::int8_t width = widths[tag];
        const auto usual = static_cast<std::int8_t>(Usual(tag));
        if (std::ranges::count(kUnused, tag) > 0 || width == usual) continue;
        if (std::ranges::count(kFloats, tag) > 0 || width != -usual) return false;
    }
    return true;
}

}  // namespace kestrail
