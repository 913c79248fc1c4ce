// What the draws of ES2 and ES3 have around the host's own call.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>

#include "base/enumerants.h"
#include "exec/contexts_arrays.h"
#include "exec/draw_indices.h"
#include "exec/es2_client_arrays.h"
#include "exec/es2_executor.h"
#include "exec/played.h"
#include "exec/viewport_correction.h"

namespace kestrail {

/// False when the context reads the arrays of ES1, and too far.
template <typename Context>
bool OtherArraysReach(Context& c, SVertices vertices) {
    return !IsEs1Context(c.player) || Es1ArraysReach(c.player, c.entry, vertices);
}

/// What an indexed draw reads, as its record has it.
struct SIndexedDraw {
    const SDataPtr& captured;
    std::uint32_t offset = 0;
    std::int32_t count = 0;
    std::uint32_t type = 0;
    CapturedArrays& arrays;
    const CapturedIndices& indices;
    std::optional<std::int32_t> instances;
    /// The highest vertex that the call names itself; a host may read all up to it.
    std::int64_t lastVertex = -1;
};

/// Whether the highest index of a type begins a new primitive instead of being a vertex.
template <typename Context>
bool RestartsPrimitives(Context& c) {
    return c.player.eglNames.Context().restartAsked &&
           c.host.glIsEnabled(GL_PRIMITIVE_RESTART_FIXED_INDEX) != GL_FALSE;
}

/// Does for an indexed draw all that stands around the host's own call, `draw(pointer)`.
template <typename Context, typename Draw>
EPlayed DrawIndexed(Context& c, const SIndexedDraw& indexed, Draw draw) {
    CorrectViewport(c.player, c.names.ViewportDirty(), c.host);
    const GLuint elementBuffer = BoundBuffer(c.host, GL_ELEMENT_ARRAY_BUFFER_BINDING);
    const GLuint arrayBuffer = BoundBuffer(c.host, GL_ARRAY_BUFFER_BINDING);
    SDrawIndices indices = DrawIndices(elementBuffer != 0, indexed.captured, indexed.offset,
                                       indexed.count, indexed.type);
    if (indices.vertices.known && indices.vertices.count == IndexLimit(indexed.type) &&
        RestartsPrimitives(c)) {
        indices.vertices.count = VerticesOf(indices.pointer, indexed.count, indexed.type, true);
    }
    indices.vertices.count = std::max(indices.vertices.count, indexed.lastVertex + 1);
    c.host.glBindBuffer(GL_ARRAY_BUFFER, 0);
    TClientArrays<Context> arrays(c, indexed.arrays, indexed.indices, indices.vertices);
    if (indexed.instances) arrays.SetInstances(*indexed.instances);
    // Kept: that name for all indexed draws; readers match the message.
    const bool sound = arrays.Point("glDrawElements");
    c.host.glBindBuffer(GL_ARRAY_BUFFER, arrayBuffer);
    if (!sound || !indices.sound || !OtherArraysReach(c, indices.vertices)) {
        return EPlayed::kFailed;
    }
    if (elementBuffer != 0 && (arrays.Any() || IsEs1Context(c.player)) &&
        !ElementsFit(c.host, indexed.offset, indexed.count, indexed.type)) {
        return EPlayed::kFailed;
    }
    // Kept: both looks come to nothing but their message; readers match it.
    CheckEs2Error(c.player);
    draw(indices.pointer);
    CheckEs2Error(c.player);
    return EPlayed::kPlayed;
}

}  // namespace kestrail
