// Primitive reads of any stored width. A width of 0 is the type's own, a negative one counts by its
// absolute value. Fewer bytes than the type's fill it from its low end without sign extension; of
// more, the low part is kept and the rest skipped. A read that fails gives 0. `flag` is handed down
// to the stream, which ignores it.
#pragma once

#include <cstdint>

#include "tracefile/bytes/io_manager.h"

namespace kestrail {

/// Drops `count` bytes of the stream.
void SkipBytes(IOManager& stream, std::uint32_t count);

template <typename T>
T ReadWide(IOManager& stream, std::uint32_t width, bool flag) {
    const std::uint32_t surplus = width - static_cast<std::uint32_t>(sizeof(T));
    T value{};
    const bool read = stream.Read(&value, sizeof(T), flag);
    SkipBytes(stream, surplus);
    return read ? value : T{};
}

template <typename T>
T ReadPrimitive(IOManager& stream, std::int32_t width, bool flag) {
    constexpr std::uint32_t kOwn = sizeof(T);
    std::uint32_t bytes = static_cast<std::uint32_t>(width);
    if (width < 0) bytes = 0 - bytes;
    T value{};
    // A size that the compiler knows makes the copy a single move.
    if (bytes == kOwn || bytes == 0) [[likely]] {
        return stream.Read(&value, kOwn, flag) ? value : T{};
    }
    if (bytes > kOwn) return ReadWide<T>(stream, bytes, flag);
    // Kept: no sign goes along: two bytes of -1 are 65535; narrow recordings print so.
    return stream.Read(&value, bytes, flag) ? value : T{};
}

inline std::uint32_t ReadUInt32(IOManager& stream, std::int32_t width, bool flag) {
    return ReadPrimitive<std::uint32_t>(stream, width, flag);
}
inline std::int32_t ReadInt32(IOManager& stream, std::int32_t width, bool flag) {
    return ReadPrimitive<std::int32_t>(stream, width, flag);
}
inline float ReadFloat(IOManager& stream, std::int32_t width, bool flag) {
    return ReadPrimitive<float>(stream, width, flag);
}
inline std::uint16_t ReadUInt16(IOManager& stream, std::int32_t width, bool flag) {
    return ReadPrimitive<std::uint16_t>(stream, width, flag);
}
/// The byte as stored: any value, not only 0 and 1.
inline std::uint8_t ReadBool(IOManager& stream, std::int32_t width, bool flag) {
    return ReadPrimitive<std::uint8_t>(stream, width, flag);
}
inline std::int8_t ReadInt8(IOManager& stream, std::int32_t width, bool flag) {
    return ReadPrimitive<std::int8_t>(stream, width, flag);
}
inline std::uint64_t ReadUInt64(IOManager& stream, std::int32_t width, bool flag) {
    return ReadPrimitive<std::uint64_t>(stream, width, flag);
}

}  // namespace kestrail
