#include "exec/draw_indices.h"

#include "base/enumerants.h"

namespace kestrail {

std::int64_t IndexLimit(std::uint32_t type) {
    switch (type) {
        case GL_UNSIGNED_BYTE:
            return std::int64_t{1} << 8;
        case GL_UNSIGNED_SHORT:
            return std::int64_t{1} << 16;
        case GL_UNSIGNED_INT:
            return std::int64_t{1} << 32;
        default:
            return 0;
    }
}

std::int64_t VerticesOf(const void* indices, std::int32_t count, std::uint32_t type, bool restart) {
    const auto highest = [count, restart, limit = IndexLimit(type)](const auto* values) {
        std::int64_t vertices = 0;
        for (std::int32_t i = 0; i < count; ++i) {
            const std::int64_t needed = std::int64_t{values[i]} + 1;
            if (needed > vertices && !(restart && needed == limit)) vertices = needed;
        }
        return vertices;
    };
    switch (type) {
        case GL_UNSIGNED_BYTE:
            return highest(static_cast<const GLubyte*>(indices));
        case GL_UNSIGNED_SHORT:
            return highest(static_cast<const GLushort*>(indices));
        case GL_UNSIGNED_INT:
            return highest(static_cast<const GLuint*>(indices));
        default:
            return 0;
    }
}

SDrawIndices DrawIndices(bool elementBuffer, const SDataPtr& captured, std::uint32_t offset,
                         std::int32_t count, std::uint32_t type) {
    if (elementBuffer) {
        return {AsPointer(offset), true, {count > 0 ? IndexLimit(type) : 0, false}};
    }
    const SHostData data = HostData(captured, ComponentBytes(type) * count, false, false);
    if (!data.sound) return {nullptr, false, {}};
    return {data.pointer, true, {VerticesOf(data.pointer, count, type, false), true}};
}

}  // namespace kestrail
