// Renders single frames of a trace, in any order: brings the host to the state that the application
// had at the start of the frame, plays the frame's calls and presents.
#pragma once

#include <cstdint>

#include "playback/sequential_player.h"
#include "tracefile/document/frame_store.h"

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
    void Restore(std::uint32_t frame);
    /// Plays the frame's calls up to its swap.
    bool PlayCalls(const CFrameRecord& frame);
    /// Plays a call and applies it to the record of what is live. False when it failed.
    bool PlayTrackedCall(CCallEntry& entry);
    bool FindSwapCall();
    bool PlaySwap();
    bool ProcessEvents();

    std::uint32_t m_frame = 0;
    /// The swap to present with. Stays once found.
    CCallEntry* m_swapCall = nullptr;
    SFrameState m_current;
};

}  // namespace kestrail
