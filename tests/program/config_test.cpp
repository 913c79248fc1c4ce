#include "tests/program/program_test.h"

namespace kestrail {
namespace {

constexpr std::int64_t none = 0x3038;

SRunResult RunConfig(const std::vector<std::int64_t>& attributes, const std::string& script) {
    CTraceBuilder trace;
    trace.SetConfigAttributes(attributes);
    trace.GetDisplay().CreateContext(2);
    SRunOptions options;
    options.script = script;
    SRunResult run = RunTrace(trace, {}, options);
    EXPECT_TRUE(run.Ok()) << run.Ending();
    return run;
}

/// The attribute lists that were asked for, in order.
Lines Asked(const SRunResult& run) {
    Lines lists;
    for (const std::string& call : run.CallsOf({"eglChooseConfig"})) {
        lists.push_back(call.substr(call.find('{'), call.find('}') - call.find('{') + 1));
    }
    return lists;
}

std::string List(const std::vector<std::int64_t>& attributes) {
    std::string text = "{";
    for (std::int64_t value : attributes) text += std::to_string(value) + ", ";
    return text + std::to_string(none) + "}";
}

const std::string original =
    "Original EGLConfig is not valid (512), attempting to find a similar "
    "valid config.";
const std::string bare =
    message + "Could not determine equivalent EGLConfig: Using bare config\n\n";
const std::string any = message + "Bare config not valid, getting any available configs...\n\n";

TEST(Config, TheGivenListIsEnoughWhereTheHostHasIt) {
    const SRunResult run = RunConfig({0x3024, 8, 0x3040, 8, none}, "");
    EXPECT_EQ(Asked(run), Lines{List({0x3024, 8, 0x3040, 8})});
    EXPECT_TRUE(run.Messages().empty()) << run.out;
}

TEST(Config, AnEmptyListAsksNothing) {
    for (const std::vector<std::int64_t>& list :
         {std::vector<std::int64_t>{}, std::vector<std::int64_t>{none}}) {
        const SRunResult run = RunConfig(list, "");
        EXPECT_TRUE(Asked(run).empty());
        EXPECT_EQ(run.CallsOf({"eglCreateContext"}),
                  Lines{"eglCreateContext(display:1, 0, 0, {12440, 2, 12344}) = context:1"});
    }
}

TEST(Config, TheRelaxedListKeepsTheOrderOfTheWorkingSet) {
    // Dropped: EGL_CONFIG_ID and EGL_NATIVE_RENDERABLE. The renderable type is capped and first.
    const SRunResult run = RunConfig(
        {0x3028, 3, 0x3027, 0x3038, 0x3021, 8, 0x302D, 1, 0x3025, 24, 0x3040, 8, 0x3026, 8, none},
        "eglChooseConfig 1 none\n");
    ASSERT_EQ(Asked(run).size(), 2U) << run.out;
    EXPECT_EQ(Asked(run)[1], List({0x3040, 4, 0x3026, 8, 0x3025, 24, 0x3021, 8, 0x3027, 0x3038}));
    EXPECT_TRUE(run.Printed(message + original)) << run.out;
    EXPECT_TRUE(run.Printed(message + "\n Valid config found. Using config: "));
    EXPECT_TRUE(run.Printed(message + "\n Final Config: "));
}

TEST(Config, ThePairsAreGivenUpFromTheEnd) {
    const std::vector<std::int64_t> given = {0x3026, 8, 0x3021, 0, 0x3032, 1, 0x3031, 4,
                                             0x3033, 5, 0x3042, 4, 0x303E, 2, none};
    const SRunResult run = RunConfig(given, "eglChooseConfig * fail\neglGetConfigs 1 7\n");
    const std::vector<std::int64_t> start = {0x3026, 8,      0x3021, 0,      0x303E, 2,      0x3032,
                                             1,      0x3031, 4,      0x3033, 5,      0x3042, 4};
    auto cut = std::vector<std::int64_t>(start.begin(), start.end() - 2);
    auto window = cut;
    window[11] = 4;
    auto samples = window;
    samples[9] = 1;
    auto buffers = samples;
    buffers[7] = 0;
    auto mask = buffers;
    mask[5] = 0;
    const Lines expected = {
        List({0x3026, 8, 0x3021, 0, 0x3032, 1, 0x3031, 4, 0x3033, 5, 0x3042, 4, 0x303E, 2}),
        List(start), List(cut), List(window), List(samples), List(buffers), List(mask),
        // The alpha of 0 stays; the last relaxation, of the stencil, isn't tried.
        List(mask), List({0x3033, 5, 0x3020, 24})};
    EXPECT_EQ(Asked(run), expected);
    EXPECT_TRUE(run.Printed(bare + any)) << run.out;
    EXPECT_EQ(run.CallsOf({"eglCreateContext"}),
              Lines{"eglCreateContext(display:1, config:7, 0, {12440, 2, 12344}) = context:1"});
    EXPECT_FALSE(run.Printed("Final Config")) << "a config found in this way is not dumped";
}

TEST(Config, AnAlphaMaskOfEs1CutsTheList) {
    const SRunResult run =
        RunConfig({0x3040, 2, 0x3026, 8, 0x303E, 2, none}, "eglChooseConfig * none\n");
    EXPECT_EQ(
        Asked(run),
        (Lines{List({0x3040, 2, 0x3026, 8, 0x303E, 2}), List({0x3040, 2, 0x3026, 8, 0x303E, 2}),
               List({0x3040, 2, 0x3026, 8}), List({0x3033, 4, 0x3040, 2, 0x3020, 24})}));
}

TEST(Config, ARenderableTypeAloneGoesStraightToTheBareList) {
    const SRunResult run = RunConfig({0x3040, 4, none}, "eglChooseConfig 1 none\n");
    EXPECT_EQ(Asked(run), (Lines{List({0x3040, 4}), List({0x3033, 4, 0x3040, 4, 0x3020, 24})}));
    EXPECT_TRUE(run.Printed(bare)) << run.out;
    EXPECT_FALSE(run.Printed("Bare config not valid"));
}

TEST(Config, AHostWithoutAnyConfigEndsThePlayback) {
    const SRunResult run =
        RunConfig({0x3024, 8, none}, "eglChooseConfig * none\neglGetConfigs * none\n");
    const std::string last = bare + any + message +
                             "Could not find any valid EGLConfigs. Please try a different playback "
                             "platform.\n\n" +
                             error + "Exception drawing call\n\n" + message +
                             "Aborting Playback....\n";
    ASSERT_GT(run.out.size(), last.size());
    EXPECT_EQ(run.out.substr(run.out.size() - last.size()), last);
    EXPECT_EQ(run.CallsOf({"eglCreateContext"}), Lines{});
}

TEST(Config, TheDumpNamesEveryAttribute) {
    const SRunResult run = RunConfig({0x3024, 8, none},
                                     "eglChooseConfig 1 none\n"
                                     "eglGetConfigAttrib:EGL_BUFFER_SIZE * 32\n"
                                     "eglGetConfigAttrib:EGL_CONFIG_CAVEAT * EGL_SLOW_CONFIG\n"
                                     "eglGetConfigAttrib:EGL_NATIVE_RENDERABLE * -1\n"
                                     "eglGetConfigAttrib:EGL_SURFACE_TYPE * 5\n"
                                     "eglGetConfigAttrib:EGL_TRANSPARENT_TYPE * 9\n"
                                     "eglGetConfigAttrib:EGL_BIND_TO_TEXTURE_RGB * 1\n"
                                     "eglGetConfigAttrib:EGL_COLOR_BUFFER_TYPE * EGL_RGB_BUFFER\n"
                                     "eglGetConfigAttrib:EGL_RENDERABLE_TYPE * 0x4D\n");
    const std::string m = message;
    const std::string gap = m + "\n";
    std::string expected = m + "EGL_BUFFER_SIZE=32\n" + gap;
    for (const char* name : {"ALPHA", "BLUE", "GREEN", "RED", "DEPTH", "STENCIL"}) {
        expected += m + "EGL_" + name + "_SIZE=0\n" + gap;
    }
    expected += m + "EGL_CONFIG_CAVEAT=\n" + m + "EGL_SLOW_CONFIG\n" + gap;
    for (const char* name :
         {"CONFIG_ID", "LEVEL", "MAX_PBUFFER_HEIGHT", "MAX_PBUFFER_PIXELS", "MAX_PBUFFER_WIDTH"}) {
        expected += m + "EGL_" + name + "=0\n" + gap;
    }
    expected += m + "EGL_NATIVE_RENDERABLE=\n" + m + "EGL_DONT_CARE\n" + gap;
    expected += m + "EGL_NATIVE_VISUAL_ID=0\n" + gap;
    expected += m + "EGL_NATIVE_VISUAL_TYPE=\n" + m + "0\n" + gap;
    expected += m + "EGL_SAMPLES=0\n" + gap + m + "EGL_SAMPLE_BUFFERS=0\n" + gap;
    expected +=
        m + "EGL_SURFACE_TYPE=\n" + m + "EGL_PBUFFER_BIT \n" + m + "EGL_WINDOW_BIT \n" + gap;
    expected += m + "EGL_TRANSPARENT_TYPE=\n" + m + "9 (Undefined)\n" + gap;
    for (const char* name : {"BLUE", "GREEN", "RED"}) {
        expected += m + "EGL_TRANSPARENT_" + name + "_VALUE=\n" + m + "0\n" + gap;
    }
    expected += m + "EGL_BIND_TO_TEXTURE_RGB=\n" + m + "EGL_TRUE\n" + gap;
    expected += m + "EGL_BIND_TO_TEXTURE_RGBA=\n" + m + "EGL_FALSE\n" + gap;
    for (const char* name :
         {"MIN_SWAP_INTERVAL", "MAX_SWAP_INTERVAL", "LUMINANCE_SIZE", "ALPHA_MASK_SIZE"}) {
        expected += m + "EGL_" + name + "=0\n" + gap;
    }
    expected += m + "EGL_COLOR_BUFFER_TYPE=\n" + m + "EGL_RGB_BUFFER\n" + gap;
    expected += m + "EGL_RENDERABLE_TYPE=\n" + m + "EGL_OPENGL_ES_BIT \n" + m +
                "EGL_OPENGL_ES2_BIT \n" + m + "EGL_OPENGL_BIT \n" + gap;
    expected += m + "EGL_CONFORMANT=\n" + gap + gap;
    const std::size_t start = run.out.find("EGL_BUFFER_SIZE");
    ASSERT_NE(start, std::string::npos) << run.out;
    EXPECT_EQ(run.out.substr(start - m.size(), expected.size()), expected);
}

}  // namespace
}  // namespace kestrail
