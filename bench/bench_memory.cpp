#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench/bench_traces.h"

namespace kestrail {
namespace {

void PeakMemory(benchmark::State& state, const SBenchTrace& trace, bool whole) {
    SRunOptions options;
    options.host = "idle";
    options.memoryLimit = 0;
    options.measureMemory = true;
    options.timeoutSeconds = 300;
    std::vector<std::string> arguments = {trace.path};
    if (!whole) arguments.emplace_back("--noMemory");
    double peak = 0;
    for ([[maybe_unused]] const auto turn : state) {
        const SRunResult run = RunProgram(arguments, options);
        if (!run.Ok()) state.SkipWithError(run.Ending().c_str());
        if (run.Printed("Error call") || run.Printed("Exception")) {
            state.SkipWithError("the trace doesn't play");
        }
        peak = static_cast<double>(run.maxResidentKilobytes) / 1024.0;
    }
    state.counters["peak_MiB"] = peak;
    state.counters["trace_MiB"] = static_cast<double>(trace.bytes) / (1 << 20);
}

/// The program's peak memory while streaming: it must not grow with the length of the trace.
void BM_StreamedPeakMemory(benchmark::State& state) {
    PeakMemory(state, SmallCallsTrace(state.range(0), 100), false);
}
BENCHMARK(BM_StreamedPeakMemory)
    ->Arg(50'000)
    ->Arg(500'000)
    ->Arg(2'000'000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

void BM_PeakMemoryRealMix(benchmark::State& state) {
    PeakMemory(state, RealMixTrace(1'500), state.range(0) != 0);
}
BENCHMARK(BM_PeakMemoryRealMix)
    ->ArgName("whole")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrail
