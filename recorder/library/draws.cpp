// Draws with what they read of the application's memory: client arrays up to the highest vertex
// that the draw uses, and indices.
#include <GLES/gl.h>
#include <GLES/glext.h>

#include <algorithm>
#include <array>

#include "calls/reach/host_reach.h"
#include "generated/calls/identifiers.h"
#include "recorder/library/by_hand.h"

namespace kestrail::recorder {
namespace {

#define HOST KESTRAIL_HOST

struct SClientArray {
    std::int32_t index = 0;  ///< as the format numbers them
    const void* pointer = nullptr;
    std::size_t vertexBytes = 0;
    std::size_t stride = 0;
    bool oneVertex = false;  ///< the same for all vertices of an instance

    void SetVertices(std::int64_t bytes, GLint apart) {
        vertexBytes = static_cast<std::size_t>(bytes);
        stride = apart != 0 ? static_cast<std::size_t>(apart) : vertexBytes;
    }
};

GLint Integer(CThread& thread, GLenum name) {
    GLint value = 0;
    HOST(thread, glGetIntegerv)(name, &value);
    return value;
}

/// A kind of array of ES1 by the enumerants that ask for its state; 0 where it has no such state.
struct SKind {
    GLenum enable;
    GLenum buffer;
    GLenum size;
    GLenum type;
    GLenum stride;
    GLenum pointer;
};
constexpr std::array<SKind, 7> kKinds = {{
    {GL_COLOR_ARRAY, GL_COLOR_ARRAY_BUFFER_BINDING, GL_COLOR_ARRAY_SIZE, GL_COLOR_ARRAY_TYPE,
     GL_COLOR_ARRAY_STRIDE, GL_COLOR_ARRAY_POINTER},
    {GL_NORMAL_ARRAY, GL_NORMAL_ARRAY_BUFFER_BINDING, 0, GL_NORMAL_ARRAY_TYPE,
     GL_NORMAL_ARRAY_STRIDE, GL_NORMAL_ARRAY_POINTER},
    {GL_VERTEX_ARRAY, GL_VERTEX_ARRAY_BUFFER_BINDING, GL_VERTEX_ARRAY_SIZE, GL_VERTEX_ARRAY_TYPE,
     GL_VERTEX_ARRAY_STRIDE, GL_VERTEX_ARRAY_POINTER},
    {GL_POINT_SIZE_ARRAY_OES, GL_POINT_SIZE_ARRAY_BUFFER_BINDING_OES, 0,
     GL_POINT_SIZE_ARRAY_TYPE_OES, GL_POINT_SIZE_ARRAY_STRIDE_OES, GL_POINT_SIZE_ARRAY_POINTER_OES},
    {GL_MATRIX_INDEX_ARRAY_OES, GL_MATRIX_INDEX_ARRAY_BUFFER_BINDING_OES,
     GL_MATRIX_INDEX_ARRAY_SIZE_OES, GL_MATRIX_INDEX_ARRAY_TYPE_OES,
     GL_MATRIX_INDEX_ARRAY_STRIDE_OES, GL_MATRIX_INDEX_ARRAY_POINTER_OES},
    {GL_WEIGHT_ARRAY_OES, GL_WEIGHT_ARRAY_BUFFER_BINDING_OES, GL_WEIGHT_ARRAY_SIZE_OES,
     GL_WEIGHT_ARRAY_TYPE_OES, GL_WEIGHT_ARRAY_STRIDE_OES, GL_WEIGHT_ARRAY_POINTER_OES},
    {GL_TEXTURE_COORD_ARRAY, GL_TEXTURE_COORD_ARRAY_BUFFER_BINDING, GL_TEXTURE_COORD_ARRAY_SIZE,
     GL_TEXTURE_COORD_ARRAY_TYPE, GL_TEXTURE_COORD_ARRAY_STRIDE, GL_TEXTURE_COORD_ARRAY_POINTER},
}};
constexpr std::size_t kTextureKind = 6;

void AddEs1Array(CThread& thread, const SKind& kind, std::int32_t index,
                 std::vector<SClientArray>& arrays) {
    if (HOST(thread, glIsEnabled)(kind.enable) == GL_FALSE) return;
    if (Integer(thread, kind.buffer) != 0) return;
    const GLint fixedSize = kind.enable == GL_NORMAL_ARRAY ? 3 : 1;
    const GLint size = kind.size != 0 ? Integer(thread, kind.size) : fixedSize;
    const auto type = static_cast<GLenum>(Integer(thread, kind.type));
    SClientArray array;
    array.index = index;
    array.SetVertices(VertexBytes(type, size), Integer(thread, kind.stride));
    void* pointer = nullptr;
    HOST(thread, glGetPointerv)(kind.pointer, &pointer);
    array.pointer = pointer;
    arrays.push_back(array);
}

std::vector<SClientArray> Es1Arrays(CThread& thread) {
    std::vector<SClientArray> arrays;
    for (std::size_t kind = 0; kind < kTextureKind; ++kind) {
        AddEs1Array(thread, kKinds[kind], static_cast<std::int32_t>(kind), arrays);
    }
    const GLint active = Integer(thread, GL_CLIENT_ACTIVE_TEXTURE);
    const GLint units = Integer(thread, GL_MAX_TEXTURE_UNITS);
    const auto select = HOST(thread, glClientActiveTexture);
    for (GLint unit = 0; unit < units; ++unit) {
        select(static_cast<GLenum>(GL_TEXTURE0 + unit));
        AddEs1Array(thread, kKinds[kTextureKind], static_cast<std::int32_t>(kTextureKind) + unit,
                    arrays);
    }
    select(static_cast<GLenum>(active));
    // Questions about arrays that this machine's ES1 doesn't have.
    HOST(thread, glGetError)();
    return arrays;
}

std::vector<SClientArray> Es2Arrays(CThread& thread) {
    std::vector<SClientArray> arrays;
    const auto ask = HOST(thread, glGetVertexAttribiv);
    const GLint count = Integer(thread, GL_MAX_VERTEX_ATTRIBS);
    for (GLint i = 0; i < count; ++i) {
        const auto index = static_cast<GLuint>(i);
        const auto value = [&](GLenum name) {
            GLint answer = 0;
            ask(index, name, &answer);
            return answer;
        };
        if (value(GL_VERTEX_ATTRIB_ARRAY_ENABLED) == 0) continue;
        if (value(GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING) != 0) continue;
        SClientArray array;
        array.index = i;
        array.SetVertices(VertexBytes(static_cast<GLenum>(value(GL_VERTEX_ATTRIB_ARRAY_TYPE)),
                                      value(GL_VERTEX_ATTRIB_ARRAY_SIZE)),
                          value(GL_VERTEX_ATTRIB_ARRAY_STRIDE));
        if (thread.Context()->version >= 3) {
            array.oneVertex = value(GL_VERTEX_ATTRIB_ARRAY_DIVISOR) != 0;
        }
        void* pointer = nullptr;
        HOST(thread, glGetVertexAttribPointerv)(index, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
        array.pointer = pointer;
        if (pointer != nullptr) arrays.push_back(array);
    }
    return arrays;
}

/// The enabled arrays in the application's memory. Those who never have any are asked once.
std::vector<SClientArray> ClientArrays(CThread& thread) {
    SContext& context = *thread.Context();
    if (!context.arraysChanged && !context.clientArrays) return {};
    std::vector<SClientArray> arrays = context.IsEs1() ? Es1Arrays(thread) : Es2Arrays(thread);
    context.arraysChanged = false;
    context.clientArrays = !arrays.empty();
    return arrays;
}

/// The vertices of an array stand one right behind the other in a record, whatever the
/// application's stride.
void PutArrays(CCallWriter& w, const std::vector<SClientArray>& arrays, std::int64_t vertices) {
    for (const SClientArray& array : arrays) {
        const std::int64_t used = array.oneVertex ? std::min<std::int64_t>(vertices, 1) : vertices;
        const bool any = array.pointer != nullptr && used > 0;
        const std::size_t count = any ? static_cast<std::size_t>(used) : 0;
        w.Put<TGLint>(array.index);
        w.Put<TPointer>(array.pointer);
        w.PutNumber<4>(array.vertexBytes * count);
        w.PutSpread(array.pointer, array.vertexBytes, array.stride, count);
    }
}

GLenum ElementBufferBinding(CThread& thread) {
    return static_cast<GLenum>(Integer(thread, GL_ELEMENT_ARRAY_BUFFER_BINDING));
}

bool Restarts(CThread& thread) {
    return thread.Context()->version >= 3 &&
           HOST(thread, glIsEnabled)(GL_PRIMITIVE_RESTART_FIXED_INDEX) != GL_FALSE;
}

/// The indices that a draw takes from the buffer that is bound for them; empty where the host
/// doesn't give them back.
std::vector<std::uint8_t> ReadElements(CThread& thread, const void* offset, std::size_t size) {
    std::vector<std::uint8_t> bytes;
    const auto map = HOST(thread, glMapBufferRange);
    const auto unmap = HOST(thread, glUnmapBuffer);
    if (map == nullptr || unmap == nullptr) return bytes;
    const void* const mapped = map(GL_ELEMENT_ARRAY_BUFFER, reinterpret_cast<GLintptr>(offset),
                                   static_cast<GLsizeiptr>(size), GL_MAP_READ_BIT);
    if (mapped == nullptr) {
        HOST(thread, glGetError)();
        CRecorder::Instance().CountLeftOut("vertices of an element buffer");
        return bytes;
    }
    const auto* const start = static_cast<const std::uint8_t*>(mapped);
    bytes.assign(start, start + size);
    unmap(GL_ELEMENT_ARRAY_BUFFER);
    return bytes;
}

struct SIndices {
    bool fromBuffer = false;
    std::size_t size = 0;
    std::vector<SClientArray> arrays;
    std::int64_t vertices = 0;
};

/// What an indexed draw reads. A failed call reads nothing.
SIndices Indices(CThread& thread, GLenum error, GLsizei count, GLenum type, const void* indices) {
    SIndices found;
    found.fromBuffer = ElementBufferBinding(thread) != 0;
    if (error != GL_NO_ERROR || count <= 0) return found;
    found.size = static_cast<std::size_t>(count * ComponentBytes(type));
    found.arrays = ClientArrays(thread);
    if (found.arrays.empty()) return found;
    std::vector<std::uint8_t> elements;
    const void* bytes = indices;
    if (found.fromBuffer) {
        elements = ReadElements(thread, indices, found.size);
        bytes = elements.empty() ? nullptr : elements.data();
    }
    if (bytes != nullptr) found.vertices = VerticesOf(bytes, count, type, Restarts(thread));
    return found;
}

void PutIndices(CCallWriter& w, const SIndices& found, const void* indices) {
    w.PutBlock(indices, found.fromBuffer ? nullptr : indices, found.size);
}

}  // namespace

void Record_glDrawArrays(CThread& thread, GLenum error, GLenum mode, GLint first, GLsizei count) {
    std::vector<SClientArray> arrays;
    if (error == GL_NO_ERROR && count > 0) arrays = ClientArrays(thread);
    CCallWriter w(thread, thread.Context()->IsEs1() ? es1_id::glDrawArrays : es2_id::glDrawArrays);
    w.Put<TGLError>(error);
    w.Put<TGLBeginMode>(mode);
    w.Put<TGLint>(first);
    w.Put<TGLsizei>(count);
    PutArrays(w, arrays, std::int64_t{first} + count);
}

void Record_glDrawElements(CThread& thread, GLenum error, GLenum mode, GLsizei count, GLenum type,
                           const void* indices) {
    SIndices found = Indices(thread, error, count, type, indices);
    CCallWriter w(thread,
                  thread.Context()->IsEs1() ? es1_id::glDrawElements : es2_id::glDrawElements);
    w.Put<TGLError>(error);
    w.Put<TGLBeginMode>(mode);
    w.Put<TGLsizei>(count);
    w.Put<TGLenum>(type);
    PutIndices(w, found, indices);
    w.Put<TPointer>(indices);
    PutArrays(w, found.arrays, found.vertices);
}

void Record_glDrawRangeElements(CThread& thread, GLenum error, GLenum mode, GLuint start,
                                GLuint end, GLsizei count, GLenum type, const void* indices) {
    const SIndices found = Indices(thread, error, count, type, indices);
    // This call's layout has no room for arrays; the range is a hint.
    if (!found.arrays.empty()) {
        return Record_glDrawElements(thread, error, mode, count, type, indices);
    }
    CCallWriter w(thread, es3_id::glDrawRangeElements);
    w.Put<TGLError>(error);
    w.Put<TGLBeginMode>(mode);
    w.Put<TGLuint>(start);
    w.Put<TGLuint>(end);
    w.Put<TGLsizei>(count);
    w.Put<TGLenum>(type);
    PutIndices(w, found, indices);
}

void Record_glDrawElementsInstanced(CThread& thread, GLenum error, GLenum mode, GLsizei count,
                                    GLenum type, const void* indices, GLsizei instances) {
    const SIndices found = Indices(thread, error, count, type, indices);
    if (!found.arrays.empty()) {
        CRecorder::Instance().CountLeftOut("arrays of glDrawElementsInstanced");
    }
    CCallWriter w(thread, es3_id::glDrawElementsInstanced);
    w.Put<TGLError>(error);
    w.Put<TGLBeginMode>(mode);
    w.Put<TGLsizei>(count);
    w.Put<TGLenum>(type);
    w.Put<TGLsizei>(instances);
    PutIndices(w, found, indices);
    w.Put<TPointer>(indices);
}

}  // namespace kestrail::recorder
