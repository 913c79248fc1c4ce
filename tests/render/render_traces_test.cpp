// Plays real recordings and compares every frame that has a recorded picture with what was drawn.
// The recordings don't belong to this repository: without them there is nothing to test.
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <iterator>

#include "tests/render/player_run.h"
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

bool IsRefused(const std::string& trace, const std::string& complaint) {
    return std::any_of(std::begin(refused), std::end(refused), [&](const SRefused& entry) {
        return trace == entry.trace && complaint.find(entry.text) != std::string::npos;
    });
}

std::vector<std::string> UnexpectedComplaints(const SPlayerRun& run, const std::string& trace) {
    std::vector<std::string> complaints = Complaints(run);
    std::erase_if(complaints, [&](const std::string& line) { return IsRefused(trace, line); });
    return complaints;
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

void ExpectPictures(const std::map<unsigned, SPicture>& recorded, const SPlayerRun& run,
                    const std::string& name) {
    std::size_t different = 0;
    std::size_t alphaOnly = 0;
    unsigned largest = 0;
    for (const auto& [number, picture] : recorded) {
        const SDifference difference = Compare(picture, CapturedFrame(run, number));
        if (!difference.sameSize) {
            ADD_FAILURE() << "frame " << number << " is missing or of another size";
            continue;
        }
        EXPECT_TRUE(difference.WithinRounding(picture))
            << "frame " << number << ": " << difference.pixels << " pixels by up to "
            << difference.largestStep;
        different += difference.pixels;
        alphaOnly += difference.alphaOnlyPixels;
        largest = std::max(largest, difference.largestStep);
    }
    std::cout << name << ": " << recorded.size() << " frames compared, " << different
              << " pixels differ (" << alphaOnly << " of them in alpha alone), by up to " << largest
              << "\n";
}

class CTraceTest : public testing::TestWithParam<std::string> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(CTraceTest);

TEST_P(CTraceTest, PlaysToTheRecordedPictures) {
    const std::string trace = TraceFolder() + "/" + GetParam() + ".kstl";
    const std::map<unsigned, SPicture> recorded = RecordedPictures(trace);
    ASSERT_FALSE(recorded.empty());

    std::vector<std::string> wholeLines;
    for (const char* mode : {"", "--noMemory"}) {
        SCOPED_TRACE(*mode == '\0' ? "whole file" : mode);
        std::vector<std::string> options;
        if (*mode != '\0') options.emplace_back(mode);
        const SPlayerRun run = RunPlayer(trace, options, KESTRAIL_RENDER_OUTPUT "/" + GetParam());
        ASSERT_TRUE(run.exited) << "signal " << run.exitStatus;
        EXPECT_EQ(run.exitStatus, 0);
        EXPECT_EQ(UnexpectedComplaints(run, GetParam()), std::vector<std::string>{});
        ExpectPictures(recorded, run, GetParam() + (*mode == '\0' ? "" : " streamed"));
        std::vector<std::string> lines = ComparableLines(run);
        if (options.empty()) {
            wholeLines = std::move(lines);
        } else {
            const auto [whole, streamed] =
                std::mismatch(wholeLines.begin(), wholeLines.end(), lines.begin(), lines.end());
            EXPECT_TRUE(whole == wholeLines.end() && streamed == lines.end())
                << "line " << whole - wholeLines.begin() + 1
                << "\nwhole:    " << (whole == wholeLines.end() ? "(none)" : whole->substr(0, 200))
                << "\nstreamed: "
                << (streamed == lines.end() ? "(none)" : streamed->substr(0, 200));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Recorded, CTraceTest, testing::ValuesIn(TraceNames()), TraceTestName);

TEST(CTraceFolder, IsThere) {
    if (TraceNames().empty()) GTEST_SKIP() << "no recordings in " << TraceFolder();
}

}  // namespace
}  // namespace kestrail
