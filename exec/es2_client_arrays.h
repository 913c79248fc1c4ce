// Client arrays of draws in ES2 and ES3. The recorder kept, with each draw, the memory that its
// enabled arrays pointed at; before the host draws, each of those arrays is pointed at the bytes in
// the call.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <optional>

#include "base/enumerants.h"
#include "calls/model/client_arrays.h"
#include "exec/client_memory.h"
#include "exec/draw_indices.h"
#include "exec/es2_names.h"
#include "exec/host_data.h"
#include "exec/player_state.h"

namespace kestrail {

template <typename Host>
GLuint BoundBuffer(Host& host, GLenum binding) {
    GLint buffer = 0;
    host.glGetIntegerv(binding, &buffer);
    return static_cast<GLuint>(buffer);
}

/// Which captured arrays go to which attributes, and whether they reach as far as the draw does.
template <typename Context>
class TClientArrays {
public:
    TClientArrays(Context& c, CapturedArrays& arrays, const CapturedIndices& indices,
                  SVertices vertices)
        : m_c(c),
          m_arrays(arrays),
          m_indices(indices),
          m_byPosition(!indices.items.empty() && indices.items[0] == -1),
          m_vertices(vertices) {}

    /// An instanced draw: an attribute with a divisor goes on by that many instances a value.
    void SetInstances(std::int32_t instances) { m_instances = instances; }

    /// Points the enabled client arrays at their bytes. False when the bytes end before the
    /// vertices do.
    bool Point(const char* draw) {
        const GLuint attributes = Attributes();
        const CEs2Names::Locations* const locations = m_c.names.AttribLocations();
        std::uint64_t seen = 0;
        // Kept: behind one without bytes all stay as they are, and it is drawn; ES1 goes on.
        bool pointing = true;
        for (GLuint a = 0; a < attributes; ++a) {
            const GLuint index = AttributeIndex(locations, a);
            if (index < kCounted) seen |= std::uint64_t{1} << index;
            const void* pointer = ClientPointer(index);
            if (pointer == nullptr) continue;
            if (pointing) {
                pointing = PointOne(index, pointer, draw);
            } else {
                MeasureOne(index, pointer);
            }
        }
        // The host reads those, too, that no recorded index stands for.
        const GLuint counted = std::min(attributes, kCounted);
        for (auto index = static_cast<GLuint>(std::countr_one(seen)); index < counted; ++index) {
            if ((seen >> index & 1) == 0) MeasureOne(index, ClientPointer(index));
        }
        return m_sound;
    }

    /// Leaves the enabled client arrays as they are. False when one ends before the vertices do.
    bool Measure() {
        const GLuint attributes = Attributes();
        for (GLuint index = 0; index < attributes; ++index) {
            MeasureOne(index, ClientPointer(index));
        }
        return m_sound;
    }

    /// Whether any enabled array is not in a buffer, be it one of null.
    bool Any() const { return m_any; }

private:
    static constexpr GLuint kCounted = 64;

    GLuint Attributes() const {
        GLint attributes = 0;
        m_c.host.glGetIntegerv(GL_MAX_VERTEX_ATTRIBS, &attributes);
        return static_cast<GLuint>(std::max(attributes, 0));
    }

    GLint Query(GLuint index, GLenum name) const {
        GLint value = 0;
        m_c.host.glGetVertexAttribiv(index, name, &value);
        return value;
    }

    /// What an enabled client array points at; null for any other attribute.
    void* ClientPointer(GLuint index) {
        if (Query(index, GL_VERTEX_ATTRIB_ARRAY_ENABLED) == 0) return nullptr;
        if (Query(index, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING) != 0) return nullptr;
        m_any = true;
        void* pointer = nullptr;
        m_c.host.glGetVertexAttribPointerv(index, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
        return pointer;
    }

    /// The captured array of an attribute; all ones when it has none.
    std::size_t ArrayOf(GLuint index) const {
        if (m_byPosition) return m_next;
        std::size_t found = ~std::size_t{0};
        for (std::size_t i = 0; i < m_arrays.items.size(); ++i) {
            // Kept: by live index, and the last one counts; tools compare pictures.
            if (m_indices.items[i] == static_cast<int>(index)) found = i;
        }
        return found;
    }

    CClientMemory& Memory() const { return m_c.player.eglNames.Context().es2Arrays; }

    /// How many values the draw takes of an attribute.
    std::int64_t ValuesOf(GLuint index) const {
        if (!m_instances) return m_vertices.count;
        const auto divisor =
            std::int64_t{static_cast<std::uint32_t>(Query(index, GL_VERTEX_ATTRIB_ARRAY_DIVISOR))};
        return divisor != 0 ? (*m_instances + divisor - 1) / divisor : m_vertices.count;
    }

    void MeasureOne(GLuint index, const void* pointer) {
        if (pointer == nullptr || !m_sound) return;
        const GLint size = Query(index, GL_VERTEX_ATTRIB_ARRAY_SIZE);
        const auto type = static_cast<GLenum>(Query(index, GL_VERTEX_ATTRIB_ARRAY_TYPE));
        MeasureAs(index, pointer, VertexBytes(type, size));
    }

    void MeasureAs(GLuint index, const void* pointer, std::int64_t vertexBytes) {
        const SArrayReach reach{vertexBytes, Query(index, GL_VERTEX_ATTRIB_ARRAY_STRIDE),
                                ValuesOf(index)};
        m_sound = m_sound && Memory().Reaches(index, pointer, reach);
    }

    bool PointOne(GLuint index, const void* pointer, const char* draw) {
        const GLint size = Query(index, GL_VERTEX_ATTRIB_ARRAY_SIZE);
        const auto type = static_cast<GLenum>(Query(index, GL_VERTEX_ATTRIB_ARRAY_TYPE));
        const GLint normalized = Query(index, GL_VERTEX_ATTRIB_ARRAY_NORMALIZED);
        const std::int64_t vertexBytes = VertexBytes(type, size);
        const std::size_t array = ArrayOf(index);
        if (array >= m_arrays.items.size()) MeasureAs(index, pointer, vertexBytes);
        if (array == ~std::size_t{0}) {
            // Kept: spelled like that; readers match it.
            m_c.player.diagnostics.Message(
                "%s: No enought Data. No Pointer replaced with real memory. %s would crash.", draw,
                draw);
            return false;
        }
        if (array >= m_arrays.items.size()) return true;
        // Two recorded attributes may stand for one of the host, which has its bytes already.
        if (!m_arrays.items[array]) return true;
        const CClientMemory::STaken taken =
            Memory().Take(index, m_arrays.items[array], {vertexBytes, 0, ValuesOf(index)},
                          m_vertices.known, m_c.player.store->Streams());
        m_sound = m_sound && taken.sound;
        // The captured bytes are tightly packed, whatever stride the application used.
        m_c.host.glVertexAttribPointer(index, size, type, static_cast<GLboolean>(normalized), 0,
                                       taken.pointer);
        if (m_byPosition) ++m_next;
        return true;
    }

    Context& m_c;
    CapturedArrays& m_arrays;
    const CapturedIndices& m_indices;
    bool m_byPosition;
    SVertices m_vertices;
    std::optional<std::int32_t> m_instances;
    std::size_t m_next = 0;
    bool m_sound = true;
    bool m_any = false;
};

}  // namespace kestrail
