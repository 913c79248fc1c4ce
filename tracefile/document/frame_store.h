// The loaded trace as players see it: frames of calls with the state that each begins with, and a
// position in them. Frames and calls are
// numbered from 1 at this interface; `firstCall` and `lastCall` of a frame are 0-based indices.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "base/shared.h"
#include "calls/model/api_call.h"
#include "state/egl/egl_state.h"
#include "state/es1/es1_state.h"
#include "state/es2/es2_state.h"
#include "state/updates.h"
#include "tracefile/document/edit_list.h"

namespace kestrail {

class CTraceDocument;

struct CFrameRecord {
    /// `lastCall` of a frame without calls.
    static constexpr std::uint32_t kNoCall = 0xFFFFFFFFu;

    std::uint32_t number = 1;
    std::uint64_t startOffset = 0;  ///< in the file, of the first call's record
    std::uint32_t firstCall = 0;
    std::uint32_t lastCall = kNoCall;

    bool Holds(std::uint32_t index) const {
        return lastCall != kNoCall && firstCall <= index && index <= lastCall;
    }
};

class CCallEntry {
public:
    std::unique_ptr<CApiCall> call;

    /// The list of the call's values, the player's own among them.
    CGenCallInfo GetInfo() const {
        CGenCallInfo info;
        call->FillCallInfo(info, true);
        return info;
    }
};

/// The calls of a trace, and what they stand in.
struct STraceCalls {
    CObjectArena memory;
    std::vector<CCallEntry> list;
};

/// What the records are to hold: what the application had set, by the calls as they were recorded,
/// or what is live on the host, by the calls as a sought frame plays them.
enum class EApplied { kRecorded, kPlayed };

/// A state of EGL, ES1 and ES2. Copies share what none of them changed.
struct SFrameState {
    TShared<CEglState> egl;
    TShared<CEs1State> es1;
    TShared<CEs2State> es2;
    /// Whose bytes the records refer to; they stay as long as this does.
    std::shared_ptr<const STraceCalls> calls;

    /// Applies a call. False when it is none that counts.
    bool Apply(CApiCall& call, SUpdates& updates, EApplied what);
};

class CFrameStore {
public:
    explicit CFrameStore(Diagnostics& diagnostics) : m_updates(diagnostics) { BeginFrame(); }

    /// Drops everything and opens frame 1.
    void BeginFrame();
    /// Keeps what the header says; makes room for the calls that a file of that size may hold.
    void SetTraceInfo(std::uint32_t fileSize, bool dataFlag, std::uint32_t version);
    /// From now on `NextCall` takes calls from the document as it reads them.
    void StreamFrom(CTraceDocument* document) { m_document = document; }
    /// Whether calls come from the file one by one, each in the place of the one before.
    bool Streams() const { return m_document != nullptr; }
    /// Files a call under the current frame. eglSwapBuffers closes its frame; the first call behind
    /// a block of state calls opens one. `offset` is that of the call's record in the file. With
    /// `trackState` the call is applied to the running state, unless the edit list disables it.
    void AppendCall(std::unique_ptr<CApiCall>&& call, std::uint64_t offset, bool inStateBlock,
                    bool trackState);
    void SetMultiThread() { m_multiThread = true; }
    /// Has calls that are appended from now on keep where their records begin in the file.
    void KeepOffsets() { m_keepsOffsets = true; }
    /// Of calls by number, the first at 0; empty unless they are kept.
    const std::vector<std::uint64_t>& Offsets() const { return m_offsets; }

    /// To the first frame.
    void Rewind();
    /// Makes `frame` the current one, and with `resetCursor` its first call the next one. False for
    /// a frame that there is not, or for the current one without `resetCursor`.
    bool SeekFrame(std::uint32_t frame, bool resetCursor);
    void ResetCursor();
    /// The next call of the current frame; null at its end. Streaming, the next call of the file,
    /// which replaces the one before it; throws what reading it throws.
    CCallEntry* NextCall();

    /// 1-based, of the call that `NextCall` gave last. Stays at the start while streaming.
    std::uint32_t CurrentCallNumber() const { return m_currentCall + 1; }
    std::uint32_t CurrentFrameNumber() const;
    /// Frames that hold calls.
    std::uint32_t FrameCount() const;
    std::uint32_t CallCount() const { return m_callCount; }
    /// Null out of range.
    const CFrameRecord* GetFrameRecord(std::uint32_t frame) const;
    CCallEntry* CallAt(std::uint32_t number);
    /// All calls, which stay as long as somebody has them; streaming, the last one, for as long as
    /// it is the last.
    std::shared_ptr<STraceCalls> Calls() const { return m_calls; }
    /// Where calls are made that `AppendCall` takes.
    CObjectArena& CallMemory() { return m_calls->memory; }
    SUpdates& Updates() { return m_updates; }
    /// The frame that holds the 0-based `index`, or 0. The line of a call asks with the call's
    /// 1-based number, so that a frame's last call shows as the next frame's.
    std::uint32_t FrameOfCall(std::uint32_t index) const {
        const CFrameRecord& last = m_frames[m_lastFound];
        return last.Holds(index) ? last.number : SearchFrameOfCall(index);
    }

    /// What the application had set when a frame began; defaults for a trace whose state was not
    /// tracked, and out of range. Some states are kept, at most some thousand calls apart; the
    /// others are made from those calls when they are asked for, best one after the other. Valid
    /// until another one is asked for.
    const SFrameState& StateOfFrame(std::uint32_t frame) const;
    /// Copies the state that a frame begins with. False out of range; for ES1 and ES2 also for a
    /// trace that never called that API.
    bool GetEglStateOfFrame(std::uint32_t frame, CEglState& out) const;
    bool GetEs1StateOfFrame(std::uint32_t frame, CEs1State& out) const;
    bool GetEs2StateOfFrame(std::uint32_t frame, CEs2State& out) const;

    CEditList& Edits() { return m_edits; }
    const CEditList& Edits() const { return m_edits; }
    bool DataFlag() const { return m_dataFlag; }
    bool MultiThread() const { return m_multiThread; }
    std::uint32_t Version() const { return m_version; }

private:
    void OpenFrame(std::uint32_t firstCall);
    CCallEntry* NextStreamedCall();
    std::uint32_t SearchFrameOfCall(std::uint32_t index) const;
    void Track(CApiCall& call);
    /// Keeps the running state for the frame of that place.
    void KeepState(std::size_t frame);
    /// Where the frame stands in `m_frames`, or their number when it is not there.
    std::size_t IndexOf(std::uint32_t frame) const;

    CTraceDocument* m_document = nullptr;
    std::vector<CFrameRecord> m_frames;
    std::shared_ptr<STraceCalls> m_calls;
    CEditList m_edits;
    /// The state that a frame begins with, by the frame's place in `m_frames`.
    struct SKeptState {
        std::size_t frame = 0;
        SFrameState state;
    };
    mutable SUpdates m_updates;
    /// What all calls so far have set.
    SFrameState m_state;
    std::vector<SKeptState> m_keptStates;
    /// The state that was asked for last.
    mutable SKeptState m_asked;
    /// Calls applied since a state was kept.
    std::uint32_t m_callsSinceKept = 0;
    /// The first call behind the state block, which counts even when it is disabled.
    std::uint32_t m_firstBehindState = 0;
    bool m_tracked = false;
    bool m_es1Used = false;
    bool m_es2Used = false;
    std::size_t m_currentFrame = 0;
    std::uint32_t m_currentCall = 0;
    std::uint32_t m_nextCall = 0;
    std::uint32_t m_callCount = 0;
    /// Frames closed while streaming and not kept.
    std::uint32_t m_droppedFrames = 0;
    bool m_dataFlag = false;
    bool m_hasStateBlock = false;
    bool m_multiThread = false;
    bool m_keepsOffsets = false;
    std::vector<std::uint64_t> m_offsets;
    std::uint32_t m_version = 0;
    /// Where the last answer of `FrameOfCall` stood, one of `m_frames`: the next one is there or
    /// behind it.
    mutable std::size_t m_lastFound = 0;
};

}  // namespace kestrail
