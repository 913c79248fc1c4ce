#include "exec/es2_executor.h"

#include "generated/exec/es2_cases.h"

namespace kestrail {
namespace {

/// Once for each player: a context is current now, and what it has bound is the surface.
void LearnDefaultFramebuffer(SPlayerState& player, SEs2Host& host) {
    player.defaultFramebufferKnown = true;
    GLint framebuffer = 0;
    host.glGetIntegerv(GL_FRAMEBUFFER_BINDING, &framebuffer);
    player.defaultFramebuffer = static_cast<std::uint32_t>(framebuffer);
    player.diagnostics.Message("Default FBO: %d", framebuffer);
}

}  // namespace

bool CheckEs2Error(SPlayerState& player) {
    player.lastError = player.hosts.Es2().glGetError();
    if (player.lastError == GL_NO_ERROR) return true;
    player.diagnostics.Message("OGLES2 Error Code: 0x%lx, Call= %s",
                               static_cast<unsigned long>(player.lastError),
                               player.currentCallName);
    return false;
}

bool PlayEs2Call(SPlayerState& player, CCallEntry& entry) {
    const CApiCall& call = *entry.call;
    if (call.HadFailed() && player.skipCallOnError) {
        player.diagnostics.Message(
            "Es2 Call: (Original Call return GL_ERROR. Skipped on Playback) %s", call.GetName());
        return true;
    }
    if (!player.eglNames.ContextValid()) {
        player.diagnostics.Message("Es2 Call:Error. Invalid context");
        return false;
    }
    SEs2Host& host = player.hosts.Es2();
    if (!player.defaultFramebufferKnown) LearnDefaultFramebuffer(player, host);
    SEs2Play c{player, entry, entry.GetInfo(), call.m_id, host, player.es2Names};
    if (player.checkErrors) player.currentCallName = c.info.GetCallName().data();
    const EPlayed played = PlayEs2Case(c);
    if (played != EPlayed::kPlayed) return played == EPlayed::kLeftOut;
    return player.checkErrors ? CheckEs2Error(player) : true;
}

}  // namespace kestrail
