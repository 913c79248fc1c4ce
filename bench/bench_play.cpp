#include <benchmark/benchmark.h>

#include "bench/bench_traces.h"
#include "playback/playback_interface.h"

namespace kestrail {
namespace {

void Report(benchmark::State& state, const SBenchTrace& trace) {
    state.SetItemsProcessed(state.iterations() * trace.calls);
    state.counters["per_call"] = benchmark::Counter(
        static_cast<double>(trace.calls),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// The play alone; the load before it isn't counted.
void PlayWhole(benchmark::State& state, const SBenchTrace& trace) {
    const CSilence silence;
    for ([[maybe_unused]] const auto turn : state) {
        state.PauseTiming();
        {
            PlaybackInterface playback;
            if (!playback.LoadTrace(trace.path.c_str(), true)) state.SkipWithError("not loaded");
            playback.SetOption(kOptionSync, 0);
            state.ResumeTiming();
            if (!playback.Play()) state.SkipWithError("not played");
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    Report(state, trace);
}

/// Reading and playing, as they go hand in hand while streaming.
void PlayStreamed(benchmark::State& state, const SBenchTrace& trace) {
    const CSilence silence;
    for ([[maybe_unused]] const auto turn : state) {
        PlaybackInterface playback;
        if (!playback.LoadTrace(trace.path.c_str(), false)) state.SkipWithError("not loaded");
        playback.SetOption(kOptionSync, 0);
        if (!playback.Play()) state.SkipWithError("not played");
    }
    Report(state, trace);
}

void BM_PlaySmallCalls(benchmark::State& state) {
    PlayWhole(state, SmallCallsTrace(state.range(0), 100));
}
BENCHMARK(BM_PlaySmallCalls)->Arg(10'000)->Arg(100'000)->Arg(400'000);

void BM_PlaySmallEs1Calls(benchmark::State& state) {
    PlayWhole(state, SmallEs1CallsTrace(state.range(0), 100));
}
BENCHMARK(BM_PlaySmallEs1Calls)->Arg(10'000)->Arg(100'000)->Arg(400'000);

void BM_PlaySmallEs3Calls(benchmark::State& state) {
    PlayWhole(state, SmallEs3CallsTrace(state.range(0), 100));
}
BENCHMARK(BM_PlaySmallEs3Calls)->Arg(10'000)->Arg(100'000)->Arg(400'000);

void BM_PlayStreamedSmallCalls(benchmark::State& state) {
    PlayStreamed(state, SmallCallsTrace(state.range(0), 100));
}
BENCHMARK(BM_PlayStreamedSmallCalls)->Arg(10'000)->Arg(100'000)->Arg(400'000);

void BM_PlayRealMix(benchmark::State& state) {
    PlayWhole(state, RealMixTrace(state.range(0)));
}
BENCHMARK(BM_PlayRealMix)->Arg(1'500);

void BM_PlayStreamedRealMix(benchmark::State& state) {
    PlayStreamed(state, RealMixTrace(state.range(0)));
}
BENCHMARK(BM_PlayStreamedRealMix)->Arg(1'500);

void BM_PlayByFrames(benchmark::State& state) {
    PlayWhole(state, SmallCallsTrace(100'000, state.range(0)));
}
BENCHMARK(BM_PlayByFrames)->Arg(10)->Arg(1'000)->Arg(10'000);

void BM_PlayByLiveNames(benchmark::State& state) {
    PlayWhole(state, NamesTrace(state.range(0), 20'000));
}
BENCHMARK(BM_PlayByLiveNames)->Arg(10)->Arg(1'000)->Arg(10'000);

}  // namespace
}  // namespace kestrail
