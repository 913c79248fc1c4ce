#include <algorithm>

#include "exec/indexed_draws.h"
#include "generated/exec/es2_cases.h"

namespace kestrail {

EPlayed PlayGlDrawArrays(SEs2Play& c, SEs2_glDrawArrays call) {
    const GLint first = call.first();
    const GLsizei count = call.count();
    CorrectViewport(c.player, c.names.ViewportDirty(), c.host);
    const GLuint arrayBuffer = BoundBuffer(c.host, GL_ARRAY_BUFFER_BINDING);
    // Kept: drops an error, which drivers hold until they are asked.
    c.host.glGetError();
    c.host.glBindBuffer(GL_ARRAY_BUFFER, 0);
    const SVertices vertices{std::max<std::int64_t>(std::int64_t{first} + count, 0)};
    TClientArrays<SEs2Play> arrays(c, call.vertexData(), call.vertexDataIndex(), vertices);
    const bool sound = arrays.Point("glDrawArrays");
    c.host.glBindBuffer(GL_ARRAY_BUFFER, arrayBuffer);
    if (!sound || !OtherArraysReach(c, vertices)) return EPlayed::kFailed;
    c.host.glDrawArrays(call.mode(), first, count);
    return EPlayed::kPlayed;
}

EPlayed PlayGlDrawElements(SEs2Play& c, SEs2_glDrawElements call) {
    const SIndexedDraw indexed{call.indices(),
                               call.indicesOffset(),
                               call.count(),
                               call.type(),
                               call.vertexData(),
                               call.vertexDataIndex(),
                               {}};
    return DrawIndexed(c, indexed, [&](const void* indices) {
        c.host.glDrawElements(call.mode(), indexed.count, indexed.type, indices);
    });
}

}  // namespace kestrail
