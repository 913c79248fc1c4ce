#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>

#include "bench/bench_traces.h"
#include "exec/es2_names.h"
#include "exec/play_call.h"
#include "playback/advanced_playback_interface.h"
#include "slicing/slicer.h"
#include "tracefile/document/trace_document.h"
#include "transitions/egl_transition.h"
#include "transitions/es1_transition.h"
#include "transitions/es2_transition.h"

namespace kestrail {
namespace {

constexpr std::int64_t kFrames = 10'000;
constexpr std::int64_t kCallsOfFrame = 100;
constexpr std::uint32_t kTextures = 300;
constexpr std::uint32_t kPrograms = 60;
constexpr std::uint32_t kUniforms = 20;
constexpr std::uint32_t kBuffers = 300;
/// In the middle of the trace.
constexpr std::uint32_t kSought = 5'000;

constexpr std::uint32_t kFramesOfParts = 500;

std::vector<std::int64_t> NamesTo(std::uint32_t count) {
    std::vector<std::int64_t> names;
    for (std::uint32_t name = 1; name <= count; ++name) names.push_back(name);
    return names;
}

CRecordBuilder Image(const CTraceBuilder& trace, std::int64_t width, std::int64_t height,
                     std::uint32_t format, const Bytes& pixels) {
    CRecordBuilder record = trace.Gl().Enum(3553).Int(0).Int(format);
    record.Sizei(width).Sizei(height).Int(0);
    return record.Enum(format).Enum(5121).Data(0x10, pixels).Int(4);
}

CRecordBuilder ImagePart(const CTraceBuilder& trace, std::int64_t x, std::int64_t y,
                         std::int64_t width, std::int64_t height, std::uint32_t format,
                         const Bytes& pixels) {
    CRecordBuilder record = trace.Gl().Enum(3553).Int(0).Int(x).Int(y).Sizei(width).Sizei(height);
    return record.Enum(format).Enum(5121).Data(0x10, pixels);
}

void AddImage(CTraceBuilder& trace, std::uint32_t name, std::uint32_t side = 2) {
    trace.Add(2007, trace.Gl().Enum(3553).Uint(name));
    trace.Add(2106, Image(trace, side, side, 6408,
                          Bytes(std::size_t{side} * side * 4, static_cast<std::uint8_t>(name))));
}

void AddBuffer(CTraceBuilder& trace, std::uint32_t name, std::uint32_t size = 48) {
    trace.Add(2004, trace.Gl().Enum(34962).Uint(name));
    trace.Add(2013, trace.Gl().Enum(34962).Sizeiptr(size).Data(0x10, Bytes(size)).Enum(35044));
}

/// Locations of a program lie behind those of the program before.
std::int64_t Location(std::uint32_t program, std::int64_t uniform) {
    return uniform + std::int64_t{program} * kUniforms;
}

void AddProgram(CTraceBuilder& trace, std::uint32_t program) {
    const std::uint32_t vertex = 1000 + program;
    const std::uint32_t fragment = 2000 + program;
    for (const std::uint32_t shader : {vertex, fragment}) {
        trace.Add(2027, trace.Gl().Uint(shader).Enum(shader == vertex ? 35633 : 35632));
        trace.Add(2099, trace.Gl()
                            .Uint(shader)
                            .Sizei(1)
                            .Strings(0x10, {"void main() {}"})
                            .Array(tag::Int, 0x10, {14}));
        trace.Add(2021, trace.Gl().Uint(shader));
    }
    trace.Add(2026, trace.Gl().Uint(program));
    trace.Add(2002, trace.Gl().Uint(program).Uint(vertex));
    trace.Add(2002, trace.Gl().Uint(program).Uint(fragment));
    trace.Add(2090, trace.Gl().Uint(program));
    trace.Add(2131, trace.Gl().Uint(program));
    for (std::int64_t i = 0; i < kUniforms; ++i) {
        trace.Add(2077, trace.Gl()
                            .Int(Location(program, i))
                            .Uint(program)
                            .String(0x10, "uniform" + std::to_string(i)));
    }
}

void AddUniform(CTraceBuilder& trace, std::int64_t location, std::int64_t turn) {
    static const std::vector<float> matrix = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    switch (location % 4) {
        case 0:
            trace.Add(2130, trace.Gl().Int(location).Sizei(1).Boolean(false).Reals(tag::Float, 0x10,
                                                                                   matrix, 16));
            break;
        case 1:
            trace.Add(2114, trace.Gl().Int(location).Int(turn));
            break;
        default:
            trace.Add(2124, trace.Gl().Int(location).Float(0.1F).Float(0.2F).Float(0.3F).Float(
                                static_cast<float>(turn)));
            break;
    }
}

/// A draw with what leads up to it, in twelve calls.
void AddDraw(CTraceBuilder& trace, std::int64_t turn) {
    const auto program = static_cast<std::uint32_t>(1 + turn % kPrograms);
    trace.Add(2131, trace.Gl().Uint(program));
    for (std::int64_t i = 0; i < 5; ++i) {
        AddUniform(trace, Location(program, (turn * 5 + i) % kUniforms), turn);
    }
    trace.Add(2001, trace.Gl().Enum(static_cast<std::uint32_t>(33984 + turn % 2)));
    trace.Add(2007,
              trace.Gl().Enum(3553).Uint(static_cast<std::uint32_t>(1 + turn * 7 % kTextures)));
    trace.Add(2004,
              trace.Gl().Enum(34962).Uint(static_cast<std::uint32_t>(1 + turn * 11 % kBuffers)));
    trace.Add(2141, trace.Gl().Uint(0).Int(3).Enum(5126).Boolean(false).Sizei(12).Pointer(0));
    trace.Add(turn % 2 == 0 ? 2043 : 2039, trace.Gl().Enum(3042));
    trace.Add(2041, trace.Gl().Enum(4).Int(0).Sizei(3));
}

void AddFrame(CTraceBuilder& trace, std::int64_t frame, std::uint32_t prepared) {
    constexpr std::int64_t kDraws = 7;
    for (std::int64_t i = 0; i < kDraws; ++i) AddDraw(trace, frame * kDraws + i);
    AddBuffer(trace, static_cast<std::uint32_t>(1 + frame % kBuffers));
    if (frame % 10 == 0) {
        AddImage(trace, static_cast<std::uint32_t>(1 + frame / 10 % kTextures));
    } else {
        trace.Add(2018, trace.Gl().Float(0.5F)).Add(2046, trace.Gl());
    }
    static const std::vector<float> matrix = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1};
    trace.Add(3093, trace.Gl().Enum(5888)).Add(3113, trace.Gl());
    trace.Add(3086, trace.Gl().RealItem(tag::Float, 0x10, matrix));
    trace.Add(3141, trace.Gl().Float(0.1F).Float(0.2F).Float(0.3F));
    trace.Add(3018, trace.Gl().Float(0.1F).Float(0.2F).Float(0.3F).Float(1.0F));
    trace.Add(3005, trace.Gl().Enum(3553).Uint(static_cast<std::uint32_t>(1 + frame % 5)));
    trace.Add(3112, trace.Gl()).Add(3036, trace.Gl().Enum(4).Int(0).Sizei(3));
    // Up to the frame's calls, its swap included.
    const std::uint32_t first = prepared + static_cast<std::uint32_t>(frame * kCallsOfFrame);
    while (trace.CallCount() < first + kCallsOfFrame - 1) trace.Add(2046, trace.Gl());
    trace.SwapBuffers();
}

void Prepare(CTraceBuilder& trace) {
    trace.StartUp(2, 300, 300);
    trace.Add(3053, trace.Gl().Sizei(5).Array(tag::Uint, 0x10, NamesTo(5)));
    trace.Add(3054, trace.Gl().Sizei(5).Array(tag::Uint, 0x10, NamesTo(5)));
    trace.Add(2054, trace.Gl().Sizei(kTextures).Array(tag::Uint, 0x10, NamesTo(kTextures)));
    trace.Add(2050, trace.Gl().Sizei(kBuffers).Array(tag::Uint, 0x10, NamesTo(kBuffers)));
    for (std::uint32_t name = 1; name <= kTextures; ++name) AddImage(trace, name);
    for (std::uint32_t name = 1; name <= kBuffers; ++name) AddBuffer(trace, name);
    for (std::uint32_t program = 1; program <= kPrograms; ++program) AddProgram(trace, program);
}

SBenchTrace Written(CTraceBuilder& trace, const std::string& path) {
    SBenchTrace written;
    written.path = path;
    written.calls = trace.CallCount();
    if (!trace.Write(path)) throw std::runtime_error("no room for the trace");
    written.bytes = static_cast<std::int64_t>(std::filesystem::file_size(path));
    return written;
}

/// Written once a process; its first frame makes the objects before its own calls.
const SBenchTrace& SeekTrace() {
    static const CTempFolder folder;
    static const SBenchTrace made = [] {
        CTraceBuilder trace;
        Prepare(trace);
        const std::uint32_t prepared = trace.CallCount();
        for (std::int64_t frame = 0; frame < kFrames; ++frame) AddFrame(trace, frame, prepared);
        return Written(trace, folder.File("seek.kstl"));
    }();
    return made;
}

/// Frames that each set a small part of a large texture and of a large buffer.
const SBenchTrace& PartsTrace() {
    static const CTempFolder folder;
    static const SBenchTrace made = [] {
        constexpr std::uint32_t kSide = 1024, kPart = 64;
        constexpr std::uint32_t kContents = 4 << 20, kBytes = 1024;
        CTraceBuilder trace;
        trace.StartUp(2, 300, 300);
        // A restore wants a record of ES1 too.
        trace.Add(3093, trace.Gl().Enum(5888));
        AddImage(trace, 1, kSide);
        AddBuffer(trace, 1, kContents);
        for (std::uint32_t frame = 0; frame < kFramesOfParts; ++frame) {
            const auto value = static_cast<std::uint8_t>(frame);
            trace.Add(2111,
                      ImagePart(trace, frame * kPart % kSide, frame * kPart / kSide * kPart % kSide,
                                kPart, kPart, 6408, Bytes(std::size_t{kPart} * kPart * 4, value)));
            trace.Add(2014, trace.Gl()
                                .Enum(34962)
                                .Intptr(frame * kBytes % kContents)
                                .Sizeiptr(kBytes)
                                .Data(0x10, Bytes(kBytes, value)));
            trace.SwapBuffers();
        }
        return Written(trace, folder.File("parts.kstl"));
    }();
    return made;
}

double ResidentMiB() {
    std::ifstream file("/proc/self/statm");
    double total = 0;
    double resident = 0;
    file >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

/// Loads for seeking, as often as the benchmark asks. `sound` tells whether all is loaded.
template <typename Sound>
void Load(benchmark::State& state, const SBenchTrace& trace, Sound sound) {
    const CSilence silence;
    // The front ends choose for themselves whether state is kept.
    CTraceDocument& document = *CTraceDocument::Instance();
    document.SetTrackState(state.range(0) != 0);
    double before = 0;
    double resident = 0;
    for ([[maybe_unused]] const auto turn : state) {
        state.PauseTiming();
        document.CloseTrace();
        malloc_trim(0);
        before = ResidentMiB();
        state.ResumeTiming();
        const unsigned result = document.OpenTrace(trace.path.c_str(), true);
        state.PauseTiming();
        resident = ResidentMiB();
        if (result != kOpened || !sound(*document.GetFrameStore())) {
            state.SkipWithError("not loaded as asked");
        }
        state.ResumeTiming();
    }
    document.CloseTrace();
    document.SetTrackState(true);
    state.counters["resident_MiB"] = resident;
    state.counters["before_MiB"] = before;
    state.counters["trace_MiB"] = static_cast<double>(trace.bytes) / (1 << 20);
    state.counters["calls"] = static_cast<double>(trace.calls);
}

/// What the state of each frame adds to a load, in time and memory. The memory is the process's,
/// with the trace loaded.
void BM_LoadForSeeking(benchmark::State& state) {
    const SBenchTrace& trace = SeekTrace();
    Load(state, trace, [&](const CFrameStore& store) {
        CEs2State es2;
        return store.CallCount() == trace.calls && store.FrameCount() == kFrames &&
               store.GetEs2StateOfFrame(kSought, es2) == (state.range(0) != 0);
    });
}
BENCHMARK(BM_LoadForSeeking)
    ->ArgName("tracked")
    ->Arg(1)
    ->Arg(0)
    ->Iterations(1)
    ->Repetitions(5)
    ->ReportAggregatesOnly()
    ->Unit(benchmark::kMillisecond);

void BM_LoadParts(benchmark::State& state) {
    Load(state, PartsTrace(), [&](const CFrameStore& store) {
        CEs2State es2;
        return store.FrameCount() == kFramesOfParts &&
               store.GetEs2StateOfFrame(kFramesOfParts / 2, es2) == (state.range(0) != 0);
    });
}
BENCHMARK(BM_LoadParts)
    ->ArgName("tracked")
    ->Arg(1)
    ->Arg(0)
    ->Iterations(1)
    ->Repetitions(3)
    ->ReportAggregatesOnly()
    ->Unit(benchmark::kMillisecond);

/// The loaded trace, for all benchmarks that seek in it. The document holds one trace at a time, so
/// nothing is loaded for others while it lives.
class CLoaded {
public:
    explicit CLoaded(const SBenchTrace& trace = SeekTrace()) {
        if (!m_playback.LoadTrace(trace.path.c_str(), true)) {
            throw std::runtime_error("not loaded");
        }
    }
    /// A player whose host has nothing yet.
    void StartAnew() { m_playback.AttachTrace(m_playback.GetTrace()); }
    AdvancedPlaybackInterface& Playback() { return m_playback; }
    CFrameStore& Store() { return *m_playback.GetTrace(); }

private:
    AdvancedPlaybackInterface m_playback;
};

struct SRecords {
    CEglState egl;
    CEs1State es1;
    CEs2State es2;
};

SRecords RecordsOf(const CFrameStore& store, std::uint32_t frame) {
    SRecords records;
    if (!store.GetEglStateOfFrame(frame, records.egl) ||
        !store.GetEs1StateOfFrame(frame, records.es1) ||
        !store.GetEs2StateOfFrame(frame, records.es2)) {
        throw std::runtime_error("no state");
    }
    return records;
}

/// A host and the records of what is live on it.
struct SLive {
    SSession session;
    CDriverAnswers answers{session};
    SRecords records;
};

/// As the player restores a frame.
void Restore(const CFrameStore& store, std::uint32_t frame, SLive& live) {
    SRecords target = RecordsOf(store, frame);
    SRecords& current = live.records;
    TransitionEglState(live.session, live.answers, target.egl, current.egl);
    TransitionEs1State(live.session, live.answers, target.es1, &current.es1);
    TransitionEs2State(live.session, live.answers, target.es2, current.es2);
    current = target;
}

void BM_RestoreFromNothing(benchmark::State& state) {
    const CSilence silence;
    CLoaded loaded;
    std::unique_ptr<SLive> live;
    for ([[maybe_unused]] const auto turn : state) {
        state.PauseTiming();
        live = std::make_unique<SLive>();
        state.ResumeTiming();
        Restore(loaded.Store(), kSought, *live);
    }
    CEs2Names& names = live->session.es2Names;
    if (names.GetProgramRecord(kPrograms) == nullptr || names.Textures().Get(kTextures) == 0 ||
        names.Buffers().Get(kBuffers) == CEs2Names::kUnknown) {
        state.SkipWithError("nothing restored");
    }
}
BENCHMARK(BM_RestoreFromNothing)->Unit(benchmark::kMillisecond);

/// The restore of a frame from the start of another, a number of frames off; there and back.
void BM_RestoreFromNeighbour(benchmark::State& state) {
    const CSilence silence;
    CLoaded loaded;
    SLive live;
    const auto other = static_cast<std::uint32_t>(kSought + state.range(0));
    Restore(loaded.Store(), kSought, live);
    bool there = false;
    for ([[maybe_unused]] const auto turn : state) {
        there = !there;
        Restore(loaded.Store(), there ? other : kSought, live);
    }
}
BENCHMARK(BM_RestoreFromNeighbour)
    ->ArgName("frames")
    ->Arg(0)
    ->Arg(1)
    ->Arg(10)
    ->Arg(1'000)
    ->Unit(benchmark::kMillisecond);

/// Large contents of which parts were set in every frame before.
void BM_RestoreParts(benchmark::State& state) {
    const CSilence silence;
    CLoaded loaded(PartsTrace());
    SLive live;
    bool there = false;
    for ([[maybe_unused]] const auto turn : state) {
        there = !there;
        Restore(loaded.Store(), there ? kFramesOfParts / 2 : kFramesOfParts / 2 - 1, live);
    }
}
BENCHMARK(BM_RestoreParts)->Unit(benchmark::kMillisecond);

/// A whole frame, restored from the frame before it, with its own calls.
void BM_PlayFrameBehindNeighbour(benchmark::State& state) {
    const CSilence silence;
    CLoaded loaded;
    loaded.StartAnew();
    std::int32_t frame = kSought;
    loaded.Playback().PlayFrame(frame);
    for ([[maybe_unused]] const auto turn : state) {
        frame = frame == kSought ? kSought + 1 : kSought;
        if (!loaded.Playback().PlayFrame(frame)) state.SkipWithError("not played");
    }
}
BENCHMARK(BM_PlayFrameBehindNeighbour)->Unit(benchmark::kMillisecond);

/// What the calls of a loaded trace read and change.
void BM_FindEffects(benchmark::State& state) {
    const CSilence silence;
    CTraceDocument& document = *CTraceDocument::Instance();
    document.SetTrackState(false);
    document.OpenTrace(SeekTrace().path.c_str(), true);
    double before = 0;
    double resident = 0;
    for ([[maybe_unused]] const auto turn : state) {
        state.PauseTiming();
        before = ResidentMiB();
        state.ResumeTiming();
        const CSlicer slicer(*document.GetFrameStore());
        state.PauseTiming();
        resident = ResidentMiB();
        state.ResumeTiming();
    }
    document.CloseTrace();
    document.SetTrackState(true);
    state.counters["resident_MiB"] = resident;
    state.counters["before_MiB"] = before;
}
BENCHMARK(BM_FindEffects)->Unit(benchmark::kMillisecond);

/// Finds what a frame stands on, and plays it on a host that has nothing yet; or finds it alone.
void BM_RestoreBySlice(benchmark::State& state) {
    const CSilence silence;
    CLoaded loaded;
    CSlicer slicer(loaded.Store());
    const CFrameRecord& frame = *loaded.Store().GetFrameRecord(kSought);
    const std::vector<SStretch> stretch = {{frame.firstCall + 1, frame.lastCall + 1}};
    const SSlice known = slicer.Slice(stretch);
    for ([[maybe_unused]] const auto turn : state) {
        if (state.range(0) == 0) benchmark::DoNotOptimize(slicer.Slice(stretch));
        if (state.range(0) == 0) continue;
        state.PauseTiming();
        const auto player = std::make_unique<SPlayerState>();
        player->store = &loaded.Store();
        state.ResumeTiming();
        for (const std::uint32_t call : known.calls) {
            PlayCallOfFamily(*player, *loaded.Store().CallAt(call));
        }
    }
    state.counters["calls"] = static_cast<double>(known.calls.size());
}
BENCHMARK(BM_RestoreBySlice)->ArgName("played")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// A record with one small image for each texture; the images of all such records share contents.
CEs2State Textured(std::uint32_t count, const std::vector<std::uint8_t>& contents, bool backwards) {
    CEs2State made;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t name = backwards ? count - i : i + 1;
        STextureImageState& image = made.WriteImage(name, 0, 0);
        image.name = name;
        image.target = image.bindTarget = 3553;
        image.width = image.height = 2;
        image.format = 6408;
        image.internalFormat = 6408;
        image.type = 5121;
        image.data =
            CSharedBytes::Borrow(contents.data() + name * std::size_t{16}, std::size_t{16});
    }
    return made;
}

/// Records that have the textures in common but not one table, in the same order or another.
void BM_CompareTextures(benchmark::State& state) {
    const CSilence silence;
    const auto count = static_cast<std::uint32_t>(state.range(0));
    const std::vector<std::uint8_t> contents((count + std::size_t{1}) * 16);
    const CEs2State current = Textured(count, contents, false);
    const CEs2State target = Textured(count, contents, state.range(1) != 0);
    SLive live;
    for ([[maybe_unused]] const auto turn : state) {
        TransitionEs2State(live.session, live.answers, target, current);
    }
}
BENCHMARK(BM_CompareTextures)
    ->ArgNames({"textures", "reordered"})
    ->Args({500, 0})
    ->Args({5'000, 0})
    ->Args({5'000, 1})
    ->Unit(benchmark::kMillisecond);

/// Records that differ in the one texture that a call has written.
void BM_CompareTexturesOfNeighbours(benchmark::State& state) {
    const CSilence silence;
    const auto count = static_cast<std::uint32_t>(state.range(0));
    const std::vector<std::uint8_t> contents((count + std::size_t{1}) * 16);
    const CEs2State current = Textured(count, contents, false);
    CEs2State target = current;
    target.WriteImage(count / 2, 0, 0).parameters[0] = 9729;
    SLive live;
    for ([[maybe_unused]] const auto turn : state) {
        TransitionEs2State(live.session, live.answers, target, current);
    }
}
BENCHMARK(BM_CompareTexturesOfNeighbours)
    ->ArgName("textures")
    ->Arg(5'000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrail
