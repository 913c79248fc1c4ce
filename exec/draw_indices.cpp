#include "exec/draw_indices.h"

#include <GLES3/gl3.h>

#include <algorithm>

namespace kestrail {

std::int64_t VerticesOf(const void* indices, std::int32_t count, std::uint32_t type) {
    const auto highest = [count](const auto* values) {
        return count > 0 ? std::int64_t{*std::max_element(values, values + count)} + 1 : 0;
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
    if (elementBuffer) return {AsPointer(offset), true, 0};
    const SHostData data = HostData(captured, ComponentBytes(type) * count, false, false);
    if (!data.sound) return {nullptr, false, 0};
    return {data.pointer, true, VerticesOf(data.pointer, count, type)};
}

}  // namespace kestrail
