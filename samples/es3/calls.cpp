#include "samples/es3/calls.h"

namespace kestrail::samples {

void CEs3Calls::BindBufferBase(GLenum target, GLuint index, GLuint buffer) {
    BoundBuffer(target) = buffer;
    Do(5179, "glBindBufferBase", Enum{target}, Uint{index}, Uint{buffer});
}

void CEs3Calls::BindBufferRange(GLenum target, GLuint index, GLuint buffer, GLintptr offset,
                                GLsizeiptr size) {
    BoundBuffer(target) = buffer;
    Do(5178, "glBindBufferRange", Enum{target}, Uint{index}, Uint{buffer}, Intptr{offset},
       Sizeiptr{size});
}

void CEs3Calls::DrawElementsInstanced(GLenum mode, GLsizei count, GLenum type, const void* indices,
                                      GLsizei instances) {
    const Place place = Indices(indices);
    if (!Recording()) {
        return Issue<void>("glDrawElementsInstanced", Enum{mode}, Sizei{count}, Enum{type}, place,
                           Sizei{instances});
    }
    CRecordBuilder record = Begin(5212).Enum(mode).Sizei(count).Enum(type).Sizei(instances);
    AppendIndices(record, count, type, indices);
    place.Append(record);
    Add(5212, record);
}

void CEs3Calls::DrawRangeElements(GLenum mode, GLuint start, GLuint end, GLsizei count, GLenum type,
                                  const void* indices) {
    if (!Recording()) {
        return Issue<void>("glDrawRangeElements", Enum{mode}, Uint{start}, Uint{end}, Sizei{count},
                           Enum{type}, Indices(indices));
    }
    CRecordBuilder record = Begin(5144).Enum(mode).Uint(start).Uint(end).Sizei(count).Enum(type);
    AppendIndices(record, count, type, indices);
    Add(5144, record);
}

GLsync CEs3Calls::FenceSync(GLenum condition, GLbitfield flags) {
    const auto recorded = reinterpret_cast<GLsync>(m_nextSync++);
    return Ask(5213, "glFenceSync", Sync{recorded}, Enum{condition}, Bitfield{flags});
}

void CEs3Calls::TexImage3D(GLenum target, GLint level, GLenum internalFormat, GLsizei width,
                           GLsizei height, GLsizei depth, GLenum format, GLenum type,
                           const void* pixels) {
    const Bytes captured = CapturePixels(width, height * depth, format, type, pixels);
    Do(5145, "glTexImage3D", Enum{target}, Int{level}, Format{internalFormat}, Sizei{width},
       Sizei{height}, Sizei{depth}, Int{0}, Enum{format}, Enum{type},
       Block{captured.data(), captured.size()});
}

}  // namespace kestrail::samples
