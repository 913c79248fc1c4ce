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

/// The numbers behind the pname of a call: as many as it has, at most four.
struct SParameters {
    std::array<float, 4> values{};
    std::uint32_t count = 0;

    template <typename Value>
    static SParameters Of(const Value& value) {
        return {{Stored(value)}, 1};
    }
    static SParameters Of(const SArrayPtr<TGLfloat, 1, 1>& array) {
        return FromArray(array, [](float value) { return value; });
    }
    static SParameters Of(const SArrayPtr<TGLfixed, 1, 1>& array) {
        return FromArray(array, FixedValue);
    }
    /// Enumerants that come through a fixed-point form keep their value.
    static SParameters Unscaled(const TGLfixed& value) {
        return {{static_cast<float>(value.GetValue())}, 1};
    }
    static SParameters Unscaled(const SArrayPtr<TGLfixed, 1, 1>& array) {
        return FromArray(array, [](std::int32_t value) { return static_cast<float>(value); });
    }

    /// Stores the first `wanted` numbers, as far as they are there; false when none is.
    bool Store(float* target, std::uint32_t wanted) const {
        std::copy_n(values.begin(), std::min(count, wanted), target);
        return count != 0;
    }

private:
    template <typename Array, typename Convert>
    static SParameters FromArray(const Array& array, Convert convert) {
        SParameters parameters;
        parameters.count = std::min(array.ItemCount(), 4u);
        for (std::uint32_t i = 0; i < parameters.count; ++i) {
            parameters.values[i] = convert(array.GetItem(i));
        }
        return parameters;
    }
};

/// The place of `name` in `table`; -1 for one that it does not hold.
template <std::size_t N>
int PlaceIn(const std::array<std::uint32_t, N>& table, std::uint32_t name) {
    for (std::size_t i = 0; i < N; ++i) {
        if (table[i] == name) return static_cast<int>(i);
    }
    return -1;
}

}  // namespace kestrail
