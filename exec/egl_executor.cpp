#include "exec/egl_executor.h"

#include "generated/calls/identifiers.h"
#include "generated/exec/egl_cases.h"

namespace kestrail {

bool CheckEglError(SPlayerState& player) {
    player.lastError = static_cast<std::uint32_t>(player.hosts.Egl().eglGetError());
    if (player.lastError == EGL_SUCCESS) return true;
    // Kept: the last call of GL, not of EGL, and an empty line; readers match it.
    player.diagnostics.Message("EGL Error Code: 0x%lx, Call= %s\n",
                               static_cast<unsigned long>(player.lastError),
                               player.currentCallName);
    return false;
}

bool PlayEglCall(SPlayerState& player, CCallEntry& entry) {
    constexpr std::uint16_t kThread = 1;
    const auto& call = static_cast<const CEglCall&>(*entry.call);
    // A change of threads, as traces of several hold it.
    if (call.m_id == kThread) return true;
    // A call that failed when it was recorded changed nothing that later calls rely on.
    if (call.HadFailed()) return true;
    if (PlayedFamilyOf(call.m_id) != EFamily::kEgl) {
        player.diagnostics.Message("EGL Unknown call");
        return false;
    }
    if (LeavesOutEglCall(call.m_id)) return true;
    SEglPlay c{player, entry, entry.GetInfo(), call.m_id, player.hosts.Egl(), player.eglNames};
    const EPlayed played = PlayEglCase(c);
    if (played != EPlayed::kPlayed) return played == EPlayed::kLeftOut;
    return player.checkErrors ? CheckEglError(player) : true;
}

}  // namespace kestrail
