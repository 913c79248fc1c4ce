// How what effects know of images and surfaces is put into places and values.
#pragma once

#include <cstdint>

#include "base/enumerants.h"

namespace kestrail {

inline constexpr std::uint32_t kProcess = 1;
inline constexpr std::uint32_t kNoContext = 2;  ///< stands for the context where none is current
inline constexpr std::uint32_t kTargets = 4;
inline constexpr std::uint64_t kAllLevels = ~std::uint64_t{0};
inline constexpr std::uint32_t kNone = ~std::uint32_t{0};  ///< of a journal: there isn't one yet
inline constexpr std::uint64_t kKept = 1;  ///< of kStorage, for a surface that swaps leave alone
inline constexpr std::int32_t kMostLevels = 16;

inline std::uint64_t ImagePlace(std::int32_t level, std::int32_t layer) {
    return std::uint64_t{static_cast<std::uint32_t>(level)} << 32 |
           std::uint64_t{static_cast<std::uint32_t>(layer)} << 4;
}
inline std::int32_t LevelOf(std::uint64_t place) {
    return static_cast<std::int32_t>(place >> 32);
}

/// From 1; 0 for a target that has none.
inline std::int32_t FaceOf(std::uint32_t target) {
    const bool face =
        target >= GL_TEXTURE_CUBE_MAP_POSITIVE_X && target <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z;
    return face ? static_cast<std::int32_t>(target - GL_TEXTURE_CUBE_MAP_POSITIVE_X) + 1 : 0;
}

inline std::uint32_t KindOfTarget(std::uint32_t target) {
    switch (target) {
        case GL_TEXTURE_3D:
            return 2;
        case GL_TEXTURE_2D_ARRAY:
            return 3;
        default:
            return target == GL_TEXTURE_CUBE_MAP || FaceOf(target) != 0 ? 1 : 0;
    }
}

/// A size as a value of a place; 0 for one that isn't known.
inline std::uint32_t Packed(std::int32_t width, std::int32_t height) {
    const bool fits = width > 0 && height > 0 && width < 0x10000 && height < 0x10000;
    return fits ? static_cast<std::uint32_t>(width) << 16 | static_cast<std::uint32_t>(height) : 0;
}

}  // namespace kestrail
