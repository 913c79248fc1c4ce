#include "tests/render/player_run.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace kestrail {

namespace {

/// What the player's process becomes between fork and exec. Doesn't return.
[[noreturn]] void BecomePlayer(const std::string& trace, const std::vector<std::string>& options,
                               const std::string& captureFolder, int output) {
    dup2(output, STDOUT_FILENO);
    std::string path = KESTRAIL_CAPTURE_LIBRARIES;
    if (const char* const old = std::getenv("LD_LIBRARY_PATH")) path += std::string(":") + old;
    setenv("LD_LIBRARY_PATH", path.c_str(), 1);
    setenv("KESTRAIL_CAPTURE_DIR", captureFolder.c_str(), 1);
    std::vector<std::string> words = {KESTRAIL_PLAYER, trace};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    execv(KESTRAIL_PLAYER, arguments.data());
    _exit(127);
}

std::string ReadAll(int input) {
    std::string text;
    std::array<char, 65536> block{};
    ssize_t got = 0;
    while ((got = read(input, block.data(), block.size())) > 0) {
        text.append(block.data(), static_cast<std::size_t>(got));
    }
    return text;
}

std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

}  // namespace

SPlayerRun RunPlayer(const std::string& trace, const std::vector<std::string>& options,
                     const std::string& captureFolder) {
    SPlayerRun run;
    run.captureFolder = captureFolder;
    std::filesystem::remove_all(captureFolder);
    std::filesystem::create_directories(captureFolder);
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) return run;
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        BecomePlayer(trace, options, captureFolder, ends[1]);
    }
    close(ends[1]);
    run.lines = SplitLines(ReadAll(ends[0]));
    close(ends[0]);
    int status = 0;
    if (child > 0 && waitpid(child, &status, 0) == child) {
        run.exited = WIFEXITED(status);
        run.exitStatus = run.exited ? WEXITSTATUS(status) : WTERMSIG(status);
    }
    return run;
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
