#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "tests/unit/unit_support.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

/// Loads traces and asks for the state that their frames begin with.
class Snapshots : public testing::Test {
protected:
    void TearDown() override { m_document.CloseTrace(); }

    unsigned Open(const Bytes& bytes, bool useMemory = true) {
        m_file = std::make_unique<CTempFile>(bytes);
        unsigned result = 0;
        Printed([&] { result = m_document.OpenTrace(m_file->Name(), useMemory); });
        m_store = m_document.GetFrameStore();
        return result;
    }
    SFrameState State(std::uint32_t frame) const { return m_store->StateOfFrame(frame); }
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
    CFrameStore* m_store = nullptr;
    std::unique_ptr<CTempFile> m_file;
};

bool Begins(const Bytes& whole, const Bytes& start) {
    return start.size() <= whole.size() && std::equal(start.begin(), start.end(), whole.begin());
}

/// Frame 3 changes ES2's state, frame 4 that of ES1; the first two hold the start-up and nothing.
CTraceBuilder FourFrames() {
    CTraceBuilder trace;
    trace.StartUp(2, 300, 300).Add(2018, trace.Gl().Float(0.25F));
    trace.Add(3012, trace.Gl().Float(0.5F)).SwapBuffers().SwapBuffers();
    trace.Add(2007, trace.Gl().Enum(3553).Uint(7)).SwapBuffers();
    return trace.Add(3012, trace.Gl().Float(0.75F)).SwapBuffers();
}

TEST_F(Snapshots, SharedUntilACallChangesThem) {
    ASSERT_EQ(Open(FourFrames().Build()), 0U);
    const auto shares = [&](std::uint32_t frame) {
        const SFrameState one = State(frame);
        const SFrameState next = State(frame + 1);
        return std::string(one.egl.SameAs(next.egl) ? "egl " : "") +
               (one.es1.SameAs(next.es1) ? "es1 " : "") + (one.es2.SameAs(next.es2) ? "es2" : "");
    };
    EXPECT_EQ(shares(1), "");
    EXPECT_EQ(shares(2).substr(4), "es1 es2");
    EXPECT_EQ(shares(3).substr(4), "es1 ");
    EXPECT_EQ(shares(4).substr(4), "es2");
    // Tables that no call wrote stay one even where the records are two.
    EXPECT_TRUE(State(3).es2->programs.SameAs(State(4).es2->programs));
    EXPECT_TRUE(State(3).es1->textures.SameAs(State(5).es1->textures));
    // A write to what a caller got leaves the frame as it is.
    CEs2State copy;
    ASSERT_TRUE(m_store->GetEs2StateOfFrame(3, copy));
    copy.WriteImage(7, 0, 0).width = 99;
    EXPECT_EQ(State(3).es2->FindImage(7, 0, 0), nullptr);
    CEglState egl;
    for (const std::uint32_t frame : {0U, 6U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(m_store->GetEs2StateOfFrame(frame, copy)) << frame;
        EXPECT_FALSE(m_store->GetEglStateOfFrame(frame, egl)) << frame;
    }
}

TEST_F(Snapshots, NoneWithoutTracking) {
    const auto expectNone = [&](std::uint32_t frame) {
        CEs2State es2;
        EXPECT_FALSE(m_store->GetEs2StateOfFrame(frame, es2));
        EXPECT_TRUE(State(frame).es2.SameAs(State(1).es2));
        EXPECT_EQ(State(frame).egl->currentDisplay, 0U);
    };
    ASSERT_EQ(Open(FourFrames().Build(), false), 0U);
    for (int calls = 0; calls < 10; ++calls) ASSERT_NE(m_store->NextCall(), nullptr);
    expectNone(m_store->CurrentFrameNumber());
    m_document.SetTrackState(false);
    ASSERT_EQ(Open(FourFrames().Build()), 0U);
    m_document.SetTrackState(true);
    expectNone(2);
    expectNone(3);
}

TEST_F(Snapshots, ASavedHeaderIsThatOfTheTrace) {
    for (const bool second : {false, true}) {
        CTraceBuilder trace = FourFrames().SetSecondFlag(second);
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
    EXPECT_TRUE(Begins(CTraceBuilder().SetSecondFlag(0).Build(), Saved())) << "of this version";
}

}  // namespace
}  // namespace kestrail
