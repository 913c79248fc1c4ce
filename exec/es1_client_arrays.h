// Client arrays of draws in ES1, which has fixed ones. The recorder kept, with each draw, the
// memory that its enabled arrays pointed at; before the host draws, each of those arrays is pointed
// at the bytes in the call.
#pragma once

#include <algorithm>
#include <optional>

#include "base/enumerants.h"
#include "calls/model/client_arrays.h"
#include "exec/client_memory.h"
#include "exec/draw_indices.h"
#include "exec/host_data.h"
#include "generated/exec/es1_cases.h"

namespace kestrail {

/// A kind of client array by the enumerants that ask for its state; 0 where it has no such state.
struct SArrayKind {
    GLenum enable;
    GLenum size;
    GLenum type;
    GLenum stride;
    GLenum buffer;
    GLenum pointer;
};

enum EKind : int {
    kColor,
    kNormal,
    kVertex,
    kPointSize,
    kMatrixIndex,
    kWeight,
    kFirstTexture,
    kKinds = kFirstTexture + 8,
};

inline constexpr SArrayKind kArrayKinds[] = {
    {GL_COLOR_ARRAY, GL_COLOR_ARRAY_SIZE, GL_COLOR_ARRAY_TYPE, GL_COLOR_ARRAY_STRIDE,
     GL_COLOR_ARRAY_BUFFER_BINDING, GL_COLOR_ARRAY_POINTER},
    {GL_NORMAL_ARRAY, 0, GL_NORMAL_ARRAY_TYPE, GL_NORMAL_ARRAY_STRIDE,
     GL_NORMAL_ARRAY_BUFFER_BINDING, GL_NORMAL_ARRAY_POINTER},
    {GL_VERTEX_ARRAY, GL_VERTEX_ARRAY_SIZE, GL_VERTEX_ARRAY_TYPE, GL_VERTEX_ARRAY_STRIDE,
     GL_VERTEX_ARRAY_BUFFER_BINDING, GL_VERTEX_ARRAY_POINTER},
    {GL_POINT_SIZE_ARRAY_OES, 0, GL_POINT_SIZE_ARRAY_TYPE_OES, GL_POINT_SIZE_ARRAY_STRIDE_OES,
     GL_POINT_SIZE_ARRAY_BUFFER_BINDING_OES, GL_POINT_SIZE_ARRAY_POINTER_OES},
    {GL_MATRIX_INDEX_ARRAY_OES, GL_MATRIX_INDEX_ARRAY_SIZE_OES, GL_MATRIX_INDEX_ARRAY_TYPE_OES,
     GL_MATRIX_INDEX_ARRAY_STRIDE_OES, GL_MATRIX_INDEX_ARRAY_BUFFER_BINDING_OES,
     GL_MATRIX_INDEX_ARRAY_POINTER_OES},
    {GL_WEIGHT_ARRAY_OES, GL_WEIGHT_ARRAY_SIZE_OES, GL_WEIGHT_ARRAY_TYPE_OES,
     GL_WEIGHT_ARRAY_STRIDE_OES, GL_WEIGHT_ARRAY_BUFFER_BINDING_OES, GL_WEIGHT_ARRAY_POINTER_OES},
    {GL_TEXTURE_COORD_ARRAY, GL_TEXTURE_COORD_ARRAY_SIZE, GL_TEXTURE_COORD_ARRAY_TYPE,
     GL_TEXTURE_COORD_ARRAY_STRIDE, GL_TEXTURE_COORD_ARRAY_BUFFER_BINDING,
     GL_TEXTURE_COORD_ARRAY_POINTER},
};

/// What the host says of a client array.
struct SArrayState {
    GLint size = 1;
    GLint type = 0;
    GLint buffer = 0;
    void* pointer = nullptr;
};

inline GLint Integer(SEs1Host& host, GLenum name) {
    GLint value = 0;
    host.glGetIntegerv(name, &value);
    return value;
}

class CEs1ClientArrays {
public:
    /// `missing`: what is said of an array without captured bytes; null for nothing.
    CEs1ClientArrays(SEs1Play& c, CapturedArrays& arrays, const CapturedIndices& indices,
                     SVertices vertices, const char* missing)
        : m_c(c),
          m_arrays(arrays),
          m_indices(indices),
          m_byPosition(!indices.items.empty() && indices.items[0] == -1),
          m_vertices(vertices),
          m_missing(missing) {}

    /// Points the enabled client arrays at their bytes. False when the bytes end before the
    /// vertices do.
    bool Point() {
        for (int kind = 0; kind < kFirstTexture; ++kind) PointFixed(kind);
        for (int kind = kFirstTexture; kind < kKinds; ++kind) PointTexture(kind);
        return m_sound;
    }

private:
    SArrayState Ask(const SArrayKind& kind) const {
        SArrayState state;
        if (kind.size != 0) state.size = Integer(m_c.host, kind.size);
        state.type = Integer(m_c.host, kind.type);
        state.buffer = Integer(m_c.host, kind.buffer);
        m_c.host.glGetPointerv(kind.pointer, &state.pointer);
        return state;
    }

    void PointFixed(int kind) {
        const SArrayKind& array = kArrayKinds[kind];
        // Kept: weights are asked of without the same care; tools compare host calls.
        if (kind == kMatrixIndex) {
            if (m_c.host.glMatrixIndexPointerOES == nullptr) return;
            const bool enabled = m_c.host.glIsEnabled(array.enable) != GL_FALSE;
            // The enumerant may be unknown to the driver, and its error must not linger.
            m_c.player.lastError = m_c.host.glGetError();
            if (!enabled) return;
        } else if (m_c.host.glIsEnabled(array.enable) == GL_FALSE) {
            return;
        }
        const SArrayState state = Ask(array);
        if (state.buffer == 0 && state.pointer != nullptr) PointOne(kind, state);
    }

    void PointTexture(int kind) {
        const SArrayKind& array = kArrayKinds[kFirstTexture];
        if (kind - kFirstTexture >= Integer(m_c.host, GL_MAX_TEXTURE_UNITS)) return;
        const auto saved = static_cast<GLenum>(Integer(m_c.host, GL_CLIENT_ACTIVE_TEXTURE));
        m_c.host.glClientActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(kind - kFirstTexture));
        const SArrayState state = Ask(array);
        if (state.buffer == 0 && state.pointer != nullptr &&
            m_c.host.glIsEnabled(array.enable) == GL_TRUE) {
            PointOne(kind, state);
        }
        m_c.host.glClientActiveTexture(saved);
    }

    /// The captured array of a kind; null when it has none.
    std::optional<SDataPtr>* ArrayOf(int kind) const {
        std::size_t place = m_next;
        if (!m_byPosition) {
            const auto found = std::find(m_indices.items.begin(), m_indices.items.end(), kind);
            place = static_cast<std::size_t>(found - m_indices.items.begin());
        }
        return place < m_arrays.items.size() ? &m_arrays.items[place] : nullptr;
    }

    void PointOne(int kind, const SArrayState& state) {
        CClientMemory& memory = m_c.player.eglNames.Context().es1Arrays;
        const auto index = static_cast<std::uint32_t>(kind);
        const auto type = static_cast<GLenum>(state.type);
        const GLint size = kind == kNormal ? 3 : state.size;
        const std::int64_t vertexBytes = VertexBytes(type, size);
        std::optional<SDataPtr>* array = ArrayOf(kind);
        if (array == nullptr) {
            const GLenum stride = kArrayKinds[std::min<int>(kind, kFirstTexture)].stride;
            const SArrayReach reach{vertexBytes, Integer(m_c.host, stride), m_vertices.count};
            m_sound = m_sound && memory.Reaches(index, state.pointer, reach);
            if (!m_byPosition && m_missing != nullptr)
                m_c.player.diagnostics.Message("%s", m_missing);
            return;
        }
        const CClientMemory::STaken taken =
            memory.Take(index, *array, {vertexBytes, 0, m_vertices.count}, m_vertices.known,
                        m_c.player.store->Streams());
        m_sound = m_sound && taken.sound;
        Set(kind, size, type, taken.pointer);
        if (m_byPosition) ++m_next;
    }

    /// The captured bytes are tightly packed, whatever stride the application used.
    void Set(int kind, GLint size, GLenum type, const void* data) {
        switch (kind) {
            case kColor:
                return m_c.host.glColorPointer(size, type, 0, data);
            case kNormal:
                return m_c.host.glNormalPointer(type, 0, data);
            case kVertex:
                return m_c.host.glVertexPointer(size, type, 0, data);
            case kPointSize:
                return m_c.host.glPointSizePointerOES(type, 0, data);
            case kMatrixIndex:
                return m_c.host.glMatrixIndexPointerOES(size, type, 0, data);
            case kWeight:
                if (m_c.host.glWeightPointerOES == nullptr) return;
                return m_c.host.glWeightPointerOES(size, type, 0, data);
            default:
                return m_c.host.glTexCoordPointer(size, type, 0, data);
        }
    }

    SEs1Play& m_c;
    CapturedArrays& m_arrays;
    const CapturedIndices& m_indices;
    bool m_byPosition;
    SVertices m_vertices;
    const char* m_missing;
    std::size_t m_next = 0;
    bool m_sound = true;
};

}  // namespace kestrail
