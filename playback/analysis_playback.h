// Renders single frames of a trace, in any order: brings the host to the state that the application
// had at the start of the frame, plays the frame's calls and presents.
#pragma once

#include <cstdint>

#include "playback/sequential_player.h"
#include "state/egl/egl_state.h"
#include "state/es1/es1_state.h"
#include "state/es2/es2_state.h"

namespace kestrail {

class CAnalysisPlayback : public CSequentialPlayer {
public:
    /// Always plays without waiting for the display's refresh.
    CAnalysisPlayback();

    /// Renders a frame, 1-based. False out of range, for a frame that does not end in
    /// eglSwapBuffers, and when one of its calls fails: it is not presented then.
    bool PlayFrame(std::int32_t frame);

private:
    /// Brings the host to the start of the frame. False when an exception ended that.
    bool RestoreFrame(std::uint32_t frame);
    /// The same, from wherever the host stands.
    bool TryRestore(std::uint32_t frame);
    void Restore(std::uint32_t frame);
    /// Plays the frame's calls up to its swap.
    bool PlayCalls(const CFrameRecord& frame);
    /// Plays a call and applies it to the record of what is live. False when it failed.
    bool PlayTrackedCall(CCallEntry& entry);
    bool FindSwapCall();
    bool PlaySwap();
    bool ProcessEvents();

    bool m_restartPending = false;
    /// What is live may differ from the snapshot of the frame.
    bool m_eglDirty = false;
    bool m_es1Dirty = false;
    bool m_es2Dirty = false;
    bool m_checkCalls = true;
    std::uint32_t m_frame = 0;
    /// The swap to present with. Stays once found.
    CCallEntry* m_swapCall = nullptr;
    CEglState m_currentEgl;
    CEs1State m_currentEs1;
    CEs2State m_currentEs2;
};

}  // namespace kestrail
