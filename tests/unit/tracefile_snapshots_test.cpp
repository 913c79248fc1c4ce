#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/unit/unit_support.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

constexpr std::uint16_t kClearDepth = 2018;
constexpr std::uint16_t kEs1ClearDepth = 3012;
constexpr std::uint16_t kBindTexture = 2007;
constexpr std::uint16_t kFlush = 2046;
/// Of the extension on ES1.
constexpr std::uint16_t kBindVertexArray = 4007;
constexpr std::uint32_t kDefaultDisplay = 0;

/// Loads traces and asks for the state that their frames begin with.
class Snapshots : public testing::Test {
protected:
    void TearDown() override { m_document.CloseTrace(); }

    unsigned OpenBytes(const Bytes& bytes, bool useMemory = true) {
        m_file = std::make_unique<CTempFile>(bytes);
        unsigned result = 0;
        Printed([&] { result = m_document.OpenTrace(m_file->Name(), useMemory); });
        m_store = m_document.GetFrameStore();
        return result;
    }
    void Open(const CTraceBuilder& trace, bool useMemory = true) {
        ASSERT_EQ(OpenBytes(trace.Build(), useMemory), 0U);
        ASSERT_NE(m_store, nullptr);
    }
    const CFrameRecord& Frame(std::uint32_t frame) const { return *m_store->GetFrameRecord(frame); }
    SFrameState State(std::uint32_t frame) const { return m_store->StateOfFrame(frame); }
    /// The clear depths that the frames begin with.
    std::vector<float> Es2Depths() const {
        std::vector<float> depths;
        for (std::uint32_t frame = 1; m_store->GetFrameRecord(frame) != nullptr; ++frame) {
            depths.push_back(State(frame).es2->clearDepth);
        }
        return depths;
    }

    CTraceDocument& m_document = *CTraceDocument::Instance();
    CFrameStore* m_store = nullptr;
    std::unique_ptr<CTempFile> m_file;
};

CTraceBuilder& Depth(CTraceBuilder& trace, float depth, std::uint32_t recordedError = 0) {
    return trace.Add(kClearDepth, trace.Gl(recordedError).Float(depth));
}

TEST_F(Snapshots, HoldTheStateBeforeTheFirstCallOfTheirFrame) {
    CTraceBuilder trace;
    Depth(trace.StartUp(2, 300, 200), 0.25F).SwapBuffers();
    Depth(trace, 0.5F);
    Depth(trace, 0.75F).SwapBuffers();
    trace.SwapBuffers();
    Depth(trace, 0.0F);
    Open(trace);
    EXPECT_THAT(Es2Depths(), testing::ElementsAre(1.0F, 0.25F, 0.75F, 0.75F));
    EXPECT_EQ(State(1).egl->currentDisplay, kDefaultDisplay);
    EXPECT_EQ(State(1).egl->surfaces.Count(), 0U);
    EXPECT_EQ(State(2).egl->currentDisplay, CTraceBuilder::display);
    EXPECT_EQ(State(2).egl->currentContext, CTraceBuilder::context);
    ASSERT_EQ(State(2).egl->surfaces.Count(), 1U);
    EXPECT_EQ(State(2).egl->surfaces.At(0).handle, CTraceBuilder::surface);

    CEs2State es2;
    CEglState egl;
    ASSERT_TRUE(m_store->GetEs2StateOfFrame(3, es2));
    EXPECT_EQ(es2.clearDepth, 0.75F);
    ASSERT_TRUE(m_store->GetEglStateOfFrame(2, egl));
    EXPECT_EQ(egl.currentDisplay, CTraceBuilder::display);
    for (const std::uint32_t frame : {0U, 5U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(m_store->GetEs2StateOfFrame(frame, es2)) << frame;
        EXPECT_FALSE(m_store->GetEglStateOfFrame(frame, egl)) << frame;
    }
}

TEST_F(Snapshots, TheFirstCallBehindTheStateBlockIsNotInItsFrame) {
    CTraceBuilder trace;
    Depth(trace, 0.5F).SwapBuffers().BeginState().Marker(2);
    trace.StartUp(2, 300, 300);
    Depth(trace, 0.25F).Marker(3).EndState();
    Open(trace);
    EXPECT_THAT(Es2Depths(), testing::ElementsAre(1.0F, 0.25F, 0.5F));
    EXPECT_EQ(State(2).egl->currentContext, CTraceBuilder::context);
    EXPECT_EQ(Frame(2).lastCall, Frame(2).firstCall + 1);

    // That call is applied though it is disabled; any other is not.
    trace.Disable(7);
    Open(trace);
    EXPECT_THAT(Es2Depths(), testing::ElementsAre(1.0F, 0.25F, 0.5F));
    trace.Disable(6);
    Open(trace);
    EXPECT_THAT(Es2Depths(), testing::ElementsAre(1.0F, 1.0F, 0.5F));
}

TEST_F(Snapshots, DisabledAndFailedCallsLeaveNoEffect) {
    CTraceBuilder trace;
    Depth(trace, 0.25F);
    Depth(trace, 0.5F, 1281).SwapBuffers();
    Depth(trace, 0.75F).SwapBuffers();
    trace.Add(1018, trace.Egl(0x3009)
                        .EglBoolean(true)
                        .Display(CTraceBuilder::display)
                        .Surface(CTraceBuilder::surface)
                        .Surface(CTraceBuilder::surface)
                        .Context(CTraceBuilder::context)
                        .Config(CTraceBuilder::config)
                        .Attributes({}));
    trace.SwapBuffers();
    trace.Disable(4);
    Open(trace);
    EXPECT_THAT(Es2Depths(), testing::ElementsAre(1.0F, 0.25F, 0.25F, 0.25F));
    EXPECT_EQ(State(3).egl->currentDisplay, kDefaultDisplay);
    EXPECT_EQ(State(4).egl->currentDisplay, CTraceBuilder::display)
        << "a recorded EGL error is no GL error and counts for nothing";
    EXPECT_EQ(m_store->CallCount(), 7U) << "they stay calls";

    // A swap that failed closes its frame all the same.
    CTraceBuilder swap;
    swap.Add(1022, swap.Egl(0x300D)
                       .EglBoolean(false)
                       .Display(CTraceBuilder::display)
                       .Surface(CTraceBuilder::surface)
                       .Uint(1)
                       .Uint(0)
                       .Uint(0)
                       .Data(0));
    Depth(swap, 0.5F);
    Open(swap);
    EXPECT_EQ(m_store->FrameCount(), 2U);
}

TEST_F(Snapshots, AnApiHasSnapshotsOnceItIsUsed) {
    const auto trace = [](std::vector<std::pair<std::uint16_t, std::uint32_t>> calls) {
        CTraceBuilder built;
        for (const auto& [id, recordedError] : calls) {
            CRecordBuilder record =
                id == kBindVertexArray ? built.Ext(recordedError, 1) : built.Gl(recordedError);
            if (id == kClearDepth || id == kEs1ClearDepth) record.Float(0.5F);
            if (id == kBindVertexArray) record.Uint(0);
            built.Add(id, record);
        }
        built.SwapBuffers();
        return built;
    };
    const struct {
        std::vector<std::pair<std::uint16_t, std::uint32_t>> calls;
        bool es1;
        bool es2;
    } cases[] = {
        {{}, false, false},
        {{{kFlush, 0}}, false, true},
        {{{kClearDepth, 0}}, false, true},
        {{{kEs1ClearDepth, 0}}, true, false},
        {{{kEs1ClearDepth, 0}, {kClearDepth, 0}}, true, true},
        {{{kBindVertexArray, 0}}, true, false},
        {{{kEs1ClearDepth, 1281}, {kClearDepth, 1281}}, false, false},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(testing::PrintToString(one.calls));
        Open(trace(one.calls));
        CEs1State es1;
        CEs2State es2;
        CEglState egl;
        es1.clearDepth = es2.clearDepth = 9.0F;
        // What comes later counts for the frames before it, too.
        EXPECT_EQ(m_store->GetEs1StateOfFrame(1, es1), one.es1);
        EXPECT_EQ(m_store->GetEs2StateOfFrame(1, es2), one.es2);
        EXPECT_EQ(es1.clearDepth, one.es1 ? 1.0F : 9.0F);
        EXPECT_EQ(es2.clearDepth, one.es2 ? 1.0F : 9.0F);
        EXPECT_TRUE(m_store->GetEglStateOfFrame(1, egl));
    }
    // The next trace starts anew.
    CTraceBuilder last;
    Open(last.SwapBuffers());
    CEs1State es1;
    EXPECT_FALSE(m_store->GetEs1StateOfFrame(1, es1));
}

TEST_F(Snapshots, KnowTheVersionOfTheContext) {
    for (const int version : {2, 3}) {
        CTraceBuilder trace;
        trace.StartUp(version, 300, 300).SwapBuffers();
        Depth(trace, 0.5F).SwapBuffers();
        Open(trace);
        EXPECT_EQ(State(2).es2->apiVersion, 2U) << "no call of it has come yet";
        EXPECT_EQ(State(3).es2->apiVersion, version);
    }
}

TEST_F(Snapshots, SharedUntilACallChangesThem) {
    CTraceBuilder trace;
    Depth(trace.StartUp(2, 300, 300), 0.25F);
    trace.Add(kEs1ClearDepth, trace.Gl().Float(0.5F)).SwapBuffers();
    trace.SwapBuffers();
    trace.Add(kBindTexture, trace.Gl().Enum(3553).Uint(7)).SwapBuffers();
    trace.Add(kEs1ClearDepth, trace.Gl().Float(0.75F)).SwapBuffers();
    Open(trace);
    struct SShares {
        bool egl, es1, es2;
        bool operator==(const SShares&) const = default;
    };
    const auto shares = [&](std::uint32_t frame) {
        const SFrameState one = State(frame);
        const SFrameState next = State(frame + 1);
        return SShares{one.egl.SameAs(next.egl), one.es1.SameAs(next.es1),
                       one.es2.SameAs(next.es2)};
    };
    EXPECT_EQ(shares(1), (SShares{false, false, false}));
    EXPECT_TRUE(shares(2).es1 && shares(2).es2);
    EXPECT_TRUE(shares(3).es1 && !shares(3).es2);
    EXPECT_TRUE(!shares(4).es1 && shares(4).es2);
    // Tables that no call wrote stay one even where the records are two.
    EXPECT_TRUE(State(3).es2->programs.SameAs(State(4).es2->programs));
    EXPECT_TRUE(State(3).es1->textures.SameAs(State(5).es1->textures));
    // A write to what a caller got leaves the frame as it is.
    CEs2State copy;
    ASSERT_TRUE(m_store->GetEs2StateOfFrame(3, copy));
    copy.WriteImage(7, 0, 0).width = 99;
    EXPECT_EQ(State(3).es2->FindImage(7, 0, 0), nullptr);
}

/// More calls than lie between two kept states, frames asked for in any order.
TEST_F(Snapshots, AreTheSameInWhateverOrderTheyAreAskedFor) {
    constexpr std::uint32_t kFrames = 60;
    constexpr std::uint32_t kCalls = 70;
    CTraceBuilder trace;
    trace.StartUp(2, 300, 300);
    std::vector<float> depths = {1.0F};
    for (std::uint32_t frame = 1; frame <= kFrames; ++frame) {
        for (std::uint32_t i = 0; i < kCalls; ++i) trace.Add(kFlush, trace.Gl());
        depths.push_back(depths.back());
        if (frame % 3 != 0) depths.back() = 1.0F / static_cast<float>(frame);
        // Every third one is left out, by turns as disabled and as failed.
        if (frame % 6 == 3) trace.Disable(trace.CallCount() + 1);
        Depth(trace, 1.0F / static_cast<float>(frame), frame % 6 == 0 ? 1280 : 0).SwapBuffers();
    }
    Open(trace);
    for (std::uint32_t i = 0; i <= kFrames; ++i) {
        const std::uint32_t place = i * 37 % (kFrames + 1);
        EXPECT_EQ(State(place + 1).es2->clearDepth, depths[place]) << place;
    }
}

TEST_F(Snapshots, OfPartsKeepTheirContentsAndPrintNothing) {
    constexpr std::uint16_t kTexImage = 2106;
    constexpr std::uint16_t kTexSubImage = 2111;
    CTraceBuilder trace;
    trace.StartUp(2, 300, 300).Add(kBindTexture, trace.Gl().Enum(3553).Uint(7));
    trace.Add(kTexImage, trace.Image(2, 1, 6408, Bytes(8, 3)));
    trace.SwapBuffers();
    for (const std::uint32_t width : {1U, 3U}) {
        trace.Add(kTexSubImage, trace.ImagePart(0, 0, width, 1, 6408, Bytes(12, 5)));
        trace.SwapBuffers();
    }
    trace.SwapBuffers();
    Open(trace);
    const auto identity = [&](std::uint32_t frame) {
        return State(frame).es2->FindImage(7, 0, 0)->data.Identity();
    };
    const std::string printed = Printed([&] {
        for (const std::uint32_t frame : {5U, 3U, 2U, 4U, 3U}) {
            EXPECT_EQ(identity(frame) == identity(3), frame != 2) << frame;
        }
    });
    EXPECT_EQ(printed, "");
}

TEST_F(Snapshots, NoneWithoutTracking) {
    CTraceBuilder trace;
    Depth(trace.StartUp(2, 300, 300), 0.25F).SwapBuffers();
    Depth(trace, 0.5F).SwapBuffers();
    const auto expectNone = [&](std::uint32_t frame) {
        CEs2State es2;
        EXPECT_FALSE(m_store->GetEs2StateOfFrame(frame, es2));
        EXPECT_TRUE(State(frame).es2.SameAs(State(1).es2));
        EXPECT_TRUE(State(frame).egl.SameAs(State(1).egl));
        EXPECT_EQ(State(frame).egl->currentDisplay, kDefaultDisplay);
    };
    Open(trace, false);
    int calls = 0;
    for (; calls < 8 && m_store->NextCall() != nullptr; ++calls) {
    }
    EXPECT_GE(calls, 8);
    expectNone(m_store->CurrentFrameNumber());

    m_document.SetTrackState(false);
    Open(trace);
    m_document.SetTrackState(true);
    expectNone(2);
    expectNone(3);
    Open(trace);
    EXPECT_THAT(Es2Depths(), testing::ElementsAre(1.0F, 0.25F, 0.5F));
}

/// The header that `Save` writes, by way of a file.
Bytes Saved(CTraceDocument& document) {
    CTempFile file(Bytes{});
    IOManager out;
    EXPECT_TRUE(out.Open(file.Name(), false));
    EXPECT_TRUE(document.Save(out));
    out.Close();
    std::ifstream in(std::string(file.Name().view()), std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

TEST_F(Snapshots, ASavedHeaderIsThatOfTheTrace) {
    for (const bool second : {false, true}) {
        CTraceBuilder trace;
        Depth(trace.SetSecondFlag(second), 0.5F).SwapBuffers();
        const Bytes plain = trace.Build();
        trace.Disable(1).Disable(0x10203).OverrideText(2, "void main() {}").OverrideText(900, "");
        const Bytes edited = trace.Build();
        ASSERT_EQ(OpenBytes(edited), 0U);

        // Edits are left out until they are asked for.
        const Bytes bare = Saved(m_document);
        EXPECT_EQ(bare.size(), 8U + 4 + 4 + 1 + 1 + 4 + 1 + 33 + 4 + 4);
        ASSERT_LE(bare.size(), plain.size());
        EXPECT_TRUE(std::equal(bare.begin(), bare.end(), plain.begin()));

        m_document.SetHasEdits(true);
        Bytes full = Saved(m_document);
        m_document.SetHasEdits(false);
        ASSERT_LT(full.size(), edited.size());
        EXPECT_TRUE(std::equal(full.begin(), full.end(), edited.begin()));
        EXPECT_EQ(full.size() - bare.size(), edited.size() - plain.size());

        // With the records behind it, it is a trace with the same edits.
        full.insert(full.end(), edited.begin() + static_cast<std::ptrdiff_t>(full.size()),
                    edited.end());
        ASSERT_EQ(OpenBytes(full), 0U);
        EXPECT_EQ(m_store->Version(), 14U);
        EXPECT_TRUE(m_store->DataFlag());
        EXPECT_TRUE(m_store->Edits().IsCallDisabled(1));
        EXPECT_EQ(m_store->Edits().Disabled().size(), 2U);
        ASSERT_EQ(m_store->Edits().Overrides().size(), 2U);
        const std::vector<std::uint8_t>& text = m_store->Edits().Overrides().at(2).text;
        EXPECT_EQ(std::string(text.begin(), text.end()), "void main() {}");
    }
}

TEST_F(Snapshots, ASavedHeaderAloneIsATraceWithoutCalls) {
    CTraceBuilder trace;
    ASSERT_EQ(OpenBytes(Depth(trace, 0.5F).SwapBuffers().Build()), 0U);
    EXPECT_EQ(OpenBytes(Saved(m_document)), 4U);
}

TEST_F(Snapshots, ASavedHeaderIsOfThePresentVersion) {
    CTraceBuilder old(9);
    Depth(old, 0.5F).SwapBuffers();
    ASSERT_EQ(OpenBytes(old.Build()), 0U);
    const Bytes header = Saved(m_document);
    CTraceBuilder present;
    present.SetSecondFlag(0);
    const Bytes expected = present.Build();
    ASSERT_LE(header.size(), expected.size());
    EXPECT_TRUE(std::equal(header.begin(), header.end(), expected.begin()));
}

}  // namespace
}  // namespace kestrail
