// A loaded trace's owner: the byte stream, the header's values and the store of frames. A trace is
// read whole when it is opened, or, streamed, record by record as the store is asked for calls.
// Several can be open at once, each for one thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "base/diagnostics.h"
#include "base/kstl_string.h"
#include "calls/model/api_call.h"
#include "tracefile/bytes/io_manager.h"
#include "tracefile/bytes/trace.h"
#include "tracefile/document/frame_store.h"
#include "tracefile/document/load_observers.h"

namespace kestrail {

/// What `OpenTrace` gives back.
enum EOpenResult : unsigned {
    kOpened = 0,
    kOpenRefused = 2,    ///< the header is refused, or nothing could be read behind it
    kOpenCut = 3,        ///< a record overruns the file; the calls before it stay
    kOpenEmpty = 4,      ///< the file cannot be opened, or holds no call
    kOpenException = 5,  ///< any other exception; what was loaded before it stays
};

class CTraceDocument : private COpenProgress {
public:
    /// The player's.
    static CTraceDocument* Instance();

    /// What is found in the file is told to `diagnostics`.
    explicit CTraceDocument(Diagnostics& diagnostics) : m_diagnostics(diagnostics) {}
    ~CTraceDocument() = default;
    CTraceDocument(const CTraceDocument&) = delete;
    CTraceDocument& operator=(const CTraceDocument&) = delete;

    /// Opens a trace. `useMemory`: all records are read now; otherwise the header alone, and the
    /// store streams. An open trace is closed first.
    EOpenResult OpenTrace(const CKSTLString& name, bool useMemory);
    /// Whether traces that are opened from now on have their calls applied to the state models,
    /// which seeking needs and which report images that are updated out of their limits. They do
    /// unless told otherwise; streamed ones never do.
    void SetTrackState(bool on) { m_trackState = on; }
    /// Has traces that are opened from now on keep where their records stand.
    void SetKeepOffsets(bool on) { m_keepOffsets = on; }
    /// Of the open trace, where its first record stands, and the entries of its width table.
    std::uint32_t FirstRecordOffset() const { return m_firstRecordOffset; }
    std::int32_t TypeCount() const { return m_typeCount; }
    /// Reads all records, or while streaming the next call. `kOpened`, or what `OpenTrace` gives
    /// for a record that overruns the file. Throws what reading a record throws.
    EOpenResult LoadRecords();
    /// Writes a header of the present version with the open trace's flags to `out`, which is open
    /// for writing, and its edit lists if it has edits. No records follow. Always true.
    bool Save(IOManager& out) const;
    /// Whether `Save` writes the edit lists.
    void SetHasEdits(bool on) { m_hasEdits = on; }
    void CloseTrace();
    /// The store, rewound; null when nothing is loaded.
    CFrameStore* GetFrameStore();
    /// What all traces are read through, one after the other.
    IOManager& Stream() { return m_stream; }

    void RegisterObserver(std::uint32_t event, CLoadObserver* observer) {
        m_observers.Register(event, observer);
    }
    void UnregisterObserver(std::uint32_t event, CLoadObserver* observer) {
        m_observers.Unregister(event, observer);
    }

    /// The call of a record, by its identifier and the file's version; null for what is no call.
    static std::unique_ptr<CApiCall> CreateCall(std::uint16_t id, CTrace& reader);

private:
    /// Where a run over the records stands.
    struct SRecordLoop;
    /// `kCall` also for one that no class is there for.
    enum class ERecord { kCall, kMark, kOverrun };

    EOpenResult Load(const CKSTLString& name);
    /// Header and footer. False when the header is refused.
    bool ReadTraceStart();
    bool ReadFileHeader();
    void ReadWidthTable(std::uint32_t typeSet);
    void ReadEditLists();
    std::vector<std::uint8_t> ReadText(std::uint32_t length);
    void ReadFooter();

    bool HasStateSection() const { return m_stateOffset != kNoFooter && m_stateOffset != 0; }
    /// The section begins at the low half of the footer's offset, though it ends the calls at the
    /// whole of it.
    std::uint32_t StateStart() const { return static_cast<std::uint32_t>(m_stateOffset); }
    /// False when there is nothing more to read.
    bool BeginWhole(SRecordLoop& loop) const;
    bool BeginStream(SRecordLoop& loop) const;
    /// True when `LoadRecords` has read what it was asked for.
    bool WholeEnds(SRecordLoop& loop) const;
    bool StreamEnds(SRecordLoop& loop, ERecord taken) const;
    /// Reads the record at the loop's offset, which goes on to the next.
    ERecord TakeRecord(SRecordLoop& loop);
    void TakeThread(SRecordLoop& loop);
    /// Reads the record at hand as a call. False for one that overruns the file.
    bool TakeCall(SRecordLoop& loop, std::uint16_t id, std::uint32_t size, std::uint64_t offset);
    void ShowProgress(const CApiCall& call, std::uint64_t offset);
    void SetStage(const char* text, std::uint32_t value);

    static constexpr std::uint64_t kNoFooter = ~std::uint64_t{0};

    Diagnostics& m_diagnostics;
    CLoadObservers m_observers;
    /// There while a trace is open.
    std::optional<CTrace> m_reader;
    std::unique_ptr<CFrameStore> m_store;
    std::uint32_t m_version = 0;
    bool m_dataFlag = false;
    bool m_secondFlag = false;
    /// The width table and one spare entry, which a tag one past the table reads.
    std::vector<std::int8_t> m_typeSizes;
    std::int32_t m_typeCount = 0;
    std::uint64_t m_stateOffset = kNoFooter;
    std::uint32_t m_firstRecordOffset = 0;
    IOManager m_stream;
    bool m_progressEnabled = false;
    bool m_hasEdits = false;
    bool m_multiThread = false;
    bool m_noMemory = false;
    bool m_trackState = true;
    bool m_keepOffsets = false;
};

}  // namespace kestrail
