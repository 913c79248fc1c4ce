#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "base/output.h"
#include "tests/support/trace_builder.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using Ids = std::vector<int>;

constexpr std::uint16_t kSwap = 1022;
constexpr std::uint16_t kClear = 2016;
constexpr std::uint16_t kFinish = 2045;
constexpr std::uint16_t kFlush = 2046;

class TraceDocument : public testing::Test {
protected:
    void SetUp() override {
        m_path = testing::TempDir() + "kestrail_document_" + std::to_string(::getpid());
    }
    void TearDown() override {
        m_document.CloseTrace();
        std::filesystem::remove(m_path);
    }

    unsigned Open(const Bytes& bytes, bool useMemory = true) {
        std::ofstream(m_path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        return OpenPath(m_path, useMemory);
    }
    unsigned Open(const CTraceBuilder& trace, bool useMemory = true) {
        return Open(trace.Build(), useMemory);
    }
    /// What is printed goes to `m_printed` and `m_errors`.
    unsigned OpenPath(const std::string& path, bool useMemory) {
        output::Flush();
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const unsigned result = m_document.OpenTrace(path.c_str(), useMemory);
        output::Flush();
        m_printed = testing::internal::GetCapturedStdout();
        m_errors = testing::internal::GetCapturedStderr();
        m_store = m_document.GetFrameStore();
        return result;
    }
    /// The identifiers that `NextCall` gives, up to `most` of them.
    Ids Walk(std::size_t most = 100000) {
        Ids ids;
        while (ids.size() < most) {
            CCallEntry* entry = m_store->NextCall();
            if (entry == nullptr) break;
            ids.push_back(entry->call->m_id);
        }
        return ids;
    }
    Ids Frame(std::uint32_t frame) { return m_store->SeekFrame(frame, true) ? Walk() : Ids{-1}; }
    Ids AllIds() {
        Ids ids;
        for (std::uint32_t number = 1; CCallEntry* entry = m_store->CallAt(number); ++number) {
            ids.push_back(entry->call->m_id);
        }
        return ids;
    }

    CTraceDocument& m_document = *CTraceDocument::Instance();
    CFrameStore* m_store = nullptr;
    std::string m_path;
    std::string m_printed;
    std::string m_errors;
};

CTraceBuilder& Add(CTraceBuilder& trace, std::uint16_t id, int count = 1) {
    for (int i = 0; i < count; ++i) trace.Add(id, trace.Gl());
    return trace;
}

/// Two frames of two and three calls, and a call behind them.
CTraceBuilder TwoFrames(std::uint32_t version = 14) {
    CTraceBuilder trace(version);
    trace.Thread();
    Add(trace, kFlush).SwapBuffers();
    Add(trace, kFlush, 2).SwapBuffers();
    return Add(trace, kFinish);
}

TEST_F(TraceDocument, FramesEndWithTheirSwap) {
    for (const std::uint32_t version : {7U, 8U, 10U, 11U, 12U, 13U, 14U, 1000U}) {
        ASSERT_EQ(Open(TwoFrames(version)), 0U) << "version " << version;
        EXPECT_EQ(m_store->FrameCount(), 3U);
        EXPECT_THAT(Frame(1), ElementsAre(kFlush, kSwap));
        EXPECT_THAT(Frame(2), ElementsAre(kFlush, kFlush, kSwap));
        EXPECT_EQ(m_store->CurrentCallNumber(), 5U);
        EXPECT_THAT(Frame(3), ElementsAre(kFinish));
        EXPECT_THAT(Frame(4), ElementsAre(-1));
        EXPECT_EQ(m_store->Version(), version);
    }
    CTraceBuilder shortTable(7);
    WidthTable widths = StandardWidths();
    widths.resize(27);
    shortTable.SetTypeSet(2).SetWidths(widths);
    ASSERT_EQ(Open(Add(shortTable, kFlush)), 0U);

    ASSERT_EQ(Open(TwoFrames()), 0U);
    EXPECT_EQ(m_printed, "KESTRAIL(M) Opening Trace file: " + m_path +
                             "\nKESTRAIL(M) Trace file open : " + m_path +
                             "\nKESTRAIL(M) Processing File....\n"
                             "KESTRAIL(M) Processing File... Done\n");
    EXPECT_EQ(m_store->GetFrameRecord(2)->firstCall, 2U);
    EXPECT_EQ(m_store->GetFrameRecord(2)->lastCall, 4U);
    EXPECT_EQ(m_store->GetFrameRecord(0), nullptr);
    EXPECT_EQ(m_store->GetFrameRecord(4), nullptr);
    EXPECT_EQ(m_store->CallAt(0), nullptr);
    EXPECT_EQ(m_store->CallAt(7), nullptr);

    // Behind a swap at the end stands an empty frame that does not count.
    CTraceBuilder closed;
    Add(closed, kFlush).SwapBuffers();
    closed.Add(
        kSwap,
        closed.Egl(0x3003).EglBoolean(false).Display(1).Surface(1).Uint(2).Uint(0).Uint(0).Data(0));
    ASSERT_EQ(Open(closed), 0U);
    EXPECT_EQ(m_store->FrameCount(), 2U) << "a swap that failed closes its frame too";
    EXPECT_THAT(Frame(3), IsEmpty());
    CTraceBuilder open;
    ASSERT_EQ(Open(Add(open, kFlush, 3)), 0U);
    EXPECT_EQ(m_store->FrameCount(), 1U);
}

TEST_F(TraceDocument, SeekingInTheStore) {
    ASSERT_EQ(Open(TwoFrames()), 0U);
    EXPECT_FALSE(m_store->SeekFrame(0, true));
    EXPECT_FALSE(m_store->SeekFrame(1, false)) << "the current frame";
    EXPECT_TRUE(m_store->SeekFrame(2, false));
    EXPECT_EQ(m_store->CurrentFrameNumber(), 2U);
    EXPECT_EQ(m_store->NextCall(), m_store->CallAt(1)) << "the cursor stayed";
    EXPECT_TRUE(m_store->SeekFrame(2, true));
    EXPECT_EQ(m_store->CurrentCallNumber(), 3U);
    EXPECT_EQ(m_store->NextCall(), m_store->CallAt(3));
    m_store->Rewind();
    EXPECT_EQ(m_store->NextCall(), m_store->CallAt(1));

    CCallEntry& entry = *m_store->CallAt(2);
    EXPECT_STREQ(entry.GetInfo()->GetCallName(), "eglSwapBuffers");
    EXPECT_EQ(entry.GetInfo(), entry.GetInfo());
}

TEST_F(TraceDocument, RefusedHeaders) {
    const auto changed = [](auto change) {
        CTraceBuilder trace = TwoFrames();
        change(trace);
        return trace.Build();
    };
    Bytes cut = TwoFrames().Build();
    cut.resize(12);
    const struct {
        Bytes bytes;
        const char* text;
    } rows[] = {
        {changed([](auto& t) { t.SetMagic("Kestrael"); }), "Unrecognized file type."},
        {{'K', 'e', 's'}, "Unrecognized file type."},
        {changed([](auto& t) { t.SetByteOrderMark(1); }), "Unsupported trace endianness."},
        {CTraceBuilder(6).Build(), "Unsupported file format version..."},
        {cut, "Unsupported file format version..."},
        {changed([](auto& t) { t.SetDataFlag(2); }),
         "Trace file was recorded with no data, unable to replay."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Open(row.bytes), 2U) << row.text;
        EXPECT_EQ(m_store, nullptr);
        EXPECT_THAT(m_printed, HasSubstr("KESTRAIL(W) ERROR: " + std::string(row.text) + "\n\n"));
    }
    for (const bool useMemory : {true, false}) {
        EXPECT_EQ(OpenPath(m_path + "-missing", useMemory), 4U);
        EXPECT_EQ(m_store, nullptr);
        EXPECT_THAT(m_printed, Not(HasSubstr("Trace file open")));
    }
    EXPECT_EQ(Open(changed([](auto& t) { t.SetByteOrderMark(0x0001FEFF); })), 0U)
        << "the other mark is accepted, though nothing is reversed";
}

TEST_F(TraceDocument, RecordsThatDoNotFit) {
    CTraceBuilder trace = TwoFrames();
    trace.AddSized(5000, kFlush, {0, 0, 0, 0});
    EXPECT_EQ(Open(trace), 3U);
    EXPECT_EQ(m_store->CallCount(), 6U);
    EXPECT_THAT(m_printed, HasSubstr("KESTRAIL(M) Processing File... Done with Errors:3\n"));

    // A sum of 32 bits would come back to the record itself.
    for (const std::uint16_t id :
         {std::uint16_t{1}, std::uint16_t{2}, kFlush, std::uint16_t{6000}}) {
        CTraceBuilder wrapping;
        wrapping.AddSized(0xFFFFFFFA, id, Bytes(20));
        EXPECT_EQ(Open(wrapping), id < 6 ? 4U : 2U) << id;
        ASSERT_EQ(Open(wrapping, false), 0U);
        if (id < 6) {
            EXPECT_ANY_THROW(Walk()) << id;
        } else {
            EXPECT_THAT(Walk(), IsEmpty()) << id;
        }
    }

    CTraceBuilder empty;
    EXPECT_EQ(Open(empty.Thread()), 4U);
    EXPECT_EQ(m_store->FrameCount(), 0U);
    EXPECT_THAT(m_printed, HasSubstr("KESTRAIL(M) Processing File... Done\n"));

    // What is no call, and a call without a class, is passed over.
    CTraceBuilder odd;
    odd.AddSized(3, 6000, {1, 2, 3}).AddSized(0, 0, {}).AddSized(2, 1199, {1, 2});
    EXPECT_EQ(Open(Add(odd, kFlush)), 0U);
    EXPECT_THAT(AllIds(), ElementsAre(kFlush));
}

TEST_F(TraceDocument, TheFooter) {
    CTraceBuilder first = TwoFrames();
    EXPECT_EQ(Open(first.SetFooterMarks(18, 16)), 3U) << "the footer is read as a record";
    EXPECT_THAT(m_printed,
                HasSubstr("KESTRAIL(M) The footer is currupted, no valid Render State Data.\n"));
    EXPECT_EQ(m_store->CallCount(), 6U);
    CTraceBuilder second = TwoFrames();
    EXPECT_EQ(Open(second.SetFooterMarks(19, 15)), 3U);
    EXPECT_THAT(m_printed, HasSubstr("The footer is currupted (Check 2), no valid"));

    CTraceBuilder allOnes = TwoFrames();
    allOnes.SetStateOffset(~std::uint64_t{0});
    EXPECT_EQ(Open(allOnes), 3U);
    EXPECT_EQ(m_store->CallCount(), 6U);
    EXPECT_EQ(Open(allOnes, false), 0U);
    EXPECT_THAT(Walk(), IsEmpty()) << "the stream was left behind the footer";

    for (const std::uint64_t offset : {std::uint64_t{100000}, std::uint64_t{0xFFFFFFFF},
                                       std::uint64_t{1} << 32, std::uint64_t{1} << 63}) {
        CTraceBuilder beyond = TwoFrames();
        EXPECT_EQ(Open(beyond.SetStateOffset(offset)), 5U) << offset;
        EXPECT_THAT(m_errors, HasSubstr("An exception occurred\n"));
    }
    // A file that ends within its header, behind which the records should begin.
    Bytes cut = TwoFrames().Build();
    cut.resize(30);
    EXPECT_EQ(Open(cut), 5U);
}

TEST_F(TraceDocument, TheStateSectionComesFirst) {
    const auto withState = [](bool markers) {
        CTraceBuilder trace;
        Add(trace, kFlush, 2).SwapBuffers().BeginState();
        if (markers) trace.Marker(2);
        Add(trace, kFinish, 3);
        if (markers) trace.Marker(3);
        return trace.EndState();
    };
    ASSERT_EQ(Open(withState(true)), 0U);
    EXPECT_THAT(Frame(1), ElementsAre(kFinish, kFinish, kFinish));
    EXPECT_THAT(Frame(2), ElementsAre(kFlush, kFlush, kSwap));
    EXPECT_EQ(m_store->FrameCount(), 2U);
    ASSERT_EQ(Open(withState(false)), 0U);
    EXPECT_THAT(Frame(1), ElementsAre(kFinish, kFinish, kFinish, kFlush, kFlush, kSwap));

    // Streaming goes on from the state to the calls, through the state again, and round.
    for (const bool markers : {false, true}) {
        ASSERT_EQ(Open(withState(markers), false), 0U);
        EXPECT_THAT(Walk(14),
                    ElementsAre(kFinish, kFinish, kFinish, kFlush, kFlush, kSwap, kFinish, kFinish,
                                kFinish, kFlush, kFlush, kSwap, kFinish, kFinish))
            << markers;
    }
    // Markers alone lead round once, not for ever.
    CTraceBuilder callless;
    callless.Marker(2).BeginState().Marker(3);
    ASSERT_EQ(Open(callless.EndState(), false), 0U);
    EXPECT_THAT(Walk(14), IsEmpty());

    // A swap as the first call behind the state opens a frame and does not close it.
    CTraceBuilder swap;
    swap.SwapBuffers();
    Add(swap, kFlush).BeginState().Marker(2);
    Add(swap, kFinish).Marker(3);
    ASSERT_EQ(Open(swap), 0U);
    EXPECT_THAT(Frame(2), ElementsAre(kSwap, kFlush));
    EXPECT_EQ(m_store->FrameCount(), 2U);

    // A section whose last record runs past the footer.
    CTraceBuilder past;
    Add(past, kFlush).BeginState();
    Add(past, kFinish).AddSized(100, 2, {});
    EXPECT_EQ(Open(past), 5U);
    EXPECT_THAT(AllIds(), ElementsAre(kFinish));
}

TEST_F(TraceDocument, EditLists) {
    CTraceBuilder trace = TwoFrames();
    trace.Disable(2).Disable(2).Disable(77).OverrideText(3, "old").OverrideText(3, "new text");
    ASSERT_EQ(Open(trace), 0U);
    const CEditList& edits = m_store->Edits();
    for (std::uint32_t number = 1; number <= 6; ++number) {
        EXPECT_EQ(m_store->CallAt(number)->call->m_edited, number == 2 || number == 3) << number;
        EXPECT_EQ(edits.IsCallDisabled(number), number == 2) << number;
    }
    const std::uint8_t* text = nullptr;
    std::uint32_t length = 0;
    bool fromFile = false;
    ASSERT_TRUE(edits.GetTextOverride(3, text, length, fromFile));
    EXPECT_EQ(std::string(text, text + length), "new text");
    EXPECT_TRUE(fromFile);
    EXPECT_FALSE(edits.GetTextOverride(2, text, length, fromFile));
    m_store->Edits().enabled = false;
    EXPECT_FALSE(edits.IsCallDisabled(2));

    ASSERT_EQ(Open(trace, false), 0U);
    CCallEntry* entry = nullptr;
    for (int i = 0; i < 2; ++i) entry = m_store->NextCall();
    EXPECT_FALSE(entry->call->m_edited) << "streaming marks no call";
}

TEST_F(TraceDocument, HostileHeaderFields) {
    const Bytes sound = TwoFrames().Build();
    const std::size_t disabledCount = 8 + 4 + 4 + 2 + 4 + 1 + StandardWidths().size();
    const auto with = [&sound](std::size_t at, std::uint32_t value) {
        Bytes bytes = sound;
        for (int i = 0; i < 4; ++i) {
            bytes[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (8 * i));
        }
        return bytes;
    };
    for (const std::uint32_t count : {0x7FFFFFFFU, 1000000U}) {
        EXPECT_NE(Open(with(disabledCount, count)), 0U);
        EXPECT_NE(Open(with(disabledCount + 4, count)), 0U);
    }
    EXPECT_EQ(Open(with(disabledCount, 0x80000000U)), 0U) << "a negative count is none";
    // One override, of four gigabytes: it holds the rest of the file.
    Bytes large = with(disabledCount + 4, 1);
    large.resize(disabledCount + 16);
    std::fill(large.end() - 4, large.end(), std::uint8_t{0xFF});
    large.insert(large.end(), 100, 'x');
    EXPECT_NE(Open(large), 0U);

    CTraceBuilder negative = TwoFrames();
    EXPECT_EQ(Open(negative.SetWidths({}).SetWidthCount(-1)), 2U);
    EXPECT_THAT(m_printed, HasSubstr("Exception: Undefined Es Type in record library\n"));
    EXPECT_EQ(m_errors, "Undefined Es Type in record library\n");
    WidthTable wide = StandardWidths();
    wide[tag::Clampf] = 8;
    CTraceBuilder wideFloats;
    wideFloats.SetWidths(wide);
    wideFloats.Add(2017, wideFloats.Gl().Clampf(1).Clampf(1).Clampf(1).Clampf(1));
    EXPECT_EQ(Open(wideFloats), 5U) << "a float has four bytes";
}

TEST_F(TraceDocument, SeveralThreads) {
    const std::string notice =
        "KESTRAIL(M) Multiple Thread detected. Kestrail doesn't support "
        "Multi-Context trace in playback.\n";
    const auto threads = [this](std::initializer_list<std::uint64_t> list) {
        CTraceBuilder trace;
        for (const std::uint64_t thread : list) Add(trace.Thread(thread), kFlush);
        EXPECT_EQ(Open(trace), 0U);
        return m_store->MultiThread();
    };
    EXPECT_FALSE(threads({7, 7}));
    EXPECT_THAT(m_printed, Not(HasSubstr(notice)));
    EXPECT_FALSE(threads({0, 8})) << "0 leaves nothing to compare with";
    EXPECT_FALSE(threads({7, (std::uint64_t{1} << 32) + 7})) << "the low half counts";
    EXPECT_TRUE(threads({7, 8, 9}));
    EXPECT_NE(m_printed.find(notice), std::string::npos);
    EXPECT_EQ(m_printed.find(notice), m_printed.rfind(notice)) << "said once";
}

TEST_F(TraceDocument, StreamingGivesTheSameCalls) {
    CTraceBuilder trace;
    for (int frame = 0; frame < 500; ++frame) Add(trace.Thread(), kFlush, 3).SwapBuffers();
    Add(trace, kFinish);
    ASSERT_EQ(Open(trace), 0U);
    const Ids whole = AllIds();
    ASSERT_EQ(Open(trace, false), 0U);
    EXPECT_THAT(m_printed, HasSubstr("Opening Trace file (noMemory): "));
    EXPECT_EQ(Walk(1998), Ids(whole.begin(), whole.begin() + 1998));
    EXPECT_EQ(m_store->CurrentCallNumber(), 1U);
    EXPECT_EQ(m_store->FrameOfCall(1), 1U);
    EXPECT_EQ(m_store->FrameCount(), 500U);
    EXPECT_EQ(m_store->CurrentFrameNumber(), 500U);
    EXPECT_EQ(m_store->CallAt(2), nullptr) << "one call is held";
    ASSERT_NE(m_store->GetFrameRecord(500), nullptr);
    EXPECT_EQ(m_store->GetFrameRecord(500)->number, 500U);
    EXPECT_EQ(m_store->GetFrameRecord(250), nullptr);
    EXPECT_EQ(Walk().size(), 3U);
    EXPECT_EQ(m_store->FrameCount(), 501U);
    EXPECT_EQ(m_store->NextCall(), nullptr);

    // Without a footer the seek behind the last record fails, and the call with it.
    CTraceBuilder old(11);
    Add(old, kFlush);
    old.Add(kClear, old.Gl().Bitfield(0x4000));
    ASSERT_EQ(Open(old, false), 0U);
    EXPECT_NE(m_store->NextCall(), nullptr);
    EXPECT_THROW(m_store->NextCall(), MemoryManagerException);
    // So it does behind a record that ends where a footer would begin.
    CTraceBuilder marked(11);
    Add(marked, kFlush).Thread();
    Add(marked, kFinish);
    ASSERT_EQ(Open(marked, false), 0U);
    EXPECT_NE(m_store->NextCall(), nullptr);
    EXPECT_THROW(m_store->NextCall(), MemoryManagerException);
    // A record without a class ends the stream, where loading passes over it.
    CTraceBuilder gap;
    Add(gap, kFlush).AddSized(0, 1199, {});
    Add(gap, kFlush);
    ASSERT_EQ(Open(gap, false), 0U);
    EXPECT_THAT(Walk(), ElementsAre(kFlush));
}

/// Frames of any lengths, with a block of state calls in front or not.
TEST_F(TraceDocument, TheFrameOfACallIsThatOfAPlainSearch) {
    std::mt19937 random(11);
    for (int shape = 0; shape < 60; ++shape) {
        CTraceBuilder trace;
        const int frames = static_cast<int>(random() % 12);
        for (int frame = 0; frame < frames; ++frame) {
            Add(trace, kFlush, static_cast<int>(random() % 4)).SwapBuffers();
        }
        Add(trace, kFlush, static_cast<int>(random() % 3));
        if (random() % 2 == 0) {
            trace.BeginState().Marker(2);
            Add(trace, kFinish, static_cast<int>(random() % 3)).Marker(3);
        }
        static_cast<void>(Open(trace));
        const auto plain = [this](std::uint32_t index) -> std::uint32_t {
            for (std::uint32_t n = 1; const CFrameRecord* f = m_store->GetFrameRecord(n); ++n) {
                if (f->lastCall == CFrameRecord::kNoCall) continue;
                if (f->firstCall <= index && f->lastCall >= index) return n;
            }
            return 0;
        };
        const std::uint32_t calls = m_store->CallCount();
        for (std::uint32_t index = 0; index <= calls + 1; ++index) {
            ASSERT_EQ(m_store->FrameOfCall(index), plain(index)) << "in order, shape " << shape;
        }
        for (int i = 0; i < 50; ++i) {
            const std::uint32_t index = static_cast<std::uint32_t>(random()) % (calls + 3);
            ASSERT_EQ(m_store->FrameOfCall(index), plain(index)) << "anywhere, shape " << shape;
        }
        EXPECT_EQ(m_store->FrameOfCall(calls), 0U) << "the last call, asked by its number";
        EXPECT_EQ(m_store->FrameOfCall(0xFFFFFFFFU), 0U);
    }
}

TEST_F(TraceDocument, ObserversHearOfEveryHundredth) {
    struct SObserver : CLoadObserver {
        void OnLoadProgress(std::uint32_t, const COpenProgress& progress) override {
            titles.emplace_back(progress.progressTitle.c_str());
            values.push_back(progress.progressValue);
        }
        std::vector<std::string> titles;
        std::vector<std::uint32_t> values;
    } observer, deaf;
    m_document.RegisterObserver(kLoadProgressEvent, &observer);
    m_document.RegisterObserver(kLoadProgressEvent + 1, &deaf);
    CTraceBuilder trace;
    for (int i = 0; i < 100; ++i) Add(trace, kFlush, 20).SwapBuffers();
    const Bytes bytes = trace.Build();
    ASSERT_EQ(Open(bytes), 0U);
    m_document.UnregisterObserver(kLoadProgressEvent, &observer);
    m_document.UnregisterObserver(kLoadProgressEvent + 1, &deaf);
    ASSERT_GT(observer.titles.size(), 90U);
    EXPECT_LE(observer.titles.size(), 102U);
    EXPECT_EQ(observer.titles.front(), "File Read");
    EXPECT_EQ(observer.titles[1].substr(0, 12), "Frame: 1  @ ");
    EXPECT_EQ(observer.titles.back(), "Trace Processed");
    EXPECT_EQ(observer.values.back(), 100U);
    for (std::size_t i = 2; i + 1 < observer.values.size(); ++i) {
        EXPECT_GT(observer.values[i], observer.values[i - 1] + bytes.size() / 101);
    }
    EXPECT_THAT(deaf.titles, IsEmpty());
    ASSERT_EQ(Open(bytes), 0U);
    EXPECT_EQ(observer.titles.back(), "Trace Processed");
}

TEST_F(TraceDocument, DamagedFilesNeverCrash) {
    CTraceBuilder trace;
    trace.Disable(3).OverrideText(2, "void main() {}").Thread().StartUp(2, 64, 48);
    for (int i = 0; i < 5; ++i) {
        Add(trace, kFlush, 2);
        trace.Add(kClear, trace.Gl().Bitfield(0x4000)).SwapBuffers(2, 2, Bytes(16, 7));
    }
    Add(trace.BeginState().Marker(2), kFinish).Marker(3).EndState();
    const Bytes sound = trace.Build();
    ASSERT_EQ(Open(sound), 0U);
    std::mt19937 random(5);
    int loaded = 0;
    for (int round = 0; round < 400; ++round) {
        Bytes bytes = sound;
        for (int hits = static_cast<int>(random() % 4); hits >= 0; --hits) {
            bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
        }
        if (round % 3 == 0) bytes.resize(random() % bytes.size());
        const bool useMemory = round % 2 == 0;
        loaded += Open(bytes, useMemory) == 0 ? 1 : 0;
        if (m_store == nullptr) continue;
        try {
            const Ids ids = Walk(500);
            EXPECT_LE(m_store->FrameCount(), ids.size() + bytes.size());
        } catch (...) {
            EXPECT_FALSE(useMemory) << "a loaded trace throws no more";
        }
    }
    EXPECT_GT(loaded, 20);
}

}  // namespace
}  // namespace kestrail
