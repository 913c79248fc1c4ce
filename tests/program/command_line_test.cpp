#include "tests/program/program_test.h"

namespace kestrail {
namespace {

const std::string start = "KESTRAIL(M) Running KestrailPlayback....\n";

std::string Loading(const std::string& path, bool streamed) {
    return std::string("KESTRAIL(M) Opening Trace file") + (streamed ? " (noMemory)" : "") + ": " +
           path + "\n";
}

TEST(CommandLine, PrintsTheUsageWithoutArguments) {
    const SRunResult run = RunProgram({});
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(run.out,
              start + "Usage: " + std::string(KESTRAIL_PLAYER) +
                  " <tracefile> [--args]\n\n"
                  "\t--noMemory:\t\t\t\tAvoid to load the whole trace in memory. Only a fixed "
                  "amount of memory is used (~20MB).\n"
                  "\t--sync:\t\t\t\t\tEnable Sync.\n"
                  "\t--noSkipCallOnError:\tThe playback will not skip call which failed on "
                  "recording.\n"
                  "\t--skipFramesRangeStart:\tSkip Frame Range Start\n"
                  "\t--skipFramesRangeEnd:\tSkip Frame Range End\n"
                  "\t\n"
                  "Advance options (--noMemory option is incompatible\n"
                  "\t--frame:\t\t\t  Render specified frames.\n"
                  "\t--random:\t\t\t  Play --iterations in a random order.\n"
                  "\t--iterations:\t\t  Number of renders to play back. (Default=10000.\n");
    EXPECT_TRUE(run.calls.empty());
}

struct SOptionCase {
    std::vector<std::string> arguments;
    /// The text before the loading starts and the text behind it, on a file that isn't there.
    std::string before;
    std::string behind;
    bool streamed;
};

TEST(CommandLine, OptionsAreFoundAnywhereInAnArgument) {
    const std::string low = "****** Low Memory option enabled ******\n";
    const std::string sync = "****** Sync enabled ******\n";
    const std::string syncLater = "****** Sync enable ******\n";
    const std::string noSkip = "****** NoskipCallOnError enable ******\n";
    const std::vector<SOptionCase> cases = {
        {{}, "", "", false},
        {{"nothing", "-sync", "7"}, "", "", false},
        {{"--noMemory"}, low, "", true},
        {{"foo--noMemorybar"}, low, "", true},
        {{"--sync"}, sync, syncLater, false},
        {{"x--syncy", "--sync"}, sync, syncLater, false},
        {{"--noSkipCallOnError"}, "", noSkip, false},
        {{"--sync", "--noSkipCallOnError"}, sync, noSkip + syncLater, false},
        // The earlier word of the table decides.
        {{"--sync--noMemory"}, low, "", true},
        {{"--noMemory--frame=1"}, low, "", true},
        {{"--skipFramesRangeStart=3"}, "", "****** SkipFrames enable: [3 - 0]\n", false},
        {{"--skipFramesRangeEnd=abc"}, "", "****** SkipFrames enable: [0 - 0]\n", false},
        {{"--skipFramesRangeStart=", "--skipFramesRangeEnd=-2"},
         "",
         "****** SkipFrames enable: [0 - -2]\n",
         false},
        {{"--skipFramesRangeStart=3", "--skipFramesRangeStart=4", "--skipFramesRangeEnd=a=5"},
         "",
         "****** SkipFrames enable: [4 - 0]\n",
         false},
        // Without a value in the same argument there is none.
        {{"--skipFramesRangeStart", "3", "--skipFramesRangeEnd"}, "", "", false},
        {{"--noMemory", "--skipFramesRangeStart=1", "--skipFramesRangeEnd=2"},
         low,
         "****** SkipFrames enable: [1 - 2]\n",
         true},
        {{"--noMemory", "--sync", "--noSkipCallOnError"}, low + sync, noSkip + syncLater, true},
    };
    for (const SOptionCase& one : cases) {
        std::vector<std::string> arguments = {"absent.kstl"};
        arguments.insert(arguments.end(), one.arguments.begin(), one.arguments.end());
        const SRunResult run = RunProgram(arguments);
        EXPECT_TRUE(run.Ok()) << run.Ending();
        EXPECT_EQ(run.out, start + one.before + Loading("absent.kstl", one.streamed) + one.behind)
            << ::testing::PrintToString(one.arguments);
    }
}

TEST(CommandLine, TheTracePathIsNeverAnOption) {
    const SRunResult run = RunProgram({"--sync"});
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(run.out, start + Loading("--sync", false));
}

TEST(CommandLine, StreamingRefusesTheSeekingOptionsBeforeAnythingIsLoaded) {
    for (const char* option :
         {"--frame=3", "--frame", "--random", "--iterations=5", "--frameless"}) {
        const SRunResult run = RunProgram({"absent.kstl", "--noMemory", option, "--sync"});
        EXPECT_TRUE(run.Ok()) << run.Ending();
        EXPECT_EQ(run.out, start +
                               "****** Advance options are not compatible with --noMemory option. "
                               "Abort ******\n")
            << option;
    }
}

struct SHeaderCase {
    const char* name;
    CTraceBuilder trace;
    std::size_t length;
    std::string text;
};

TEST(CommandLine, ARefusedHeaderIsReportedAndEndsTheRun) {
    constexpr std::size_t whole = static_cast<std::size_t>(-1);
    const std::string unsupported = error + "Unsupported file format version...\n\n";
    std::vector<SHeaderCase> cases;
    cases.push_back({"magic", CTraceBuilder().SetMagic("kestrail"), whole,
                     error + "Unrecognized file type.\n\n"});
    cases.push_back({"last letter of the magic", CTraceBuilder().SetMagic("Kestraim"), whole,
                     error + "Unrecognized file type.\n\n"});
    cases.push_back({"byte order", CTraceBuilder().SetByteOrderMark(0xFEFF0001U), whole,
                     error + "Unsupported trace endianness.\n\n"});
    cases.push_back({"version 6", CTraceBuilder(6), whole, unsupported});
    cases.push_back({"magic and mark alone", CTraceBuilder(), 12, unsupported});
    cases.push_back({"data flag 0", CTraceBuilder().SetDataFlag(0), whole,
                     error + "Trace file was recorded with no data, unable to replay.\n\n"});
    cases.push_back({"data flag 2", CTraceBuilder().SetDataFlag(2), whole,
                     error + "Trace file was recorded with no data, unable to replay.\n\n"});
    for (SHeaderCase& one : cases) {
        Bytes bytes = one.trace.StartUp(2, 10, 10).Build();
        bytes.resize(std::min(bytes.size(), one.length));
        for (const bool streamed : {false, true}) {
            const SRunResult run =
                RunBytes(bytes, streamed ? Lines{"--noMemory", "--sync"} : Lines{"--sync"});
            EXPECT_TRUE(run.Ok()) << run.Ending();
            EXPECT_TRUE(run.Printed(one.text + message + "*** Error loading file ***\n"))
                << one.name << "\n"
                << run.out;
            EXPECT_EQ(run.out.substr(run.out.size() - 27), "*** Error loading file ***\n")
                << one.name << ": nothing follows";
            EXPECT_TRUE(run.calls.empty());
        }
    }
}

TEST(CommandLine, LoadingEndsWithTheCountOfErrors) {
    CTraceBuilder trace(11);
    const SRunResult empty = RunTrace(trace);
    EXPECT_TRUE(empty.Ok()) << empty.Ending();
    EXPECT_TRUE(
        empty.Printed(message + "Processing File....\n" + message + "Processing File... Done\n"))
        << empty.out;

    // A record that overruns the file: fatal before the first call, a notice after it.
    trace.AddSized(1000, 2016, {});
    const SRunResult fatal = RunTrace(trace);
    EXPECT_TRUE(fatal.Ok()) << fatal.Ending();
    EXPECT_TRUE(fatal.Printed(message + "Processing File... Done with Errors:2\n" + message +
                              "*** Error loading file ***\n"))
        << fatal.out;

    CTraceBuilder some(11);
    some.GetDisplay().AddSized(1000, 2016, {});
    const SRunResult notice = RunTrace(some);
    EXPECT_TRUE(notice.Ok()) << notice.Ending();
    EXPECT_TRUE(notice.Printed(message + "Processing File... Done with Errors:3\n")) << notice.out;
    EXPECT_EQ(notice.CallLines().size(), 1U) << notice.out;
}

TEST(CommandLine, SeveralThreadsAreReportedOnce) {
    CTraceBuilder trace(11);
    trace.Thread(1).GetDisplay().Thread(2).Thread(1).Thread(0).Thread(5).GetDisplay();
    const SRunResult run = RunTrace(trace);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    const std::string text =
        "Multiple Thread detected. Kestrail doesn't support Multi-Context trace in playback.";
    const std::size_t first = run.out.find(text);
    ASSERT_NE(first, std::string::npos) << run.out;
    EXPECT_EQ(run.out.find(text, first + 1), std::string::npos) << run.out;
}

TEST(CommandLine, ABrokenFooterIsANoticeOnly) {
    const struct {
        std::int8_t first;
        std::int8_t second;
        const char* text;
    } cases[] = {{18, 16, "The footer is currupted, no valid Render State Data.\n"},
                 {19, 17, "The footer is currupted (Check 2), no valid Render State Data.\n"}};
    for (const auto& one : cases) {
        const SRunResult run =
            RunTrace(CTraceBuilder().GetDisplay().SetFooterMarks(one.first, one.second));
        EXPECT_TRUE(run.Ok()) << run.Ending();
        EXPECT_TRUE(run.Printed(message + one.text)) << run.out;
        EXPECT_EQ(run.CallLines().size(), 1U) << run.out;
    }
}

TEST(CommandLine, AStateOffsetBehindTheFileEndsInAnException) {
    const SRunResult run = RunTrace(CTraceBuilder().GetDisplay().SetStateOffset(1 << 20));
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(run.err, "An exception occurred\n");
}

}  // namespace
}  // namespace kestrail
