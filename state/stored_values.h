// How the records hold the single values of calls.
#pragma once

#include <cstdint>

#include "calls/model/api_type.h"

namespace kestrail {

// Kept: 12 and in whole numbers, not 65536; tools compare pictures of sought frames.
inline constexpr std::int32_t kFixedDivisor = 12;

/// The number that a record holds for a raw fixed-point value.
inline float FixedValue(std::int32_t raw) {
    const std::int32_t whole = raw / kFixedDivisor;
    return static_cast<float>(whole);
}

template <typename Value>
auto Stored(const Value& value) {
    return value.GetValue();
}
inline std::uint8_t Stored(const TGLboolean& value) {
    return value.GetValue() != 0 ? 1 : 0;
}
inline float Stored(const TGLfixed& value) {
    return FixedValue(value.GetValue());
}
inline float Stored(const TGLclampx& value) {
    return FixedValue(value.GetValue());
}
/// The only bytes are components of a colour.
inline float Stored(const TGLubyte& value) {
    return static_cast<float>(value.GetValue()) / 255.0F;
}

}  // namespace kestrail
