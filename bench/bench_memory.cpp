#include <benchmark/benchmark.h>

#include "bench/bench_traces.h"

namespace kestrail {
namespace {

/// The program's peak memory while streaming: it must not grow with the length of the trace.
void BM_StreamedPeakMemory(benchmark::State& state) {
    const SBenchTrace trace = SmallCallsTrace(state.range(0), 100);
    SRunOptions options;
    options.host = "idle";
    options.memoryLimit = 0;
    options.measureMemory = true;
    options.timeoutSeconds = 300;
    double peak = 0;
    for ([[maybe_unused]] const auto turn : state) {
        const SRunResult run = RunProgram({trace.path, "--noMemory"}, options);
        if (!run.Ok()) state.SkipWithError(run.Ending().c_str());
        if (run.Printed("Error call") || run.Printed("Exception")) {
            state.SkipWithError("the trace doesn't play");
        }
        peak = static_cast<double>(run.maxResidentKilobytes) / 1024.0;
    }
    state.counters["peak_MiB"] = peak;
    state.counters["trace_MiB"] = static_cast<double>(trace.bytes) / (1 << 20);
}
BENCHMARK(BM_StreamedPeakMemory)
    ->Arg(50'000)
    ->Arg(500'000)
    ->Arg(2'000'000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrail
