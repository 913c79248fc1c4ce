// Texts of values by the kind of thing that they name.
#pragma once

#include <cstdint>

#include "base/kstl_string.h"
#include "base/text_writer.h"

namespace kestrail {

enum ETextKind : int {
    kKindInt32 = 1,
    kKindUInt32 = 2,
    kKindInt64 = 3,
    kKindUInt64 = 4,
    kKindHex32 = 5,
    kKindHex64 = 6,
    kKindEglBoolean = 7,
    kKindEglNativeDisplay = 8,
    kKindEglContext = 9,
    kKindEglDisplay = 10,
    kKindEglSurface = 11,
    kKindEglEnum = 12,
    kKindEglSurfaceType = 13,
    kKindEglRenderableType = 14,
    kKindClearMask = 15,
};

struct SFlagName {
    const char* name;
    std::uint64_t bit;
};

/// Appends the text of `value` as `kind`; an unknown kind prints the number.
void AppendKind(TextWriter& out, int kind, std::uint64_t value);
/// Appends the names of the table's bits that are set, joined by " | ", then what is left over.
void AppendFlags(TextWriter& out, std::uint64_t value, const SFlagName* table, unsigned count);

CKSTLString FormatKind(int kind, std::uint64_t value);
CKSTLString FormatFlags(std::uint64_t value, const SFlagName* table, unsigned count);

}  // namespace kestrail
