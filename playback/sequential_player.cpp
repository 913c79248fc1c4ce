#include "playback/sequential_player.h"

#include <cstdlib>

#include "base/output.h"
#include "exec/play_call.h"
#include "generated/calls/identifiers.h"

namespace kestrail {
namespace {

/// Calls started so far in this process.
std::uint32_t g_callCount = 0;

}  // namespace

void CSequentialPlayer::SetTrace(CFrameStore* trace) {
    store = trace;
    m_window = NativeWindow{};
}

void CSequentialPlayer::SetSkipFrameRange(std::int32_t start, std::int32_t end) {
    if (start != -1) {
        m_skipFrameStart = start;
        m_skipFrameRangeEnabled = true;
    }
    if (end != -1) {
        m_skipFrameEnd = end;
        m_skipFrameRangeEnabled = true;
    }
}

bool CSequentialPlayer::Skips(std::uint32_t frame, std::uint32_t frameCount) {
    if (!m_skipFrameRangeEnabled) return false;
    const auto start = static_cast<std::uint32_t>(m_skipFrameStart);
    const auto end = static_cast<std::uint32_t>(m_skipFrameEnd);
    const bool valid = end <= frameCount && m_skipFrameStart != -1 && m_skipFrameEnd != -1 &&
                       m_skipFrameEnd >= m_skipFrameStart;
    if (!valid) {
        // Kept: a name of the code, and an empty line behind what follows; readers match both.
        output::Message("m_skipFrameRange....");
        m_skipFrameRangeEnabled = false;
        output::Message("Disabling SkipFrameRange. Range is not valid.  %d-%d\n", m_skipFrameStart,
                        m_skipFrameEnd);
        return false;
    }
    return start <= frame && end >= frame;
}

void CSequentialPlayer::PlayAllFrames() {
    es2Names.ResetNames();
    es1Names.ResetNames();
    const std::uint32_t count = store->FrameCount();
    for (std::uint32_t frame = 1; frame <= count; ++frame) {
        if (Skips(frame, count)) continue;
        if (!PlayFrame(frame)) {
            output::Message("Aborting Playback....");
            break;
        }
    }
}

void CSequentialPlayer::PlayStream() {
    es2Names.ResetNames();
    es1Names.ResetNames();
    // Kept: skips no frames, though main announces it; a stream's log is of the whole trace.
    if (!PlayFrame(1)) output::Message("Aborting Playback....");
}

bool CSequentialPlayer::PlayFrame(std::uint32_t frame) {
    store->SeekFrame(frame, true);
    // Whatever is thrown, by the host's libraries or by a record that cannot be read while
    // streaming, ends the playback.
    try {
        while (CCallEntry* entry = store->NextCall()) PlayNext(*entry);
    } catch (...) {
        output::Error("Exception drawing call\n");
        return false;
    }
    if (m_saveFrameBuffer) SaveFrameBuffer(frame);
    return true;
}

void CSequentialPlayer::PlayNext(CCallEntry& entry) {
    const std::uint32_t number = store->CurrentCallNumber();
    ++g_callCount;
    PrintCall(entry.GetInfo(), number);
    if (!environment.PumpEvents()) {
        output::Message("User quit\n");
        std::exit(0);
    }
    if (entry.call->m_edited) {
        currentCallNumber = number;
        if (store->Edits().IsCallDisabled(number)) return;
    }
    if (!PlayCall(&entry, true)) output::Error("PlayCall Error: Unrecognized/Error call");
}

void CSequentialPlayer::PrintCall(CGenCallInfo info, std::uint32_t number) {
    constexpr std::size_t kHeadRoom = 96 + 2 * CCountText::kRoom;
    constexpr std::size_t kTailRoom = 32;
    TextWriter& out = output::Pending();
    const CGenCallInfo::Parameters* const parameters = info.GetParameters();
    char* to = out.Reserve(kHeadRoom + info.GetCallName().size());
    to = PutText(to, "KESTRAIL(M) Frame(P): ");
    // Kept: a number, where an index is asked for: one call ahead; readers cut logs by it.
    to = m_frameText.Put(to, static_cast<std::int32_t>(store->FrameOfCall(number)));
    to = PutText(to, " Call:");
    to = m_countText.Put(to, static_cast<std::int32_t>(g_callCount));
    *to++ = ' ';
    to = PutText(to, info.GetCallName());
    *to++ = ' ';
    if (parameters != nullptr) {
        out.CommitTo(PutText(to, " ("));
        for (std::uint32_t i = 0; i < parameters->size(); ++i) {
            (*parameters)[i]->AppendText(out);
            // Kept: behind the last one as well; readers split the line by it.
            out.Append(" , ");
        }
        to = out.Reserve(kTailRoom);
        *to++ = ')';
    }
    to = PutText(to, " => ");
    if (const SApiTypeBase* value = info.GetReturnValue()) {
        out.CommitTo(to);
        value->AppendDetailText(out);
        to = out.Reserve(kTailRoom);
    }
    out.CommitTo(PutText(to, " :: Error: "));
    info.GetErrorValue()->AppendText(out);
    out.Append(" \n");
    output::LineDone();
}

bool CSequentialPlayer::PlayCall(CCallEntry* call, bool checkErrorsAfter) {
    checkErrors = checkErrorsAfter;
    if (call == nullptr) {
        output::Error("PlayCall Error: Unrecognized/Error call");
        return false;
    }
    const std::uint16_t id = call->call->m_id;
    // The loader's own records are no calls.
    if (id >= 2 && id <= 4) return true;
    const bool played = PlayCallOfFamily(*this, *call);
    if (!played) output::Message("Error call:%s %d", call->call->GetName(), id);
    return played;
}

CCallEntry* CSequentialPlayer::FindCall(std::uint16_t id, bool rewind) {
    const std::uint32_t count = store->FrameCount();
    // Kept: from 0, so that the last is never searched; front ends count frames like that.
    for (std::uint32_t frame = 0; frame < count; ++frame) {
        store->SeekFrame(frame, rewind);
        if (rewind) store->ResetCursor();
        while (CCallEntry* entry = store->NextCall()) {
            if (entry->call->m_id == id) return entry;
        }
    }
    return nullptr;
}

bool CSequentialPlayer::CheckCompatibleEnvironment() {
    if (m_searchedCompatibleEnvironment) return true;
    if (FindCall(egl_id::eglInitialize, true) != nullptr) return false;
    m_searchedCompatibleEnvironment = true;
    // Kept: spelled like that; readers match it.
    output::Message("Android Java used. Searching for a compatible enviroment.");
    FindCall(egl_id::eglMakeCurrent, true);
    return true;
}

NativeWindow CSequentialPlayer::GetWindow(std::uint64_t recordedWindow) {
    if (m_window == NativeWindow{}) m_window = environment.FindWindow(recordedWindow);
    return m_window;
}

}  // namespace kestrail
