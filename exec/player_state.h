// What a player shares with the executors: its session, the surface's default framebuffer, the
// flags and the last error. Players derive from it, so that executors need not know players.
#pragma once

#include <cstdint>

#include "exec/session.h"
#include "tracefile/document/frame_store.h"

namespace kestrail {

struct SPlayerState : SSession {
    CFrameStore* store = nullptr;  ///< the trace, not owned
    /// What was bound to GL_FRAMEBUFFER when the first ES2 call played, once it is known.
    std::uint32_t defaultFramebuffer = 0;
    bool defaultFramebufferKnown = false;
    /// What the last error check read, of EGL or GL.
    std::uint32_t lastError = 0;
    /// The call being played, for messages; of static lifetime.
    const char* currentCallName = "";
    /// Buffer swaps are not tied to the display's refresh.
    bool sync = false;
    /// ES2 calls that failed when recorded are left out.
    bool skipCallOnError = true;
    /// What players leave out is played as far as its record holds it. Tools want it, players
    /// never.
    bool playsAll = false;
    /// The host's error is read after each call.
    bool checkErrors = false;
    /// 1-based position in the trace of the last call that the edit lists name.
    std::uint32_t currentCallNumber = 0;
};

}  // namespace kestrail
