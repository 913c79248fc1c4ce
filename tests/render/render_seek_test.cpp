// Single frames, rendered without those before them, have to show what the whole playback shows,
// but for what no record of the frame's start holds.
#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "tests/render/direct_frames.h"
#include "tests/render/recorded_pictures.h"

namespace kestrail {
namespace {

constexpr char equal[] = "equal";
constexpr char different[] = "different";
constexpr char notPresented[] = "not presented";

/// Frames of a recording that don't come out as recorded when they are rendered alone.
struct SUnseekable {
    const char* trace;
    unsigned first, last;
    const char* outcome;
    const char* reason;
};
constexpr SUnseekable unseekable[] = {
    {"es1scene", 1, 1, notPresented,
     "drivers without weight arrays answer the look at them by an error, which the draw counts as "
     "its own, and a failed call ends the frame"},
    {"es1scene", 2, 30, notPresented,
     "what restoring asks of a driver without weight arrays leaves an error to the first call"},
    {"es3scene", 2, 24, notPresented,
     "uniform buffers are in no record: setting a part of one fails and ends the frame"},
    {"glmark-buffer-map", 2, 6, different,
     "what the frame before wrote through glUnmapBufferOES is in no record"},
    {"glmark-desktop", 2, 10, different, "textures that the first frame drew into are empty"},
    {"apps/gtk4-spinner", 2, 36, notPresented,
     "the shared context's name goes to the driver as it was recorded, so no context is made"},
    {"apps/imgui-es2", 2, 36, notPresented,
     "shaders detached after the link are missing when the program is linked again"},
    {"apps/qt5-quick-es2", 2, 36, different,
     "layers drawn in earlier frames, and glyphs copied in them"},
};

constexpr SUnseekable seekable = {"", 0, 0, equal, ""};

const SUnseekable& ExpectationOf(const std::string& trace, unsigned frame) {
    const auto* const found =
        std::find_if(std::begin(unseekable), std::end(unseekable), [&](const SUnseekable& entry) {
            return trace == entry.trace && frame >= entry.first && frame <= entry.last;
        });
    return found == std::end(unseekable) ? seekable : *found;
}

/// One frame alone, in a process of its own.
SPlayerRun RunFrame(const std::string& trace, unsigned number, const std::string& folder) {
    const SPlayerRun run = RunPlayer(trace, {"--frame=" + std::to_string(number)}, folder);
    EXPECT_EQ(run.LinesWith("Render Failed|Exception"), std::vector<std::string>{});
    EXPECT_TRUE(run.Frame(2).pixels.empty()) << "more than one frame was presented";
    return run;
}

class CSeekTraceTest : public testing::TestWithParam<std::string> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(CSeekTraceTest);

TEST_P(CSeekTraceTest, RendersSingleFramesAsRecorded) {
    const std::string trace = TracePath(GetParam());
    const Pictures recorded = RecordedPictures(trace);
    ASSERT_FALSE(recorded.empty());
    for (const auto& [number, picture] : recorded) {
        const SPicture shown = RunFrame(trace, number, "seek-" + GetParam()).Frame(1);
        const SUnseekable& expected = ExpectationOf(GetParam(), number);
        EXPECT_STREQ(shown.pixels.empty()                              ? notPresented
                     : Compare(picture, shown).WithinRounding(picture) ? equal
                                                                       : different,
                     expected.outcome)
            << "frame " << number << ", " << expected.reason;
    }
}

INSTANTIATE_TEST_SUITE_P(Recorded, CSeekTraceTest, testing::ValuesIn(TraceNames()), TraceTestName);

class CSeekStandAloneTest : public testing::Test {
protected:
    void ExpectFrame(const SPlayerRun& run, unsigned number, unsigned frame) const {
        EXPECT_EQ(run.LinesWith("Render Failed|" + std::string(complaint)),
                  std::vector<std::string>{});
        const SDifference difference = Compare(direct.at(frame), run.Frame(number));
        EXPECT_TRUE(difference.None())
            << "play " << number << ", frame " << frame << ": " << difference;
    }

    const std::string trace = KESTRAIL_SAMPLES "/seek-short.kstl";
    const Pictures direct = DrawDirectly(&samples::DrawSeekScene, {128, 96, 12});
};

TEST_F(CSeekStandAloneTest, RendersEveryPickExactly) {
    const SPlayerRun run = RunPlayer(trace, {"--random", "--iterations=200"}, "seek-random-alone");
    // The player picks the same frames: it never seeds the generator.
    std::srand(1);
    for (unsigned play = 1; play <= 199; ++play) {
        ExpectFrame(run, play, static_cast<unsigned>(std::rand()) % 12 + 1);
    }
    EXPECT_TRUE(run.Frame(200).pixels.empty()) << "more frames were presented";
}

TEST_F(CSeekStandAloneTest, RendersEachFrameExactlyInAFreshProcess) {
    for (unsigned frame = 1; frame <= 12; ++frame) {
        ExpectFrame(RunFrame(trace, frame, "seek-alone"), 1, frame);
    }
}

}  // namespace
}  // namespace kestrail
