// What a user waits for: the whole program, its start-up included, on calls as applications make
// them.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "bench/bench_traces.h"

namespace kestrail {
namespace {

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

/// The processor's seconds that a run of the player takes; negative for one that failed.
double RunPlayer(std::string path, bool whole) {
    std::string program = KESTRAIL_PLAYER;
    std::string option = "--noMemory";
    std::string hosts = "LD_LIBRARY_PATH=" KESTRAIL_HOST_FOLDER "/idle";
    char* const arguments[] = {program.data(), path.data(), whole ? nullptr : option.data(),
                               nullptr};
    char* const environment[] = {hosts.data(), nullptr};
    posix_spawn_file_actions_t silence;
    posix_spawn_file_actions_init(&silence);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&silence, stream, "/dev/null", O_WRONLY, 0);
    }
    pid_t child = 0;
    const int failed =
        posix_spawn(&child, program.c_str(), &silence, nullptr, arguments, environment);
    posix_spawn_file_actions_destroy(&silence);
    int status = 0;
    rusage used{};
    if (failed != 0 || wait4(child, &status, 0, &used) != child || status != 0) return -1;
    return Seconds(used.ru_utime) + Seconds(used.ru_stime);
}

void Run(benchmark::State& state, const SBenchTrace& trace, bool whole) {
    for ([[maybe_unused]] const auto turn : state) {
        const double seconds = RunPlayer(trace.path, whole);
        if (seconds < 0) return state.SkipWithError("not played");
        state.SetIterationTime(seconds);
    }
    state.counters["per_call"] = benchmark::Counter(
        static_cast<double>(trace.calls),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BM_RunRealMix(benchmark::State& state) {
    Run(state, RealMixTrace(state.range(0)), true);
}
BENCHMARK(BM_RunRealMix)->Arg(0)->Arg(1'500)->UseManualTime();

void BM_RunStreamedRealMix(benchmark::State& state) {
    Run(state, RealMixTrace(state.range(0)), false);
}
BENCHMARK(BM_RunStreamedRealMix)->Arg(0)->Arg(1'500)->UseManualTime();

void BM_RunSmallCalls(benchmark::State& state) {
    Run(state, SmallCallsTrace(state.range(0), 1'000), true);
}
BENCHMARK(BM_RunSmallCalls)->Arg(300'000)->UseManualTime();

void BM_RunStreamedSmallCalls(benchmark::State& state) {
    Run(state, SmallCallsTrace(state.range(0), 1'000), false);
}
BENCHMARK(BM_RunStreamedSmallCalls)->Arg(300'000)->UseManualTime();

}  // namespace
}  // namespace kestrail
