#include "tracefile/document/trace_document.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "base/output.h"
#include "calls/model/factories.h"
#include "generated/calls/identifiers.h"
#include "tracefile/bytes/typed_reads.h"

namespace kestrail {
namespace {

constexpr std::uint64_t kRecordHead = 6;
constexpr std::uint64_t kFooterSize = 10;
constexpr std::uint16_t kThreadRecord = 1;
constexpr std::uint16_t kLastMarker = 5;

std::unique_ptr<CApiCall> CallOfFamily(std::uint16_t id, CTrace& reader) {
    switch (FamilyOf(id)) {
        case EFamily::kEgl:
            return CreateEglCall(id, reader);
        case EFamily::kEs1:
            return CreateEs1Call(id, reader);
        case EFamily::kEs2:
            return CreateEs2Call(id, reader);
        case EFamily::kEs3:
            return CreateEs3Call(id, reader);
        case EFamily::kExt:
            return CreateExtCall(id, reader);
        default:
            return nullptr;
    }
}

}  // namespace

struct CTraceDocument::SRecordLoop {
    std::uint64_t size = 0;
    std::uint64_t offset = 0;
    std::uint32_t thread = 0;
    bool inStateBlock = false;
    /// The section of state records is being read, ahead of all others.
    bool stateFirst = false;
    /// Of a file that is read whole: where the calls end.
    std::uint64_t end = 0;
    /// A stream went from the end of the state section back to the first record.
    bool wrapped = false;
};

CTraceDocument* CTraceDocument::Instance() {
    static CTraceDocument instance(output::Printed());
    return &instance;
}

void CTraceDocument::SetStage(const char* text, std::uint32_t value) {
    progressTitle = text;
    progressDetail = text;
    progressMax = 100;
    progressValue = value;
}

EOpenResult CTraceDocument::OpenTrace(const CKSTLString& name, bool useMemory) {
    try {
        if (m_store) CloseTrace();
        m_version = 0;
        m_dataFlag = false;
        m_typeSizes.clear();
        m_multiThread = false;
        m_progressEnabled = true;
        m_noMemory = !useMemory;
        return Load(name);
    } catch (const char* text) {
        m_stream.Close();
        m_diagnostics.Tell(EDiagnostic::kText, "Exception: %s\n", text);
        m_diagnostics.Tell(EDiagnostic::kErrorStream, "%s", text);
        return kOpenRefused;
    } catch (...) {
        m_stream.Close();
        m_diagnostics.Tell(EDiagnostic::kErrorStream, "An exception occurred");
        return kOpenException;
    }
}

EOpenResult CTraceDocument::Load(const CKSTLString& name) {
    SetStage("Reading File", 0);
    m_diagnostics.Tell(EDiagnostic::kMessage,
                       m_noMemory ? "Opening Trace file (noMemory): %s" : "Opening Trace file: %s",
                       name.c_str());
    if (!m_stream.Open(name, true)) return kOpenEmpty;
    m_diagnostics.Tell(EDiagnostic::kMessage, "Trace file open : %s", name.c_str());
    SetStage("File Read", 100);
    m_observers.Notify(kLoadProgressEvent, *this);
    progressValue = 0;
    m_store = std::make_unique<CFrameStore>(m_diagnostics);
    if (m_keepOffsets) m_store->KeepOffsets();
    if (!ReadTraceStart()) {
        m_stream.Close();
        m_store.reset();
        return kOpenRefused;
    }
    m_diagnostics.Tell(EDiagnostic::kMessage, "Processing File....");
    m_reader.emplace(&m_stream, m_version, m_dataFlag, m_typeSizes.data(),
                     static_cast<std::int8_t>(m_typeCount), m_store->CallMemory());
    if (m_noMemory) m_store->StreamFrom(this);
    m_store->SetTraceInfo(m_stream.GetSize(), m_dataFlag, m_version);
    // Kept: a stream marks no edited calls; its log is of what was recorded.
    if (m_noMemory) return kOpened;

    const EOpenResult errors = LoadRecords();
    m_store->Edits().MarkCalls(*m_store);
    if (errors != kOpened) {
        m_diagnostics.Tell(EDiagnostic::kMessage, "Processing File... Done with Errors:%d",
                           static_cast<int>(errors));
    } else {
        m_diagnostics.Tell(EDiagnostic::kMessage, "Processing File... Done");
    }
    m_stream.Close();
    SetStage(errors != kOpened ? "Trace Error" : "Trace Processed", 100);
    m_observers.Notify(kLoadProgressEvent, *this);
    if (errors != kOpened) return errors;
    return m_store->CallCount() > 0 ? kOpened : kOpenEmpty;
}

inline bool CTraceDocument::BeginStream(SRecordLoop& loop) const {
    const std::uint64_t position = loop.offset;
    if (position >= loop.size) return false;
    // Kept: with a section of state a stream begins again and again; whoever plays it stops it.
    if (position + kFooterSize == loop.size) {
        // Twice in one run: there is no call to be found.
        const bool again = std::exchange(loop.wrapped, true);
        loop.offset = m_firstRecordOffset;
        return HasStateSection() && !again;
    }
    if (HasStateSection() && position == m_firstRecordOffset) loop.offset = StateStart();
    return true;
}

inline bool CTraceDocument::WholeEnds(SRecordLoop& loop) const {
    if (!loop.stateFirst) return loop.offset >= loop.end;
    // Kept: met exactly or run past; recordings whose section doesn't fit are told as errors.
    if (loop.offset + kFooterSize == loop.size) {
        loop.offset = m_firstRecordOffset;
        loop.stateFirst = false;
    }
    return false;
}

bool CTraceDocument::BeginWhole(SRecordLoop& loop) const {
    loop.stateFirst = HasStateSection();
    loop.offset = HasStateSection() ? StateStart() : m_firstRecordOffset;
    loop.end = loop.size;
    if (m_stateOffset == 0) loop.end = std::max(loop.size, kFooterSize) - kFooterSize;
    if (HasStateSection()) loop.end = m_stateOffset;
    return !WholeEnds(loop);
}

std::unique_ptr<CApiCall> CTraceDocument::CreateCall(std::uint16_t id, CTrace& reader) {
    std::unique_ptr<CApiCall> call = CallOfFamily(id, reader);
    if (call) call->m_id = id;
    return call;
}

inline bool CTraceDocument::TakeCall(SRecordLoop& loop, std::uint16_t id, std::uint32_t size,
                                     std::uint64_t offset) {
    if (loop.offset > loop.size) return false;
    m_reader->SetRecordSize(size);
    std::unique_ptr<CApiCall> call = CreateCall(id, *m_reader);
    // Kept: fails behind the last record of old files, which loses its call; readers expect it.
    if (m_noMemory) m_stream.Seek(static_cast<std::int32_t>(loop.offset), SEEK_SET);
    if (!call) return true;
    const CApiCall& made = *call;
    m_reader->CallNumber() = m_store->CallCount() + 1;
    m_store->AppendCall(std::move(call), offset, loop.inStateBlock, m_trackState && !m_noMemory);
    // Far below the hundredth that is told next, which is measured in single precision.
    const std::uint64_t soon = std::uint64_t{progressValue} + progressMax / 128;
    if (m_progressEnabled && loop.offset >= soon) ShowProgress(made, loop.offset);
    return true;
}

inline CTraceDocument::ERecord CTraceDocument::TakeRecord(SRecordLoop& loop) {
    const std::uint64_t recordOffset = loop.offset;
    // Offsets past 31 bits lie behind every file.
    const std::uint64_t target = std::min(recordOffset, loop.size);
    if (m_stream.Seek(static_cast<std::int32_t>(target), SEEK_SET) == 0) throw 4;
    const std::uint32_t size = ReadUInt32(m_stream, 0, true);
    const std::uint16_t id = ReadUInt16(m_stream, 0, true);
    loop.offset += size + kRecordHead;
    if (id < kThreadRecord || id > kLastMarker) {
        return TakeCall(loop, id, size, recordOffset) ? ERecord::kCall : ERecord::kOverrun;
    }
    if (id == kThreadRecord) TakeThread(loop);
    // Kept: any marker turns it over, on or off; recordings hold them in pairs.
    if (id != kThreadRecord) loop.inStateBlock = !loop.inStateBlock;
    return ERecord::kMark;
}

inline bool CTraceDocument::StreamEnds(SRecordLoop& loop, ERecord taken) const {
    // Kept: with a call or without, which ends a stream; newer recordings play so far.
    if (taken == ERecord::kCall) return true;
    // A section may end with such a record: the stream goes on as it would behind a call.
    const bool atFooter = m_stateOffset != kNoFooter && loop.offset + kFooterSize == loop.size;
    return atFooter && !BeginStream(loop);
}

EOpenResult CTraceDocument::LoadRecords() {
    progressMax = m_stream.GetSize();
    SRecordLoop loop{m_stream.GetSize(), m_stream.Tell()};
    if (!(m_noMemory ? BeginStream(loop) : BeginWhole(loop))) return kOpened;
    for (;;) {
        const ERecord taken = TakeRecord(loop);
        if (taken == ERecord::kOverrun) return m_store->CallCount() > 0 ? kOpenCut : kOpenRefused;
        if (m_noMemory ? StreamEnds(loop, taken) : WholeEnds(loop)) return kOpened;
    }
}

void CTraceDocument::TakeThread(SRecordLoop& loop) {
    const auto thread = static_cast<std::uint32_t>(ReadUInt64(m_stream, 0, true));
    // Kept: the low halves, and nothing differs from 0; readers match the warning.
    if (loop.thread != 0 && loop.thread != thread) {
        if (!m_multiThread) {
            m_diagnostics.Tell(
                EDiagnostic::kMessage,
                "Multiple Thread detected. Kestrail doesn't support Multi-Context trace in "
                "playback.");
        }
        m_multiThread = true;
        m_store->SetMultiThread();
    }
    loop.thread = thread;
}

void CTraceDocument::ShowProgress(const CApiCall& call, std::uint64_t offset) {
    constexpr float kStep = 0.01F;
    const auto whole = static_cast<float>(progressMax);
    const float done = static_cast<float>(offset) / whole;
    if (!(done > static_cast<float>(progressValue) / whole + kStep)) return;
    Format(progressDetail, "Frame: %d  @ ", static_cast<int>(m_store->CurrentFrameNumber()));
    progressDetail.append(call.GetName());
    progressDetail.append(" ");
    progressTitle = progressDetail;
    progressValue = static_cast<std::uint32_t>(offset);
    m_observers.Notify(kLoadProgressEvent, *this);
}

void CTraceDocument::CloseTrace() {
    m_stream.Close();
    m_reader.reset();
    m_store.reset();
    m_typeSizes.clear();
}

CFrameStore* CTraceDocument::GetFrameStore() {
    if (m_store) m_store->Rewind();
    return m_store.get();
}

}  // namespace kestrail
