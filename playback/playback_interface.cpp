#include "playback/playback_interface.h"

#include "base/output.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {

PlaybackInterface::~PlaybackInterface() {
    m_player.reset();
    CTraceDocument::Instance()->CloseTrace();
}

bool PlaybackInterface::LoadTrace(const char* path, bool wholeFile) {
    m_wholeFile = wholeFile;
    try {
        CTraceDocument* document = CTraceDocument::Instance();
        // Kept: a missing, empty or cut file is no failure; readers see by the lines what played.
        if (document->OpenTrace(CKSTLString(path), wholeFile) == kOpenRefused) {
            output::Message("*** Error loading file ***");
            return false;
        }
        m_trace = document->GetFrameStore();
        return true;
    } catch (...) {
        output::Message("Exception processing trace file");
        // Kept: nothing catches it; whoever starts the player sees the process end.
        throw "Exception trying process file";
    }
}

CSequentialPlayer& PlaybackInterface::Player() {
    if (!m_player) m_player = std::make_unique<CSequentialPlayer>();
    return *m_player;
}

void PlaybackInterface::SetTrace(CFrameStore* trace) {
    m_trace = trace;
    Player().SetTrace(trace);
}

void PlaybackInterface::Reset() {
    m_player.reset();
    if (m_trace != nullptr) m_trace->Rewind();
}

void PlaybackInterface::SetOption(std::uint32_t selector, std::int32_t value) {
    CSequentialPlayer& player = Player();
    switch (selector) {
        case kOptionSync:
            player.SetSync(value >= 1);
            break;
        case kOptionSkipCallOnError:
            player.SetSkipCallOnError(value >= 1);
            break;
        case kOptionSkipRangeStart:
            player.SetSkipFrameRange(value, -1);
            break;
        case kOptionSkipRangeEnd:
            player.SetSkipFrameRange(-1, value);
            break;
        case kOptionSaveFrameBuffer:
            // Kept: any value but 0, where the other flags take 1 and more; front ends pass -1.
            player.SetSaveFrameBuffer(value != 0);
            break;
        default:
            break;
    }
}

bool PlaybackInterface::Play() {
    CSequentialPlayer& player = Player();
    m_trace = CTraceDocument::Instance()->GetFrameStore();
    player.SetTrace(m_trace);
    if (m_trace == nullptr || !m_trace->DataFlag()) return false;
    if (m_wholeFile) {
        player.PlayAllFrames();
    } else {
        player.PlayStream();
    }
    return true;
}

bool PlaybackInterface::PlayFrame(std::uint32_t frame) {
    if (m_trace == nullptr) return false;
    Player().SetTrace(m_trace);
    // Kept: modulo 65536; front ends hold a frame's number in 16 bits.
    return Player().PlayFrame(static_cast<std::uint16_t>(frame));
}

void PlaybackInterface::RequestStop() {
    if (m_player) m_player->RequestStop();
}

}  // namespace kestrail
