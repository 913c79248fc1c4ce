#include <benchmark/benchmark.h>

#include <memory>

#include "bench/bench_traces.h"
#include "playback/playback_interface.h"

namespace kestrail {
namespace {

void Report(benchmark::State& state, const SBenchTrace& trace) {
    state.SetItemsProcessed(state.iterations() * trace.calls);
    state.SetBytesProcessed(state.iterations() * trace.bytes);
    state.counters["per_call"] = benchmark::Counter(
        static_cast<double>(trace.calls),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void LoadWhole(benchmark::State& state, const SBenchTrace& trace) {
    const CSilence silence;
    for ([[maybe_unused]] const auto turn : state) {
        auto playback = std::make_unique<PlaybackInterface>();
        if (!playback->LoadTrace(trace.path.c_str(), true)) state.SkipWithError("not loaded");
        state.PauseTiming();
        playback.reset();
        state.ResumeTiming();
    }
    Report(state, trace);
}

/// Every call read from the file and dropped again, without being played.
void Stream(benchmark::State& state, const SBenchTrace& trace) {
    const CSilence silence;
    std::int64_t calls = 0;
    for ([[maybe_unused]] const auto turn : state) {
        PlaybackInterface playback;
        if (!playback.LoadTrace(trace.path.c_str(), false)) state.SkipWithError("not loaded");
        CFrameStore* store = playback.GetTrace();
        store->SeekFrame(1, true);
        calls = 0;
        while (store->NextCall() != nullptr) ++calls;
    }
    if (calls != trace.calls) state.SkipWithError("calls are missing");
    Report(state, trace);
}

void BM_LoadSmallCalls(benchmark::State& state) {
    LoadWhole(state, SmallCallsTrace(state.range(0), 100));
}
BENCHMARK(BM_LoadSmallCalls)->Arg(10'000)->Arg(100'000)->Arg(400'000);

void BM_LoadRealMix(benchmark::State& state) {
    LoadWhole(state, RealMixTrace(state.range(0)));
}
BENCHMARK(BM_LoadRealMix)->Arg(1'500);

void BM_LoadByFrames(benchmark::State& state) {
    LoadWhole(state, SmallCallsTrace(100'000, state.range(0)));
}
BENCHMARK(BM_LoadByFrames)->Arg(10)->Arg(1'000)->Arg(10'000);

void BM_StreamSmallCalls(benchmark::State& state) {
    Stream(state, SmallCallsTrace(state.range(0), 100));
}
BENCHMARK(BM_StreamSmallCalls)->Arg(10'000)->Arg(100'000)->Arg(400'000);

void BM_LoadData(benchmark::State& state) {
    LoadWhole(state, DataTrace(256, state.range(0)));
}
BENCHMARK(BM_LoadData)->Arg(64 << 10)->Arg(1 << 20);

void BM_StreamData(benchmark::State& state) {
    Stream(state, DataTrace(256, state.range(0)));
}
BENCHMARK(BM_StreamData)->Arg(64 << 10)->Arg(1 << 20);

}  // namespace
}  // namespace kestrail
