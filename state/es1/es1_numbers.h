// How the ES1 record takes the numbers of a call: fixed-point values and floats become floats by
// one set of functions, so that a call's forms share the rest of their update.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "calls/model/array_values.h"
#include "state/stored_values.h"

namespace kestrail {

/// Whether two runs of floats are the same to the bit: what is not a number equals itself, and 0
/// does not equal -0.
template <std::size_t Count>
bool SameBits(const std::array<float, Count>& left, const std::array<float, Count>& right) {
    using Bits = std::array<std::uint32_t, Count>;
    return std::bit_cast<Bits>(left) == std::bit_cast<Bits>(right);
}

/// The place of `name` in `table`; -1 for one that it does not hold.
template <std::size_t N>
int PlaceIn(const std::array<std::uint32_t, N>& table, std::uint32_t name) {
    for (std::size_t i = 0; i < N; ++i) {
        if (table[i] == name) return static_cast<int>(i);
    }
    return -1;
}

}  // namespace kestrail
