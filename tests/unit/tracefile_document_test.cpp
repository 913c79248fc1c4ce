#include <fstream>
#include <iterator>

#include "tests/unit/unit_support.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

class TraceDocument : public testing::Test {
protected:
    void TearDown() override { m_document.CloseTrace(); }

    unsigned Open(const Bytes& bytes, bool useMemory = true) {
        m_file = std::make_unique<CTempFile>(bytes);
        unsigned result = 0;
        Printed([&] { result = m_document.OpenTrace(m_file->Name(), useMemory); });
        return result;
    }
    /// The header that `Save` writes, by way of a file.
    Bytes Saved() {
        CTempFile file(Bytes{});
        IOManager out;
        EXPECT_TRUE(out.Open(file.Name(), false));
        EXPECT_TRUE(m_document.Save(out));
        out.Close();
        std::ifstream in(std::string(file.Name().view()), std::ios::binary);
        return Bytes(std::istreambuf_iterator<char>(in), {});
    }

    CTraceDocument& m_document = *CTraceDocument::Instance();
    std::unique_ptr<CTempFile> m_file;
};

bool Begins(const Bytes& whole, const Bytes& start) {
    return start.size() <= whole.size() && std::equal(start.begin(), start.end(), whole.begin());
}

TEST_F(TraceDocument, ASavedHeaderIsThatOfTheTrace) {
    for (const bool second : {false, true}) {
        CTraceBuilder trace;
        trace.settings.secondFlag = second;
        trace.SwapBuffers();
        const Bytes plain = trace.Build();
        trace.Disable(1).Disable(0x10203).OverrideText(2, "void main() {}").OverrideText(900, "");
        const Bytes edited = trace.Build();
        ASSERT_EQ(Open(edited), 0U);
        // Edits are left out until they are asked for.
        const Bytes bare = Saved();
        EXPECT_EQ(bare.size(), 64U);
        EXPECT_TRUE(Begins(plain, bare));
        m_document.SetHasEdits(true);
        const Bytes full = Saved();
        m_document.SetHasEdits(false);
        EXPECT_TRUE(Begins(edited, full));
        EXPECT_EQ(full.size() - bare.size(), edited.size() - plain.size());
        EXPECT_EQ(Open(bare), 4U) << "a trace without calls";
    }
    ASSERT_EQ(Open(CTraceBuilder(9).SwapBuffers().Build()), 0U);
    CTraceBuilder flagless;
    flagless.settings.secondFlag = 0;
    EXPECT_TRUE(Begins(flagless.Build(), Saved())) << "of this version";
}

/// The state comes before the calls, again and again.
TEST_F(TraceDocument, StreamsGoRound) {
    for (const bool markers : {false, true}) {
        CTraceBuilder trace;
        trace.Add(2046, trace.Gl()).SwapBuffers().BeginState();
        if (markers) trace.Marker(2);
        trace.Add(2045, trace.Gl());
        if (markers) trace.Marker(3);
        ASSERT_EQ(Open(trace.Build(), false), 0U);
        CFrameStore* const store = m_document.GetFrameStore();
        for (const int id : {2045, 2046, 1022, 2045, 2046, 1022, 2045}) {
            CCallEntry* entry = store->NextCall();
            ASSERT_NE(entry, nullptr);
            EXPECT_EQ(entry->call->m_id, id) << markers;
        }
    }
    // Markers alone lead round once, not for ever.
    ASSERT_EQ(Open(CTraceBuilder().Marker(2).BeginState().Marker(3).Build(), false), 0U);
    EXPECT_EQ(m_document.GetFrameStore()->NextCall(), nullptr);
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
    CTraceBuilder trace;
    for (int i = 0; i < 2000; ++i) trace.SwapBuffers();
    const Bytes bytes = trace.Build();
    m_document.RegisterObserver(kLoadProgressEvent, &observer);
    m_document.RegisterObserver(kLoadProgressEvent + 1, &deaf);
    ASSERT_EQ(Open(bytes), 0U);
    m_document.UnregisterObserver(kLoadProgressEvent, &observer);
    m_document.UnregisterObserver(kLoadProgressEvent + 1, &deaf);
    ASSERT_EQ(Open(bytes), 0U);
    ASSERT_GT(observer.titles.size(), 90U);
    EXPECT_LE(observer.titles.size(), 102U);
    EXPECT_EQ(observer.titles.front(), "File Read");
    EXPECT_EQ(observer.titles[1].substr(0, 14), "Frame: 20  @ e");
    EXPECT_EQ(observer.titles.back(), "Trace Processed");
    EXPECT_EQ(observer.values.back(), 100U);
    for (std::size_t i = 2; i + 1 < observer.values.size(); ++i) {
        EXPECT_GT(observer.values[i], observer.values[i - 1] + bytes.size() / 101);
    }
    EXPECT_TRUE(deaf.titles.empty());
}

}  // namespace
}  // namespace kestrail
