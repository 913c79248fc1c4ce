// The front end of the frame-seeking player.
#pragma once

#include <cstdint>
#include <memory>

#include "playback/analysis_playback.h"
#include "playback/playback_interface.h"

namespace kestrail {

class AdvancedPlaybackInterface : public PlaybackInterface {
public:
    /// As the base's, with a warning for a trace of several threads; false also for a trace that
    /// was recorded without data.
    bool LoadTrace(const char* path, bool wholeFile);
    /// Takes a loaded trace; false when it cannot be sought in.
    bool AttachTrace(CFrameStore* trace);
    /// Renders one frame, 1-based. False when it fails or there is no player for it.
    bool PlayFrame(std::int32_t frame);
    void RequestStop();
    void Reset() override;

private:
    std::unique_ptr<CAnalysisPlayback> m_analysisPlayer;
};

}  // namespace kestrail
