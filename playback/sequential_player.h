// Replays a trace call by call in recorded order, printing a line for every call before it is
// played.
#pragma once

#include <cstdint>

#include "base/count_text.h"
#include "exec/player_state.h"

namespace kestrail {

class CSequentialPlayer : protected SPlayerState {
public:
    CSequentialPlayer() = default;
    virtual ~CSequentialPlayer() = default;
    CSequentialPlayer(const CSequentialPlayer&) = delete;
    CSequentialPlayer& operator=(const CSequentialPlayer&) = delete;

    /// `trace` is not owned.
    void SetTrace(CFrameStore* trace);
    /// Plays every frame of a trace held in memory, but for those of the skip range.
    void PlayAllFrames();
    /// Plays a streamed trace to its end. The skip range has no part in it.
    void PlayStream();
    /// Plays one frame, 1-based; a streamed trace whole. True when it went through: a call that
    /// fails does not end it, an exception does.
    bool PlayFrame(std::uint32_t frame);
    /// Plays one call, with a look at the host's error behind it if `checkErrors`. True when it was
    /// played, or left out on purpose.
    bool PlayCall(CCallEntry* call, bool checkErrors);

    void SetSync(bool on) { sync = on; }
    void SetSkipCallOnError(bool on) { skipCallOnError = on; }
    void SetSaveFrameBuffer(bool on) { m_saveFrameBuffer = on; }
    /// First and last frame to skip; -1 leaves a bound as it is.
    void SetSkipFrameRange(std::int32_t start, std::int32_t end);
    void RequestStop() { m_stopRequested = true; }

    /// The first call with that identifier, looked for frame by frame; null when there is none.
    CCallEntry* FindCall(std::uint16_t id, bool rewind);
    /// Whether the trace began before EGL was initialised, as those of applications do whose
    /// framework does it for them. True when the environment is settled.
    bool CheckCompatibleEnvironment();
    /// The native window of a recorded identifier, remembered once found.
    NativeWindow GetWindow(std::uint64_t recordedWindow);

protected:
    /// Runs after a whole frame when frame buffers are to be saved.
    virtual void SaveFrameBuffer(std::uint32_t /*frame*/) {}
    bool StopRequested() const { return m_stopRequested; }
    void ClearStopRequest() { m_stopRequested = false; }

private:
    bool Skips(std::uint32_t frame, std::uint32_t frameCount);
    /// Prints the call's line and plays it.
    void PlayNext(CCallEntry& entry);
    void PrintCall(CGenCallInfo info, std::uint32_t number);

    CCountText m_frameText;
    CCountText m_countText;
    bool m_saveFrameBuffer = false;
    bool m_skipFrameRangeEnabled = false;
    std::int32_t m_skipFrameStart = 0;
    std::int32_t m_skipFrameEnd = 0;
    bool m_stopRequested = false;
    bool m_searchedCompatibleEnvironment = false;
    NativeWindow m_window{};
};

}  // namespace kestrail
