#include "exec/ext_executor.h"

#include <algorithm>
#include <cstring>

#include "base/enumerants.h"
#include "exec/extension_resolver.h"
#include "generated/calls/identifiers.h"
#include "generated/exec/ext_cases.h"
#include "host/hosts.h"

namespace kestrail {
namespace {

constexpr std::uint32_t kApiEs1 = 1;
constexpr std::uint32_t kApiEs2 = 2;

// Kept: not a word, and EGL's success is taken for an error; readers match what follows.
bool CheckExtError(SPlayerState& player, std::uint32_t api) {
    if (api == kApiEs1) {
        player.lastError = player.hosts.Es1().glGetError();
    } else if (api == kApiEs2) {
        player.lastError = player.hosts.Es2().glGetError();
    } else {
        player.lastError = static_cast<std::uint32_t>(player.hosts.Egl().eglGetError());
    }
    return player.lastError == 0;
}

/// What the host can do in place of the samples that the application asked for.
GLsizei SupportedSamples(SSession& session, GLsizei requested, const char* caller) {
    GLint most = 0;
    // Kept: asked of ES2 whatever the API; tools compare host calls.
    session.hosts.Es2().glGetIntegerv(GL_MAX_SAMPLES_IMG, &most);
    if (requested <= most) return requested;
    session.diagnostics.Message("%s:  Requested samples is not supported (%d), set to %d\n", caller,
                                requested, most);
    return most;
}

GLsizei StorageSamples(SSession& session, SExt_glRenderbufferStorageMultisampleQVA call) {
    // Kept: with the prefix that its relative hasn't; readers match it.
    return SupportedSamples(session, call.samples(), "ID_EXT_glRenderbufferStorageMultisampleQVA");
}

GLsizei TextureSamples(SSession& session, SExt_glFramebufferTexture2DMultisampleQVA call) {
    return SupportedSamples(session, call.samples(), "glFramebufferTexture2DMultisampleQVA");
}

EPlayed PlayElsewhere(SSession& session, const CGenCallInfo& info, std::uint16_t id) {
    if (id == ext_id::glRenderbufferStorageMultisampleQVA) {
        StorageSamples(session, SExt_glRenderbufferStorageMultisampleQVA(info));
    }
    if (id == ext_id::glFramebufferTexture2DMultisampleQVA) {
        TextureSamples(session, SExt_glFramebufferTexture2DMultisampleQVA(info));
    }
    return PlayExtElsewhere(id);
}

EPlayed Play(SPlayerState& player, CCallEntry& entry, std::uint32_t api) {
    const CGenCallInfo info = entry.GetInfo();
    const std::uint16_t id = entry.call->m_id;
    EPlayed played = EPlayed::kElsewhere;
    if (api == kApiEs1) {
        EnsureEs1ExtensionResolver(player);
        SEs1Play c{player, entry, info, id, player.hosts.Es1(), player.es1Names};
        played = PlayExtEs1Case(c);
    } else if (api == kApiEs2) {
        EnsureEs2ExtensionResolver(player);
        SEs2Play c{player, entry, info, id, player.hosts.Es2(), player.es2Names};
        played = PlayExtEs2Case(c);
    }
    return played == EPlayed::kElsewhere ? PlayElsewhere(player, info, id) : played;
}

}  // namespace

EPlayed PlayGlBindRenderbufferOES(SEs1Play& c, SExt_glBindRenderbufferOES call) {
    if (c.host.glBindRenderbufferOES == nullptr) return EPlayed::kMissing;
    // Kept: an unknown name is made through ES2; tools compare host calls.
    const GLuint live = LiveOrGenerated(c.names.Renderbuffers(), call.renderbuffer(),
                                        [&c](GLsizei count, GLuint* names) {
                                            c.player.hosts.Es2().glGenRenderbuffers(count, names);
                                        });
    c.host.glBindRenderbufferOES(call.target(), live);
    return EPlayed::kPlayed;
}

EPlayed PlayGlRenderbufferStorageMultisampleQVA(SEs2Play& c,
                                                SExt_glRenderbufferStorageMultisampleQVA call) {
    const GLsizei samples = StorageSamples(c.player, call);
    if (c.host.glRenderbufferStorageMultisampleQVA == nullptr) return EPlayed::kMissing;
    c.host.glRenderbufferStorageMultisampleQVA(call.target(), samples, call.internalformat(),
                                               call.width(), call.height());
    return EPlayed::kPlayed;
}

EPlayed PlayGlFramebufferTexture2DMultisampleQVA(SEs2Play& c,
                                                 SExt_glFramebufferTexture2DMultisampleQVA call) {
    const GLsizei samples = TextureSamples(c.player, call);
    if (c.host.glFramebufferTexture2DMultisampleQVA == nullptr) return EPlayed::kMissing;
    c.host.glFramebufferTexture2DMultisampleQVA(call.target(), call.attachment(), call.textarget(),
                                                c.names.Textures().Get(call.texture()),
                                                call.level(), samples);
    return EPlayed::kPlayed;
}

// Maps all of the buffer. What glMapBufferRange gave at that place is gone by then.
template <typename Context>
EPlayed PlayGlMapBufferOES(Context& c, SExt_glMapBufferOES call) {
    if (c.host.glMapBufferOES == nullptr) return EPlayed::kMissing;
    const void* const mapped = c.host.glMapBufferOES(call.target(), call.access());
    c.player.eglNames.Mapped().erase(mapped);
    return EPlayed::kPlayed;
}

// Copies what the application wrote while the buffer was mapped, then unmaps it: also when there
// was no room for the bytes, since no draw may read a mapped buffer. One that is not mapped is
// left alone.
template <typename Context>
EPlayed PlayGlUnmapBufferOES(Context& c, SExt_glUnmapBufferOES call) {
    if (c.host.glUnmapBufferOES == nullptr || c.host.glGetBufferPointervOES == nullptr) {
        return EPlayed::kMissing;
    }
    const std::uint32_t target = call.target();
    const auto& data = call.data();
    std::int32_t mapped = 0;
    c.host.glGetBufferParameteriv(target, GL_BUFFER_MAPPED_OES, &mapped);
    if (mapped == 0) return EPlayed::kPlayed;
    std::int32_t size = 0;
    if (data.GetData() != nullptr) c.host.glGetBufferParameteriv(target, GL_BUFFER_SIZE, &size);
    void* pointer = nullptr;
    c.host.glGetBufferPointervOES(target, GL_BUFFER_MAP_POINTER_OES, &pointer);
    EPlayed played = EPlayed::kPlayed;
    if (data.GetData() != nullptr && pointer != nullptr) {
        const auto& ranges = c.player.eglNames.Mapped();
        const auto range = ranges.find(pointer);
        std::int64_t room = size;
        if (range != ranges.end()) room = std::min(room, range->second);
        if (std::int64_t{data.GetSize()} <= room) {
            std::memcpy(pointer, data.GetData(), data.GetSize());
        } else {
            played = EPlayed::kFailed;
        }
    }
    c.host.glUnmapBufferOES(target);
    c.player.eglNames.Mapped().erase(pointer);
    return played;
}

template EPlayed PlayGlMapBufferOES(SEs1Play& c, SExt_glMapBufferOES call);
template EPlayed PlayGlMapBufferOES(SEs2Play& c, SExt_glMapBufferOES call);
template EPlayed PlayGlUnmapBufferOES(SEs1Play& c, SExt_glUnmapBufferOES call);
template EPlayed PlayGlUnmapBufferOES(SEs2Play& c, SExt_glUnmapBufferOES call);

bool PlayExtCall(SPlayerState& player, CCallEntry& entry) {
    const auto& call = static_cast<const CExtCall&>(*entry.call);
    // Kept: in silence, whatever is asked of failed calls; readers know each family's way.
    if (call.HadFailed()) return true;
    const std::uint32_t api = call.m_api.GetValue();
    const char* const before = player.currentCallName;
    player.currentCallName = call.GetName();
    const EPlayed played = Play(player, entry, api);
    // What this executor has no case for is not the call that a later error is told of.
    if (played == EPlayed::kFailed) player.currentCallName = before;
    if (played == EPlayed::kMissing) {
        player.diagnostics.Tell(EDiagnostic::kWarning,
                                "The extension function '%s' is not available on this platform\n",
                                player.currentCallName);
        return true;
    }
    if (played != EPlayed::kPlayed) return played == EPlayed::kLeftOut;
    return CheckExtError(player, api);
}

}  // namespace kestrail
