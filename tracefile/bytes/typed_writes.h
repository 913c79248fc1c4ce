// Primitive writes, in the machine's own byte order.
#pragma once

#include <cstdint>

#include "tracefile/bytes/io_manager.h"

namespace kestrail {

inline void WriteUInt32(IOManager& out, std::uint32_t value) {
    out.Write(&value, sizeof(value));
}
inline void WriteBool(IOManager& out, bool value) {
    const std::uint8_t byte = value ? 1 : 0;
    out.Write(&byte, sizeof(byte));
}
inline void WriteInt8(IOManager& out, std::int8_t value) {
    out.Write(&value, sizeof(value));
}

}  // namespace kestrail
