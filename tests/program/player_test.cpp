#include "tests/program/program_test.h"

namespace kestrail {
namespace {

CRecordBuilder Clear(const CTraceBuilder& trace, std::uint32_t mask, std::uint32_t recorded = 0) {
    return trace.Gl(recorded).Bitfield(mask);
}

/// Frames 1 to `frames`, each of which clears with its own number as the mask.
CTraceBuilder FramesTrace(unsigned frames) {
    CTraceBuilder trace = Es2Trace();
    for (unsigned frame = 1; frame <= frames; ++frame) {
        trace.Add(2016, Clear(trace, frame));
        trace.SwapBuffers();
    }
    return trace;
}

Lines Clears(const std::vector<unsigned>& masks) {
    Lines lines;
    for (unsigned mask : masks) lines.push_back(Host("glClear", mask));
    return lines;
}

TEST(Player, SkipsTheFramesOfTheRange) {
    const CTraceBuilder trace = FramesTrace(7);
    const struct {
        Lines arguments;
        std::vector<unsigned> played;
        /// The range that is refused, or none.
        std::string refused;
    } cases[] = {
        {{"--skipFramesRangeStart=3", "--skipFramesRangeEnd=5"}, {1, 2, 6, 7}, ""},
        {{"--skipFramesRangeStart=7", "--skipFramesRangeEnd=7"}, {1, 2, 3, 4, 5, 6}, ""},
        {{"--skipFramesRangeStart=2", "--skipFramesRangeEnd=8"}, {1, 2, 3, 4, 5, 6, 7}, "2-8"},
        {{"--skipFramesRangeStart=5"}, {1, 2, 3, 4, 5, 6, 7}, "5-0"},
        {{"--skipFramesRangeStart=5", "--skipFramesRangeEnd=4"}, {1, 2, 3, 4, 5, 6, 7}, "5-4"},
        {{"--skipFramesRangeStart=2", "--skipFramesRangeEnd=5", "--noMemory"},
         {1, 2, 3, 4, 5, 6, 7},
         ""},
    };
    for (const auto& one : cases) {
        const SRunResult run = RunTrace(trace, one.arguments);
        EXPECT_TRUE(run.Ok()) << run.Ending();
        EXPECT_EQ(run.CallsOf({"glClear"}), Clears(one.played))
            << ::testing::PrintToString(one.arguments);
        const std::string refusal = message + "m_skipFrameRange....\n" + message +
                                    "Disabling SkipFrameRange. Range is not valid.  " +
                                    one.refused + "\n\n";
        EXPECT_EQ(run.Printed(refusal), !one.refused.empty()) << run.out;
        const std::size_t first = run.out.find("m_skipFrameRange");
        EXPECT_TRUE(first == std::string::npos ||
                    run.out.find("m_skipFrameRange", first + 1) == std::string::npos);
    }
    // Frame 1 holds the start-up: without it nothing has a context.
    const SRunResult run = RunTrace(trace, {"--skipFramesRangeEnd=5"});
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(run.CallsOf({"glClear", "eglInitialize"}), Lines{}) << run.out;
    EXPECT_TRUE(run.Printed(message + "Es2 Call:Error. Invalid context\n"));
    EXPECT_EQ(run.CallLines().size(), 4U) << "skipped frames print nothing";
}

TEST(Player, LeavesDisabledCallsOutOfWholeLoads) {
    CTraceBuilder trace = FramesTrace(3);
    trace.Disable(6).Disable(10).Disable(99);
    const SRunResult whole = RunTrace(trace);
    EXPECT_TRUE(whole.Ok()) << whole.Ending();
    EXPECT_EQ(whole.CallsOf({"glClear"}), Clears({2}));
    EXPECT_EQ(whole.CallLines().size(), trace.CallCount()) << "their lines are printed";
    EXPECT_TRUE(whole.Messages().empty()) << ::testing::PrintToString(whole.Messages());
    const SRunResult streamed = RunTrace(trace, {"--noMemory"});
    EXPECT_EQ(streamed.CallsOf({"glClear"}), Clears({1, 2, 3}));
}

TEST(Player, ReportsCallsThatNoExecutorTakesAndGoesOn) {
    CTraceBuilder trace = Es2Trace();
    trace.Add(1104, trace.Egl()
                        .Value(tag::EglImage, 3)
                        .Display(CTraceBuilder::display)
                        .Context(CTraceBuilder::context)
                        .EglEnum(0x3140)
                        .Value(tag::EglClientBuffer, 1)
                        .Attributes({}));
    trace.Add(4030, trace.Ext().Int(1).Int(2));
    trace.Add(2016, Clear(trace, 5));
    for (const Lines& arguments : {Lines{}, Lines{"--noMemory"}}) {
        const SRunResult run = RunTrace(trace, arguments);
        EXPECT_TRUE(run.Ok()) << run.Ending();
        const Lines expected = {message + "Error call:eglCreateImageKHR 1104",
                                error + "PlayCall Error: Unrecognized/Error call",
                                message + "Error call:glTexBindStreamQVA 4030",
                                error + "PlayCall Error: Unrecognized/Error call"};
        EXPECT_EQ(run.Messages(), expected);
        EXPECT_EQ(run.CallsOf({"glClear"}), Clears({5}));
    }
}

TEST(Player, CallsThatFailedWhenRecordedAreLeftOutByTheRuleOfTheirFamily) {
    CTraceBuilder trace = Es2Trace();
    trace.Add(1024, trace.Egl(0x3001).EglBoolean(true));
    trace.Add(2016, Clear(trace, 5, 1281));
    trace.Add(3009, Clear(trace, 6, 1281));
    trace.Add(4007, trace.Ext(1281).Uint(0));
    trace.Add(5143, trace.Gl(1281).Enum(1029));
    const Lines es3 = {message + "Es3 Call:Error. (Recorded GL_ERROR) glReadBuffer",
                       message + "Error call:glReadBuffer 5143",
                       error + "PlayCall Error: Unrecognized/Error call"};
    const SRunResult usual = RunTrace(trace);
    EXPECT_TRUE(usual.Ok()) << usual.Ending();
    Lines expected = {message +
                      "Es2 Call: (Original Call return GL_ERROR. Skipped on Playback) glClear"};
    expected.insert(expected.end(), es3.begin(), es3.end());
    EXPECT_EQ(usual.Messages(), expected);
    EXPECT_EQ(usual.CallsOf(
                  {"glClear", "es1.glClear", "eglWaitGL", "glReadBuffer", "glBindVertexArrayOES"}),
              Lines{});

    const SRunResult all = RunTrace(trace, {"--noSkipCallOnError"});
    expected = {"****** NoskipCallOnError enable ******"};
    expected.insert(expected.end(), es3.begin(), es3.end());
    EXPECT_EQ(all.Messages(), expected);
    EXPECT_EQ(all.CallsOf(
                  {"glClear", "es1.glClear", "eglWaitGL", "glReadBuffer", "glBindVertexArrayOES"}),
              Clears({5}));
}

TEST(Player, DriverErrorsFailTheCallOnly) {
    CTraceBuilder trace = Es2Trace();
    trace.Add(2016, Clear(trace, 5));
    trace.Add(2016, Clear(trace, 6));
    SRunOptions options;
    options.script = "glGetError 1 0x502\n";
    const SRunResult run = RunTrace(trace, {}, options);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    const Lines expected = {message + "OGLES2 Error Code: 0x502, Call= glClear",
                            message + "Error call:glClear 2016",
                            error + "PlayCall Error: Unrecognized/Error call"};
    EXPECT_EQ(run.Messages(), expected);
    EXPECT_EQ(run.CallsOf({"glClear"}), Clears({5, 6}));
}

TEST(Player, AnExceptionEndsThePlayback) {
    CTraceBuilder trace = FramesTrace(2);
    SRunOptions options;
    options.script = "eglChooseConfig * fail\neglGetConfigs * fail\n";
    for (const Lines& arguments : {Lines{}, Lines{"--noMemory"}}) {
        const SRunResult run = RunTrace(trace, arguments, options);
        EXPECT_TRUE(run.Ok()) << run.Ending();
        EXPECT_EQ(run.CallLines().size(), 3U) << run.out;
        const std::string last =
            error + "Exception drawing call\n\n" + message + "Aborting Playback....\n";
        ASSERT_GT(run.out.size(), last.size());
        EXPECT_EQ(run.out.substr(run.out.size() - last.size()), last);
    }
}

TEST(Player, ADriverFaultKeepsEveryLineUpToTheGuiltyCall) {
    CTraceBuilder trace = FramesTrace(2);
    SRunOptions options;
    options.script = "glClear 2 crash\n";
    for (const Lines& arguments : {Lines{}, Lines{"--noMemory"}}) {
        const SRunResult run = RunTrace(trace, arguments, options);
        // A sanitizer turns the fault into an exit of its own.
        EXPECT_TRUE(run.signal != 0 || (IsSanitized() && run.status != 0)) << run.Ending();
        const Lines lines = run.CallLines();
        ASSERT_EQ(lines.size(), 8U) << run.out;
        EXPECT_NE(lines.back().find("glClear"), std::string::npos) << lines.back();
        EXPECT_EQ(lines.back(), run.Lines().back());
    }
}

TEST(Player, ADriverThatEndsTheProcessKeepsTheLinesToo) {
    SRunOptions options;
    options.script = "glClear 2 exit\n";
    const SRunResult run = RunTrace(FramesTrace(2), {}, options);
    EXPECT_EQ(run.status, 7) << run.Ending();
    EXPECT_EQ(run.CallLines().size(), 8U) << run.out;
}

TEST(Player, AnEmptyTracePlaysNothing) {
    for (const Lines& arguments : {Lines{}, Lines{"--noMemory"}}) {
        const SRunResult run = RunTrace(CTraceBuilder(), arguments);
        EXPECT_TRUE(run.Ok()) << run.Ending();
        EXPECT_TRUE(run.Messages().empty()) << run.out;
        EXPECT_TRUE(run.calls.empty());
    }
}

TEST(Player, StateRecordsArePlayedFirst) {
    CTraceBuilder trace;
    trace.Thread(1);
    trace.Add(2016, Clear(trace, 1));
    trace.SwapBuffers();
    trace.BeginState();
    trace.Marker(2).StartUp(2, 300, 300);
    trace.Add(2016, Clear(trace, 9));
    trace.Marker(3).EndState();
    const SRunResult run = RunTrace(trace);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(run.CallsOf({"glClear"}), Clears({9, 1})) << run.out;
    const Lines lines = run.CallLines();
    ASSERT_EQ(lines.size(), 8U) << run.out;
    EXPECT_NE(lines[0].find("Frame(P): 1 Call:1 eglGetDisplay"), std::string::npos) << lines[0];
    // Frame 1 is the state block; its last call counts to the next as any frame's does.
    EXPECT_NE(lines[5].find("Frame(P): 2 Call:6 glClear"), std::string::npos) << lines[5];
    const SRunResult skipped =
        RunTrace(trace, {"--skipFramesRangeStart=2", "--skipFramesRangeEnd=2"});
    EXPECT_EQ(skipped.CallsOf({"glClear"}), Clears({9}));
}

}  // namespace
}  // namespace kestrail
