#include <algorithm>

#include "tests/program/program_test.h"

namespace kestrail {
namespace {

constexpr std::uint32_t floats = 5126;

/// A trace with attributes 0 and 1 as enabled client arrays of one float each.
class CDraw : public CTraceTest {
protected:
    explicit CDraw(std::uint32_t version = 14) : CTraceTest(Es2Trace(version)) {
        for (std::uint32_t index : {0U, 1U}) {
            Enable(index);
            Point(index, 0xAB00 + index);
        }
    }

    void Enable(std::uint32_t index) { One(2044, index); }
    void Point(std::uint32_t index, std::uint64_t pointer) {
        trace.Add(2141, trace.Gl().Uint(index).Int(1).Enum(floats).Boolean(true).Sizei(40).Pointer(
                            pointer));
    }
    CRecordBuilder Arrays() const { return trace.Gl().Enum(4).Int(0).Sizei(2); }
    CRecordBuilder Elements(const Bytes& indices, std::uint64_t offset) const {
        return trace.Gl().Enum(4).Sizei(2).Enum(5121).Data(offset, indices).Pointer(offset);
    }
};

class COldDraw : public CDraw {
protected:
    COldDraw() : CDraw(13) {}
};

const std::string noData = ": No enought Data. No Pointer replaced with real memory. ";

TEST_F(CDraw, ArraysGoToTheirAttributesTightlyPacked) {
    trace.Add(2041,
              Arrays().ClientArray(1, 0x10, Bytes(8, 0x11)).ClientArray(0, 0x10, Bytes(8, 0x22)));
    const SRunResult run = Run();
    const Lines pointers = run.CallsOf({"glVertexAttribPointer", "glDrawArrays"});
    ASSERT_EQ(pointers.size(), 5U) << run.out;
    EXPECT_EQ(pointers[2], Host("glVertexAttribPointer", 0, 1, floats, 1, 0, "ptr"));
    EXPECT_EQ(pointers[3], Host("glVertexAttribPointer", 1, 1, floats, 1, 0, "ptr"));
    EXPECT_EQ(pointers[4],
              Host("glDrawArrays", 4, 0, 2) + " [0 <2222222222222222:8>] [1 <1111111111111111:8>]");
    EXPECT_TRUE(run.Messages().empty()) << run.out;
}

TEST_F(CDraw, ARepeatedIndexTakesTheLastArray) {
    trace.Add(2041, Arrays()
                        .ClientArray(0, 0x10, Bytes(8, 0x11))
                        .ClientArray(1, 0x10, Bytes(8, 0x22))
                        .ClientArray(0, 0x10, Bytes(8, 0x33)));
    const SRunResult run = Run();
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}),
              Lines{Host("glDrawArrays", 4, 0, 2) +
                    " [0 <3333333333333333:8>] [1 <2222222222222222:8>]"});
}

TEST_F(COldDraw, ArraysWithoutIndicesGoByPosition) {
    trace.Add(2041,
              Arrays().ClientArray(9, 0x10, Bytes(8, 0x11)).ClientArray(9, 0x10, Bytes(8, 0x22)));
    const SRunResult run = Run();
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}),
              Lines{Host("glDrawArrays", 4, 0, 2) +
                    " [0 <1111111111111111:8>] [1 <2222222222222222:8>]"});
}

TEST_F(COldDraw, AnArrayTooFewLeavesItsPointer) {
    trace.Add(2041, Arrays().ClientArray(9, 0x10, Bytes(8, 0x11)));
    const SRunResult run = Run();
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}),
              Lines{Host("glDrawArrays", 4, 0, 2) + " [0 <1111111111111111:8>] [1 43777]"});
    EXPECT_TRUE(run.Messages().empty()) << "only a missing index is reported: " << run.out;
}

TEST_F(CDraw, AMissingArrayIsReportedAndTheDrawGoesOn) {
    trace.Add(2041, Arrays().ClientArray(1, 0x10, Bytes(8, 0x11)));
    trace.Add(2042, Elements({0, 1}, 0x10).ClientArray(1, 0x10, Bytes(8, 0x11)));
    trace.Add(2041, Arrays());
    const SRunResult run = Run();
    const std::string arrays = message + "glDrawArrays" + noData + "glDrawArrays would crash.";
    EXPECT_EQ(run.Messages(),
              (Lines{arrays, message + "glDrawElements" + noData + "glDrawElements would crash.",
                     arrays}));
    EXPECT_EQ(run.CallsOf({"glDrawArrays", "glDrawElements"}).size(), 3U);
    EXPECT_EQ(run.CallsOf({"glVertexAttribPointer"}).size(), 2U) << "the recorded ones only";
}

TEST_F(CDraw, OnlyArraysThatTheHostReadsHaveToReach) {
    const auto draw = [&](std::int64_t count) { return trace.Gl().Enum(4).Int(0).Sizei(count); };
    const auto both = [](CRecordBuilder record, const Bytes& bytes) {
        return record.ClientArray(0, 0x10, bytes).ClientArray(1, 0x10, bytes);
    };
    trace.Add(2041, both(draw(2), Bytes(8, 0x11)));
    // Attribute 0 goes back to its recorded address, of which nothing was captured; the one behind
    // it still has the two vertices of the draw before.
    Point(0, 0xAB00);
    trace.Add(2041, draw(2));
    trace.Add(2041, draw(3));
    trace.Add(2040, trace.Gl().Uint(1));
    trace.Add(2041, draw(3));
    Point(0, 0xFFFFFFF0);
    trace.Add(2041, draw(3));
    SRunOptions options;
    options.memoryLimit = 0;
    const SRunResult run = RunTrace(trace, {}, options);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    const std::string arrays = message + "glDrawArrays" + noData + "glDrawArrays would crash.";
    const Lines refused = {message + "Error call:glDrawArrays 2041",
                           error + "PlayCall Error: Unrecognized/Error call"};
    EXPECT_EQ(run.Messages(), (Lines{arrays, arrays, refused[0], refused[1], arrays, arrays}));
    Lines drawn = run.CallsOf({"glDrawArrays"});
    for (std::string& line : drawn) line = line.substr(0, line.find(" ["));
    EXPECT_EQ(drawn, (Lines{Host("glDrawArrays", 4, 0, 2), Host("glDrawArrays", 4, 0, 2),
                            Host("glDrawArrays", 4, 0, 3), Host("glDrawArrays", 4, 0, 3)}));
}

TEST_F(CDraw, WhatOnlyTheHostKnowsIsMeasuredToo) {
    const Lines refused = {message + "Error call:glDrawElements 2042",
                           error + "PlayCall Error: Unrecognized/Error call"};
    const auto arrays = [](CRecordBuilder record) {
        return record.ClientArray(0, 0x10, Bytes(8, 1)).ClientArray(1, 0x10, Bytes(8, 1));
    };
    // Indices behind the end of the element buffer, which the stand-in says has 65536 bytes.
    Bind(2004, 34963, 5);
    trace.Add(2042, arrays(Elements({}, 65534)));
    trace.Add(2042, arrays(Elements({}, 65535)));
    const SRunResult run = Run();
    EXPECT_EQ(run.CallsOf({"glDrawElements"}).size(), 1U);
    EXPECT_EQ(run.Messages(), refused);

    // An attribute that no recorded index stands for: the live one of index 0 is 9.
    trace = Es2Trace();
    One(2026, 8);
    trace.Add(2058, trace.Gl().Int(0).Uint(8).String(0x10, "a"));
    Enable(0);
    Point(0, 0xFFFFFFF0);
    trace.Add(2041, Arrays().ClientArray(0, 0x10, Bytes(8, 1)));
    One(2131, 8);
    trace.Add(2041, Arrays());
    trace.Add(2041, trace.Gl().Enum(4).Int(0).Sizei(3));
    SRunOptions roomy;
    roomy.memoryLimit = 0;
    const SRunResult translated = Run({}, roomy);
    EXPECT_EQ(translated.CallsOf({"glDrawArrays"}).size(), 2U);
    EXPECT_EQ(translated.Messages(), (Lines{message + "Error call:glDrawArrays 2041", refused[1]}));
}

TEST_F(CDraw, TheContextDecidesWhoseArraysAreRead) {
    const Lines draws = {"glDrawArrays", "es1.glDrawArrays"};
    const auto drawn = [&](const CTraceBuilder& drawing) {
        return RunTrace(drawing).CallsOf(draws).size();
    };
    trace.Add(2041, Arrays().ClientArray(0, 0x10, Bytes(8, 1)).ClientArray(1, 0x10, Bytes(8, 1)));
    const auto draw = [](CTraceBuilder drawing, std::uint16_t id, std::int64_t count) {
        return drawing.Add(id, drawing.Gl().Enum(4).Int(0).Sizei(count));
    };
    EXPECT_EQ(drawn(draw(trace, 3036, 2)), 2U);
    EXPECT_EQ(drawn(draw(trace, 3036, 3)), 1U);
    CTraceBuilder es1 = TraceOf(1);
    es1.Add(3039, es1.Gl().Enum(32884));
    es1.Add(3143, es1.Gl().Int(1).Enum(floats).Sizei(0).Pointer(0xAB00));
    es1.Add(3036, es1.Gl().Enum(4).Int(0).Sizei(2).ClientArray(2, 0x10, Bytes(8, 1)));
    EXPECT_EQ(drawn(draw(es1, 2041, 2)), 2U);
    EXPECT_EQ(drawn(draw(es1, 2041, 3)), 1U);
}

TEST_F(CDraw, ArraysInBuffersAndNullPointersAreLeftAlone) {
    Bind(2004, 34962, 7);
    Point(0, 16);
    Bind(2004, 34962, 0);
    Point(1, 0);
    Bind(2004, 34962, 7);
    trace.Add(2041, Arrays());
    const SRunResult run = Run();
    EXPECT_TRUE(run.Messages().empty()) << run.out;
    const Lines calls = run.CallsOf({"glBindBuffer", "glVertexAttribPointer", "glDrawArrays"});
    ASSERT_GE(calls.size(), 3U);
    const Lines last(calls.end() - 3, calls.end());
    EXPECT_EQ(last, (Lines{Host("glBindBuffer", 34962, 0), Host("glBindBuffer", 34962, 101),
                           Host("glDrawArrays", 4, 0, 2) + " [1 NULL]"}));
}

TEST_F(CDraw, TheDriverIsAskedInOrder) {
    trace.Add(2041, Arrays().ClientArray(0, 0x10, Bytes(8)).ClientArray(1, 0x10, Bytes(8)));
    const SRunResult run = Run();
    const auto start =
        std::find(run.calls.begin(), run.calls.end(), Host("glGetIntegerv", 34964, "ptr"));
    ASSERT_NE(start, run.calls.end());
    Lines asked(start, run.calls.end());
    ASSERT_GT(asked.size(), 12U);
    asked.resize(12);
    EXPECT_EQ(asked, (Lines{Host("glGetIntegerv", 34964, "ptr"), "glGetError() = 0",
                            Host("glBindBuffer", 34962, 0), Host("glGetIntegerv", 34921, "ptr"),
                            Host("glGetVertexAttribiv", 0, 34338, "ptr"),
                            Host("glGetVertexAttribiv", 0, 34975, "ptr"),
                            Host("glGetVertexAttribPointerv", 0, 34373, "ptr"),
                            Host("glGetVertexAttribiv", 0, 34339, "ptr"),
                            Host("glGetVertexAttribiv", 0, 34341, "ptr"),
                            Host("glGetVertexAttribiv", 0, 34922, "ptr"),
                            Host("glVertexAttribPointer", 0, 1, floats, 1, 0, "ptr"),
                            Host("glGetVertexAttribiv", 1, 34338, "ptr")}));
    EXPECT_EQ(run.CallsOf({"glGetVertexAttribiv"}).size(), 16U + 2U * 4U);
}

TEST_F(CDraw, IndicesComeFromTheRecordOrTheBoundBuffer) {
    const auto arrays = [](CRecordBuilder record) {
        return record.ClientArray(0, 0x10, Bytes(12, 0x11)).ClientArray(1, 0x10, Bytes(12, 0x22));
    };
    trace.Add(2042, arrays(Elements({2, 0}, 0x70)));
    Bind(2004, 34963, 5);
    trace.Add(2042, arrays(Elements({}, 6)));
    const SRunResult run = Run();
    const std::string bytes =
        " [0 <111111111111111111111111:12>] [1 <222222222222222222222222:12>]";
    EXPECT_EQ(run.CallsOf({"glDrawElements"}),
              (Lines{Host("glDrawElements", 4, 2, 5121, "<0200:2>") + bytes,
                     Host("glDrawElements", 4, 2, 5121, 6) + " [0 <:0>] [1 <:0>]"}));
    EXPECT_TRUE(run.Messages().empty()) << run.out;
    EXPECT_EQ(run.CallsOf({"glGetIntegerv"})[1], Host("glGetIntegerv", 34965, "ptr"));
}

TEST_F(CDraw, TheArraysFollowTheTranslatedLocation) {
    trace.Add(2026, trace.Gl().Uint(8));
    trace.Add(2058, trace.Gl().Int(3).Uint(8).String(0x10, "position"));
    trace.Add(2131, trace.Gl().Uint(8));
    trace.Add(2044, trace.Gl().Uint(3));
    Point(3, 0xCD);
    // The captured index is compared with the live location, which is 9.
    trace.Add(2041, Arrays()
                        .ClientArray(0, 0x10, Bytes(8, 0x11))
                        .ClientArray(1, 0x10, Bytes(8, 0x22))
                        .ClientArray(9, 0x10, Bytes(8, 0x33)));
    const SRunResult run = Run();
    EXPECT_TRUE(run.Messages().empty()) << run.out;
    EXPECT_EQ(
        run.CallsOf({"glDrawArrays"}),
        Lines{Host("glDrawArrays", 4, 0, 2) + " [0 <1111111111111111:8>] [1 <2222222222222222:8>] "
                                              "[9 <3333333333333333:8>]"});
}

SRunResult RunViewport(std::uint32_t framebuffer, const std::string& width,
                       const std::string& height) {
    CTraceBuilder trace;
    trace.StartUp(2, 200, 200);
    trace.Add(2005, trace.Gl().Enum(36160).Uint(framebuffer));
    trace.Add(2142, trace.Gl().Int(10).Int(10).Sizei(100).Sizei(100));
    for (int i = 0; i < 2; ++i) trace.Add(2041, trace.Gl().Enum(4).Int(0).Sizei(3));
    SRunOptions options;
    options.script =
        "eglQuerySurface:EGL_WIDTH * " + width + "\neglQuerySurface:EGL_HEIGHT * " + height + "\n";
    SRunResult run = RunTrace(trace, {}, options);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    return run;
}

TEST(Viewport, IsCorrectedOnceWhereTheWindowDiffers) {
    const std::string recorded = Host("glViewport", 10, 10, 100, 100);
    EXPECT_EQ(RunViewport(0, "400", "400").CallsOf({"glViewport"}),
              (Lines{recorded, Host("glViewport", 5, 5, 200, 200)}));
    EXPECT_EQ(RunViewport(0, "200", "300").CallsOf({"glViewport"}),
              (Lines{recorded, Host("glViewport", 10, 6, 100, 150)}));
    EXPECT_EQ(RunViewport(0, "200", "200").CallsOf({"glViewport"}), Lines{recorded});
    EXPECT_EQ(RunViewport(5, "400", "400").CallsOf({"glViewport"}), Lines{recorded})
        << "an application's framebuffer has the size that it was recorded with";
}

TEST(Viewport, ABindAsksForTheCorrectionAgain) {
    CTraceBuilder trace;
    trace.StartUp(2, 200, 200);
    const auto bind = [&](std::uint32_t name) {
        trace.Add(2005, trace.Gl().Enum(36160).Uint(name));
    };
    trace.Add(2142, trace.Gl().Int(0).Int(0).Sizei(200).Sizei(200));
    bind(5);
    trace.Add(2041, trace.Gl().Enum(4).Int(0).Sizei(3));
    bind(0);
    trace.Add(2041, trace.Gl().Enum(4).Int(0).Sizei(3));
    SRunOptions options;
    options.script = "eglQuerySurface:EGL_WIDTH * 400\neglQuerySurface:EGL_HEIGHT * 400\n";
    const SRunResult run = RunTrace(trace, {}, options);
    const std::string draw = Host("glDrawArrays", 4, 0, 3);
    EXPECT_EQ(run.CallsOf({"glViewport", "glDrawArrays"}),
              (Lines{Host("glViewport", 0, 0, 200, 200), draw, Host("glViewport", 0, 0, 400, 400),
                     draw}));
}

}  // namespace
}  // namespace kestrail
