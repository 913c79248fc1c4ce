// The sample scenes' recordings, played, have to give the very pixels of the scenes drawn directly
// on the same driver in the same run.
#include <gtest/gtest.h>

#include <ostream>
#include <regex>

#include "samples/scenes.h"
#include "tests/render/direct_frames.h"
#include "tests/render/player_run.h"

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

constexpr SSample sampleScenes[] = {
    // Drivers without weight arrays answer the look at them, before each draw, by an error.
    {"es1",
     "es1-short.kstl",
     &samples::DrawEs1Scene,
     {128, 96, 10},
     ".*Error call:glDraw(Arrays 3036|Elements 3037)"},
    {"es2", "scene-short.kstl", &samples::DrawEs2Scene, {128, 96, 12}, ""},
    {"es3", "es3-short.kstl", &samples::DrawEs3Scene, {128, 96, 10}, ""},
    {"seek", "seek-short.kstl", &samples::DrawSeekScene, {128, 96, 12}, ""},
};

class CSampleTest : public testing::TestWithParam<std::tuple<SSample, const char*>> {};

TEST_P(CSampleTest, PlaysToTheSamePixels) {
    const auto& [sample, option] = GetParam();
    const std::vector<SPicture> expected = DrawDirectly(sample.draw, sample.size);
    ASSERT_EQ(expected.size(), static_cast<std::size_t>(sample.size.frames));
    // A scene that shows nothing, or never moves, would compare equal to anything.
    for (std::size_t i = 1; i < expected.size(); ++i) {
        ASSERT_FALSE(Compare(expected[i - 1], expected[i]).None()) << "frame " << i;
    }

    std::vector<std::string> options;
    if (*option != '\0') options.emplace_back(option);
    const std::string folder =
        std::string(KESTRAIL_RENDER_OUTPUT "/sample-") + sample.name + option;
    const SPlayerRun run =
        RunPlayer(std::string(KESTRAIL_SAMPLES "/") + sample.trace, options, folder);
    ASSERT_TRUE(run.exited);
    EXPECT_EQ(run.exitStatus, 0);
    std::vector<std::string> complaints = Complaints(run);
    std::erase_if(complaints, [&, allowed = std::regex(sample.allowed)](const std::string& line) {
        return std::regex_match(line, allowed);
    });
    EXPECT_EQ(complaints, std::vector<std::string>{});
    for (unsigned number = 1; number <= expected.size(); ++number) {
        const SDifference difference = Compare(expected[number - 1], CapturedFrame(run, number));
        EXPECT_TRUE(difference.None())
            << "frame " << number << (difference.sameSize ? "" : ": missing or of another size")
            << ", pixels that differ: " << difference.pixels << ", by up to "
            << difference.largestStep;
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
