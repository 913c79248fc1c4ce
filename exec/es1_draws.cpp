// The draws of ES1.
#include <algorithm>

#include "base/enumerants.h"
#include "exec/contexts_arrays.h"
#include "exec/draw_indices.h"
#include "exec/es1_client_arrays.h"
#include "exec/extension_resolver.h"
#include "exec/viewport_correction.h"
#include "generated/exec/es1_cases.h"

namespace kestrail {
namespace {

/// Points the arrays for a draw, with the array buffer unbound meanwhile.
bool PointArrays(SEs1Play& c, CEs1ClientArrays& arrays, SVertices vertices) {
    const auto arrayBuffer = static_cast<GLuint>(Integer(c.host, GL_ARRAY_BUFFER_BINDING));
    c.host.glBindBuffer(GL_ARRAY_BUFFER, 0);
    EnsureEs1ExtensionResolver(c.player);
    const bool sound = arrays.Point();
    c.host.glBindBuffer(GL_ARRAY_BUFFER, arrayBuffer);
    CorrectViewport(c.player, c.names.ViewportDirty(), c.host);
    return sound && (!IsEs2Context(c.player) || Es2ArraysReach(c.player, c.entry, vertices));
}

}  // namespace

EPlayed PlayGlDrawArrays(SEs1Play& c, SEs1_glDrawArrays call) {
    const GLint first = call.first();
    const GLsizei count = call.count();
    const SVertices vertices{std::max<std::int64_t>(std::int64_t{first} + count, 0)};
    // Kept: spelled like that; readers match it.
    CEs1ClientArrays arrays(c, call.vertData(), call.vertIndex(), vertices,
                            "glDrawArrays: No enought Data. No Pointer replaced with real memory. "
                            "glDrawArrays would crash.");
    if (!PointArrays(c, arrays, vertices)) return EPlayed::kFailed;
    c.host.glDrawArrays(call.mode(), first, count);
    return EPlayed::kPlayed;
}

EPlayed PlayGlDrawElements(SEs1Play& c, SEs1_glDrawElements call) {
    const GLsizei count = call.count();
    const GLenum type = call.type();
    const bool elementBuffer = Integer(c.host, GL_ELEMENT_ARRAY_BUFFER_BINDING) != 0;
    const SDrawIndices indices =
        DrawIndices(elementBuffer, call.indices(), call.indicesOffset(), count, type);
    // Kept: of arrays without bytes not a word, unlike glDrawArrays; readers match it.
    CEs1ClientArrays arrays(c, call.vertData(), call.vertIndex(), indices.vertices, nullptr);
    if (!PointArrays(c, arrays, indices.vertices) || !indices.sound) return EPlayed::kFailed;
    // Which arrays are enabled has not been asked of all.
    if (elementBuffer && !ElementsFit(c.host, call.indicesOffset(), count, type)) {
        return EPlayed::kFailed;
    }
    c.host.glDrawElements(call.mode(), count, type, indices.pointer);
    return EPlayed::kPlayed;
}

}  // namespace kestrail
