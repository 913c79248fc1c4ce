// The sample scenes' recordings, played, have to give the very pixels of the scenes drawn directly
// on the same driver in the same run.
#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include <ostream>
#include <regex>

#include "samples/common/direct_back_end.h"
#include "samples/scenes.h"
#include "tests/render/player_run.h"

namespace kestrail {
namespace {

struct SSample {
    const char* name;
    const char* trace;
    bool (*draw)(samples::IBackEnd&, const samples::SSceneSize&);
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
};

std::vector<SPicture> DrawDirectly(const SSample& sample) {
    std::vector<SPicture> frames;
    samples::CDirectBackEnd backEnd([&] {
        const auto getError = reinterpret_cast<decltype(&glGetError)>(backEnd.Find("glGetError"));
        const auto readPixels =
            reinterpret_cast<decltype(&glReadPixels)>(backEnd.Find("glReadPixels"));
        SPicture frame;
        frame.width = static_cast<std::uint32_t>(sample.size.width);
        frame.height = static_cast<std::uint32_t>(sample.size.height);
        frame.pixels.resize(std::size_t{frame.width} * frame.height * 4);
        EXPECT_EQ(getError(), static_cast<GLenum>(GL_NO_ERROR));
        readPixels(0, 0, sample.size.width, sample.size.height, GL_RGBA, GL_UNSIGNED_BYTE,
                   frame.pixels.data());
        frames.push_back(std::move(frame));
    });
    if (!sample.draw(backEnd, sample.size)) ADD_FAILURE() << "no EGL surface to draw on";
    return frames;
}

class CSampleTest : public testing::TestWithParam<std::tuple<SSample, const char*>> {};

TEST_P(CSampleTest, PlaysToTheSamePixels) {
    const auto& [sample, option] = GetParam();
    const std::vector<SPicture> expected = DrawDirectly(sample);
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
