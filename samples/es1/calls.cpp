#include "samples/es1/calls.h"

#include <cstring>

namespace kestrail::samples {

namespace {

// The numbers under which a recorder keeps the fixed arrays.
constexpr std::uint32_t colourKind = 0;
constexpr std::uint32_t normalKind = 1;
constexpr std::uint32_t vertexKind = 2;
constexpr std::uint32_t pointSizeKind = 3;
constexpr std::uint32_t firstTextureKind = 6;

}  // namespace

std::uint32_t CEs1Calls::KindOf(GLenum array) const {
    switch (array) {
        case GL_COLOR_ARRAY:
            return colourKind;
        case GL_NORMAL_ARRAY:
            return normalKind;
        case GL_VERTEX_ARRAY:
            return vertexKind;
        case GL_POINT_SIZE_ARRAY_OES:
            return pointSizeKind;
        default:
            return firstTextureKind + m_clientUnit;
    }
}

void CEs1Calls::ClientActiveTexture(GLenum unit) {
    m_clientUnit = unit - GL_TEXTURE0;
    Do(3015, "glClientActiveTexture", Enum{unit});
}

void CEs1Calls::DisableClientState(GLenum array) {
    VertexArray().arrays[KindOf(array)].enabled = false;
    Do(3035, "glDisableClientState", Enum{array});
}

void CEs1Calls::EnableClientState(GLenum array) {
    VertexArray().arrays[KindOf(array)].enabled = true;
    Do(3039, "glEnableClientState", Enum{array});
}

void CEs1Calls::ColorPointer(GLint size, GLenum type, GLsizei stride, const void* pointer) {
    const Place place = SetArray(colourKind, size, type, stride, pointer);
    Do(3022, "glColorPointer", Int{size}, Enum{type}, Sizei{stride}, place);
}

void CEs1Calls::NormalPointer(GLenum type, GLsizei stride, const void* pointer) {
    const Place place = SetArray(normalKind, 3, type, stride, pointer);
    Do(3100, "glNormalPointer", Enum{type}, Sizei{stride}, place);
}

void CEs1Calls::PointSizePointerOES(GLenum type, GLsizei stride, const void* pointer) {
    const Place place = SetArray(pointSizeKind, 1, type, stride, pointer);
    Do(3145, "glPointSizePointerOES", Enum{type}, Sizei{stride}, place);
}

void CEs1Calls::TexCoordPointer(GLint size, GLenum type, GLsizei stride, const void* pointer) {
    const Place place = SetArray(firstTextureKind + m_clientUnit, size, type, stride, pointer);
    Do(3126, "glTexCoordPointer", Int{size}, Enum{type}, Sizei{stride}, place);
}

void CEs1Calls::VertexPointer(GLint size, GLenum type, GLsizei stride, const void* pointer) {
    const Place place = SetArray(vertexKind, size, type, stride, pointer);
    Do(3143, "glVertexPointer", Int{size}, Enum{type}, Sizei{stride}, place);
}

void CEs1Calls::RewriteBufferOES(GLenum target, const void* data, std::size_t size) {
    if (Recording()) {
        Add(4004, Begin(4004).Pointer(clientAddress).Enum(target).Enum(GL_WRITE_ONLY_OES));
        Add(4005, Begin(4005).Boolean(true).Enum(target).Data(clientAddress, data, size));
        std::memcpy(BufferContents(target).data(), data, size);
        return;
    }
    void* const mapped = Issue<void*>("glMapBufferOES", Enum{target}, Enum{GL_WRITE_ONLY_OES});
    std::memcpy(mapped, data, size);
    Issue<std::uint8_t>("glUnmapBufferOES", Enum{target});
}

}  // namespace kestrail::samples
