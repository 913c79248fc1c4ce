#include "tracefile/document/frame_store.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "generated/calls/identifiers.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {

void CFrameStore::BeginFrame() {
    m_frames.clear();
    m_calls = std::make_shared<STraceCalls>();
    m_edits.Clear();
    m_frames.emplace_back();
    m_currentFrame = 0;
    m_currentCall = 0;
    m_nextCall = 0;
    m_callCount = 0;
    m_droppedFrames = 0;
    m_lastFound = 0;
    m_hasStateBlock = false;
    // Made here, so that all states of the trace share what no call sets.
    m_state = {TShared(CEglState{}), TShared(CEs1State{}), TShared(CEs2State{}), nullptr};
    m_keptStates.clear();
    m_asked = {};
    m_firstBehindState = 0;
    m_tracked = false;
    KeepState(0);
    m_es1Used = false;
    m_es2Used = false;
}

void CFrameStore::SetTraceInfo(std::uint32_t fileSize, bool dataFlag, std::uint32_t version) {
    // Fewer than calls take, so that the list need not move. Room that is not used costs nothing.
    constexpr std::uint32_t kBytesPerRecord = 16;
    if (m_document == nullptr) m_calls->list.reserve(fileSize / kBytesPerRecord);
    m_dataFlag = dataFlag;
    m_version = version;
}

void CFrameStore::OpenFrame(std::uint32_t firstCall) {
    // While streaming nothing goes back to a closed frame, and the one call that frames are asked
    // for stands in the first two.
    constexpr std::size_t kKeptFrames = 2;
    if (m_document != nullptr && m_frames.size() > kKeptFrames) {
        m_frames.pop_back();
        ++m_droppedFrames;
    }
    CFrameRecord frame;
    frame.number = static_cast<std::uint32_t>(m_frames.size()) + m_droppedFrames + 1;
    frame.firstCall = firstCall;
    m_frames.push_back(frame);
    m_currentFrame = m_frames.size() - 1;
    // Few enough to be applied again in less time than a restore takes.
    constexpr std::uint32_t kCallsApart = 2000;
    if (m_callsSinceKept >= kCallsApart) KeepState(m_currentFrame);
}

void CFrameStore::KeepState(std::size_t frame) {
    m_keptStates.push_back({frame, m_state});
    m_callsSinceKept = 0;
}

void CFrameStore::AppendCall(std::unique_ptr<CApiCall>&& call, std::uint64_t offset,
                             bool inStateBlock, bool trackState) {
    if (!call) return;
    const std::uint16_t id = call->m_id;
    ++m_callCount;
    m_hasStateBlock = m_hasStateBlock || inStateBlock;
    m_tracked = m_tracked || trackState;
    const bool firstBehindState = m_frames.size() == 1 && !inStateBlock && m_hasStateBlock;
    CApiCall& appended = *call;
    if (trackState && !firstBehindState && !m_edits.IsCallDisabled(m_callCount)) {
        Track(appended);
    }
    m_calls->list.emplace_back().call = std::move(call);
    if (m_keepsOffsets) m_offsets.push_back(offset);
    CFrameRecord& current = m_frames[m_currentFrame];
    if (current.firstCall == m_callCount - 1) current.startOffset = offset;
    CFrameRecord& last = m_frames.back();
    last.lastCall = m_callCount - 1;
    if (firstBehindState) {
        // Frame 1 holds exactly the state; this call is the next frame's first.
        last.lastCall = m_callCount - 2;
        OpenFrame(m_callCount - 1);
        m_frames.back().lastCall = m_callCount - 1;
        // Kept: counts though it may be disabled, and a swap closes nothing; tools compare seeks.
        m_firstBehindState = m_callCount;
        if (trackState) Track(appended);
    } else if (id == egl_id::eglSwapBuffers) {
        OpenFrame(m_callCount);
    }
}

void CFrameStore::Track(CApiCall& call) {
    ++m_callsSinceKept;
    if (!m_state.Apply(call, m_updates, EApplied::kRecorded)) return;
    m_es1Used = m_es1Used || call.m_group == kGroupEs1 || call.m_group == kGroupExtEs1;
    m_es2Used = m_es2Used || call.m_group == kGroupEs2 || call.m_group == kGroupExtEs2;
}

bool SFrameState::Apply(CApiCall& call, SUpdates& updates, EApplied what) {
    constexpr std::uint32_t kEs3 = 3;
    const bool recorded = what == EApplied::kRecorded;
    const bool sets = call.m_updatesState;
    // Kept: failed calls of EGL and extensions count, whose errors stand elsewhere, and in a sought
    // frame all; tools compare seeks.
    if (recorded && call.m_error.GetValue() != GL_NO_ERROR) return false;
    switch (call.m_group) {
        case kGroupEgl:
            if (sets) static_cast<CEglCall&>(call).UpdateState(egl.Write(), updates);
            break;
        case kGroupEs1:
            if (sets) static_cast<CEs1Call&>(call).UpdateState(es1.Write(), updates);
            break;
        case kGroupExtEs1:
            // Kept: calls of extensions change no record of a sought frame; tools compare seeks.
            if (sets && recorded) static_cast<CExtCall&>(call).UpdateState(es1.Write(), updates);
            break;
        case kGroupEs2:
            if (sets) static_cast<CEs2Call&>(call).UpdateState(es2.Write(), updates);
            if (egl->contextClientVersion == kEs3 && es2->apiVersion != kEs3) {
                es2.Write().apiVersion = kEs3;
            }
            break;
        default:
            // Kept: calls of extensions leave no trace in ES2's record; tools compare seeks.
            break;
    }
    return true;
}

const SFrameState& CFrameStore::StateOfFrame(std::uint32_t frame) const {
    static const SFrameState s_none;
    const std::size_t place = IndexOf(frame);
    if (place == m_frames.size() || !m_tracked) return s_none;
    const auto behind = std::upper_bound(
        m_keptStates.begin(), m_keptStates.end(), place,
        [](std::size_t wanted, const SKeptState& kept) { return wanted < kept.frame; });
    const SKeptState& kept = *std::prev(behind);
    if (m_asked.frame > place || m_asked.frame <= kept.frame) m_asked = kept;
    m_asked.state.calls = m_calls;
    const SRepeatedUpdates repeated(m_updates);
    for (std::uint32_t call = m_frames[m_asked.frame].firstCall; call < m_frames[place].firstCall;
         ++call) {
        const std::uint32_t number = call + 1;
        if (number == m_firstBehindState || !m_edits.IsCallDisabled(number)) {
            m_asked.state.Apply(*m_calls->list[call].call, m_updates, EApplied::kRecorded);
        }
    }
    m_asked.frame = place;
    return m_asked.state;
}

bool CFrameStore::GetEglStateOfFrame(std::uint32_t frame, CEglState& out) const {
    if (GetFrameRecord(frame) == nullptr) return false;
    out = StateOfFrame(frame).egl.Copy();
    return true;
}

bool CFrameStore::GetEs1StateOfFrame(std::uint32_t frame, CEs1State& out) const {
    if (!m_es1Used || GetFrameRecord(frame) == nullptr) return false;
    out = StateOfFrame(frame).es1.Copy();
    return true;
}

bool CFrameStore::GetEs2StateOfFrame(std::uint32_t frame, CEs2State& out) const {
    if (!m_es2Used || GetFrameRecord(frame) == nullptr) return false;
    out = StateOfFrame(frame).es2.Copy();
    return true;
}

void CFrameStore::Rewind() {
    m_currentFrame = 0;
    m_currentCall = 0;
    m_nextCall = 0;
}

bool CFrameStore::SeekFrame(std::uint32_t frame, bool resetCursor) {
    const std::size_t index = IndexOf(frame);
    if (index == m_frames.size()) return false;
    if (index == m_currentFrame && !resetCursor) return false;
    m_currentFrame = index;
    if (resetCursor) ResetCursor();
    return true;
}

void CFrameStore::ResetCursor() {
    m_currentCall = m_frames[m_currentFrame].firstCall;
    m_nextCall = m_currentCall;
}

CCallEntry* CFrameStore::NextCall() {
    if (m_document != nullptr) return NextStreamedCall();
    std::vector<CCallEntry>& calls = m_calls->list;
    if (m_nextCall >= calls.size()) return nullptr;
    if (m_nextCall == m_frames[m_currentFrame].lastCall + 1) return nullptr;
    m_currentCall = m_nextCall++;
    return &calls[m_currentCall];
}

CCallEntry* CFrameStore::NextStreamedCall() {
    // Kept: the cursor stays, so all lines have the first call's frame; readers match them.
    m_calls->list.clear();
    m_calls->memory.StartAgain();
    m_document->LoadRecords();
    return m_calls->list.empty() ? nullptr : &m_calls->list.front();
}

std::uint32_t CFrameStore::CurrentFrameNumber() const {
    return m_frames[m_currentFrame].number;
}

std::uint32_t CFrameStore::FrameCount() const {
    const auto records = static_cast<std::uint32_t>(m_frames.size()) + m_droppedFrames;
    if (records == 1) return m_callCount > 0 ? 1 : 0;
    return m_frames.back().firstCall == m_callCount ? records - 1 : records;
}

const CFrameRecord* CFrameStore::GetFrameRecord(std::uint32_t frame) const {
    const std::size_t index = IndexOf(frame);
    return index == m_frames.size() ? nullptr : &m_frames[index];
}

std::size_t CFrameStore::IndexOf(std::uint32_t frame) const {
    if (frame == m_frames.back().number) return m_frames.size() - 1;
    const bool kept = frame != 0 && frame < m_frames.size();
    return kept ? frame - 1 : m_frames.size();
}

CCallEntry* CFrameStore::CallAt(std::uint32_t number) {
    return number == 0 || number > m_calls->list.size() ? nullptr : &m_calls->list[number - 1];
}

std::uint32_t CFrameStore::SearchFrameOfCall(std::uint32_t index) const {
    for (std::size_t i = m_lastFound; i < m_frames.size() && i <= m_lastFound + 1; ++i) {
        if (!m_frames[i].Holds(index)) continue;
        m_lastFound = i;
        return m_frames[i].number;
    }
    // Frames follow each other without gaps: the last one that begins at or before the index.
    const auto behind = std::upper_bound(
        m_frames.begin(), m_frames.end(), index,
        [](std::uint32_t wanted, const CFrameRecord& frame) { return wanted < frame.firstCall; });
    if (behind == m_frames.begin()) return 0;
    const auto found = std::prev(behind);
    if (!found->Holds(index)) return 0;
    m_lastFound = static_cast<std::size_t>(found - m_frames.begin());
    return found->number;
}

}  // namespace kestrail
