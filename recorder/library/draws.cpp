// Draws with what they read of the application's memory: client arrays up to the highest vertex
// that the draw uses, and indices.
#include <GLES/gl.h>
#include <GLES/glext.h>

#include <algorithm>
#include <array>
#include <utility>

#include "generated/calls/identifiers.h"
#include "recorder/library/by_hand.h"
#include "recorder/library/readable.h"

namespace kestrail::recorder {
namespace {

#define HOST KESTRAIL_HOST

struct SClientArray {
    GLuint index = 0;  ///< as the format numbers them
    const void* pointer = nullptr;
    GLint size = 0;
    GLenum type = 0;
    GLboolean normalized = GL_FALSE;
    GLsizei stride = 0;
    GLuint divisor = 0;  ///< goes on by so many instances, if not by vertices
    bool integers = false;

    std::size_t ValueBytes() const { return static_cast<std::size_t>(VertexBytes(type, size)); }
    std::size_t Step() const {
        return stride != 0 ? static_cast<std::size_t>(stride) : ValueBytes();
    }
    /// The memory of so many values; none where that is more than can be meant.
    CReadable Memory(std::int64_t& values) const {
        const SArrayReach reach = {VertexBytes(type, size), stride, values};
        const std::int64_t most = std::max(reach.Bytes(), reach.vertexBytes * values);
        if (values < 0 || most > std::int64_t{CReadable::kMost}) {
            CRecorder::Instance().CountLeftOut("vertices far behind their array");
            values = 0;
        }
        const bool one = divisor != 0 && values > 1;
        return {pointer, values == 0 ? 0
                         : one       ? ValueBytes()
                                     : static_cast<std::size_t>(reach.Bytes())};
    }
};

/// The arrays of a record with their bytes.
struct SCaptured {
    const SClientArray& array;
    std::int64_t values;
    CReadable memory;
};
std::vector<SCaptured> CaptureAll(const std::vector<SClientArray>& arrays, std::int64_t vertices) {
    std::vector<SCaptured> captured;
    for (const SClientArray& array : arrays) {
        std::int64_t values = vertices;
        CReadable memory = array.Memory(values);
        captured.push_back({array, values, std::move(memory)});
    }
    return captured;
}
inline std::vector<SCaptured> Capture(const std::vector<SClientArray>& arrays,
                                      std::int64_t vertices) {
    // Most draws have none.
    if (arrays.empty()) return {};
    return CaptureAll(arrays, vertices);
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

void AddEs1Array(CThread& thread, const SKind& kind, std::size_t index,
                 std::vector<SClientArray>& arrays) {
    if (HOST(thread, glIsEnabled)(kind.enable) == GL_FALSE) return;
    if (Integer(thread, kind.buffer) != 0) return;
    const GLint fixedSize = kind.enable == GL_NORMAL_ARRAY ? 3 : 1;
    const GLint size = kind.size != 0 ? Integer(thread, kind.size) : fixedSize;
    const auto type = static_cast<GLenum>(Integer(thread, kind.type));
    SClientArray array;
    array.index = static_cast<GLuint>(index);
    array.size = size;
    array.type = type;
    array.stride = Integer(thread, kind.stride);
    void* pointer = nullptr;
    HOST(thread, glGetPointerv)(kind.pointer, &pointer);
    array.pointer = pointer;
    if (pointer != nullptr) arrays.push_back(array);
}

std::vector<SClientArray> Es1Arrays(CThread& thread) {
    std::vector<SClientArray> arrays;
    for (std::size_t kind = 0; kind < kTextureKind; ++kind) {
        AddEs1Array(thread, kKinds[kind], kind, arrays);
    }
    const GLint active = Integer(thread, GL_CLIENT_ACTIVE_TEXTURE);
    const GLint units = Integer(thread, GL_MAX_TEXTURE_UNITS);
    const auto select = HOST(thread, glClientActiveTexture);
    for (GLint unit = 0; unit < units; ++unit) {
        select(static_cast<GLenum>(GL_TEXTURE0 + unit));
        AddEs1Array(thread, kKinds[kTextureKind], kTextureKind + static_cast<std::size_t>(unit),
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
        array.index = index;
        array.size = value(GL_VERTEX_ATTRIB_ARRAY_SIZE);
        array.type = static_cast<GLenum>(value(GL_VERTEX_ATTRIB_ARRAY_TYPE));
        array.normalized = static_cast<GLboolean>(value(GL_VERTEX_ATTRIB_ARRAY_NORMALIZED));
        array.stride = value(GL_VERTEX_ATTRIB_ARRAY_STRIDE);
        if (thread.Context()->version >= 3) {
            array.divisor = static_cast<GLuint>(value(GL_VERTEX_ATTRIB_ARRAY_DIVISOR));
            array.integers = value(GL_VERTEX_ATTRIB_ARRAY_INTEGER) != 0;
        }
        void* pointer = nullptr;
        HOST(thread, glGetVertexAttribPointerv)(index, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
        array.pointer = pointer;
        if (pointer != nullptr) arrays.push_back(array);
    }
    return arrays;
}

/// The enabled arrays in the application's memory, once for each draw. Those who never have any are
/// asked once.
std::vector<SClientArray> ClientArrays(CThread& thread) {
    RecordMapped(thread);
    SContext& context = *thread.Context();
    if (!context.arraysChanged && !context.clientArrays) return {};
    std::vector<SClientArray> arrays = context.IsEs1() ? Es1Arrays(thread) : Es2Arrays(thread);
    context.arraysChanged = false;
    context.clientArrays = !arrays.empty();
    return arrays;
}

/// The player points at a record's bytes without a stride. Of an array that doesn't go on by
/// vertices the first value stands for all.
void PutArrays(CCallWriter& w, const std::vector<SCaptured>& captured) {
    for (const auto& [array, values, memory] : captured) {
        const auto count = static_cast<std::size_t>(values);
        w.PutAll<TGLint, TPointer>(array.index, array.pointer);
        w.UInt32(static_cast<std::uint32_t>(array.ValueBytes() * count));
        w.Spread(memory.Data(), array.ValueBytes(), array.divisor != 0 ? 0 : array.Step(), count);
    }
}

void WritePointer(CThread& thread, const SClientArray& array, GLsizei stride, const void* pointer) {
    if (array.integers) {
        Write_glVertexAttribIPointer(&thread, GL_NO_ERROR, array.index, array.size, array.type,
                                     stride, pointer);
    } else {
        Write_glVertexAttribPointer(&thread, GL_NO_ERROR, array.index, array.size, array.type,
                                    array.normalized, stride, pointer);
    }
}

/// Writes a draw whose record has no room for its arrays, or for those of integers, which the
/// player would point as reals: a buffer of our own has them for as long as it is drawn from.
template <typename Draw>
void WithBuffer(CThread& thread, const std::vector<SClientArray>& arrays, std::int64_t vertices,
                std::int64_t instances, Draw writeDraw) {
    std::vector<std::uint8_t> bytes;
    std::vector<std::size_t> places;
    for (const SClientArray& array : arrays) {
        SClientArray own = array;
        own.divisor = 0;
        std::int64_t values =
            array.divisor != 0 ? (instances + array.divisor - 1) / array.divisor : vertices;
        const CReadable memory = own.Memory(values);
        places.push_back(bytes.size());
        const std::uint8_t* value = memory.Data();
        for (std::int64_t i = 0; i < values; ++i, value += array.Step()) {
            bytes.insert(bytes.end(), value, value + array.ValueBytes());
        }
        constexpr std::size_t kAlignment = 4;
        bytes.resize((bytes.size() + kAlignment - 1) / kAlignment * kAlignment);
    }
    const GLuint own = OwnName(thread);
    const auto before = static_cast<GLuint>(Integer(thread, GL_ARRAY_BUFFER_BINDING));
    Write_glBindBuffer(&thread, GL_NO_ERROR, GL_ARRAY_BUFFER, own);
    Write_glBufferData(&thread, GL_NO_ERROR, GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(bytes.size()),
                       bytes.data(), GL_STREAM_DRAW);
    for (std::size_t i = 0; i < arrays.size(); ++i) {
        WritePointer(thread, arrays[i], 0, reinterpret_cast<const void*>(places[i]));
    }
    writeDraw();
    Write_glBindBuffer(&thread, GL_NO_ERROR, GL_ARRAY_BUFFER, 0);
    for (const SClientArray& array : arrays) {
        WritePointer(thread, array, array.stride, array.pointer);
    }
    Write_glDeleteBuffers(&thread, GL_NO_ERROR, 1, &own);
    Write_glBindBuffer(&thread, GL_NO_ERROR, GL_ARRAY_BUFFER, before);
}

bool AnyIntegers(const std::vector<SClientArray>& arrays) {
    return std::any_of(arrays.begin(), arrays.end(),
                       [](const SClientArray& array) { return array.integers; });
}

GLenum ElementBufferBinding(CThread& thread) {
    return static_cast<GLenum>(Integer(thread, GL_ELEMENT_ARRAY_BUFFER_BINDING));
}

bool Restarts(CThread& thread) {
    return thread.Context()->version >= 3 &&
           HOST(thread, glIsEnabled)(GL_PRIMITIVE_RESTART_FIXED_INDEX) != GL_FALSE;
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
        elements = ReadBuffer(thread, GL_ELEMENT_ARRAY_BUFFER, reinterpret_cast<GLintptr>(indices),
                              found.size);
        bytes = elements.empty() ? nullptr : elements.data();
        if (bytes == nullptr) {
            CRecorder::Instance().CountLeftOut("vertices of an element buffer");
        }
    }
    if (bytes != nullptr) found.vertices = VerticesOf(bytes, count, type, Restarts(thread));
    return found;
}

void PutIndices(CCallWriter& w, const SIndices& found, const void* indices) {
    w.Put<SBlock>(indices, found.fromBuffer ? nullptr : indices, found.size);
}

}  // namespace

void Record_glDrawArrays(CThread& thread, GLenum error, GLenum mode, GLint first, GLsizei count) {
    std::vector<SClientArray> arrays;
    if (error == GL_NO_ERROR && count > 0) arrays = ClientArrays(thread);
    const std::int64_t vertices = std::int64_t{first} + count;
    const auto write = [&] {
        const std::vector<SCaptured> captured = Capture(arrays, vertices);
        CCallWriter w(thread,
                      thread.Context()->IsEs1() ? es1_id::glDrawArrays : es2_id::glDrawArrays);
        w.PutAll<TGLError, TGLBeginMode, TGLint, TGLsizei>(error, mode, first, count);
        PutArrays(w, captured);
    };
    if (!AnyIntegers(arrays)) return write();
    WithBuffer(thread, std::exchange(arrays, {}), vertices, 1, write);
}

void Record_glDrawElements(CThread& thread, GLenum error, GLenum mode, GLsizei count, GLenum type,
                           const void* indices) {
    SIndices found = Indices(thread, error, count, type, indices);
    const auto write = [&] {
        const std::vector<SCaptured> captured = Capture(found.arrays, found.vertices);
        CCallWriter w(thread,
                      thread.Context()->IsEs1() ? es1_id::glDrawElements : es2_id::glDrawElements);
        w.PutAll<TGLError, TGLBeginMode, TGLsizei, TGLenum>(error, mode, count, type);
        PutIndices(w, found, indices);
        w.Put<TPointer>(indices);
        PutArrays(w, captured);
    };
    if (!AnyIntegers(found.arrays)) return write();
    WithBuffer(thread, std::exchange(found.arrays, {}), found.vertices, 1, write);
}

void Record_glDrawRangeElements(CThread& thread, GLenum error, GLenum mode, GLuint start,
                                GLuint end, GLsizei count, GLenum type, const void* indices) {
    const SIndices found = Indices(thread, error, count, type, indices);
    // This call's layout has no room for arrays; the range is a hint.
    if (!found.arrays.empty()) {
        return Record_glDrawElements(thread, error, mode, count, type, indices);
    }
    CCallWriter w(thread, es3_id::glDrawRangeElements);
    w.PutAll<TGLError, TGLBeginMode, TGLuint, TGLuint>(error, mode, start, end);
    w.PutAll<TGLsizei, TGLenum>(count, type);
    PutIndices(w, found, indices);
}

void Record_glDrawArraysInstanced(CThread& thread, GLenum error, GLenum mode, GLint first,
                                  GLsizei count, GLsizei instances) {
    std::vector<SClientArray> arrays;
    if (error == GL_NO_ERROR && count > 0) arrays = ClientArrays(thread);
    const auto write = [&] {
        Write_glDrawArraysInstanced(&thread, error, mode, first, count, instances);
    };
    if (arrays.empty()) return write();
    WithBuffer(thread, arrays, std::int64_t{first} + count, instances, write);
}

void Record_glDrawElementsInstanced(CThread& thread, GLenum error, GLenum mode, GLsizei count,
                                    GLenum type, const void* indices, GLsizei instances) {
    const SIndices found = Indices(thread, error, count, type, indices);
    const auto write = [&] {
        CCallWriter w(thread, es3_id::glDrawElementsInstanced);
        w.Put<TGLError>(error);
        w.Put<TGLBeginMode>(mode);
        w.Put<TGLsizei>(count);
        w.Put<TGLenum>(type);
        w.Put<TGLsizei>(instances);
        PutIndices(w, found, indices);
        w.Put<TPointer>(indices);
    };
    if (found.arrays.empty()) return write();
    WithBuffer(thread, found.arrays, found.vertices, instances, write);
}

void Record_glMultiDrawArraysEXT(CThread& thread, GLenum error, GLenum mode, const GLint* first,
                                 const GLsizei* count, GLsizei draws) {
    if (first == nullptr || count == nullptr) return;
    for (GLsizei i = 0; i < draws; ++i)
        Record_glDrawArrays(thread, error, mode, first[i], count[i]);
}

void Record_glMultiDrawElementsEXT(CThread& thread, GLenum error, GLenum mode, const GLsizei* count,
                                   GLenum type, const void* const* indices, GLsizei draws) {
    if (count == nullptr || indices == nullptr) return;
    for (GLsizei i = 0; i < draws; ++i) {
        Record_glDrawElements(thread, error, mode, count[i], type, indices[i]);
    }
}

void Record_glVertexAttribI4uiv(CThread& thread, GLenum error, GLuint index, const GLuint* values) {
    constexpr GLuint kNone[4] = {};
    if (values == nullptr) values = kNone;
    Write_glVertexAttribI4ui(&thread, error, index, values[0], values[1], values[2], values[3]);
}

}  // namespace kestrail::recorder
