// The sample scenes' recordings, played, have to give the very pixels of the scenes drawn directly
// on the same driver in the same run.
#include <gtest/gtest.h>

#include <ostream>

#include "tests/render/direct_frames.h"

namespace kestrail {
namespace {

struct SSample {
    const char* name;
    const char* trace;
    SceneDrawer* draw;
    samples::SSceneSize size;
    // Complaints that a driver causes by itself.
    const char* allowed;
};

void PrintTo(const SSample& sample, std::ostream* out) {
    *out << sample.name;
}

// Drivers without weight arrays answer the look at them, before each draw, by an error.
constexpr char weightsAsked[] = "Error call:glDraw(Arrays 3036|Elements 3037)$";
constexpr SSample sampleScenes[] = {
    {"es1", "es1-short.kstl", &samples::DrawEs1Scene, {128, 96, 10}, weightsAsked},
    {"es2", "scene-short.kstl", &samples::DrawEs2Scene, {128, 96, 12}, ""},
    {"es3", "es3-short.kstl", &samples::DrawEs3Scene, {128, 96, 10}, ""},
    {"seek", "seek-short.kstl", &samples::DrawSeekScene, {128, 96, 12}, ""},
};

class CSampleTest : public testing::TestWithParam<std::tuple<SSample, const char*>> {};

TEST_P(CSampleTest, PlaysToTheSamePixels) {
    const auto& [sample, option] = GetParam();
    const Pictures expected = DrawDirectly(sample.draw, sample.size);
    const SPlayerRun run = RunPlayer(std::string(KESTRAIL_SAMPLES "/") + sample.trace, {option},
                                     std::string("sample-") + sample.name + option);
    EXPECT_EQ(run.LinesWith(complaint, sample.allowed), std::vector<std::string>{});
    for (const auto& [number, picture] : expected) {
        // A scene that shows nothing, or never moves, would compare equal to anything.
        if (number > 1) {
            ASSERT_FALSE(Compare(expected.at(number - 1), picture).None()) << "frame " << number;
        }
        const SDifference difference = Compare(picture, run.Frame(number));
        EXPECT_TRUE(difference.None()) << "frame " << number << ": " << difference;
    }
}

std::string TestName(const testing::TestParamInfo<CSampleTest::ParamType>& tested) {
    const auto& [sample, option] = tested.param;
    return std::string(sample.name) + (*option == '\0' ? "Whole" : "Streamed");
}

INSTANTIATE_TEST_SUITE_P(LoadModes, CSampleTest,
                         testing::Combine(testing::ValuesIn(sampleScenes),
                                          testing::Values("", "--noMemory")),
                         TestName);

}  // namespace
}  // namespace kestrail
