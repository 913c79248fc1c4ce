// Writes the sample scene into a trace file: make_sample_trace FILE WIDTH HEIGHT FRAMES.

#include <cstdio>
#include <cstdlib>

#include "samples/es2/recording_calls.h"
#include "samples/es2/scene.h"

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fprintf(stderr, "Usage: %s FILE WIDTH HEIGHT FRAMES\n", argv[0]);
        return 2;
    }
    kestrail::CTraceBuilder trace;
    kestrail::samples::CRecordingCalls recording(trace);
    kestrail::samples::DrawScene(recording,
                                 {std::atoi(argv[2]), std::atoi(argv[3]), std::atoi(argv[4])});
    if (!trace.Write(argv[1])) {
        std::fprintf(stderr, "%s: can't be written\n", argv[1]);
        return 1;
    }
    return 0;
}
