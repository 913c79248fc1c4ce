// Single frames, rendered without those before them, have to show what the whole playback shows,
// but for what no record of the frame's start holds.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>

#include "tests/render/direct_frames.h"
#include "tests/render/player_run.h"
#include "tests/render/recorded_pictures.h"

namespace kestrail {
namespace {

enum class EOutcome {
    kEqual,
    kDifferent,
    kNotPresented,
};

void PrintTo(EOutcome outcome, std::ostream* out) {
    constexpr const char* names[] = {"equal", "different", "not presented"};
    *out << names[static_cast<std::size_t>(outcome)];
}

/// Frames of a recording that don't come out as recorded when they are rendered alone.
struct SUnseekable {
    const char* trace;
    unsigned first, last;
    EOutcome outcome;
    const char* reason;
};
constexpr SUnseekable unseekable[] = {
    {"es1scene", 1, 1, EOutcome::kNotPresented,
     "drivers without weight arrays answer the look at them by an error, which the draw counts as "
     "its own, and a failed call ends the frame"},
    {"es1scene", 2, 30, EOutcome::kNotPresented,
     "what restoring asks of a driver without weight arrays leaves an error to the first call"},
    {"es3scene", 2, 24, EOutcome::kNotPresented,
     "uniform buffers are in no record: setting a part of one fails and ends the frame"},
    {"glmark-buffer-map", 2, 6, EOutcome::kDifferent,
     "what the frame before wrote through glUnmapBufferOES is in no record"},
    {"glmark-desktop", 2, 10, EOutcome::kDifferent,
     "textures that the first frame drew into are empty"},
    {"apps/gtk4-spinner", 2, 36, EOutcome::kNotPresented,
     "the shared context's name goes to the driver as it was recorded, so no context is made"},
    {"apps/imgui-es2", 2, 36, EOutcome::kNotPresented,
     "shaders detached after the link are missing when the program is linked again"},
    {"apps/qt5-quick-es2", 2, 36, EOutcome::kDifferent,
     "layers drawn in earlier frames, and glyphs copied in them"},
};

const SUnseekable* FindUnseekable(const std::string& trace, unsigned frame) {
    const auto* const found =
        std::find_if(std::begin(unseekable), std::end(unseekable), [&](const SUnseekable& entry) {
            return trace == entry.trace && frame >= entry.first && frame <= entry.last;
        });
    return found == std::end(unseekable) ? nullptr : found;
}

/// What a run that renders anything at all may not do.
void ExpectSoundRun(const SPlayerRun& run) {
    ASSERT_TRUE(run.exited) << "signal " << run.exitStatus;
    EXPECT_EQ(run.exitStatus, 0);
    for (const std::string& line : run.lines) {
        EXPECT_EQ(line.find("Render Failed"), std::string::npos) << line;
        EXPECT_EQ(line.find("Exception"), std::string::npos) << line;
    }
}

EOutcome Judge(const SPicture& expected, const SPicture& captured) {
    if (captured.pixels.empty()) return EOutcome::kNotPresented;
    const bool equal = Compare(expected, captured).WithinRounding(expected);
    return equal ? EOutcome::kEqual : EOutcome::kDifferent;
}

class CSeekTraceTest : public testing::TestWithParam<std::string> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(CSeekTraceTest);

TEST_P(CSeekTraceTest, RendersSingleFramesAsRecorded) {
    const std::string trace = TraceFolder() + "/" + GetParam() + ".kstl";
    const std::map<unsigned, SPicture> recorded = RecordedPictures(trace);
    ASSERT_FALSE(recorded.empty());
    std::size_t equal = 0;
    for (const auto& [number, picture] : recorded) {
        SCOPED_TRACE("frame " + std::to_string(number));
        const SPlayerRun run = RunPlayer(trace, {"--frame=" + std::to_string(number)},
                                         KESTRAIL_RENDER_OUTPUT "/seek-" + GetParam());
        ExpectSoundRun(run);
        const EOutcome outcome = Judge(picture, CapturedFrame(run, 1));
        const SUnseekable* const listed = FindUnseekable(GetParam(), number);
        EXPECT_EQ(outcome, listed != nullptr ? listed->outcome : EOutcome::kEqual)
            << (listed != nullptr ? listed->reason : "");
        EXPECT_TRUE(CapturedFrame(run, 2).pixels.empty()) << "more than one frame was presented";
        equal += outcome == EOutcome::kEqual ? 1 : 0;
    }
    std::cout << GetParam() << ": " << equal << " of " << recorded.size() << " frames are equal\n";
}

INSTANTIATE_TEST_SUITE_P(Recorded, CSeekTraceTest, testing::ValuesIn(TraceNames()), TraceTestName);

constexpr samples::SSceneSize sampleSize = {128, 96, 12};
constexpr unsigned playsWanted = 199;

/// The frames that the player picks: it never seeds the generator.
std::vector<unsigned> PickedFrames(unsigned frameCount) {
    std::srand(1);
    std::vector<unsigned> frames;
    for (unsigned i = 0; i < playsWanted; ++i) {
        frames.push_back(static_cast<unsigned>(std::rand()) % frameCount + 1);
    }
    return frames;
}

constexpr const char* standAloneTrace = KESTRAIL_SAMPLES "/seek-short.kstl";

TEST(CSeekStandAloneTest, RendersEveryPickExactly) {
    const std::vector<SPicture> direct = DrawDirectly(&samples::DrawSeekScene, sampleSize);
    ASSERT_EQ(direct.size(), static_cast<std::size_t>(sampleSize.frames));
    const SPlayerRun run =
        RunPlayer(standAloneTrace, {"--random", "--iterations=" + std::to_string(playsWanted + 1)},
                  KESTRAIL_RENDER_OUTPUT "/seek-random-alone");
    ExpectSoundRun(run);
    EXPECT_EQ(Complaints(run), std::vector<std::string>{});
    unsigned number = 0;
    unsigned before = 0;
    for (const unsigned frame : PickedFrames(static_cast<unsigned>(sampleSize.frames))) {
        SCOPED_TRACE("play " + std::to_string(++number) + ", frame " + std::to_string(frame) +
                     " after " + std::to_string(before));
        const SDifference difference = Compare(direct[frame - 1], CapturedFrame(run, number));
        EXPECT_TRUE(difference.None())
            << (difference.sameSize ? "" : "missing or of another size ") << difference.pixels;
        before = frame;
    }
    EXPECT_EQ(number, playsWanted);
    EXPECT_TRUE(CapturedFrame(run, number + 1).pixels.empty()) << "more frames were presented";
}

TEST(CSeekStandAloneTest, RendersEachFrameExactlyInAFreshProcess) {
    const std::vector<SPicture> direct = DrawDirectly(&samples::DrawSeekScene, sampleSize);
    ASSERT_EQ(direct.size(), static_cast<std::size_t>(sampleSize.frames));
    for (std::size_t i = 0; i < direct.size(); ++i) {
        SCOPED_TRACE("frame " + std::to_string(i + 1));
        const SPlayerRun run = RunPlayer(standAloneTrace, {"--frame=" + std::to_string(i + 1)},
                                         KESTRAIL_RENDER_OUTPUT "/seek-alone");
        ExpectSoundRun(run);
        EXPECT_EQ(Complaints(run), std::vector<std::string>{});
        const SDifference difference = Compare(direct[i], CapturedFrame(run, 1));
        EXPECT_TRUE(difference.None())
            << (difference.sameSize ? "" : "missing or of another size ") << difference.pixels;
        EXPECT_TRUE(CapturedFrame(run, 2).pixels.empty()) << "more than one frame was presented";
    }
}

}  // namespace
}  // namespace kestrail
