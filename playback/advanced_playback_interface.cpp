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
    if (trace == nullptr) return false;
    if (!trace->DataFlag()) {
        output::Message("Current trace file recorded without Data....Abort");
        return false;
    }
    if (trace->MultiThread()) {
        output::Message("Current trace contain more than one thread.... Playback could crash.");
    }
    return true;
}

bool AdvancedPlaybackInterface::PlayFrame(std::uint32_t /*frame*/) {
    return false;
}

void AdvancedPlaybackInterface::Reset() {
    if (m_trace != nullptr) m_trace->Rewind();
}

}  // namespace kestrail
