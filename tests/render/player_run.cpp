#include "tests/render/player_run.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/support/program_run.h"

namespace kestrail {

SPlayerRun RunPlayer(const std::string& trace, const std::vector<std::string>& options,
                     const std::string& captureFolder) {
    std::filesystem::remove_all(captureFolder);
    std::filesystem::create_directories(captureFolder);
    SRunOptions run;
    run.host.clear();
    run.memoryLimit = 0;
    run.timeoutSeconds = 200;
    run.environment = {"KESTRAIL_CAPTURE_DIR=" + captureFolder};
    std::string libraries = KESTRAIL_CAPTURE_LIBRARIES;
    if (const char* const old = std::getenv("LD_LIBRARY_PATH")) libraries += std::string(":") + old;
    run.environment.push_back("LD_LIBRARY_PATH=" + libraries);
    for (const char* name : {"DISPLAY", "XAUTHORITY"}) {
        if (const char* const value = std::getenv(name)) {
            run.environment.push_back(std::string(name) + "=" + value);
        }
    }
    std::vector<std::string> words = {trace};
    words.insert(words.end(), options.begin(), options.end());
    const SRunResult result = RunProgram(words, run);
    return {!result.timedOut && result.signal == 0, result.Ok() ? 0 : result.status | result.signal,
            result.Lines(), captureFolder};
}

SPicture CapturedFrame(const SPlayerRun& run, unsigned number) {
    SPicture picture;
    std::ifstream file(run.captureFolder + "/frame-" + std::to_string(number) + ".rgba",
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

std::vector<std::string> Complaints(const SPlayerRun& run) {
    constexpr std::array words = {"Error call:",
                                  "Error Code",
                                  "Error loading",
                                  "Exception",
                                  "No enought Data",
                                  "dlopen failed",
                                  "Playback Link Status",
                                  "Aborting Playback",
                                  "not available on this platform"};
    std::vector<std::string> found;
    for (const std::string& line : run.lines) {
        // A call's own line may quote any text, shader sources among them. The line that follows
        // each "Error call:" says nothing more.
        if (line.find("Frame(P): ") != std::string::npos) continue;
        if (std::any_of(words.begin(), words.end(),
                        [&](const char* word) { return line.find(word) != std::string::npos; })) {
            found.push_back(line);
        }
    }
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
        unsigned colour = 0;
        unsigned alpha = 0;
        for (std::size_t channel = 0; channel < 4; ++channel) {
            const int step = expected.pixels[i + channel] - actual.pixels[i + channel];
            unsigned& largest = channel == 3 ? alpha : colour;
            largest = std::max(largest, static_cast<unsigned>(std::abs(step)));
        }
        if (colour == 0 && alpha == 0) continue;
        ++difference.pixels;
        if (colour == 0) ++difference.alphaOnlyPixels;
        difference.largestStep = std::max({difference.largestStep, colour, alpha});
    }
    return difference;
}

}  // namespace kestrail
