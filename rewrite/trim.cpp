#include "rewrite/trim.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <span>
#include <vector>

#include "generated/calls/identifiers.h"
#include "tracefile/bytes/file_frame.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kFrameBytes = 6;  ///< size and identifier, in front of each payload
constexpr std::uint16_t kThreadRecord = 1;
constexpr std::uint16_t kBlockBegins = 2;
constexpr std::uint16_t kBlockEnds = 3;
constexpr std::uint32_t kFirstWithBlock = 12;
constexpr std::uint32_t kFirstWithEdits = 13;

class CQuiet : public Diagnostics {
    void OnTold(EDiagnostic, const char*, std::va_list) override {}
};

void Append(Bytes& out, std::uint32_t value) {
    const std::size_t at = out.size();
    out.resize(at + sizeof value);
    std::memcpy(out.data() + at, &value, sizeof value);
}

Bytes ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    Bytes bytes(file ? static_cast<std::size_t>(file.tellg()) : 0);
    file.seekg(0);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file) throw STrimFailure{STrimFailure::EKind::kTrace, path + " can't be read"};
    return bytes;
}

/// Takes records over from one file to another.
class CTaker {
public:
    CTaker(const Bytes& from, std::ofstream& to) : m_from(from), m_to(to) {}

    void Put(std::span<const std::uint8_t> bytes) {
        m_to.write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        m_written += bytes.size();
    }
    void TakeRecord(std::uint64_t offset) {
        std::uint32_t size = 0;
        std::memcpy(&size, m_from.data() + offset, sizeof size);
        Put(std::span(m_from).subspan(static_cast<std::size_t>(offset), kFrameBytes + size));
    }
    void PutMark(std::uint16_t id) {
        const std::uint8_t mark[kFrameBytes] = {0, 0, 0, 0, static_cast<std::uint8_t>(id), 0};
        Put(mark);
    }
    std::uint64_t Written() const { return m_written; }

private:
    const Bytes& m_from;
    std::ofstream& m_to;
    std::uint64_t m_written = 0;
};

/// Header with the edits of the calls that are taken, by their new numbers.
Bytes Header(const CTraceDocument& document, const CFrameStore& trace, const Bytes& file,
             const std::vector<std::uint32_t>& taken) {
    if (trace.Version() < kFirstWithEdits) {
        return Bytes(file.begin(), file.begin() + document.FirstRecordOffset());
    }
    constexpr std::ptrdiff_t kInFrontOfWidths = 23;
    Bytes header(file.begin(), file.begin() + kInFrontOfWidths + document.TypeCount());
    const auto number = [&](std::uint32_t old) -> std::uint32_t {
        const auto found = std::lower_bound(taken.begin(), taken.end(), old);
        const bool is = found != taken.end() && *found == old;
        return is ? static_cast<std::uint32_t>(found - taken.begin()) + 1 : 0;
    };
    std::vector<std::uint32_t> disabled;
    for (const auto& [old, off] : trace.Edits().Disabled()) {
        if (number(old) != 0) disabled.push_back(number(old));
    }
    Append(header, static_cast<std::uint32_t>(disabled.size()));
    for (const std::uint32_t call : disabled) Append(header, call);
    std::map<std::uint32_t, const Bytes*> texts;
    for (const auto& [old, text] : trace.Edits().Overrides()) {
        if (number(old) != 0) texts[number(old)] = &text.text;
    }
    Append(header, static_cast<std::uint32_t>(texts.size()));
    for (const auto& [call, text] : texts) {
        Append(header, call);
        Append(header, static_cast<std::uint32_t>(text->size()));
        header.insert(header.end(), text->begin(), text->end());
    }
    return header;
}

/// Where thread records stand in a file, ascending.
std::vector<std::uint64_t> ThreadRecords(const Bytes& file, std::uint64_t at) {
    std::vector<std::uint64_t> found;
    while (at + kFrameBytes <= file.size()) {
        std::uint32_t size = 0;
        std::uint16_t id = 0;
        std::memcpy(&size, file.data() + at, sizeof size);
        std::memcpy(&id, file.data() + at + sizeof size, sizeof id);
        if (size > file.size() - at - kFrameBytes) break;
        if (id == kThreadRecord) found.push_back(at);
        at += kFrameBytes + size;
    }
    return found;
}

SStretch StretchOf(CFrameStore& trace, const STrim& wanted) {
    const CFrameRecord* const first = trace.GetFrameRecord(wanted.firstFrame);
    const CFrameRecord* const last = trace.GetFrameRecord(wanted.lastFrame);
    const bool there = first != nullptr && last != nullptr &&
                       wanted.firstFrame <= wanted.lastFrame &&
                       wanted.lastFrame <= trace.FrameCount();
    if (!there) {
        throw STrimFailure{STrimFailure::EKind::kFrames,
                           "frames " + std::to_string(wanted.firstFrame) + " to " +
                               std::to_string(wanted.lastFrame) + " aren't among the " +
                               std::to_string(trace.FrameCount()) + " of " + wanted.trace};
    }
    return {first->firstCall + 1, last->lastCall + 1};
}

}  // namespace

STrimmed Trim(const STrim& wanted) {
    CQuiet quiet;
    CTraceDocument document(quiet);
    document.SetTrackState(false);
    document.SetKeepOffsets(true);
    const EOpenResult opened = document.OpenTrace(CKSTLString(wanted.trace.c_str()), true);
    CFrameStore* const trace = document.GetFrameStore();
    if (trace == nullptr || trace->CallCount() == 0) {
        throw STrimFailure{STrimFailure::EKind::kTrace, wanted.trace + " can't be read"};
    }
    const SStretch stretch = StretchOf(*trace, wanted);
    const Bytes file = ReadFile(wanted.trace);
    SSlice slice;
    if (stretch.first > 1) slice = CSlicer(*trace).Slice({stretch}, wanted.unused);
    if (!slice.calls.empty() && trace->Version() < kFirstWithBlock) {
        throw STrimFailure{STrimFailure::EKind::kTrace,
                           wanted.trace + " is of version " + std::to_string(trace->Version()) +
                               ", which has no room for what the frames stand on"};
    }
    STrimmed done;
    done.unused = slice.unused;
    done.damaged = opened != kOpened;
    done.callsInTrace = trace->CallCount();
    done.stateCalls = static_cast<std::uint32_t>(slice.calls.size());
    done.calls = stretch.last - stretch.first + 1;
    std::vector<std::uint32_t> taken = slice.calls;
    for (std::uint32_t call = stretch.first; call <= stretch.last; ++call) taken.push_back(call);

    std::ofstream output(wanted.output, std::ios::binary | std::ios::trunc);
    CTaker taker(file, output);
    taker.Put(Header(document, *trace, file, taken));
    const std::vector<std::uint64_t> threads = ThreadRecords(file, document.FirstRecordOffset());
    const std::vector<std::uint64_t>& offsets = trace->Offsets();
    const std::uint64_t* thread = nullptr;
    const auto take = [&](std::uint32_t call) {
        // The thread that the call was made by.
        const auto behind = std::upper_bound(threads.begin(), threads.end(), offsets[call - 1]);
        if (behind != threads.begin() && thread != &*(behind - 1)) {
            thread = &*(behind - 1);
            taker.TakeRecord(*thread);
        }
        taker.TakeRecord(offsets[call - 1]);
    };
    std::size_t block = slice.calls.size();
    // A swap right behind the block would close no frame.
    const bool swaps = trace->CallAt(stretch.first)->call->m_id == egl_id::eglSwapBuffers;
    if (swaps && block != 0) take(slice.calls[--block]);
    for (std::uint32_t call = stretch.first; call <= stretch.last; ++call) take(call);
    std::uint64_t blockOffset = 0;
    if (block != 0) {
        blockOffset = taker.Written();
        thread = nullptr;
        taker.PutMark(kBlockBegins);
        for (std::size_t i = 0; i < block; ++i) take(slice.calls[i]);
        taker.PutMark(kBlockEnds);
    }
    if (trace->Version() >= kFirstWithBlock) taker.Put(TraceFileFooter(blockOffset));
    done.bytes = taker.Written();
    output.close();
    if (!output) {
        std::error_code ignored;
        if (std::filesystem::is_regular_file(wanted.output, ignored)) {
            std::filesystem::remove(wanted.output, ignored);
        }
        throw STrimFailure{STrimFailure::EKind::kOutput, wanted.output + " can't be written"};
    }
    return done;
}

}  // namespace kestrail
