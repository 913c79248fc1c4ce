#include "exec/ext_executor.h"

#include <algorithm>

#include "base/output.h"
#include "exec/ext_calls.h"
#include "exec/extension_resolver.h"
#include "host/egl_host.h"

namespace kestrail {
namespace {

constexpr std::uint32_t kApiEs1 = 1;
constexpr std::uint32_t kApiEs2 = 2;
constexpr std::uint16_t kFirst = 4001;
constexpr std::uint16_t kLast = 4090;
constexpr std::uint16_t kRenderbufferStorageMultisample = 4089;
constexpr std::uint16_t kFramebufferTexture2DMultisample = 4090;

// Kept: not a word, and EGL's success is taken for an error; readers match what follows.
bool CheckExtError(SPlayerState& player, std::uint32_t api) {
    if (api == kApiEs1) {
        player.lastError = GetEs1Host()->glGetError();
    } else if (api == kApiEs2) {
        player.lastError = GetEs2Host()->glGetError();
    } else {
        player.lastError = static_cast<std::uint32_t>(GetEglHost()->eglGetError());
    }
    return player.lastError == 0;
}

/// What the host can do in place of the samples that the application asked for.
GLsizei SupportedSamples(GLsizei requested, const char* caller) {
    constexpr GLenum kMaxSamples = 37173;
    GLint most = 0;
    // Kept: asked of ES2 whatever the API; tools compare host calls.
    GetEs2Host()->glGetIntegerv(kMaxSamples, &most);
    if (requested <= most) return requested;
    output::Message("%s:  Requested samples is not supported (%d), set to %d\n", caller, requested,
                    most);
    return most;
}

GLsizei StorageSamples(const CGenCallInfo& info) {
    const auto& samples = static_cast<TGLsizei&>(*(*info.GetParameters())[1]);
    // Kept: with the prefix that its relative hasn't; readers match it.
    return SupportedSamples(samples.GetValue(), "ID_EXT_glRenderbufferStorageMultisampleQVA");
}

GLsizei TextureSamples(const CGenCallInfo& info) {
    const auto& samples = static_cast<TGLsizei&>(*(*info.GetParameters())[5]);
    return SupportedSamples(samples.GetValue(), "glFramebufferTexture2DMultisampleQVA");
}

EPlayed PlayElsewhere(const CGenCallInfo& info, std::uint16_t id) {
    if (id == kRenderbufferStorageMultisample) StorageSamples(info);
    if (id == kFramebufferTexture2DMultisample) TextureSamples(info);
    return PlayExtElsewhere(id);
}

EPlayed Play(SPlayerState& player, CCallEntry& entry, std::uint32_t api) {
    const CGenCallInfo info = entry.GetInfo();
    const std::uint16_t id = entry.call->m_id;
    EPlayed played = EPlayed::kElsewhere;
    if (api == kApiEs1) {
        EnsureExtensionResolver(player.es1Names);
        SEs1Play c{player, entry, info, id, *GetEs1Host(), player.es1Names};
        played = PlayExtEs1Case(c);
    } else if (api == kApiEs2) {
        EnsureExtensionResolver(player.names);
        SEs2Play c{player, entry, info, id, *GetEs2Host(), player.names};
        played = PlayExtEs2Case(c);
    }
    return played == EPlayed::kElsewhere ? PlayElsewhere(info, id) : played;
}

}  // namespace

EPlayed PlayGlBindRenderbufferOES(SEs1Play& c) {
    if (c.host.glBindRenderbufferOES == nullptr) return EPlayed::kMissing;
    // Kept: an unknown name is made through ES2; tools compare host calls.
    const GLuint live = LiveOrGenerated(
        c.names.Renderbuffers(), c.Value<TGLuint>(1),
        [](GLsizei count, GLuint* names) { GetEs2Host()->glGenRenderbuffers(count, names); });
    c.host.glBindRenderbufferOES(c.Value<TGLenum>(0), live);
    return EPlayed::kPlayed;
}

EPlayed PlayGlRenderbufferStorageMultisampleQVA(SEs2Play& c) {
    const GLsizei samples = StorageSamples(c.info);
    if (c.host.glRenderbufferStorageMultisampleQVA == nullptr) return EPlayed::kMissing;
    c.host.glRenderbufferStorageMultisampleQVA(c.Value<TGLenum>(0), samples, c.Value<TGLenum>(2),
                                               c.Value<TGLsizei>(3), c.Value<TGLsizei>(4));
    return EPlayed::kPlayed;
}

EPlayed PlayGlFramebufferTexture2DMultisampleQVA(SEs2Play& c) {
    const GLsizei samples = TextureSamples(c.info);
    if (c.host.glFramebufferTexture2DMultisampleQVA == nullptr) return EPlayed::kMissing;
    c.host.glFramebufferTexture2DMultisampleQVA(
        c.Value<TGLenum>(0), c.Value<TGLenum>(1), c.Value<TGLenum>(2),
        c.names.Textures().Get(c.Value<TGLuint>(3)), c.Value<TGLint>(4), samples);
    return EPlayed::kPlayed;
}

bool PlayExtCall(SPlayerState& player, CCallEntry& entry) {
    const auto& call = static_cast<const CExtCall&>(*entry.call);
    // Kept: in silence, whatever is asked of failed calls; readers know each family's way.
    if (call.m_extError.GetValue() != 0) return true;
    if (call.m_id < kFirst || call.m_id > kLast) return false;
    const std::uint32_t api = call.m_api.GetValue();
    const char* const before = player.currentCallName;
    player.currentCallName = call.GetName();
    const EPlayed played = Play(player, entry, api);
    // What this executor has no case for is not the call that a later error is told of.
    if (played == EPlayed::kFailed) player.currentCallName = before;
    if (played == EPlayed::kMissing) {
        output::Warning("The extension function '%s' is not available on this platform\n",
                        player.currentCallName);
        return true;
    }
    if (played != EPlayed::kPlayed) return played == EPlayed::kLeftOut;
    return CheckExtError(player, api);
}

}  // namespace kestrail
