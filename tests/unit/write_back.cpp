// Every record of the recordings, the samples and the inputs of the fuzzer, read and written again.
// What loses nothing on reading, by a look of our own, comes back byte for byte; the rest in a form
// that reads as the same call and comes back as itself.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/record_walk.h"
#include "tests/support/recordings.h"
#include "tests/support/trace_parts.h"
#include "tests/unit/unit_support.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

struct SWritten {
    std::uint16_t id = 0;
    Kept kept = Kept::All;
    std::string line;
    Bytes before, after;
};

/// Reads the calls of a file one after the other, and writes each. `parts` are the file's.
std::vector<SWritten> WriteCalls(const CKSTLString& path, const STraceParts& parts) {
    SRecordTerms terms{parts.Version(), parts.Widths(), {}};
    WidthTable widths = terms.widths;
    const auto count = static_cast<std::int8_t>(widths.size());
    widths.push_back(0);
    CObjectArena memory;
    IOManager stream;
    if (!stream.Open(path, true)) return {};
    CTrace trace(&stream, parts.Version(), true, widths.data(), count, memory);
    CRecordWriter writer(trace.Widths());
    std::vector<SWritten> written;
    std::size_t next = parts.start.size() + parts.widths.size() + parts.edits.size();
    for (const SRecordPart& record : parts.records) {
        constexpr std::size_t kHead = 6;
        const std::size_t start = next + kHead;
        next = start + record.payload.size();
        if (record.size != record.payload.size()) break;
        if (record.id <= 5 || start == stream.GetSize()) continue;
        stream.Seek(static_cast<std::int32_t>(start), SEEK_SET);
        trace.SetRecordSize(record.size);
        std::unique_ptr<CApiCall> call;
        try {
            call = CTraceDocument::CreateCall(record.id, trace);
        } catch (...) {
            // The reader refuses it, by whatever it throws.
        }
        if (!call) continue;
        const Kept kept = WalkRecord(record.id, call->GetName(), record.payload, terms);
        writer.Start();
        call->Write(writer);
        const auto after = writer.Finish();
        CGenCallInfo info;
        call->FillCallInfo(info, true);
        written.push_back(
            {record.id, kept, LineOf(info), record.payload, Bytes(after.begin(), after.end())});
    }
    return written;
}

/// A file of these calls alone, as they were written.
STraceParts PartsOf(STraceParts parts, const std::vector<SWritten>& calls) {
    parts.records.clear();
    for (const SWritten& call : calls) {
        parts.records.push_back({0, call.id, call.after});
        parts.records.back().TellSize();
    }
    return parts;
}

/// What recordings lose: the upper half of a timeout that never ends, and the pointer of a result
/// that a failed call left empty.
bool IsUsualLoss(const SWritten& call) {
    const bool timeout = call.line.starts_with("glWaitSync(");
    const bool noResult = call.line.find(", NULL) =>") != std::string::npos;
    return call.kept == Kept::Less && (timeout || noResult);
}

/// An array that the record has no bytes for isn't written as such before other values.
std::string WithoutStarved(std::string line) {
    for (std::size_t at = 0; (at = line.find("{ , ", at)) != std::string::npos;) {
        line.replace(at, 2, "NULL");
    }
    return line;
}

struct SSource {
    const char* name;
    std::string folder;
    bool damaged;
};

class CWriteBack : public testing::TestWithParam<SSource> {};

TEST_P(CWriteBack, ComesBack) {
    const SSource& source = GetParam();
    std::map<Kept, std::size_t> counts;
    const auto files = FilesIn(source.folder);
    if (files.empty()) GTEST_SKIP() << "nothing in " << source.folder;
    for (const auto& path : files) {
        SCOPED_TRACE(path);
        STraceParts parts;
        const Bytes content = ContentOf(path);
        if (!Split(content.data(), content.size(), parts)) continue;
        const std::vector<SWritten> first = WriteCalls(path.c_str(), parts);
        const STraceParts again = PartsOf(parts, first);
        const CTempFile file(Join(again));
        const std::vector<SWritten> second = WriteCalls(file.Name(), again);
        ASSERT_EQ(first.size(), second.size());
        for (std::size_t i = 0; i < first.size(); ++i) {
            const bool whole = first[i].kept == Kept::All;
            ++counts[first[i].kept];
            EXPECT_TRUE(whole || source.damaged || IsUsualLoss(first[i])) << first[i].line;
            if (whole) {
                EXPECT_EQ(first[i].before, first[i].after) << first[i].line;
            }
            const bool cut = first[i].kept == Kept::Cut;
            EXPECT_EQ(cut ? WithoutStarved(first[i].line) : first[i].line, second[i].line);
            EXPECT_EQ(first[i].after, second[i].after) << first[i].line;
        }
    }
    std::printf("%s: %zu kept whole, %zu in part, %zu cut short, %zu without a prototype\n",
                source.name, counts[Kept::All], counts[Kept::Less], counts[Kept::Cut],
                counts[Kept::Unknown]);
    EXPECT_GT(counts[Kept::All], 0U);
}

INSTANTIATE_TEST_SUITE_P(Records, CWriteBack,
                         testing::Values(SSource{"recordings", RecordingsFolder(), false},
                                         SSource{"samples", KESTRAIL_SAMPLES, false},
                                         SSource{"made", KESTRAIL_SEEDS, false},
                                         SSource{"saved", KESTRAIL_CORPUS, true}),
                         [](const auto& source) { return source.param.name; });

}  // namespace
}  // namespace kestrail
