// Writes a sample scene into a trace file: make_sample_trace es1|es2|es3|seek FILE WIDTH HEIGHT
// FRAMES.

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "samples/common/recording_back_end.h"
#include "samples/scenes.h"

int main(int argc, char** argv) {
    using namespace kestrail;
    const std::map<std::string, decltype(&samples::DrawEs1Scene)> scenes = {
        {"es1", &samples::DrawEs1Scene},
        {"es2", &samples::DrawEs2Scene},
        {"es3", &samples::DrawEs3Scene},
        {"seek", &samples::DrawSeekScene}};
    const auto scene = scenes.find(argc == 6 ? argv[1] : "");
    if (scene == scenes.end()) {
        std::fprintf(stderr, "Usage: %s es1|es2|es3|seek FILE WIDTH HEIGHT FRAMES\n", argv[0]);
        return 2;
    }
    CTraceBuilder trace;
    samples::CRecordingBackEnd recording(trace);
    scene->second(recording, {std::atoi(argv[3]), std::atoi(argv[4]), std::atoi(argv[5])});
    if (!trace.Write(argv[2])) {
        std::fprintf(stderr, "%s: can't be written\n", argv[2]);
        return 1;
    }
    return 0;
}
