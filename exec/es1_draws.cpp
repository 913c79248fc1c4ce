// The draws of ES1.
#include <algorithm>

#include "exec/contexts_arrays.h"
#include "exec/draw_indices.h"
#include "exec/es1_calls.h"
#include "exec/es1_client_arrays.h"
#include "exec/extension_resolver.h"
#include "exec/viewport_correction.h"

namespace kestrail {
namespace {

/// Points the arrays for a draw, with the array buffer unbound meanwhile.
bool PointArrays(SEs1Play& c, CEs1ClientArrays& arrays, SVertices vertices) {
    constexpr GLenum kArrayBufferBinding = 34964;
    const auto arrayBuffer = static_cast<GLuint>(Integer(c.host, kArrayBufferBinding));
    c.host.glBindBuffer(GL_ARRAY_BUFFER, 0);
    EnsureExtensionResolver(c.names);
    const bool sound = arrays.Point();
    c.host.glBindBuffer(GL_ARRAY_BUFFER, arrayBuffer);
    CorrectViewport(c.player, c.names.ViewportDirty(), c.host);
    return sound && (!IsEs2Context(c.player) || Es2ArraysReach(c.player, c.entry, vertices));
}

}  // namespace

EPlayed PlayGlDrawArrays(SEs1Play& c) {
    const GLint first = c.Value<TGLint>(1);
    const GLsizei count = c.Value<TGLsizei>(2);
    const SVertices vertices{std::max<std::int64_t>(std::int64_t{first} + count, 0)};
    // Kept: spelled like that; readers match it.
    CEs1ClientArrays arrays(c, c.At<CapturedArrays>(3), c.At<CapturedIndices>(4), vertices,
                            "glDrawArrays: No enought Data. No Pointer replaced with real memory. "
                            "glDrawArrays would crash.");
    if (!PointArrays(c, arrays, vertices)) return EPlayed::kFailed;
    c.host.glDrawArrays(c.Value<TGLBeginMode>(0), first, count);
    return EPlayed::kPlayed;
}

EPlayed PlayGlDrawElements(SEs1Play& c) {
    constexpr GLenum kElementBufferBinding = 34965;
    const GLsizei count = c.Value<TGLsizei>(1);
    const GLenum type = c.Value<TGLenum>(2);
    const bool elementBuffer = Integer(c.host, kElementBufferBinding) != 0;
    const SDrawIndices indices =
        DrawIndices(elementBuffer, c.At<SDataPtr>(3), c.Value<TPointer>(4), count, type);
    // Kept: of arrays without bytes not a word, unlike glDrawArrays; readers match it.
    CEs1ClientArrays arrays(c, c.At<CapturedArrays>(5), c.At<CapturedIndices>(6), indices.vertices,
                            nullptr);
    if (!PointArrays(c, arrays, indices.vertices) || !indices.sound) return EPlayed::kFailed;
    // Which arrays are enabled has not been asked of all.
    if (elementBuffer && !ElementsFit(c.host, c.Value<TPointer>(4), count, type)) {
        return EPlayed::kFailed;
    }
    c.host.glDrawElements(c.Value<TGLBeginMode>(0), count, type, indices.pointer);
    return EPlayed::kPlayed;
}

}  // namespace kestrail
