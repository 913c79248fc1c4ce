#include <algorithm>

#include "tests/program/program_test.h"

namespace kestrail {
namespace {

constexpr unsigned arrayBuffer = 34962;
constexpr unsigned texture2D = 3553;
constexpr unsigned floats = 5126;

class CEs1 : public CTraceTest {
protected:
    CEs1() : CTraceTest(TraceOf(1)) {}

    void Clear() { trace.Add(3009, trace.Gl().Bitfield(1)); }
    void VertexPointer() { trace.Add(3143, trace.Gl().Int(3).Enum(floats).Sizei(12).Pointer(64)); }
    void PointSizePointer() { trace.Add(3145, trace.Gl().Enum(floats).Sizei(4).Pointer(16)); }
};

const std::string unchecked = "es1.glGetError() = 0";

TEST_F(CEs1, BuffersAreDeletedOneByOneAndKeepTheirTranslation) {
    List(3053, {7, 8});
    List(3028, {8, 7, 55});
    Bind(3004, arrayBuffer, 8);
    Bind(3004, arrayBuffer, 9);
    Bind(3004, arrayBuffer, 0);
    EXPECT_EQ(
        Run().GlCalls(),
        (Lines{
            Host("es1.glGenBuffers", 2, "{101, 102}"), Host("es1.glDeleteBuffers", 1, "{102}"),
            Host("es1.glDeleteBuffers", 1, "{101}"), Host("es1.glDeleteBuffers", 1, "{4294967295}"),
            Host("es1.glBindBuffer", arrayBuffer, 102), Host("es1.glGenBuffers", 1, "{103}"),
            Host("es1.glBindBuffer", arrayBuffer, 103), Host("es1.glBindBuffer", arrayBuffer, 0)}));
}

TEST_F(CEs1, TexturesAreForgottenWithTheirDeletion) {
    List(3054, {4, 5});
    // The first is known already, so none is made.
    List(3054, {4, 6});
    List(3029, {5, 77});
    Bind(3005, texture2D, 4);
    Bind(3005, texture2D, 5);
    Bind(3005, texture2D, 0);
    EXPECT_EQ(
        Run().GlCalls(),
        (Lines{
            Host("es1.glGenTextures", 2, "{101, 102}"), Host("es1.glDeleteTextures", 2, "{102, 0}"),
            Host("es1.glBindTexture", texture2D, 101), Host("es1.glGenTextures", 1, "{103}"),
            Host("es1.glBindTexture", texture2D, 103), Host("es1.glBindTexture", texture2D, 0)}));
}

TEST_F(CEs1, NamesAreNotThoseOfEs2) {
    Bind(2004, arrayBuffer, 7);
    Bind(3004, arrayBuffer, 7);
    EXPECT_EQ(Run().CallsOf({"glBindBuffer", "es1.glBindBuffer"}),
              (Lines{Host("glBindBuffer", arrayBuffer, 101),
                     Host("es1.glBindBuffer", arrayBuffer, 102)}));
}

TEST_F(CEs1, ClipPlanesTakeTheRecordedEquation) {
    trace.Add(3016, trace.Gl().Enum(12288).RealItem(tag::Float, 0x10, {0.5F, 0, -1, 2}));
    trace.Add(3017, trace.Gl().Enum(12289).Item(tag::Fixed, 0x10, {65536, -2, 3, -4}));
    EXPECT_EQ(Run().GlCalls(), (Lines{Host("es1.glClipPlanef", 12288, "{0.5, 0, -1, 2}"),
                                      Host("es1.glClipPlanex", 12289, "{65536, -2, 3, -4}")}));
}

TEST_F(CEs1, CallsNeedNoContextAndNoDefaultFramebuffer) {
    trace = CTraceBuilder();
    Clear();
    const SRunResult run = Run();
    EXPECT_TRUE(run.Messages().empty()) << run.out;
    EXPECT_EQ(run.CallsOf({"es1.glClear", "glGetIntegerv", "es1.glGetIntegerv"}),
              Lines{Host("es1.glClear", 1)});
}

TEST_F(CEs1, ADriversErrorHasNoWordsOfItsOwn) {
    // The question isn't played, and the error isn't asked for behind it.
    trace.Add(3058, trace.Gl().Enum(3379).Array(tag::Int, 0x10, {1}));
    Clear();
    Clear();
    const SRunResult run = RunScripted("glGetError 1 0x502\n");
    EXPECT_EQ(run.Messages(), (Lines{message + "Error call:glClear 3009",
                                     error + "PlayCall Error: Unrecognized/Error call"}));
    EXPECT_EQ(run.CallsOf({"es1.glGetIntegerv", "es1.glClear", "es1.glGetError"}),
              (Lines{Host("es1.glClear", 1), "es1.glGetError() = 1282", Host("es1.glClear", 1),
                     unchecked}));
}

TEST_F(CEs1, SomeCallsDrainTheErrorsBeforeThem) {
    VertexPointer();
    trace.Add(3022, trace.Gl().Int(4).Enum(5121).Sizei(4).Pointer(8));
    trace.Add(3140, trace.ImagePart(1, 2, 1, 1, 6408, Bytes{1, 2, 3, 4}));
    // Of both looks around glVertexPointer, and of the one before glTexSubImage2D, nothing comes.
    const SRunResult run =
        RunScripted("glGetError 1 0x500\nglGetError 2 0x501\nglGetError 5 0x505\n");
    EXPECT_TRUE(run.Messages().empty()) << run.out;
    EXPECT_EQ(
        run.CallsOf(
            {"es1.glGetError", "es1.glVertexPointer", "es1.glColorPointer", "es1.glTexSubImage2D"}),
        (Lines{"es1.glGetError() = 1280", Host("es1.glVertexPointer", 3, floats, 12, 64),
               "es1.glGetError() = 1281", unchecked, Host("es1.glColorPointer", 4, 5121, 4, 8),
               unchecked, "es1.glGetError() = 1285",
               Host("es1.glTexSubImage2D", texture2D, 0, 1, 2, 1, 1, 6408, 5121, "<01020304:4>"),
               unchecked}));
}

TEST_F(CEs1, ThePointSizePointerResolvesTheExtensionsOnce) {
    PointSizePointer();
    PointSizePointer();
    const SRunResult run = Run();
    const std::string asked = Host("es1.glGetString", 7939);
    const std::string pointed = Host("es1.glPointSizePointerOES", floats, 4, 16);
    EXPECT_EQ(run.GlCalls(), (Lines{asked, pointed, pointed}));
    const auto at = [&](const std::string& line) {
        return std::find(run.calls.begin(), run.calls.end(), line);
    };
    const auto fetched = at(Host("eglGetProcAddress", "\"glMatrixIndexPointerOES\""));
    ASSERT_NE(fetched, run.calls.end());
    EXPECT_LT(at(asked), fetched);
    EXPECT_LT(fetched, at(pointed));
}

TEST_F(CEs1, ReadPixelsIsPlayedWhereTheRecordHasRoom) {
    const auto read = [&] {
        trace.Add(3114, trace.Gl().Int(1).Int(2).Sizei(3).Sizei(4).Enum(6408).Enum(5121).Data(
                            0x10, Bytes(48)));
    };
    read();
    // A context of ES3 takes what the host writes between rows and ahead of them, too.
    for (const std::uint32_t name : {0x0D02U, 0x0D03U, 0x0D04U}) {
        trace.Add(3103, trace.Gl().Enum(name).Int(4));
        read();
        trace.Add(3103, trace.Gl().Enum(name).Int(0));
    }
    const SRunResult run = Run();
    EXPECT_EQ(run.CallsOf({"es1.glReadPixels"}),
              Lines{Host("es1.glReadPixels", 1, 2, 3, 4, 6408, 5121, "ptr")});
    EXPECT_EQ(run.Messages().size(), 6U) << run.out;
    // What the host doesn't take it doesn't write by.
    const std::string refusing =
        "glGetIntegerv:3330 * 0\nglGetIntegerv:3331 * 0\nglGetIntegerv:3332 * 0\n";
    EXPECT_EQ(RunScripted(refusing).CallsOf({"es1.glReadPixels"}).size(), 4U);
    // Backwards, rows are skipped ahead of the bytes.
    trace.Add(3103, trace.Gl().Enum(0x93A4).Int(1)).Add(3103, trace.Gl().Enum(0x0D03).Int(1));
    trace.Add(3114, trace.Gl().Int(1).Int(2).Sizei(3).Sizei(4).Enum(6408).Enum(5121).Data(
                        0x10, Bytes(4800)));
    EXPECT_EQ(Run().CallsOf({"es1.glReadPixels"}).size(), 1U);
}

TEST_F(CEs1, CallsThatFailedWhenRecordedAreLeftOutInSilence) {
    trace.Add(3009, trace.Gl(1281).Bitfield(1));
    trace.Add(3114, trace.Gl(1280));
    for (const Lines& arguments : {Lines{}, Lines{"--noSkipCallOnError"}}) {
        const SRunResult run = RunTrace(trace, arguments);
        EXPECT_TRUE(run.Ok()) << run.Ending();
        EXPECT_EQ(run.GlCalls(), Lines{});
        EXPECT_FALSE(run.Printed("Error call")) << run.out;
    }
}

}  // namespace
}  // namespace kestrail
