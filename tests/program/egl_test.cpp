#include "tests/program/program_test.h"

namespace kestrail {
namespace {

Lines EglCalls(const SRunResult& run) {
    Lines found;
    for (const std::string& call : run.calls) {
        if (call.rfind("egl", 0) == 0 && call.rfind("eglGetError", 0) != 0) found.push_back(call);
    }
    return found;
}

/// Host calls by the entries alone, from the nth eglMakeCurrent on.
Lines EntriesFrom(const SRunResult& run, const std::string& first) {
    Lines found;
    bool started = false;
    for (const std::string& call : run.calls) {
        started = started || call.rfind(first, 0) == 0;
        if (started) found.push_back(call.substr(0, call.find('(')));
    }
    return found;
}

constexpr std::uint32_t dpy = CTraceBuilder::display;
constexpr std::uint32_t srf = CTraceBuilder::surface;
constexpr std::uint32_t ctx = CTraceBuilder::context;

CTraceBuilder ListedTrace() {
    CTraceBuilder trace;
    trace.SetConfigAttributes({0x3024, 8, 0x3038});
    return trace;
}

TEST(Egl, StartsUpOnLiveHandles) {
    CTraceBuilder trace = ListedTrace();
    trace.StartUp(2, 300, 300);
    trace.SwapBuffers();
    const Lines expected = {
        "eglGetDisplay(0) = display:1",
        "eglInitialize(display:1, NULL, NULL) = 1",
        "eglChooseConfig(display:1, {12324, 8, 12344}, ptr, 1, ptr)",
        "eglInitialize(display:1, NULL, NULL) = 1",
        "eglCreateContext(display:1, config:1, 0, {12440, 2, 12344}) = context:1",
        "eglInitialize(display:1, NULL, NULL) = 1",
        "eglCreateWindowSurface(display:1, config:1, 0, NULL) = surface:1",
        "eglQuerySurface(display:1, surface:1, 12375, ptr)",
        "eglQuerySurface(display:1, surface:1, 12374, ptr)",
        "eglMakeCurrent(display:1, surface:1, surface:1, context:1) = 1",
        "eglQuerySurface(display:1, surface:1, 12375, ptr)",
        "eglQuerySurface(display:1, surface:1, 12374, ptr)",
        "eglSwapBuffers(display:1, surface:1) = 1",
    };
    for (const Lines& arguments : {Lines{}, Lines{"--noMemory"}}) {
        const SRunResult run = RunTrace(trace, arguments);
        EXPECT_TRUE(run.Ok()) << run.Ending();
        EXPECT_EQ(EglCalls(run), expected);
        EXPECT_TRUE(run.Messages().empty()) << run.out;
    }
}

TEST(Egl, ChecksTheErrorsInOrder) {
    CTraceBuilder trace = ListedTrace();
    trace.StartUp(2, 300, 300);
    const SRunResult run = RunTrace(trace);
    const Lines expected = {"eglGetDisplay",    "eglGetError",
                            "eglInitialize",    "eglGetError",
                            "eglChooseConfig",  "eglGetError",
                            "eglGetError",      "eglInitialize",
                            "eglCreateContext", "eglGetError",
                            "eglGetError",      "eglInitialize",
                            "eglGetError",      "eglCreateWindowSurface",
                            "eglGetError",      "eglQuerySurface",
                            "eglQuerySurface",  "eglMakeCurrent",
                            "eglGetError",      "eglGetError",
                            "eglQuerySurface",  "eglGetError",
                            "eglQuerySurface",  "eglGetError",
                            "eglGetError"};
    EXPECT_EQ(EntriesFrom(run, "eglGetDisplay"), expected);
}

TEST(Egl, SyncTakesTheIntervalOver) {
    CTraceBuilder trace = ListedTrace();
    trace.StartUp(2, 300, 300);
    trace.Add(1029, trace.Egl().EglBoolean(true).Display(dpy).EglInt(2));
    const SRunResult usual = RunTrace(trace);
    EXPECT_EQ(usual.CallsOf({"eglSwapInterval"}), Lines{"eglSwapInterval(display:1, 2) = 1"});
    const SRunResult sync = RunTrace(trace, {"--sync"});
    EXPECT_EQ(sync.CallsOf({"eglSwapInterval"}), Lines{"eglSwapInterval(display:1, 0) = 1"});
    EXPECT_TRUE(sync.Printed("****** Sync enabled ******\n"));
    EXPECT_TRUE(sync.Printed("****** Sync enable ******\n"));
}

TEST(Egl, ARecordedSurfaceIsCreatedOnce) {
    CTraceBuilder trace = ListedTrace();
    trace.StartUp(2, 300, 300).CreateWindowSurface(300, 300).CreateWindowSurface(300, 300, 0x401);
    const SRunResult run = RunTrace(trace);
    EXPECT_EQ(run.CallsOf({"eglCreateWindowSurface"}).size(), 2U);
    EXPECT_EQ(run.CallsOf({"eglChooseConfig"}).size(), 1U) << "the choice is kept";
}

TEST(Egl, OneWordOfQuerySurfaceRepairsTheRecordedSize) {
    // The window was recorded as 1 by 1; the application's own questions hold the truth.
    CTraceBuilder trace = ListedTrace();
    trace.StartUp(2, 1, 1);
    const auto ask = [&](std::int64_t attribute, std::int64_t answer) {
        trace.Add(1021,
                  trace.Egl().EglBoolean(true).Display(dpy).Surface(srf).EglInt(attribute).Array(
                      tag::EglInt, 0x10, {answer}));
    };
    ask(12375, 150);
    ask(12374, 600);
    ask(12375, 77);
    trace.Add(2142, trace.Gl().Int(10).Int(10).Sizei(100).Sizei(100));
    trace.Add(2041, trace.Gl().Enum(4).Int(0).Sizei(3));
    const SRunResult run = RunTrace(trace);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    const std::string fixing = message + "Invalid Screen Size (Android bug). Fixing...";
    EXPECT_EQ(run.Messages(), (Lines{fixing, fixing}));
    EXPECT_EQ(run.CallsOf({"eglQuerySurface"}).size(), 4U) << "the recorded ones are not played";
    EXPECT_EQ(run.CallsOf({"glViewport"}),
              (Lines{Host("glViewport", 10, 10, 100, 100), Host("glViewport", 5, 20, 200, 50)}));
}

TEST(Egl, ASizeOfOneStandsForTheDefaultOne) {
    CTraceBuilder trace = ListedTrace();
    trace.StartUp(2, 320, 240);
    trace.Add(2142, trace.Gl().Int(0).Int(0).Sizei(320).Sizei(240));
    trace.Add(2041, trace.Gl().Enum(4).Int(0).Sizei(3));
    SRunOptions options;
    options.script = "eglQuerySurface:EGL_WIDTH * 1\n";
    const SRunResult run = RunTrace(trace, {}, options);
    EXPECT_EQ(run.CallsOf({"glViewport"}),
              (Lines{Host("glViewport", 0, 0, 320, 240), Host("glViewport", 0, 0, 640, 480)}));
}

TEST(Egl, TerminateForgetsNamesAndTheContext) {
    CTraceBuilder trace = ListedTrace();
    trace.StartUp(2, 300, 300);
    trace.Add(2004, trace.Gl().Enum(34962).Uint(7));
    trace.Add(1023, trace.Egl().EglBoolean(true).Display(dpy));
    trace.Add(2016, trace.Gl().Bitfield(1));
    trace.Initialize();
    trace.Add(2004, trace.Gl().Enum(34962).Uint(7));
    trace.SwapBuffers();
    trace.CreateWindowSurface(300, 300);
    const SRunResult run = RunTrace(trace);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(run.CallsOf({"eglTerminate"}), Lines{"eglTerminate(display:1) = 1"});
    const Lines expected = {message + "Es2 Call:Error. Invalid context",
                            message + "Error call:glClear 2016",
                            error + "PlayCall Error: Unrecognized/Error call"};
    EXPECT_EQ(run.Messages(), expected);
    EXPECT_EQ(run.CallsOf({"glGenBuffers", "glBindBuffer", "glClear", "eglSwapBuffers"}),
              (Lines{Host("glGenBuffers", 1, "{101}"), Host("glBindBuffer", 34962, 101),
                     Host("glGenBuffers", 1, "{102}"), Host("glBindBuffer", 34962, 102),
                     "eglSwapBuffers(display:1, 0) = 1"}));
    EXPECT_EQ(run.CallsOf({"eglCreateWindowSurface"}).size(), 2U) << "the old one is forgotten";
}

TEST(Egl, CallsWithoutATrueTranslationAreSkippedWithAWarning) {
    CTraceBuilder trace = ListedTrace();
    trace.StartUp(2, 300, 300);
    trace.Add(1002, trace.Egl()
                        .EglBoolean(true)
                        .Display(dpy)
                        .Surface(srf)
                        .Value(tag::EglNativePixmap, 5)
                        .U32(3)
                        .Raw("abc", 3));
    trace.Add(1005, trace.Egl()
                        .Surface(0x500)
                        .Display(dpy)
                        .Config(CTraceBuilder::config)
                        .Value(tag::EglNativePixmap, 5)
                        .Raw("abc", 3)
                        .Attributes({}));
    trace.Add(1031, trace.Egl()
                        .Surface(0x501)
                        .Display(dpy)
                        .EglEnum(12446)
                        .Value(tag::EglClientBuffer, 4)
                        .Config(CTraceBuilder::config)
                        .Attributes({}));
    const SRunResult run = RunTrace(trace);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    const Lines expected = {warning + "Not Implemented. Call using pixmap, skipping",
                            warning + "Pixmaps not supported in playback",
                            warning + "Pbuffers not supported in playback (client)"};
    EXPECT_EQ(run.Messages(), expected);
}

struct SEglCase {
    std::uint16_t id;
    CRecordBuilder record;
    /// The host's line, or none where the call isn't played.
    std::string host;
    bool checked;
};

TEST(Egl, EachOtherCallIsPlayedOrLeftOut) {
    const CTraceBuilder t;
    const auto ok = [&] { return t.Egl().EglBoolean(true); };
    const std::vector<SEglCase> cases = {
        {1001,
         ok().Display(dpy)
             .Attributes({0x3038})
             .Array(tag::EglConfig, 1, {3})
             .EglInt(1)
             .Array(tag::EglInt, 1, {1}),
         "", true},
        {1004,
         t.Egl()
             .Surface(0x410)
             .Display(dpy)
             .Config(CTraceBuilder::config)
             .Attributes({0x3057, 8, 0x3038}),
         "eglCreatePbufferSurface(display:1, config:1, {12375, 8, 12344}) = surface:2", true},
        {1007, ok().Display(dpy).Context(ctx), "eglDestroyContext(display:1, context:1) = 1", true},
        {1008, ok().Display(dpy).Surface(srf), "eglDestroySurface(display:1, surface:1) = 1", true},
        {1009, ok().Display(dpy).Config(1).EglInt(1).Array(tag::EglInt, 1, {1}), "", false},
        {1010, ok().Display(dpy).Array(tag::EglConfig, 1, {3}).EglInt(1).Array(tag::EglInt, 1, {1}),
         "", false},
        {1011, t.Egl().Context(ctx), "", false},
        {1012, t.Egl().Display(dpy), "", false},
        {1013, t.Egl().Surface(srf).EglInt(12377), "", false},
        {1015, t.Egl().EglInt(0x3000), "", false},
        {1016, t.Egl().Pointer(1).String(1, "glX"), "", false},
        {1018, ok().Display(dpy).Surface(0).Surface(0).Context(0).Config(0).Attributes({}),
         "eglMakeCurrent(display:1, 0, 0, 0) = 1", true},
        {1019, ok().Display(dpy).Context(ctx).EglInt(1).Array(tag::EglInt, 1, {1}), "", true},
        {1020, t.Egl().String(1, "x").Display(dpy).EglInt(12371), "", true},
        {1021, ok().Display(dpy).Surface(srf).EglInt(12375).Array(tag::EglInt, 1, {9}), "", true},
        {1024, ok(), "eglWaitGL() = 1", true},
        {1025, ok().EglInt(5), "eglWaitNative(12379) = 1", false},
        {1026, ok().Display(dpy).Surface(srf).EglInt(12420),
         "eglBindTexImage(display:1, surface:1, 12420) = 1", true},
        {1027, ok().Display(dpy).Surface(srf).EglInt(0).EglInt(12420),
         "eglReleaseTexImage(display:1, surface:1, 12420) = 1", true},
        {1028, ok().Display(dpy).Surface(srf).EglInt(12435).EglInt(12436),
         "eglSurfaceAttrib(display:1, surface:1, 12435, 12436) = 1", true},
        {1030, ok().EglEnum(12448), "eglBindAPI(12448) = 1", true},
        {1032, t.Egl().EglEnum(12448), "", false},
        {1033, ok(), "eglReleaseThread() = 1", true},
        {1034, ok(), "eglWaitClient() = 1", true},
    };
    CTraceBuilder base = ListedTrace();
    base.StartUp(2, 300, 300);
    const std::size_t before = RunTrace(base).calls.size();
    for (const SEglCase& one : cases) {
        CTraceBuilder trace = base;
        trace.Add(one.id, one.record);
        const SRunResult run = RunTrace(trace);
        EXPECT_TRUE(run.Ok()) << run.Ending();
        ASSERT_GE(run.calls.size(), before);
        const Lines played(run.calls.begin() + static_cast<std::ptrdiff_t>(before),
                           run.calls.end());
        Lines expected;
        if (!one.host.empty()) expected.push_back(one.host);
        if (one.checked) expected.push_back("eglGetError() = 12288");
        EXPECT_EQ(played, expected) << one.id;
        EXPECT_TRUE(run.Messages().empty()) << run.out;
    }
}

TEST(Egl, NoContextIsMadeOfDesktopGl) {
    CTraceBuilder trace = ListedTrace();
    trace.Add(1030, trace.Egl().EglBoolean(true).EglEnum(0x30A2));
    const SRunResult run = RunTrace(trace);
    EXPECT_EQ(run.CallsOf({"eglBindAPI"}), Lines{});
    EXPECT_EQ(run.Messages(), (Lines{message + "Error call:eglBindAPI 1030",
                                     error + "PlayCall Error: Unrecognized/Error call"}));
}

TEST(Egl, AFailureIsReportedUnderTheLastGlCall) {
    CTraceBuilder trace = ListedTrace();
    trace.StartUp(2, 300, 300);
    trace.Add(2016, trace.Gl().Bitfield(1));
    // No executor has a case for it, and what has none is never the last call.
    trace.Add(4042, trace.Ext().Enum(1).Fixed(2));
    trace.Add(1024, trace.Egl().EglBoolean(true));
    SRunOptions options;
    options.script = "eglGetError 14 0x300E\n";
    const SRunResult run = RunTrace(trace, {}, options);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    const Lines expected = {message + "Error call:glAlphaFuncxOES 4042",
                            error + "PlayCall Error: Unrecognized/Error call",
                            message + "EGL Error Code: 0x300e, Call= glClear",
                            "",
                            message + "Error call:eglWaitGL 1024",
                            error + "PlayCall Error: Unrecognized/Error call"};
    EXPECT_EQ(run.Messages(), expected);
}

TEST(Egl, AFailedWindowSurfaceIsReportedAndPlaybackGoesOn) {
    CTraceBuilder trace = ListedTrace();
    trace.StartUp(2, 300, 300);
    SRunOptions options;
    options.script = "eglGetError 8 0x3009\n";
    const SRunResult run = RunTrace(trace, {}, options);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_TRUE(
        run.Printed(error + "eglCreateWindowSurface EGL Error Code: 0x3009, CallID = 1006\n\n"))
        << run.out;
    EXPECT_EQ(run.CallsOf({"eglMakeCurrent"}).size(), 1U);
}

TEST(Egl, MissesReachTheHostAsZero) {
    CTraceBuilder trace = ListedTrace();
    trace.StartUp(2, 300, 300);
    trace.Add(1008, trace.Egl().EglBoolean(true).Display(dpy).Surface(0x999));
    trace.Add(1007, trace.Egl().EglBoolean(true).Display(0x998).Context(ctx));
    const SRunResult run = RunTrace(trace);
    EXPECT_EQ(run.CallsOf({"eglDestroySurface", "eglDestroyContext"}),
              (Lines{"eglDestroySurface(display:1, 0) = 1", "eglDestroyContext(0, 0) = 1"}));
}

}  // namespace
}  // namespace kestrail
