#include <filesystem>
#include <fstream>

#include "tests/program/program_test.h"

namespace kestrail {
namespace {

CTraceBuilder EveryFamily() {
    CTraceBuilder trace = Es2Trace();
    trace.Add(2016, trace.Gl().Bitfield(1));
    trace.Add(3009, trace.Gl().Bitfield(2));
    trace.Add(5143, trace.Gl().Enum(1029));
    return trace;
}

std::size_t Count(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

TEST(HostLibraries, AreNamedWhenTheirFamilyIsFirstPlayed) {
    const SRunResult run = RunTrace(EveryFamily());
    EXPECT_TRUE(run.Ok()) << run.Ending();
    Lines loaded;
    for (const std::string& line : run.Lines()) {
        if (line.find("Host Library Loaded") != std::string::npos) loaded.push_back(line);
    }
    EXPECT_EQ(loaded, (Lines{message + "Host Library Loaded: libEGL.so",
                             message + "Host Library Loaded: libGLESv2.so",
                             message + "Host Library Loaded: libGLES_CM.so",
                             message + "Host Library Loaded: libGLESv2.so"}));
    EXPECT_TRUE(run.Messages().empty()) << run.out;
    EXPECT_EQ(run.CallsOf({"glClear", "es1.glClear", "glReadBuffer"}),
              (Lines{"glClear(1)", "es1.glClear(2)", "glReadBuffer(1029)"}));
}

TEST(HostLibraries, ACallThatIsNeverPlayedLoadsNone) {
    CTraceBuilder trace;
    trace.Add(1032, trace.Egl().Enum(0x30A0));
    trace.GetDisplay();
    trace.Add(3073, trace.Gl().Boolean(true).Enum(2929));
    trace.Add(3009, trace.Gl().Bitfield(2));
    const SRunResult run = RunTrace(trace);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    const auto place = [&](const std::string& text) {
        EXPECT_TRUE(run.Printed(text)) << text << run.out;
        return run.out.find(text);
    };
    EXPECT_LT(place("eglGetDisplay"), place("Host Library Loaded: libEGL.so"));
    EXPECT_LT(place("glClear"), place("Host Library Loaded: libGLES_CM.so"));
}

TEST(HostLibraries, AMissingEs1EntryIsIgnoredWithAText) {
    CTraceBuilder trace = Es2Trace();
    trace.Add(3009, trace.Gl(1).Bitfield(2));
    trace.Add(3009, trace.Gl().Bitfield(2));
    trace.Add(2016, trace.Gl().Bitfield(1));
    SRunOptions options;
    options.host = "lacking";
    const SRunResult run = RunTrace(trace, {}, options);
    EXPECT_TRUE(run.Printed(message + "Error loading library glAlphaFuncx\n" + message +
                            "Kestrail ES1 - ERROR: failed to load entry points from host library\n"
                            "Please check library paths in kestrail.cfg\n\n"))
        << run.out;
    EXPECT_TRUE(run.Printed(
        message +
        "Could not load Host library OGLES1. Please check library paths in kestrail.cfg if you are "
        "not using Extensions.Ignored..\n"))
        << run.out;
    EXPECT_EQ(run.signal, 0) << run.Ending();
}

TEST(HostLibraries, AMissingEs3EntryEndsTheProcess) {
    CTraceBuilder trace = EveryFamily();
    trace.Add(2016, trace.Gl().Bitfield(4));
    SRunOptions options;
    options.host = "lacking";
    const SRunResult run = RunTrace(trace, {}, options);
    EXPECT_EQ(run.status, 255) << run.Ending();
    EXPECT_EQ(Count(run.out, message + "Error loading library "), 104U + 1U);
    EXPECT_TRUE(run.Printed(message + "Error loading library glReadBuffer\n"));
    EXPECT_TRUE(run.Printed(message +
                            "Kestrail ES2 - ERROR: failed to load entry points from host library\n"
                            "Please check library paths in kestrail.cfg\n\n"));
    EXPECT_EQ(run.CallsOf({"glClear"}), Lines{"glClear(1)"});
}

TEST(HostLibraries, AMissingEglEntryIsReportedAndIsNoCrash) {
    SRunOptions options;
    options.host = "lackingegl";
    const SRunResult run = RunTrace(Es2Trace(), {}, options);
    EXPECT_TRUE(run.Printed(message + "Error loading library eglWaitClient\n" + message +
                            "Kestrail EGL - ERROR: failed to load entry points from host library\n"
                            "Please check library paths in kestrail.cfg\n\n" +
                            message + "\nKestrail - aborting\n\n"))
        << run.out;
    EXPECT_EQ(run.signal, 0) << run.Ending();
    EXPECT_EQ(run.status, 0) << run.Ending();
}

TEST(HostLibraries, AFileThatIsNoLibraryIsAnException) {
    const CTempFolder folder;
    for (const char* name : {"libEGL.so", "libGLESv2.so", "libGLES_CM.so", "libEGL.s"}) {
        std::ofstream(folder.File(name)) << "this is no library, only its name\n";
    }
    SRunOptions options;
    options.host = "";
    options.folder = folder.Path();
    options.environment = {"LD_LIBRARY_PATH=" + folder.Path()};
    const SRunResult run = RunTrace(Es2Trace(), {}, options);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(Count(run.out, error + "dlopen failed with error: "), 4U) << run.out;
    EXPECT_TRUE(run.Printed(" => libEGL.so\n") && run.Printed(" => ./libEGL.so\n") &&
                run.Printed(" => libEGL.s\n") && run.Printed(" => ./libEGL.s\n"))
        << run.out;
    EXPECT_TRUE(run.Printed(
        message + "Could not load Host library.... libEGL.so. Path: libEGL.so Missing dll/so?\n" +
        message + "Exception ERROR__LOADLIBFAILD ...\n" + error + "Exception drawing call\n\n" +
        message + "Aborting Playback....\n"))
        << run.out;
    EXPECT_EQ(run.CallLines().size(), 1U);
}

TEST(HostLibraries, TheWorkingFolderIsTheSecondPlace) {
    const CTempFolder folder;
    const CTempFolder bad;
    std::ofstream(bad.File("libEGL.so")) << "no library\n";
    const std::string host = std::string(KESTRAIL_HOST_FOLDER) + "/recording/";
    for (const char* name : {"libEGL.so", "libkestrail_host_state.so"}) {
        std::filesystem::create_symlink(host + name, folder.File(name));
    }
    SRunOptions options;
    options.host = "";
    options.folder = folder.Path();
    options.environment = {"LD_LIBRARY_PATH=" + bad.Path() + ":" + host};
    CTraceBuilder trace;
    trace.GetDisplay();
    const SRunResult run = RunTrace(trace, {}, options);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(Count(run.out, error + "dlopen failed with error: "), 1U) << run.out;
    EXPECT_TRUE(run.Printed(message + "dlopen loaded (MOD PATH) ./libEGL.so\n" + message +
                            "Host Library Loaded: libEGL.so\n"))
        << run.out;
}

TEST(HostLibraries, NoDisplayIsReportedOnTheErrorStreamOnly) {
    const SRunResult run = RunTrace(Es2Trace());
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_NE(run.err.find("screen_create_context"), std::string::npos) << run.err;
    EXPECT_EQ(run.out.find("screen_create"), std::string::npos);
}

}  // namespace
}  // namespace kestrail
