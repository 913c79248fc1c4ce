#include <algorithm>

#include "tests/program/program_test.h"

namespace kestrail {
namespace {

constexpr unsigned arrayBuffer = 34962;
constexpr unsigned elementBuffer = 34963;
constexpr unsigned fence = 37143;
constexpr unsigned bytes = 5121;
constexpr unsigned floats = 5126;

const std::string unchecked = "glGetError() = 0";
const std::string failed = error + "PlayCall Error: Unrecognized/Error call";

class CEs3 : public CTraceTest {
protected:
    CEs3() : CTraceTest(TraceOf(3)) {}

    void Fence(std::uint32_t recorded) {
        trace.Add(5213, trace.Gl().Pointer(recorded).Enum(fence).Bitfield(0));
    }
    void Wait(std::uint32_t sync) {
        trace.Add(5217, trace.Gl().Pointer(sync).Bitfield(0).Value(tag::Uint64, 77));
    }
    void ReadBuffer(std::uint32_t recordedError = 0) {
        trace.Add(5143, trace.Gl(recordedError).Enum(1029));
    }
    void RangeElements(const Bytes& indices, std::uint64_t pointer) {
        trace.Add(5144,
                  trace.Gl().Enum(4).Uint(0).Uint(9).Sizei(2).Enum(bytes).Data(pointer, indices));
    }
    void InstancedElements(const Bytes& indices, std::uint64_t pointer, std::uint64_t offset) {
        trace.Add(5212, trace.Gl()
                            .Enum(4)
                            .Sizei(2)
                            .Enum(bytes)
                            .Sizei(3)
                            .Data(pointer, indices)
                            .Pointer(offset));
    }
    void ClientArray(std::uint32_t index) {
        One(2044, index);
        trace.Add(2141, trace.Gl().Uint(index).Int(1).Enum(floats).Boolean(false).Sizei(8).Pointer(
                            0xAB00));
    }
};

TEST_F(CEs3, ARecordedErrorFailsBeforeTheContextIsLookedAt) {
    trace = CTraceBuilder();
    ReadBuffer(1282);
    ReadBuffer();
    const Lines call = {message + "Error call:glReadBuffer 5143", failed};
    for (const Lines& arguments : {Lines{}, Lines{"--noSkipCallOnError"}}) {
        const SRunResult run = Run(arguments);
        Lines messages = run.Messages();
        if (!arguments.empty()) messages.erase(messages.begin());
        EXPECT_EQ(messages,
                  (Lines{message + "Es3 Call:Error. (Recorded GL_ERROR) glReadBuffer", call[0],
                         call[1], message + "Es3 Call:Error. Invalid context", call[0], call[1]}));
        EXPECT_EQ(run.CallsOf({"glReadBuffer", "glGetIntegerv", "glGetError"}), Lines{});
    }
}

TEST_F(CEs3, TheDefaultFramebufferIsReadWithoutAWord) {
    ReadBuffer();
    trace.Add(2016, trace.Gl().Bitfield(1));
    const SRunResult run = Run();
    EXPECT_EQ(run.CallsOf({"glGetIntegerv", "glReadBuffer", "glClear"}),
              (Lines{Host("glGetIntegerv", 36006, "ptr"), Host("glReadBuffer", 1029),
                     Host("glClear", 1)}));
    EXPECT_FALSE(run.Printed("Default FBO")) << run.out;
}

TEST_F(CEs3, ADriversErrorIsToldInTheWordsOfEs2) {
    ReadBuffer();
    trace.Add(5153, trace.Gl().Enum(35887).Uint(4));
    const SRunResult run = RunScripted("glGetError * 0x502\n");
    EXPECT_EQ(run.Messages(), (Lines{message + "OGLES2 Error Code: 0x502, Call= glReadBuffer",
                                     message + "Error call:glReadBuffer 5143", failed,
                                     message + "OGLES2 Error Code: 0x502, Call= glBeginQuery",
                                     message + "Error call:glBeginQuery 5153", failed}));
    EXPECT_EQ(run.CallsOf({"glBeginQuery"}), Lines{});
}

TEST_F(CEs3, UnmapBufferFailsWithoutTheHost) {
    ReadBuffer();
    trace.Add(5157, trace.Gl().Boolean(true).Enum(arrayBuffer));
    const SRunResult run = Run();
    EXPECT_EQ(run.Messages(), (Lines{message + "Error call:glUnmapBuffer 5157", failed}));
    EXPECT_EQ(run.CallsOf({"glReadBuffer", "glUnmapBuffer", "glGetError"}),
              (Lines{Host("glReadBuffer", 1029), unchecked}));
}

TEST_F(CEs3, NamesThatWereNeverMadeTranslateToTheMissOfTheirTable) {
    trace.Add(5178, trace.Gl().Enum(35345).Uint(1).Uint(9).Intptr(16).Sizeiptr(32));
    trace.Add(5179, trace.Gl().Enum(35345).Uint(1).Uint(9));
    One(5171, 9);
    List(5172, {9});
    Two(5225, 2, 9);
    List(5223, {9});
    Wait(9);
    trace.Add(5215, trace.Gl().Pointer(9));
    // Queries are not made here, so their recorded names go as they stand.
    List(5150, {9});
    List(5151, {9});
    EXPECT_EQ(Run().GlCalls(),
              (Lines{Host("glBindBufferRange", 35345, 1, 4294967295U, 16, 32),
                     Host("glBindBufferBase", 35345, 1, 4294967295U),
                     Host("glBindVertexArray", 4294967295U),
                     Host("glDeleteVertexArrays", 1, "{4294967295}"), Host("glBindSampler", 2, 0),
                     Host("glDeleteSamplers", 1, "{0}"), Host("glWaitSync", 0, 0, 77),
                     Host("glDeleteSync", 0), Host("glDeleteQueries", 1, "{9}")}));
}

TEST_F(CEs3, TheNameZeroStaysZero) {
    One(5171, 0);
    Two(5225, 2, 0);
    trace.Add(5179, trace.Gl().Enum(35345).Uint(1).Uint(0));
    Wait(0);
    EXPECT_EQ(Run().GlCalls(),
              (Lines{Host("glBindVertexArray", 0), Host("glBindSampler", 2, 0),
                     Host("glBindBufferBase", 35345, 1, 0), Host("glWaitSync", 0, 0, 77)}));
}

TEST_F(CEs3, GensStoreEachElementAndDeletesDropIt) {
    List(5173, {7, 8, 9});
    One(5171, 8);
    List(5172, {9, 8});
    One(5171, 7);
    One(5171, 8);
    List(5222, {7, 8});
    Two(5225, 0, 8);
    List(5223, {8});
    Two(5225, 1, 8);
    Two(5225, 2, 7);
    // A repeat overwrites the translation.
    List(5222, {7});
    Two(5225, 3, 7);
    EXPECT_EQ(
        Run().GlCalls(),
        (Lines{Host("glGenVertexArrays", 3, "{101, 102, 103}"), Host("glBindVertexArray", 102),
               Host("glDeleteVertexArrays", 2, "{103, 102}"), Host("glBindVertexArray", 101),
               Host("glBindVertexArray", 4294967295U), Host("glGenSamplers", 2, "{104, 105}"),
               Host("glBindSampler", 0, 105), Host("glDeleteSamplers", 1, "{105}"),
               Host("glBindSampler", 1, 0), Host("glBindSampler", 2, 104),
               Host("glGenSamplers", 1, "{106}"), Host("glBindSampler", 3, 106)}));
}

TEST_F(CEs3, SyncsKeepAllBitsOfTheirPointers) {
    Fence(5);
    Fence(6);
    // A recorded value is kept in 32 bits; the host's own pointers are not recorded.
    trace.Add(5216, trace.Gl().Enum(37146).Pointer(6).Bitfield(1).Value(tag::Uint64, 0x123456789));
    Wait(5);
    trace.Add(5215, trace.Gl().Pointer(5));
    Wait(5);
    Wait(6);
    const SRunResult run = Run();
    EXPECT_EQ(run.GlCalls(),
              (Lines{Host("glFenceSync", fence, 0) + " = sync:1",
                     Host("glFenceSync", fence, 0) + " = sync:2",
                     Host("glClientWaitSync", "sync:2", 1, 0x23456789) + " = 37146",
                     Host("glWaitSync", "sync:1", 0, 77), Host("glDeleteSync", "sync:1"),
                     Host("glWaitSync", 0, 0, 77), Host("glWaitSync", "sync:2", 0, 77)}));
    EXPECT_EQ(run.live.at("syncs"), 1);
}

TEST_F(CEs3, ProgramsAreTranslatedAndUnknownOnesFail) {
    One(2026, 9);
    trace.Add(5210, trace.Gl().Uint(9).Uint(1).Uint(2));
    trace.Add(5210, trace.Gl().Uint(77).Uint(1).Uint(2));
    const SRunResult run = Run();
    EXPECT_EQ(run.CallsOf({"glUniformBlockBinding"}),
              Lines{Host("glUniformBlockBinding", 101, 1, 2)});
    EXPECT_EQ(run.Messages(), (Lines{message + "Error call:glUniformBlockBinding 5210", failed}));
}

TEST_F(CEs3, IndexedDrawsTakeTheirRecordedIndices) {
    RangeElements({3, 1}, 0x70);
    InstancedElements({2, 1}, 0x70, 0x70);
    const SRunResult run = Run();
    EXPECT_EQ(run.CallsOf({"glDrawRangeElements", "glDrawElementsInstanced"}),
              (Lines{Host("glDrawRangeElements", 4, 0, 9, 2, bytes, "<0301:2>"),
                     Host("glDrawElementsInstanced", 4, 2, bytes, "<0201:2>", 3)}));
    EXPECT_TRUE(run.Messages().empty()) << run.out;
}

TEST_F(CEs3, IndexedDrawsTakeTheOffsetIntoABoundBuffer) {
    Bind(2004, elementBuffer, 5);
    RangeElements({}, 6);
    InstancedElements({}, 0, 10);
    const SRunResult run = Run();
    EXPECT_EQ(run.CallsOf({"glDrawRangeElements", "glDrawElementsInstanced"}),
              (Lines{Host("glDrawRangeElements", 4, 0, 9, 2, bytes, 6),
                     Host("glDrawElementsInstanced", 4, 2, bytes, 10, 3)}));
    EXPECT_TRUE(run.Messages().empty()) << run.out;
}

TEST_F(CEs3, IndexedDrawsLookForClientArraysAsEs2Does) {
    ClientArray(0);
    ClientArray(1);
    Bind(2004, arrayBuffer, 7);
    RangeElements({3, 1}, 0x70);
    InstancedElements({2, 1}, 0x70, 0x70);
    const SRunResult run = Run();
    const std::string noData = message +
                               "glDrawElements: No enought Data. No Pointer replaced with real "
                               "memory. glDrawElements would crash.";
    EXPECT_EQ(run.Messages(), (Lines{noData, noData})) << "one a draw: the first ends the loop";
    const Lines asked = {Host("glGetIntegerv", 34965, "ptr"),
                         Host("glGetIntegerv", 34964, "ptr"),
                         Host("glBindBuffer", arrayBuffer, 0),
                         Host("glGetIntegerv", 34921, "ptr"),
                         Host("glGetVertexAttribiv", 0, 34338, "ptr"),
                         Host("glGetVertexAttribiv", 0, 34975, "ptr"),
                         Host("glGetVertexAttribPointerv", 0, 34373, "ptr"),
                         Host("glGetVertexAttribiv", 0, 34339, "ptr"),
                         Host("glGetVertexAttribiv", 0, 34341, "ptr"),
                         Host("glGetVertexAttribiv", 0, 34922, "ptr")};
    for (const char* draw : {"glDrawRangeElements(", "glDrawElementsInstanced("}) {
        const auto at =
            std::find_if(run.calls.begin(), run.calls.end(),
                         [&](const std::string& call) { return call.rfind(draw, 0) == 0; });
        ASSERT_LT(at, run.calls.end() - 2) << draw;
        const Lines before(run.calls.begin(), at);
        const auto start = std::find_end(before.begin(), before.end(), asked.begin(), asked.end());
        EXPECT_NE(start, before.end()) << draw;
        EXPECT_EQ(Lines(before.end() - 2, before.end()),
                  (Lines{Host("glBindBuffer", arrayBuffer, 101), unchecked}));
        EXPECT_EQ(Lines(at + 1, at + 3), (Lines{unchecked, unchecked})) << draw;
    }
}

TEST_F(CEs3, InstancedArraysAreAPlainCallUnlessTheyReadTooFar) {
    ClientArray(0);
    trace.Add(2041, trace.Gl().Enum(4).Int(0).Sizei(3).ClientArray(0, 0x10, Bytes(12, 1)));
    for (const std::int64_t first : {1, 2}) {
        trace.Add(5211, trace.Gl().Enum(4).Int(first).Sizei(2).Sizei(30));
    }
    const SRunResult run = Run();
    const Lines calls = run.CallsOf({"glDrawArraysInstanced", "glBindBuffer"});
    ASSERT_EQ(calls.size(), 3U) << "one, and the two binds of the draw before";
    EXPECT_EQ(calls.back(), Host("glDrawArraysInstanced", 4, 1, 2, 30));
    EXPECT_EQ(run.Messages(), (Lines{message + "Error call:glDrawArraysInstanced 5211", failed}));
}

TEST_F(CEs3, ARangeIsReadToItsEnd) {
    ClientArray(0);
    trace.Add(2041, trace.Gl().Enum(4).Int(0).Sizei(9).ClientArray(0, 0x10, Bytes(36, 1)));
    const auto range = [&](std::uint32_t last) {
        trace.Add(5144, trace.Gl().Enum(4).Uint(0).Uint(last).Sizei(2).Enum(bytes).Data(
                            0x70, Bytes{0, 1}));
    };
    range(8);
    range(9);
    const SRunResult run = Run();
    EXPECT_EQ(run.CallsOf({"glDrawRangeElements"}).size(), 1U);
    EXPECT_EQ(run.CallsOf({"glVertexAttribPointer"}).size(), 2U);
}

TEST_F(CEs3, ImagesComeFromTheBufferThatTheHostHasBound) {
    constexpr std::uint32_t unpackBuffer = 0x88EC;
    const auto image = [&] {
        trace.Add(2111, trace.Gl()
                            .Enum(3553)
                            .Int(0)
                            .Int(0)
                            .Int(0)
                            .Sizei(1)
                            .Sizei(1)
                            .Enum(6408)
                            .Enum(bytes)
                            .Data(0x40, Bytes()));
    };
    Bind(2004, unpackBuffer, 7);
    image();
    // Through ES1, of which this API's calls know nothing.
    Bind(3004, unpackBuffer, 0);
    image();
    const SRunResult run = Run();
    EXPECT_EQ(run.CallsOf({"glTexSubImage2D"}).size(), 1U);
    EXPECT_EQ(run.Messages(), (Lines{message + "Error call:glTexSubImage2D 2111", failed}));
}

TEST_F(CEs3, AContextThatIsNotMadeCurrentHasNoSay) {
    // Of the second context the player knows no row length, which the first one has: 3 pixels.
    const auto image = [&] { trace.Add(2111, trace.ImagePart(0, 0, 1, 2, 6408, Bytes(8))); };
    trace.Add(2091, trace.Gl().Enum(0x0CF2).Int(3));
    image();
    trace.CreateContext(3, 0x301);
    trace.MakeCurrent(CTraceBuilder::surface, 0x301);
    image();
    EXPECT_EQ(Run().CallsOf({"glTexSubImage2D"}).size(), 1U);
    SRunOptions options;
    options.script = "eglMakeCurrent 2 0\n";
    EXPECT_EQ(Run({}, options).CallsOf({"glTexSubImage2D"}), Lines{});
}

TEST_F(CEs3, TheRestartIndexIsNoVertex) {
    ClientArray(0);
    const auto draw = [&] {
        trace.Add(2042, trace.Gl()
                            .Enum(4)
                            .Sizei(4)
                            .Enum(bytes)
                            .Data(0x70, Bytes{0, 1, 255, 2})
                            .Pointer(0x70)
                            .ClientArray(0, 0x10, Bytes(12, 1)));
    };
    draw();
    trace.Add(2043, trace.Gl().Enum(0x8D69));
    draw();
    const SRunResult run = RunScripted("glIsEnabled * 1\n");
    EXPECT_EQ(run.CallsOf({"glDrawElements", "glIsEnabled"}).size(), 2U);
    EXPECT_EQ(run.Messages(), (Lines{message + "Error call:glDrawElements 2042", failed}));
}

TEST_F(CEs3, NothingIsWrittenBehindAMappedRange) {
    Bind(2004, arrayBuffer, 7);
    trace.Add(2013, trace.Gl().Enum(arrayBuffer).Sizeiptr(64).Data(0, Bytes()).Enum(35044));
    const auto mapAndUnmap = [&](std::uint32_t access, const Bytes& written) {
        trace.Add(
            5169,
            trace.Gl().Pointer(0x10).Enum(arrayBuffer).Intptr(48).Sizeiptr(16).Bitfield(access));
        trace.Add(4005, trace.Ext().Boolean(true).Enum(arrayBuffer).Data(0x10, written));
    };
    mapAndUnmap(2, Bytes(16, 5));
    mapAndUnmap(2, Bytes(17, 5));
    mapAndUnmap(1, Bytes(1, 5));
    // Mapped whole, the buffer begins where the range did.
    trace.Add(4004, trace.Ext().Pointer(0x10).Enum(arrayBuffer).Enum(35001));
    trace.Add(4005, trace.Ext().Boolean(true).Enum(arrayBuffer).Data(0x10, Bytes(17, 5)));
    const SRunResult run = Run();
    const Lines refused = {message + "Error call:glUnmapBufferOES 4005", failed};
    EXPECT_EQ(run.Messages(), (Lines{refused[0], refused[1], refused[0], refused[1]}));
    EXPECT_EQ(run.CallsOf({"glUnmapBufferOES"}).size(), 2U);
}

TEST_F(CEs3, IndexedDrawsCorrectTheViewport) {
    trace = CTraceBuilder();
    trace.StartUp(3, 200, 200);
    trace.Add(2142, trace.Gl().Int(10).Int(10).Sizei(100).Sizei(100));
    trace.Add(5211, trace.Gl().Enum(4).Int(1).Sizei(2).Sizei(3));
    RangeElements({0, 0}, 0x70);
    InstancedElements({0, 0}, 0x70, 0x70);
    const SRunResult run =
        RunScripted("eglQuerySurface:EGL_WIDTH * 400\neglQuerySurface:EGL_HEIGHT * 400\n");
    EXPECT_EQ(run.CallsOf({"glViewport", "glDrawArraysInstanced", "glDrawRangeElements",
                           "glDrawElementsInstanced"}),
              (Lines{Host("glViewport", 10, 10, 100, 100),
                     Host("glDrawArraysInstanced", 4, 1, 2, 3), Host("glViewport", 5, 5, 200, 200),
                     Host("glDrawRangeElements", 4, 0, 9, 2, bytes, "<0000:2>"),
                     Host("glDrawElementsInstanced", 4, 2, bytes, "<0000:2>", 3)}));
}

}  // namespace
}  // namespace kestrail
