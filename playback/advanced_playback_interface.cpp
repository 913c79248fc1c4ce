#include "playback/advanced_playback_interface.h"

#include "base/output.h"

namespace kestrail {

bool AdvancedPlaybackInterface::LoadTrace(const char* path, bool wholeFile) {
    if (!PlaybackInterface::LoadTrace(path, wholeFile)) return false;
    if (m_trace != nullptr && m_trace->MultiThread()) {
        output::Message("Current trace contain more than one thread....Unsupported.");
    }
    return AttachTrace(m_trace);
}

bool AdvancedPlaybackInterface::AttachTrace(CFrameStore* trace) {
    m_trace = trace;
    m_analysisPlayer.reset();
    if (trace == nullptr) return false;
    if (!trace->DataFlag()) {
        output::Message("Current trace file recorded without Data....Abort");
        return false;
    }
    // Kept: a second warning in other words, behind LoadTrace's; readers look for either.
    if (trace->MultiThread()) {
        output::Message("Current trace contain more than one thread.... Playback could crash.");
    }
    m_analysisPlayer = std::make_unique<CAnalysisPlayback>();
    m_analysisPlayer->SetTrace(trace);
    return true;
}

bool AdvancedPlaybackInterface::PlayFrame(std::int32_t frame) {
    return m_analysisPlayer && m_analysisPlayer->PlayFrame(frame);
}

void AdvancedPlaybackInterface::RequestStop() {
    if (m_analysisPlayer) m_analysisPlayer->RequestStop();
}

void AdvancedPlaybackInterface::Reset() {
    m_analysisPlayer.reset();
    if (m_trace != nullptr) m_trace->Rewind();
}

}  // namespace kestrail
