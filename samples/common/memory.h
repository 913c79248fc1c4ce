// Helpers for the memory that scenes hand to calls.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kestrail::samples {

/// An offset into a bound buffer, as the pointer that it is passed as.
inline const void* Offset(std::size_t offset) {
    return reinterpret_cast<const void*>(offset);
}

template <typename T, std::size_t N>
std::intptr_t SizeOf(const std::array<T, N>&) {
    return static_cast<std::intptr_t>(N * sizeof(T));
}

inline std::uint8_t Byte(int value) {
    return static_cast<std::uint8_t>(value & 0xFF);
}

}  // namespace kestrail::samples
