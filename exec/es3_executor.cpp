#include "exec/es3_executor.h"

#include <algorithm>
#include <vector>

#include "exec/es2_executor.h"
#include "exec/indexed_draws.h"
#include "generated/exec/es3_cases.h"
#include "host/hosts.h"

namespace kestrail {
namespace {

/// Instanced and ranged draws carry no client arrays.
CapturedArrays g_noArrays;
const CapturedIndices kNoIndices;

GLsync LiveSync(SEs3Play& c, std::uint32_t recorded) {
    return reinterpret_cast<GLsync>(c.names.Syncs().Get(recorded));
}

}  // namespace

bool PlayEs3Call(SPlayerState& player, CCallEntry& entry) {
    const CApiCall& call = *entry.call;
    // Kept: fails, where other families leave it out; readers expect both lines.
    if (call.HadFailed()) {
        player.diagnostics.Message("Es3 Call:Error. (Recorded GL_ERROR) %s", call.GetName());
        return false;
    }
    if (!player.eglNames.ContextValid()) {
        player.diagnostics.Message("Es3 Call:Error. Invalid context");
        return false;
    }
    if (!player.defaultFramebufferKnown) {
        player.defaultFramebufferKnown = true;
        GLint framebuffer = 0;
        player.hosts.Es2().glGetIntegerv(GL_FRAMEBUFFER_BINDING, &framebuffer);
        player.defaultFramebuffer = static_cast<std::uint32_t>(framebuffer);
    }
    if (player.checkErrors) player.currentCallName = call.GetName();

    SEs3Play c{player, entry, entry.GetInfo(), call.m_id, player.hosts.Es3(), player.es2Names};
    const EPlayed played = PlayEs3Case(c);
    if (played != EPlayed::kPlayed) return played == EPlayed::kLeftOut;
    // Kept: told as one of ES2; readers match it.
    return player.checkErrors ? CheckEs2Error(player) : true;
}

EPlayed PlayGlDrawRangeElements(SEs3Play& c, SEs3_glDrawRangeElements call) {
    const auto& indices = call.indices();
    const SIndexedDraw indexed{indices,      indices.pointer.GetValue(),
                               call.count(), call.type(),
                               g_noArrays,   kNoIndices,
                               {},           call.end()};
    return DrawIndexed(c, indexed, [&](const void* pointer) {
        c.host.glDrawRangeElements(call.mode(), call.start(), call.end(), indexed.count,
                                   indexed.type, pointer);
    });
}

EPlayed PlayGlDrawArraysInstanced(SEs3Play& c, SEs3_glDrawArraysInstanced call) {
    const GLint first = call.first();
    const GLsizei count = call.count();
    const GLsizei instances = call.instanceCount();
    // The arrays stay as they are; only, the host must not follow one further than it reaches.
    const SVertices vertices{std::max<std::int64_t>(std::int64_t{first} + count, 0)};
    TClientArrays<SEs3Play> arrays(c, g_noArrays, kNoIndices, vertices);
    arrays.SetInstances(instances);
    if (!arrays.Measure() || !OtherArraysReach(c, vertices)) return EPlayed::kFailed;
    c.host.glDrawArraysInstanced(call.mode(), first, count, instances);
    return EPlayed::kPlayed;
}

EPlayed PlayGlDrawElementsInstanced(SEs3Play& c, SEs3_glDrawElementsInstanced call) {
    const SIndexedDraw indexed{call.indices(),      call.indicesOffset(), call.count(),
                               call.type(),         g_noArrays,           kNoIndices,
                               call.instanceCount()};
    return DrawIndexed(c, indexed, [&](const void* pointer) {
        c.host.glDrawElementsInstanced(call.mode(), indexed.count, indexed.type, pointer,
                                       call.instanceCount());
    });
}

EPlayed PlayGlMapBufferRange(SEs3Play& c, SEs3_glMapBufferRange call) {
    const GLsizeiptr length = call.length();
    const GLbitfield access = call.access();
    const void* const mapped =
        c.host.glMapBufferRange(call.target(), call.offset(), length, access);
    if (mapped != nullptr) {
        const bool written = (access & GL_MAP_WRITE_BIT) != 0;
        c.player.eglNames.Mapped()[mapped] = written ? length : 0;
    }
    return EPlayed::kPlayed;
}

EPlayed PlayGlTransformFeedbackVaryings(SEs3Play& c, SEs3_glTransformFeedbackVaryings call) {
    const auto* const program = c.names.GetProgramRecord(call.program());
    const auto& varyings = call.varyings();
    if (program == nullptr || call.count() < 0) return EPlayed::kFailed;
    std::vector<const char*> names;
    for (std::uint32_t i = 0; i < varyings.ElementCount(); ++i) {
        names.push_back(varyings.GetItem(i).GetCString());
    }
    if (names.size() < static_cast<std::size_t>(call.count())) return EPlayed::kFailed;
    c.host.glTransformFeedbackVaryings(program->liveName, call.count(), names.data(),
                                       call.bufferMode());
    return EPlayed::kPlayed;
}

EPlayed PlayGlFenceSync(SEs3Play& c, SEs3_glFenceSync call) {
    const GLsync live = c.host.glFenceSync(call.condition(), call.flags());
    c.names.Syncs().Set(call.result(), reinterpret_cast<std::uintptr_t>(live));
    return EPlayed::kPlayed;
}

EPlayed PlayGlDeleteSync(SEs3Play& c, SEs3_glDeleteSync call) {
    c.host.glDeleteSync(LiveSync(c, call.sync()));
    c.names.Syncs().Erase(call.sync());
    return EPlayed::kPlayed;
}

EPlayed PlayGlClientWaitSync(SEs3Play& c, SEs3_glClientWaitSync call) {
    c.host.glClientWaitSync(LiveSync(c, call.sync()), call.flags(), call.timeout());
    return EPlayed::kPlayed;
}

EPlayed PlayGlWaitSync(SEs3Play& c, SEs3_glWaitSync call) {
    // Kept: 32 of 64 recorded bits, which drivers may refuse; tools compare host calls.
    // A record keeps the lower half of the only timeout that there is.
    const GLuint64 timeout = c.player.playsAll ? GL_TIMEOUT_IGNORED : call.timeout();
    c.host.glWaitSync(LiveSync(c, call.sync()), call.flags(), timeout);
    return EPlayed::kPlayed;
}

}  // namespace kestrail
