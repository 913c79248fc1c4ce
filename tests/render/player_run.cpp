#include "tests/render/player_run.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>

#include "tests/support/program_run.h"

namespace kestrail {

SPlayerRun RunPlayer(const std::string& trace, const std::vector<std::string>& options,
                     const std::string& folder) {
    const std::string captureFolder = KESTRAIL_RENDER_OUTPUT "/" + folder;
    std::filesystem::remove_all(captureFolder);
    std::filesystem::create_directories(captureFolder);
    const auto value = [](const char* name) {
        const char* const text = std::getenv(name);
        return std::string(text != nullptr ? text : "");
    };
    SRunOptions run;
    run.host.clear();
    run.memoryLimit = 0;
    run.timeoutSeconds = 200;
    run.environment = {"KESTRAIL_CAPTURE_DIR=" + captureFolder, "DISPLAY=" + value("DISPLAY"),
                       "LD_LIBRARY_PATH=" KESTRAIL_CAPTURE_LIBRARIES ":" + value("LD_LIBRARY_PATH"),
                       "XAUTHORITY=" + value("XAUTHORITY")};
    std::vector<std::string> words = {trace};
    words.insert(words.end(), options.begin(), options.end());
    std::erase(words, "");
    const SRunResult result = RunProgram(words, run);
    EXPECT_TRUE(result.Ok()) << result.Ending();
    return {result.Lines(), captureFolder};
}

SPicture SPlayerRun::Frame(unsigned number) const {
    SPicture picture;
    std::ifstream file(captureFolder + "/frame-" + std::to_string(number) + ".rgba",
                       std::ios::binary);
    std::array<std::uint32_t, 2> size{};
    if (!file.read(reinterpret_cast<char*>(size.data()), sizeof size)) return picture;
    picture.width = size[0];
    picture.height = size[1];
    picture.pixels.resize(std::size_t{size[0]} * size[1] * 4);
    file.read(reinterpret_cast<char*>(picture.pixels.data()),
              static_cast<std::streamsize>(picture.pixels.size()));
    return picture;
}

std::vector<std::string> SPlayerRun::LinesWith(const std::string& pattern,
                                               const std::string& allowed) const {
    const std::regex wanted(pattern);
    const std::regex unwanted("Frame\\(P\\): " + (allowed.empty() ? "" : "|" + allowed));
    std::vector<std::string> found = lines;
    std::erase_if(found, [&](const std::string& line) {
        return std::regex_search(line, unwanted) || !std::regex_search(line, wanted);
    });
    return found;
}

bool SDifference::WithinRounding(const SPicture& picture) const {
    constexpr double allowedShare = 0.005;
    constexpr unsigned allowedStep = 2;
    const double allowed =
        allowedShare * static_cast<double>(picture.width) * static_cast<double>(picture.height);
    return sameSize && static_cast<double>(pixels) <= allowed && largestStep <= allowedStep;
}

SDifference Compare(const SPicture& expected, const SPicture& actual) {
    SDifference difference;
    difference.sameSize = expected.width == actual.width && expected.height == actual.height &&
                          expected.pixels.size() == actual.pixels.size();
    if (!difference.sameSize) return difference;
    for (std::size_t i = 0; i + 4 <= expected.pixels.size(); i += 4) {
        unsigned largest = 0;
        for (std::size_t channel = i; channel < i + 4; ++channel) {
            const int step = expected.pixels[channel] - actual.pixels[channel];
            largest = std::max(largest, static_cast<unsigned>(std::abs(step)));
        }
        difference.pixels += largest != 0 ? 1 : 0;
        difference.largestStep = std::max(difference.largestStep, largest);
    }
    return difference;
}

std::ostream& operator<<(std::ostream& out, const SDifference& difference) {
    if (!difference.sameSize) return out << "missing or of another size";
    return out << difference.pixels << " pixels differ, by up to " << difference.largestStep;
}

}  // namespace kestrail
