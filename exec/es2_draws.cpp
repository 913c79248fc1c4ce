#include <algorithm>

#include "exec/es2_calls.h"
#include "exec/indexed_draws.h"

namespace kestrail {

EPlayed PlayGlDrawArrays(SEs2Play& c) {
    const GLint first = c.Value<TGLint>(1);
    const GLsizei count = c.Value<TGLsizei>(2);
    CorrectViewport(c.player, c.names.ViewportDirty(), c.host);
    const GLuint arrayBuffer = BoundBuffer(c.host, GL_ARRAY_BUFFER_BINDING);
    // Kept: drops an error, which drivers hold until they are asked.
    c.host.glGetError();
    c.host.glBindBuffer(GL_ARRAY_BUFFER, 0);
    const SVertices vertices{std::max<std::int64_t>(std::int64_t{first} + count, 0)};
    TClientArrays<SEs2Play> arrays(c, c.At<CapturedArrays>(3), c.At<CapturedIndices>(4), vertices);
    const bool sound = arrays.Point("glDrawArrays");
    c.host.glBindBuffer(GL_ARRAY_BUFFER, arrayBuffer);
    if (!sound || !OtherArraysReach(c, vertices)) return EPlayed::kFailed;
    c.host.glDrawArrays(c.Value<TGLBeginMode>(0), first, count);
    return EPlayed::kPlayed;
}

EPlayed PlayGlDrawElements(SEs2Play& c) {
    const SIndexedDraw indexed{c.At<SDataPtr>(3),
                               c.Value<TPointer>(4),
                               c.Value<TGLsizei>(1),
                               c.Value<TGLenum>(2),
                               c.At<CapturedArrays>(5),
                               c.At<CapturedIndices>(6),
                               {}};
    return DrawIndexed(c, indexed, [&](const void* indices) {
        c.host.glDrawElements(c.Value<TGLBeginMode>(0), indexed.count, indexed.type, indices);
    });
}

}  // namespace kestrail
