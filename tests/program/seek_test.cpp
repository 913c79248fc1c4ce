#include <algorithm>
#include <cstdlib>

#include "tests/program/program_test.h"

namespace kestrail {
namespace {

constexpr std::uint32_t texture2D = 3553;
constexpr std::uint32_t arrayBuffer = 34962;
constexpr std::uint32_t colorBit = 16384;

std::string Drawn(unsigned mark) {
    return Host("glDrawArrays", 4, mark, 3);
}

Lines AllDrawn(const std::vector<unsigned>& marks) {
    Lines lines;
    for (unsigned mark : marks) lines.push_back(Drawn(mark));
    return lines;
}

std::string EntryOf(const std::string& line) {
    return line.substr(0, line.find('('));
}

/// A trace whose frames draw with a mark of their own, so that the log tells them apart.
class CSeek : public CTraceTest {
protected:
    CSeek() : CTraceTest(Es2Trace()) {}

    void Draw(unsigned mark) { trace.Add(2041, trace.Gl().Enum(4).Int(mark).Sizei(3)); }
    void Frame(unsigned mark) {
        Draw(mark);
        trace.SwapBuffers();
    }
    /// Frames from the one in hand up to `last`.
    void FramesTo(unsigned last) {
        for (; m_next <= last; ++m_next) Frame(m_next);
    }
    void Texture(std::uint32_t name) {
        List(2054, {name});
        Bind(2007, texture2D, name);
        trace.Add(2106, trace.Image(1, 1, 6408, Bytes(4, static_cast<std::uint8_t>(name))));
    }
    void Buffer(std::uint32_t name) {
        List(2050, {name});
        Bind(2004, arrayBuffer, name);
        trace.Add(2013, trace.Gl()
                            .Enum(arrayBuffer)
                            .Sizeiptr(4)
                            .Data(0x10, Bytes(4, static_cast<std::uint8_t>(name)))
                            .Enum(35044));
    }
    void Shader(std::uint32_t name, std::uint32_t type) {
        trace.Add(2027, trace.Gl().Uint(name).Enum(type));
        trace.Add(2099, trace.Gl()
                            .Uint(name)
                            .Sizei(1)
                            .Strings(0x10, {"void main() {}"})
                            .Array(tag::Int, 0x10, {14}));
        trace.Add(2021, trace.Gl().Uint(name));
    }
    /// A linked program with two shaders, the names behind its own.
    void Program(std::uint32_t name) {
        Shader(name + 1, 35633);
        Shader(name + 2, 35632);
        trace.Add(2026, trace.Gl().Uint(name));
        trace.Add(2002, trace.Gl().Uint(name).Uint(name + 1));
        trace.Add(2002, trace.Gl().Uint(name).Uint(name + 2));
        trace.Add(2090, trace.Gl().Uint(name));
        trace.Add(2131, trace.Gl().Uint(name));
    }
    void Framebuffer(std::uint32_t name, std::uint32_t texture) {
        List(2052, {name});
        Bind(2005, 36160, name);
        trace.Add(2048, trace.Gl().Enum(36160).Enum(36064).Enum(texture2D).Uint(texture).Int(0));
        Bind(2005, 36160, 0);
    }
    unsigned m_next = 1;
};

/// What the player gets from a generator that nobody seeds.
std::vector<unsigned> RandomFrames(unsigned count, int plays) {
    std::srand(1);
    std::vector<unsigned> frames;
    for (int i = 0; i < plays; ++i) {
        frames.push_back(static_cast<unsigned>(std::rand()) % count + 1);
    }
    return frames;
}

/// The host's calls from behind one swap to the next, inclusive.
std::vector<Lines> Plays(const SRunResult& run) {
    std::vector<Lines> plays(1);
    for (const std::string& call : run.calls) {
        plays.back().push_back(call);
        if (EntryOf(call) == "eglSwapBuffers") plays.emplace_back();
    }
    plays.pop_back();
    return plays;
}

Lines Of(const Lines& calls, const Lines& entries) {
    Lines found;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(found), [&](const auto& call) {
        return std::find(entries.begin(), entries.end(), EntryOf(call)) != entries.end();
    });
    return found;
}

/// The host's script that gives an error to whoever first reads one behind a call of `entry`.
std::string FailedBehind(const SRunResult& sound, const std::string& entry,
                         const std::string& reader, const std::string& code) {
    int reads = 0;
    bool called = false;
    for (const std::string& call : sound.calls) {
        called = called || EntryOf(call) == entry;
        if (EntryOf(call) != reader) continue;
        ++reads;
        if (called) break;
    }
    return reader + " " + std::to_string(reads) + " " + code + "\n";
}

const Lines uploads = {"glTexImage2D",     "glBufferData",          "glShaderSource",
                       "glCompileShader",  "glCreateShader",        "glCreateProgram",
                       "glGenTextures",    "glGenBuffers",          "glGenFramebuffers",
                       "eglCreateContext", "eglCreateWindowSurface"};

TEST_F(CSeek, ChoosesTheFramesOfTheCommandLine) {
    FramesTo(7);
    const std::vector<unsigned> allButTheLast = {1, 2, 3, 4, 5, 6};
    const struct {
        Lines arguments;
        std::vector<unsigned> frames;
    } cases[] = {
        {{"--frame=1"}, {1}},
        {{"--frame=3"}, {3}},
        {{"--frame=7"}, {7}},
        {{"--frame=8"}, {}},
        {{"--frame=65537"}, {}},
        {{"--frame=0"}, {}},
        {{"--frame="}, {}},
        {{"--frame=abc"}, {}},
        {{"--frame=-2"}, {}},
        {{"--frame=-1"}, allButTheLast},
        {{"--frame"}, allButTheLast},
        {{"--frame", "3"}, allButTheLast},
        {{"--frame=2", "--frame=5"}, {5}},
        {{"--iterations=5"}, allButTheLast},
        {{"--iterations"}, allButTheLast},
        {{"--iterations=2", "--frame=4"}, {4}},
        {{"--random", "--iterations=5"}, RandomFrames(7, 4)},
        {{"--frame=3", "--random", "--iterations=3"}, RandomFrames(7, 2)},
        {{"--random", "--iterations=1"}, {}},
        {{"--random", "--iterations=-4"}, {}},
        {{"--frame=2", "--noSkipCallOnError", "--skipFramesRangeStart=1", "--skipFramesRangeEnd=7"},
         {2}},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(::testing::PrintToString(one.arguments));
        const SRunResult run = Run(one.arguments);
        EXPECT_EQ(run.CallsOf({"glDrawArrays"}), AllDrawn(one.frames));
        EXPECT_EQ(run.CallsOf({"eglSwapBuffers"}).size(), one.frames.size());
        EXPECT_TRUE(run.CallLines().empty()) << run.out;
        EXPECT_EQ(run.Messages(), Lines{}) << run.out;
    }
}

TEST_F(CSeek, StreamingIsRefusedBeforeTheLoad) {
    FramesTo(2);
    for (const char* option : {"--frame=1", "--random", "--iterations=2"}) {
        const SRunResult run = Run({option, "--noMemory", "--sync"});
        EXPECT_EQ(run.Messages(), Lines{"****** Advance options are not compatible with --noMemory "
                                        "option. Abort ******"});
        EXPECT_FALSE(run.Printed("Opening Trace file")) << run.out;
        EXPECT_FALSE(run.Printed("Low Memory")) << run.out;
        EXPECT_TRUE(run.calls.empty());
    }
}

TEST(Seek, ATraceWithoutFramesOrDataPlaysNothing) {
    CTraceBuilder dataless = Es2Trace();
    dataless.SetDataFlag(0).SwapBuffers();
    for (const char* option : {"--frame=1", "--random", "--iterations=3"}) {
        const SRunResult empty = RunTrace(CTraceBuilder(), {option});
        EXPECT_TRUE(empty.Ok()) << empty.Ending();
        EXPECT_TRUE(empty.calls.empty());
        const SRunResult run = RunTrace(dataless, {option});
        EXPECT_TRUE(run.Ok()) << run.Ending();
        EXPECT_TRUE(run.Printed(message + "*** Error loading file ***\n")) << run.out;
        EXPECT_TRUE(run.calls.empty());
    }
}

TEST_F(CSeek, SeveralThreadsAreWarnedOfTwice) {
    trace.Thread(1);
    FramesTo(1);
    trace.Thread(2);
    FramesTo(3);
    const std::string loaded = message +
                               "Multiple Thread detected. Kestrail doesn't support Multi-Context "
                               "trace in playback.";
    const SRunResult run = Run({"--frame=2"});
    EXPECT_EQ(
        run.Messages(),
        (Lines{loaded, message + "Current trace contain more than one thread....Unsupported.",
               message + "Current trace contain more than one thread.... Playback could crash."}));
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}), AllDrawn({2}));
    EXPECT_EQ(Run({}).Messages(), Lines{loaded}) << "played in sequence";
}

TEST_F(CSeek, AFrameWithoutADrawIsClearedAndPresented) {
    FramesTo(1);
    trace.SwapBuffers();
    trace.Add(2016, trace.Gl().Bitfield(256)).SwapBuffers();
    trace.Add(5211, trace.Gl().Enum(4).Int(0).Sizei(3).Sizei(2)).SwapBuffers();
    trace.Add(3036, trace.Gl().Enum(4).Int(0).Sizei(3)).SwapBuffers();
    Frame(6);
    const Lines watched = {"glClearColor",     "glClear",      "glDrawArraysInstanced",
                           "es1.glDrawArrays", "glDrawArrays", "eglSwapBuffers"};
    const struct {
        unsigned frame;
        Lines own;
        bool cleared;
    } cases[] = {
        {2, {}, true},
        {3, {Host("glClear", 256)}, true},
        {4, {Host("glDrawArraysInstanced", 4, 0, 3, 2)}, true},
        {5, {Host("es1.glDrawArrays", 4, 0, 3)}, false},
        {6, {Drawn(6)}, false},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.frame);
        const SRunResult run = Run({"--frame=" + std::to_string(one.frame)});
        Lines calls = run.CallsOf(watched);
        // The restore sets the clear colour before.
        ASSERT_FALSE(calls.empty());
        EXPECT_EQ(EntryOf(calls.front()), "glClearColor");
        calls.erase(calls.begin());
        ASSERT_FALSE(calls.empty());
        EXPECT_EQ(EntryOf(calls.back()), "eglSwapBuffers");
        calls.pop_back();
        Lines expected = one.own;
        if (one.cleared) {
            expected.push_back(Host("glClearColor", 0, 0, 0, 0));
            expected.push_back(Host("glClear", colorBit));
        }
        EXPECT_EQ(calls, expected);
    }
}

TEST_F(CSeek, AFailingCallEndsItsFrameUnpresented) {
    FramesTo(1);
    Draw(2);
    trace.Add(4030, trace.Ext().Int(1).Int(2));
    Frame(20);
    m_next = 3;
    FramesTo(4);
    const SRunResult run = Run({"--frame"});
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}), AllDrawn({1, 2, 3}));
    EXPECT_EQ(run.CallsOf({"eglSwapBuffers"}).size(), 2U);
    EXPECT_EQ(run.Messages(), Lines{message + "Error call:glTexBindStreamQVA 4030"});
}

TEST_F(CSeek, ADriverErrorEndsItsFrameUnpresented) {
    FramesTo(2);
    SRunOptions options;
    options.script = FailedBehind(Run({"--frame=1"}), "glDrawArrays", "glGetError", "0x502");
    const SRunResult run = Run({"--frame=1"}, options);
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}), AllDrawn({1}));
    EXPECT_EQ(run.CallsOf({"eglSwapBuffers"}), Lines{});
    EXPECT_EQ(run.Messages(), (Lines{message + "OGLES2 Error Code: 0x502, Call= glDrawArrays",
                                     message + "Error call:glDrawArrays 2041"}));
}

TEST_F(CSeek, ACallThatFailedWhenRecordedIsLeftOutAndChangesNothing) {
    Texture(50);
    trace.Add(2007, trace.Gl(1281).Enum(texture2D).Uint(0));
    FramesTo(3);
    const SRunResult run = Run({"--frame=1"});
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}), AllDrawn({1}));
    EXPECT_EQ(run.CallsOf({"eglSwapBuffers"}).size(), 1U);
    // The binding that stands is the one before.
    const Lines binds = Run({"--frame=2"}).CallsOf({"glBindTexture"});
    ASSERT_FALSE(binds.empty());
    EXPECT_TRUE(std::any_of(binds.begin(), binds.end(), [](const std::string& call) {
        return call == Host("glBindTexture", texture2D, 101);
    }));
}

TEST_F(CSeek, AFrameWithoutASwapIsNotPresented) {
    FramesTo(2);
    Draw(3);
    const SRunResult run = Run({"--frame=3"});
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}), AllDrawn({3}));
    EXPECT_EQ(run.CallsOf({"eglSwapBuffers"}), Lines{});
    EXPECT_EQ(run.Messages(), Lines{});
}

TEST_F(CSeek, AFrameIsCutOffBehindItsDraws) {
    constexpr unsigned most = 65535;
    FramesTo(1);
    for (unsigned i = 0; i <= most; ++i) Draw(2);
    const CTraceBuilder open = trace;
    trace.SwapBuffers();
    const SRunResult run = Run({"--frame=2"});
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}).size(), most);
    EXPECT_EQ(run.CallsOf({"eglSwapBuffers"}).size(), 1U);
    EXPECT_EQ(run.Messages(), Lines{});

    const SRunResult cut = RunTrace(open, {"--frame=2"});
    EXPECT_TRUE(cut.Ok()) << cut.Ending();
    EXPECT_EQ(cut.CallsOf({"glDrawArrays"}).size(), most);
    EXPECT_EQ(cut.CallsOf({"eglSwapBuffers"}), Lines{});
    EXPECT_TRUE(cut.Printed(error + "Exception <expented SwapBuffer call\n\n" + error +
                            "PlayCall Error: Unrecognized/Error call\n" + error +
                            "Failed to call swap buffer function.\n"))
        << cut.out;
}

TEST_F(CSeek, PresentsThroughTheFirstFoundSwap) {
    constexpr std::uint32_t other = 0x401;
    trace.CreateWindowSurface(300, 300, other);
    Draw(1);
    trace.SwapBuffers();
    trace.MakeCurrent(other);
    Draw(2);
    trace.SwapBuffers(0, 0, {}, other);
    Draw(3);
    trace.SwapBuffers(0, 0, {}, other);
    const Lines both = Run({"--frame"}).CallsOf({"eglSwapBuffers"});
    ASSERT_EQ(both.size(), 2U);
    EXPECT_EQ(both[0], both[1]);
    const Lines second = Run({"--frame=2"}).CallsOf({"eglSwapBuffers"});
    ASSERT_EQ(second.size(), 1U);
    EXPECT_NE(second[0], both[0]);
}

TEST_F(CSeek, AFailedSwapIsReportedAndTheNextFramePlayed) {
    FramesTo(3);
    const SRunResult sound = Run({"--frame"});
    SRunOptions options;
    options.script = FailedBehind(sound, "eglSwapBuffers", "eglGetError", "0x300D");
    const SRunResult run = Run({"--frame"}, options);
    EXPECT_TRUE(run.Printed("Error call:eglSwapBuffers 1022\n" + error +
                            "Failed to call swap buffer function.\n"))
        << run.out;
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}), AllDrawn({1, 2}));
}

TEST_F(CSeek, AFailedRestoreIsReportedAndTheFramePlayedAllTheSame) {
    FramesTo(3);
    SRunOptions options;
    options.script = "eglChooseConfig * fail\neglGetConfigs * fail\n";
    const SRunResult run = Run({"--frame=2"}, options);
    EXPECT_TRUE(run.Printed(message + "Render Failed. Critical error\n")) << run.out;
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}), AllDrawn({2}));
    EXPECT_EQ(run.CallsOf({"eglCreateContext"}), Lines{});
}

TEST_F(CSeek, NeverWaitsForTheDisplay) {
    const auto interval = [&](std::int64_t value) {
        trace.Add(1029, trace.Egl().EglBoolean(true).Display(CTraceBuilder::display).EglInt(value));
    };
    interval(1);
    FramesTo(1);
    interval(2);
    FramesTo(3);
    for (const Lines& arguments : {Lines{"--frame"}, Lines{"--frame", "--sync"}}) {
        const SRunResult run = Run(arguments);
        EXPECT_EQ(run.CallsOf({"eglSwapInterval"}), Lines{"eglSwapInterval(display:1, 0) = 1"});
        EXPECT_EQ(run.CallsOf({"glDrawArrays"}), AllDrawn({1, 2}));
        EXPECT_EQ(run.Messages(), arguments.size() == 1 ? Lines{}
                                                        : Lines{"****** Sync enabled "
                                                                "******"});
    }
}

TEST_F(CSeek, ASecondRestoreOfAFrameUploadsNothing) {
    Texture(50);
    Buffer(60);
    Program(40);
    Framebuffer(70, 50);
    FramesTo(2);
    // Of two frames the generator takes 2, 1, 2, 2.
    ASSERT_EQ(RandomFrames(2, 4), (std::vector<unsigned>{2, 1, 2, 2}));
    const SRunResult run = Run({"--random", "--iterations=5"});
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}), AllDrawn({2, 1, 2, 2}));
    const std::vector<Lines> plays = Plays(run);
    ASSERT_EQ(plays.size(), 4U);
    for (std::size_t play : {0U, 1U}) {
        EXPECT_EQ(Of(plays[play], {"glTexImage2D", "glBufferData"}).size(), 2U) << play;
        EXPECT_EQ(Of(plays[play], {"glCompileShader"}).size(), 2U) << play;
    }
    for (std::size_t play : {2U, 3U}) {
        EXPECT_EQ(Of(plays[play], uploads), Lines{}) << play;
        EXPECT_FALSE(Of(plays[play], {"glBlendColor"}).empty()) << "values are set all the same";
    }
    EXPECT_EQ(Of(plays[3], {"glDrawArrays", "glBindTexture", "glBlendColor"}),
              Of(plays[2], {"glDrawArrays", "glBindTexture", "glBlendColor"}));
}

TEST_F(CSeek, ObjectsThatTheFrameLacksGo) {
    Texture(50);
    FramesTo(2);
    for (std::uint32_t name : {51U, 52U, 53U}) Texture(name);
    for (std::uint32_t name : {60U, 61U}) Buffer(name);
    Program(40);
    Program(43);
    Framebuffer(70, 51);
    Framebuffer(71, 52);
    List(2053, {80});
    Bind(2006, 36161, 80);
    trace.Add(2095, trace.Gl().Enum(36161).Enum(33189).Sizei(4).Sizei(4));
    FramesTo(5);
    // Of five frames the generator takes 4 and 2 first: from many objects to one texture.
    ASSERT_EQ(RandomFrames(5, 3), (std::vector<unsigned>{4, 2, 3}));
    const SRunResult many = Run({"--random", "--iterations=2"});
    EXPECT_EQ(many.CallsOf({"glDrawArrays"}), AllDrawn({4}));
    EXPECT_EQ(many.live.at("textures"), 4);
    EXPECT_EQ(many.live.at("programs"), 2);
    EXPECT_EQ(many.live.at("shaders"), 4);
    EXPECT_EQ(many.live.at("framebuffers"), 2);
    EXPECT_EQ(many.live.at("buffers"), 2);

    const SRunResult few = Run({"--random", "--iterations=3"});
    EXPECT_EQ(few.CallsOf({"glDrawArrays"}), AllDrawn({4, 2}));
    EXPECT_EQ(few.live.at("textures"), 1);
    EXPECT_EQ(few.live.at("programs"), 0);
    EXPECT_EQ(few.live.at("shaders"), 0);
    EXPECT_EQ(few.live.at("framebuffers"), 0);
    EXPECT_EQ(few.live.at("buffers"), 2) << "buffers stay";
    EXPECT_EQ(few.live.at("renderbuffers"), 1) << "renderbuffers stay";
    EXPECT_EQ(few.CallsOf({"eglCreateContext"}).size(), 1U);

    // On to frame 3, whose own calls make the objects once more.
    const SRunResult again = Run({"--random", "--iterations=4"});
    EXPECT_EQ(again.CallsOf({"glDrawArrays"}), AllDrawn({4, 2, 3}));
    EXPECT_EQ(again.live.at("textures"), 4);
    EXPECT_EQ(again.live.at("programs"), 2);
    EXPECT_EQ(again.live.at("shaders"), 4);
    EXPECT_EQ(again.live.at("framebuffers"), 2);
    for (const SRunResult* run : {&many, &few, &again}) {
        EXPECT_FALSE(run->Printed("Setting ContextState")) << run->out;
        EXPECT_FALSE(run->Printed("Error")) << run->out;
    }
}

TEST_F(CSeek, GoingBackBringsDeletedObjectsAndOldContentsBack) {
    Texture(50);
    Buffer(60);
    FramesTo(2);
    // Frame 3 gives both new contents, frame 4 deletes them.
    Bind(2007, texture2D, 50);
    trace.Add(2106, trace.Image(1, 1, 6408, Bytes(4, 0xEE)));
    FramesTo(3);
    List(2031, {50});
    List(2029, {60});
    FramesTo(5);
    ASSERT_EQ(RandomFrames(5, 2), (std::vector<unsigned>{4, 2}));
    const SRunResult run = Run({"--random", "--iterations=3"});
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}), AllDrawn({4, 2}));
    const std::vector<Lines> plays = Plays(run);
    ASSERT_EQ(plays.size(), 2U);
    const auto image = [](const char* bytes) {
        return Host("glTexImage2D", texture2D, 0, 6408, 1, 1, 0, 6408, 5121, bytes);
    };
    EXPECT_EQ(Of(plays[0], {"glTexImage2D"}), Lines{image("<eeeeeeee:4>")});
    EXPECT_EQ(Of(plays[0], {"glDeleteTextures", "glDeleteBuffers"}).size(), 2U);
    EXPECT_EQ(Of(plays[1], {"glTexImage2D"}), Lines{image("<32323232:4>")});
    EXPECT_EQ(Of(plays[1], {"glBufferData"}),
              Lines{Host("glBufferData", arrayBuffer, 4, "<3c3c3c3c:4>", 35044)});
    EXPECT_EQ(run.live.at("textures"), 1);
    EXPECT_EQ(run.live.at("buffers"), 1);
}

TEST(Seek, StateRecordsStandBehindTheFirstFrame) {
    CTraceBuilder trace;
    trace.Thread(1);
    trace.Add(2041, trace.Gl().Enum(4).Int(1).Sizei(3)).SwapBuffers();
    trace.Add(2041, trace.Gl().Enum(4).Int(2).Sizei(3)).SwapBuffers();
    trace.BeginState();
    trace.Marker(2).StartUp(2, 300, 300);
    trace.Add(2018, trace.Gl().Float(0.5F)).Marker(3).EndState();
    const SRunResult run = RunTrace(trace, {"--frame=2"});
    EXPECT_TRUE(run.Ok()) << run.Ending();
    EXPECT_EQ(run.CallsOf({"glDrawArrays"}), AllDrawn({1})) << run.out;
    EXPECT_EQ(run.CallsOf({"glClearDepthf"}), Lines{Host("glClearDepthf", 0.5)});
    // Frame 1 is the block itself, which has no swap.
    EXPECT_EQ(RunTrace(trace, {"--frame=1"}).CallsOf({"eglSwapBuffers", "glDrawArrays"}), Lines{});
}

}  // namespace
}  // namespace kestrail
