// What a scene passes to a call, each value knowing both what the driver takes (`Live`) and how a
// recorder writes it down (`Append`).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/support/trace_builder.h"

namespace kestrail::samples {

// Client pointers mean nothing in a trace beyond being set, and fixed ones keep builds alike.
inline constexpr std::uint64_t clientAddress = 0x5000;

template <unsigned typeTag, typename T>
struct SNumber {
    T value;

    T Live() const { return value; }
    void Append(CRecordBuilder& record) const {
        if constexpr (std::is_floating_point_v<T>) {
            record.Real(typeTag, value);
        } else {
            record.Value(typeTag, static_cast<std::uint64_t>(value));
        }
    }
};

using Enum = SNumber<tag::Enum, std::uint32_t>;
using Bitfield = SNumber<tag::Bitfield, std::uint32_t>;
using Int = SNumber<tag::Int, std::int32_t>;
using Sizei = SNumber<tag::Sizei, std::int32_t>;
using Ubyte = SNumber<tag::Ubyte, std::uint8_t>;
using Uint = SNumber<tag::Uint, std::uint32_t>;
using Float = SNumber<tag::Float, float>;
using Clampf = SNumber<tag::Clampf, float>;
using Fixed = SNumber<tag::Fixed, std::int32_t>;
using Clampx = SNumber<tag::Clampx, std::int32_t>;
using Intptr = SNumber<tag::Intptr, std::intptr_t>;
using Sizeiptr = SNumber<tag::Sizeiptr, std::intptr_t>;
using Uint64 = SNumber<tag::Uint64, std::uint64_t>;

struct Boolean {
    bool value;

    std::uint8_t Live() const { return value ? 1 : 0; }
    void Append(CRecordBuilder& record) const { record.Boolean(value); }
};

/// An internal format, which the driver takes as a signed number.
struct Format {
    std::uint32_t value;

    std::int32_t Live() const { return static_cast<std::int32_t>(value); }
    void Append(CRecordBuilder& record) const { record.Int(value); }
};

/// Numbers behind a pointer, with their count on file. `perItem` of them count as one.
template <unsigned typeTag, typename T>
struct SNumbers {
    const T* values = nullptr;
    std::size_t count = 0;
    std::size_t perItem = 1;

    const T* Live() const { return values; }
    void Append(CRecordBuilder& record) const {
        if constexpr (std::is_floating_point_v<T>) {
            record.Reals(typeTag, clientAddress, {values, values + count}, perItem);
        } else {
            record.Array(typeTag, clientAddress, {values, values + count}, perItem);
        }
    }
};

using Enums = SNumbers<tag::Enum, std::uint32_t>;
using Floats = SNumbers<tag::Float, float>;
using Fixeds = SNumbers<tag::Fixed, std::int32_t>;
using Ints = SNumbers<tag::Int, std::int32_t>;
using Uints = SNumbers<tag::Uint, std::uint32_t>;

/// Numbers behind a pointer, as many as the call always takes.
template <unsigned typeTag, typename T>
struct SItem {
    const T* values;
    std::size_t count;

    const T* Live() const { return values; }
    void Append(CRecordBuilder& record) const {
        if constexpr (std::is_floating_point_v<T>) {
            record.RealItem(typeTag, clientAddress, {values, values + count});
        } else {
            record.Item(typeTag, clientAddress, {values, values + count});
        }
    }
};

using FloatItem = SItem<tag::Float, float>;
using FixedItem = SItem<tag::Fixed, std::int32_t>;

struct Text {
    const char* value;

    const char* Live() const { return value; }
    void Append(CRecordBuilder& record) const { record.String(clientAddress, value); }
};

/// A block of bytes. A null pointer has none.
struct Block {
    const void* data;
    std::size_t size;

    const void* Live() const { return data; }
    void Append(CRecordBuilder& record) const {
        record.Data(data == nullptr ? 0 : clientAddress, data, data == nullptr ? 0 : size);
    }
};

/// Where vertices or indices stand: an offset into a bound buffer, or client memory.
struct Place {
    const void* value;
    bool inBuffer;

    std::uint64_t Recorded() const {
        return inBuffer ? reinterpret_cast<std::uintptr_t>(value) : clientAddress;
    }
    const void* Live() const { return value; }
    void Append(CRecordBuilder& record) const { record.Pointer(Recorded()); }
};

}  // namespace kestrail::samples
