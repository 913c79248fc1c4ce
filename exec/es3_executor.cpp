#include "exec/es3_executor.h"

#include <algorithm>

#include "base/output.h"
#include "exec/es2_executor.h"
#include "exec/es3_calls.h"
#include "exec/indexed_draws.h"
#include "host/es2_host.h"

namespace kestrail {
namespace {

/// Instanced and ranged draws carry no client arrays.
CapturedArrays g_noArrays;
const CapturedIndices kNoIndices;

GLsync LiveSync(SEs3Play& c) {
    return reinterpret_cast<GLsync>(c.names.Syncs().Get(c.Value<TPointer>(0)));
}

}  // namespace

bool PlayEs3Call(SPlayerState& player, CCallEntry& entry) {
    const CApiCall& call = *entry.call;
    // Kept: fails, where other families leave it out; readers expect both lines.
    if (call.m_error.GetValue() != GL_NO_ERROR) {
        output::Message("Es3 Call:Error. (Recorded GL_ERROR) %s", call.GetName());
        return false;
    }
    if (!player.eglNames.ContextValid()) {
        output::Message("Es3 Call:Error. Invalid context");
        return false;
    }
    if (!player.defaultFramebufferKnown) {
        player.defaultFramebufferKnown = true;
        GLint framebuffer = 0;
        GetEs2Host()->glGetIntegerv(GL_FRAMEBUFFER_BINDING, &framebuffer);
        player.defaultFramebuffer = static_cast<std::uint32_t>(framebuffer);
    }
    if (player.checkErrors) player.currentCallName = call.GetName();

    SEs3Play c{player, entry, entry.GetInfo(), call.m_id, *GetEs3Host(), player.names};
    const EPlayed played = PlayEs3Case(c);
    if (played != EPlayed::kPlayed) return played == EPlayed::kLeftOut;
    // Kept: told as one of ES2; readers match it.
    return player.checkErrors ? CheckEs2Error(player) : true;
}

EPlayed PlayGlDrawRangeElements(SEs3Play& c) {
    const auto& indices = c.At<SDataPtr>(5);
    const SIndexedDraw indexed{indices,
                               indices.pointer.GetValue(),
                               c.Value<TGLsizei>(3),
                               c.Value<TGLenum>(4),
                               g_noArrays,
                               kNoIndices,
                               {},
                               c.Value<TGLuint>(2)};
    return DrawIndexed(c, indexed, [&](const void* pointer) {
        c.host.glDrawRangeElements(c.Value<TGLBeginMode>(0), c.Value<TGLuint>(1),
                                   c.Value<TGLuint>(2), indexed.count, indexed.type, pointer);
    });
}

EPlayed PlayGlDrawArraysInstanced(SEs3Play& c) {
    const GLint first = c.Value<TGLint>(1);
    const GLsizei count = c.Value<TGLsizei>(2);
    const GLsizei instances = c.Value<TGLsizei>(3);
    // The arrays stay as they are; only, the host must not follow one further than it reaches.
    const SVertices vertices{std::max<std::int64_t>(std::int64_t{first} + count, 0)};
    TClientArrays<SEs3Play> arrays(c, g_noArrays, kNoIndices, vertices);
    arrays.SetInstances(instances);
    if (!arrays.Measure() || !OtherArraysReach(c, vertices)) return EPlayed::kFailed;
    c.host.glDrawArraysInstanced(c.Value<TGLBeginMode>(0), first, count, instances);
    return EPlayed::kPlayed;
}

EPlayed PlayGlDrawElementsInstanced(SEs3Play& c) {
    const SIndexedDraw indexed{c.At<SDataPtr>(4),   c.Value<TPointer>(5), c.Value<TGLsizei>(1),
                               c.Value<TGLenum>(2), g_noArrays,           kNoIndices,
                               c.Value<TGLsizei>(3)};
    return DrawIndexed(c, indexed, [&](const void* pointer) {
        c.host.glDrawElementsInstanced(c.Value<TGLBeginMode>(0), indexed.count, indexed.type,
                                       pointer, c.Value<TGLsizei>(3));
    });
}

EPlayed PlayGlMapBufferRange(SEs3Play& c) {
    const GLsizeiptr length = c.Value<TGLsizeiptr>(2);
    const GLbitfield access = c.Value<TGLbitfield>(3);
    const void* const mapped =
        c.host.glMapBufferRange(c.Value<TGLenum>(0), c.Value<TGLintptr>(1), length, access);
    if (mapped != nullptr) {
        const bool written = (access & GL_MAP_WRITE_BIT) != 0;
        c.player.eglNames.Mapped()[mapped] = written ? length : 0;
    }
    return EPlayed::kPlayed;
}

EPlayed PlayGlFenceSync(SEs3Play& c) {
    const GLsync live = c.host.glFenceSync(c.Value<TGLenum>(0), c.Value<TGLbitfield>(1));
    c.names.Syncs().Set(c.Returned<TPointer>(), reinterpret_cast<std::uintptr_t>(live));
    return EPlayed::kPlayed;
}

EPlayed PlayGlDeleteSync(SEs3Play& c) {
    c.host.glDeleteSync(LiveSync(c));
    c.names.Syncs().Erase(c.Value<TPointer>(0));
    return EPlayed::kPlayed;
}

EPlayed PlayGlClientWaitSync(SEs3Play& c) {
    c.host.glClientWaitSync(LiveSync(c), c.Value<TGLbitfield>(1), c.Value<TGLuint64>(2));
    return EPlayed::kPlayed;
}

EPlayed PlayGlWaitSync(SEs3Play& c) {
    // Kept: 32 of 64 recorded bits, which drivers may refuse; tools compare host calls.
    c.host.glWaitSync(LiveSync(c), c.Value<TGLbitfield>(1), c.Value<TGLuint64>(2));
    return EPlayed::kPlayed;
}

}  // namespace kestrail
