#include "tests/program/program_test.h"

namespace kestrail {
namespace {

CRecordBuilder Source(const CTraceBuilder& trace, const std::vector<std::string>& texts) {
    std::vector<std::int64_t> lengths;
    for (const std::string& text : texts) {
        lengths.push_back(static_cast<std::int64_t>(text.size()));
    }
    return trace.Gl()
        .Uint(3)
        .Sizei(static_cast<std::int64_t>(texts.size()))
        .Strings(0x10, texts)
        .Array(tag::Int, 0x10, lengths);
}

TEST(Es2, ShaderSourcesAreJoinedAndOverridden) {
    CTraceBuilder trace = Es2Trace();
    trace.Add(2027, trace.Gl().Uint(3).Enum(35633));
    trace.Add(2099, Source(trace, {"void main", "() {}\n"}));
    trace.Add(2099, Source(trace, {"replaced"}));
    trace.Add(2099, Source(trace, {"left out"}));
    trace.Add(2099, Source(trace, {"emptied"}));
    trace.OverrideText(8, "longer than the recorded one").Disable(9).OverrideText(77, "nowhere");
    trace.OverrideText(10, "");
    const std::string joined = Host("glShaderSource", 101, 1, "{\"void main() {}\\n\"}", "{15}");
    const SRunResult whole = RunTrace(trace);
    EXPECT_TRUE(whole.Ok()) << whole.Ending();
    EXPECT_EQ(
        whole.CallsOf({"glShaderSource"}),
        (Lines{joined, Host("glShaderSource", 101, 1, "{\"longer than the recorded one\"}", "{28}"),
               Host("glShaderSource", 101, 1, "{\"\"}", "{0}")}));
    // While streaming no call is marked as edited.
    const SRunResult streamed = RunTrace(trace, {"--noMemory"});
    EXPECT_EQ(streamed.CallsOf({"glShaderSource"}),
              (Lines{joined, Host("glShaderSource", 101, 1, "{\"replaced\"}", "{8}"),
                     Host("glShaderSource", 101, 1, "{\"left out\"}", "{8}"),
                     Host("glShaderSource", 101, 1, "{\"emptied\"}", "{7}")}));
}

TEST(Es2, PartsThatNoImageHasRoomForAreToldOfWhileLoading) {
    CTraceBuilder trace = Es2Trace();
    trace.Add(2007, trace.Gl().Enum(3553).Uint(7));
    const auto sized = [&](CRecordBuilder record, std::int64_t width) {
        return record.Sizei(width).Sizei(1);
    };
    trace.Add(2106, sized(trace.Gl().Enum(3553).Int(0).Int(6409), 2)
                        .Int(0)
                        .Enum(6409)
                        .Enum(5121)
                        .Data(1, Bytes(2))
                        .Int(1));
    trace.Add(2111, sized(trace.Gl().Enum(3553).Int(0).Int(0).Int(0), 3)
                        .Enum(6409)
                        .Enum(5121)
                        .Data(1, Bytes(4)));
    const std::string told = message + "Processing File....\n" + error +
                             "glTexSubImage2D: trying to update a texture out of limits.\n" +
                             message + "Processing File... Done\n";
    EXPECT_TRUE(RunTrace(trace).Printed(told));
    EXPECT_FALSE(RunTrace(trace, {"--noMemory"}).Printed("out of limits"));
}

TEST(Es2, AFailedLinkIsReportedOnly) {
    CTraceBuilder trace = Es2Trace();
    trace.Add(2026, trace.Gl().Uint(9));
    trace.Add(2090, trace.Gl().Uint(9));
    trace.Add(2131, trace.Gl().Uint(9));
    SRunOptions options;
    options.script = "glGetProgramiv:GL_LINK_STATUS * 0\nglGetProgramInfoLog * no main\n";
    const SRunResult run = RunTrace(trace, {}, options);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(
        run.GlCalls(),
        (Lines{"glCreateProgram() = 101", Host("glLinkProgram", 101),
               Host("glGetProgramiv", 101, 35714, "ptr"), Host("glGetProgramiv", 101, 35716, "ptr"),
               Host("glGetProgramiv", 101, 35717, "ptr"),
               Host("glGetProgramInfoLog", 101, 400, "NULL", "ptr"),
               Host("glGetAttachedShaders", 101, 2, "ptr", "ptr"), Host("glUseProgram", 101)}));
    EXPECT_EQ(run.Messages(), (Lines{message + "Playback Link Status: 0 <Link Program: 101> "
                                               "Shaders(77,0)     ",
                                     " Log: no main"}));
}

TEST(Es2, UseProgramChecksNoErrorAndTheCompilerReleaseDropsOne) {
    CTraceBuilder trace = Es2Trace();
    trace.Add(2131, trace.Gl().Uint(0));
    trace.Add(2094, trace.Gl());
    SRunOptions options;
    options.script = "glGetError 1 0x500\nglGetError 2 0\n";
    const SRunResult run = RunTrace(trace, {}, options);
    EXPECT_TRUE(run.Messages().empty()) << run.out;
    EXPECT_EQ(run.CallsOf({"glUseProgram", "glReleaseShaderCompiler", "glGetError"}),
              (Lines{"glUseProgram(0)", "glReleaseShaderCompiler()", "glGetError() = 1280",
                     "glGetError() = 0"}));
}

TEST(Es2, BuffersAndImagesKeepNullAndOffsets) {
    CTraceBuilder trace = Es2Trace();
    const auto image = [&](std::uint64_t pointer, const Bytes& bytes, std::int64_t alignment) {
        trace.Add(2106, trace.Gl()
                            .Enum(3553)
                            .Int(0)
                            .Int(6408)
                            .Sizei(1)
                            .Sizei(1)
                            .Int(0)
                            .Enum(6408)
                            .Enum(5121)
                            .Data(pointer, bytes)
                            .Int(alignment));
    };
    trace.Add(2013, trace.Gl().Enum(34962).Sizeiptr(4).Data(0, Bytes{}).Enum(35044));
    trace.Add(2013, trace.Gl().Enum(34962).Sizeiptr(4).Data(0x10, Bytes{1, 2, 3, 4}).Enum(35044));
    trace.Add(2014, trace.Gl().Enum(34962).Intptr(8).Sizeiptr(2).Data(0x10, Bytes{5, 6}));
    image(0, {}, 4);
    image(0x10, {9, 8, 7, 6}, 4);
    const SRunResult run = RunTrace(trace);
    EXPECT_EQ(run.CallsOf({"glBufferData", "glBufferSubData", "glTexImage2D"}),
              (Lines{Host("glBufferData", 34962, 4, "NULL", 35044),
                     Host("glBufferData", 34962, 4, "<01020304:4>", 35044),
                     Host("glBufferSubData", 34962, 8, 2, "<0506:2>"),
                     Host("glTexImage2D", 3553, 0, 6408, 1, 1, 0, 6408, 5121, "NULL"),
                     Host("glTexImage2D", 3553, 0, 6408, 1, 1, 0, 6408, 5121, "<09080706:4>")}));
}

TEST(Es2, TheRecordedAlignmentIsAppliedBeforeAnImage) {
    CTraceBuilder trace = Es2Trace();
    const auto image = [&](std::int64_t alignment) {
        trace.Add(2106, trace.Image(1, 2, 6407, Bytes(8, 1), alignment));
    };
    trace.Add(2091, trace.Gl().Enum(3317).Int(2));
    image(2);
    image(1);
    const SRunResult run = RunTrace(trace);
    Lines aligned;
    std::string current = "4";
    for (const std::string& call : run.CallsOf({"glPixelStorei", "glTexImage2D"})) {
        if (call.rfind("glPixelStorei(3317, ", 0) == 0) {
            current = call.substr(20, call.size() - 21);
        } else {
            aligned.push_back(current);
        }
    }
    EXPECT_EQ(aligned, (Lines{"2", "1"})) << "what is in force when the image is read";
}

TEST(Es2, NoContextMeansNoCall) {
    CTraceBuilder trace;
    trace.Add(2016, trace.Gl().Bitfield(1));
    const SRunResult run = RunTrace(trace);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(run.Messages(), (Lines{message + "Es2 Call:Error. Invalid context",
                                     message + "Error call:glClear 2016",
                                     error + "PlayCall Error: Unrecognized/Error call"}));
    EXPECT_TRUE(run.CallsOf({"glClear", "glGetIntegerv"}).empty());
}

}  // namespace
}  // namespace kestrail
