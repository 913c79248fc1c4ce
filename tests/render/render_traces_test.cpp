// Plays real recordings and compares every frame that has a recorded picture with what was drawn.
// The recordings don't belong to this repository: without them there is nothing to test.
#include <algorithm>

#include "tests/render/recorded_pictures.h"

namespace kestrail {
namespace {

/// Calls that this player can't play as they were recorded, though no pixel depends on them, by
/// what the complaint holds.
struct SRefused {
    const char* trace;
    const char* text;
    const char* reason;
};
constexpr SRefused refused[] = {
    {"es1scene", "glDrawArrays",
     "drivers without weight arrays answer the look at them by an error"},
    {"es1scene", "glDrawElements", "the same"},
    {"es3scene", "glWaitSync", "half of GL_TIMEOUT_IGNORED is no timeout to a driver"},
    {"es3scene", "glUnmapBuffer", "never played"},
    {"es3scene", "glEndTransformFeedback", "its glBeginTransformFeedback is never played"},
    {"apps/gtk4-spinner", "EGL Error Code: 0x300d", "made current without a surface, of no size"},
    {"apps/qt5-quick-es2", "EGL Error Code: 0x300d", "the same"},
};

std::string Refused(const std::string& trace) {
    std::string texts;
    for (const SRefused& entry : refused) {
        if (trace != entry.trace) continue;
        if (!texts.empty()) texts += '|';
        texts += entry.text;
    }
    return texts;
}

/// The lines of a run from its first call on, without what differs between the load modes by
/// design: how the file is opened stands before them, and frame numbers are learned by a streamed
/// trace only as it goes.
std::vector<std::string> ComparableLines(const SPlayerRun& run) {
    std::vector<std::string> lines;
    for (const std::string& line : run.lines) {
        const bool isCall = line.rfind("KESTRAIL(M) Frame(P): ", 0) == 0;
        if (lines.empty() && !isCall) continue;
        lines.push_back(isCall ? line.substr(line.find(" Call:")) : line);
    }
    return lines;
}

class CTraceTest : public testing::TestWithParam<std::string> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(CTraceTest);

TEST_P(CTraceTest, PlaysToTheRecordedPictures) {
    const std::string trace = TracePath(GetParam());
    const Pictures recorded = RecordedPictures(trace);
    ASSERT_FALSE(recorded.empty());

    std::vector<std::string> wholeLines;
    for (const char* mode : {"", "--noMemory"}) {
        SCOPED_TRACE(mode);
        const SPlayerRun run = RunPlayer(trace, {mode}, GetParam());
        EXPECT_EQ(run.LinesWith(complaint, Refused(GetParam())), std::vector<std::string>{});
        for (const auto& [number, picture] : recorded) {
            const SDifference difference = Compare(picture, run.Frame(number));
            EXPECT_TRUE(difference.WithinRounding(picture))
                << "frame " << number << ": " << difference;
        }
        const std::vector<std::string> lines = ComparableLines(run);
        if (wholeLines.empty()) wholeLines = lines;
        const auto [whole, streamed] =
            std::mismatch(wholeLines.begin(), wholeLines.end(), lines.begin(), lines.end());
        EXPECT_TRUE(whole == wholeLines.end() && streamed == lines.end())
            << "line " << whole - wholeLines.begin() + 1
            << "\nwhole:    " << (whole == wholeLines.end() ? "(none)" : whole->substr(0, 200))
            << "\nstreamed: " << (streamed == lines.end() ? "(none)" : streamed->substr(0, 200));
    }
    EXPECT_FALSE(wholeLines.empty());
}

INSTANTIATE_TEST_SUITE_P(Recorded, CTraceTest, testing::ValuesIn(TraceNames()), TraceTestName);

TEST(CTraceFolder, IsThere) {
    if (TraceNames().empty()) GTEST_SKIP() << "no recordings";
}

}  // namespace
}  // namespace kestrail
