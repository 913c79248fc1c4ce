#include "bench/bench_traces.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <map>
#include <stdexcept>

#include "base/output.h"
#include "bench/written_trace.h"

namespace kestrail {

namespace {

const CTempFolder& Folder() {
    static const CTempFolder folder;
    return folder;
}

void Prepare(CTraceBuilder& trace) {
    trace.StartUp(2, 300, 300);
    trace.Add(2050, trace.Gl().Sizei(2).Array(tag::Uint, 0x10, {1, 2}));
    trace.Add(2054, trace.Gl().Sizei(2).Array(tag::Uint, 0x10, {1, 2}));
    trace.Add(2026, trace.Gl().Uint(5));
    trace.Add(2131, trace.Gl().Uint(5));
    for (std::int64_t location : {0, 1, 2}) {
        trace.Add(2077, trace.Gl().Int(location).Uint(5).String(
                            0x10, "uniform" + std::to_string(location)));
    }
}

void AddSmallCall(CTraceBuilder& trace, std::int64_t turn) {
    static const std::vector<float> matrix = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const auto name = static_cast<std::uint32_t>(1 + turn % 2);
    switch (turn % 10) {
        case 0:
            trace.Add(2007, trace.Gl().Enum(3553).Uint(name));
            break;
        case 1:
            trace.Add(2043, trace.Gl().Enum(3042));
            break;
        case 2:
            trace.Add(2011, trace.Gl().Enum(770).Enum(771));
            break;
        case 3:
            trace.Add(2124, trace.Gl().Int(0).Float(0.1F).Float(0.2F).Float(0.3F).Float(1.0F));
            break;
        case 4:
            trace.Add(2114, trace.Gl().Int(1).Int(turn));
            break;
        case 5:
            trace.Add(2130, trace.Gl().Int(2).Sizei(1).Boolean(false).Reals(tag::Float, 0x10,
                                                                            matrix, 16));
            break;
        case 6:
            trace.Add(2004, trace.Gl().Enum(34962).Uint(name));
            break;
        case 7:
            trace.Add(2141,
                      trace.Gl().Uint(0).Int(3).Enum(5126).Boolean(false).Sizei(12).Pointer(0));
            break;
        case 8:
            trace.Add(2131, trace.Gl().Uint(5));
            break;
        default:
            trace.Add(2041, trace.Gl().Enum(4).Int(0).Sizei(36));
            break;
    }
}

void PrepareEs1(CTraceBuilder& trace) {
    trace.StartUp(1, 300, 300);
    trace.Add(3053, trace.Gl().Sizei(2).Array(tag::Uint, 0x10, {1, 2}));
    trace.Add(3054, trace.Gl().Sizei(2).Array(tag::Uint, 0x10, {1, 2}));
}

void AddSmallEs1Call(CTraceBuilder& trace, std::int64_t turn) {
    static const std::vector<float> matrix = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const auto name = static_cast<std::uint32_t>(1 + turn % 2);
    switch (turn % 10) {
        case 0:
            trace.Add(3005, trace.Gl().Enum(3553).Uint(name));
            break;
        case 1:
            trace.Add(3038, trace.Gl().Enum(3042));
            break;
        case 2:
            trace.Add(3006, trace.Gl().Enum(770).Enum(771));
            break;
        case 3:
            trace.Add(3018, trace.Gl().Float(0.1F).Float(0.2F).Float(0.3F).Float(1.0F));
            break;
        case 4:
            trace.Add(3020, trace.Gl().Fixed(turn).Fixed(0).Fixed(0).Fixed(65536));
            break;
        case 5:
            trace.Add(3086, trace.Gl().RealItem(tag::Float, 0x10, matrix));
            break;
        case 6:
            trace.Add(3004, trace.Gl().Enum(34962).Uint(name));
            break;
        case 7:
            trace.Add(3143, trace.Gl().Int(3).Enum(5126).Sizei(12).Pointer(0));
            break;
        case 8:
            trace.Add(3141, trace.Gl().Float(0.1F).Float(0.2F).Float(0.3F));
            break;
        default:
            trace.Add(3036, trace.Gl().Enum(4).Int(0).Sizei(36));
            break;
    }
}

void PrepareEs3(CTraceBuilder& trace) {
    trace.StartUp(3, 300, 300);
    trace.Add(2050, trace.Gl().Sizei(2).Array(tag::Uint, 0x10, {1, 2}));
    trace.Add(5173, trace.Gl().Sizei(2).Array(tag::Uint, 0x10, {1, 2}));
    trace.Add(5222, trace.Gl().Sizei(2).Array(tag::Uint, 0x10, {1, 2}));
    trace.Add(2026, trace.Gl().Uint(5));
    trace.Add(2131, trace.Gl().Uint(5));
    trace.Add(2077, trace.Gl().Int(0).Uint(5).String(0x10, "uniform"));
    trace.Add(5213, trace.Gl().Pointer(3).Enum(37143).Bitfield(0));
}

void AddSmallEs3Call(CTraceBuilder& trace, std::int64_t turn) {
    static const std::vector<float> matrix = {1, 0, 0, 0, 1, 0};
    const auto name = static_cast<std::uint32_t>(1 + turn % 2);
    switch (turn % 10) {
        case 0:
            trace.Add(5171, trace.Gl().Uint(name));
            break;
        case 1:
            trace.Add(5225, trace.Gl().Uint(0).Uint(name));
            break;
        case 2:
            trace.Add(5179, trace.Gl().Enum(35345).Uint(0).Uint(name));
            break;
        case 3:
            trace.Add(5194, trace.Gl().Int(0).Uint(1).Uint(2).Uint(3).Uint(name));
            break;
        case 4:
            trace.Add(5160,
                      trace.Gl().Int(0).Sizei(1).Boolean(false).Reals(tag::Float, 0x10, matrix));
            break;
        case 5:
            trace.Add(5232, trace.Gl().Uint(0).Uint(1));
            break;
        case 6:
            trace.Add(5226, trace.Gl().Uint(name).Enum(10241).Int(9729));
            break;
        case 7:
            trace.Add(5217, trace.Gl().Pointer(3).Bitfield(0).Value(tag::Uint64, 1));
            break;
        case 8:
            trace.Add(5211, trace.Gl().Enum(4).Int(0).Sizei(36).Sizei(2));
            break;
        default:
            trace.Add(5212, trace.Gl()
                                .Enum(4)
                                .Sizei(36)
                                .Enum(5123)
                                .Sizei(2)
                                .Data(0x10, Bytes(72))
                                .Pointer(0x10));
            break;
    }
}

struct SSmallCalls {
    const char* name;
    void (*prepare)(CTraceBuilder& trace);
    void (*add)(CTraceBuilder& trace, std::int64_t turn);
};

SBenchTrace SmallTrace(const SSmallCalls& small, std::int64_t calls, std::int64_t frames) {
    const std::string name = small.name + std::to_string(calls) + "-" + std::to_string(frames);
    return WrittenTrace(name, [&] {
        CTraceBuilder trace;
        small.prepare(trace);
        const std::int64_t each = calls / frames;
        for (std::int64_t turn = 0; turn < calls; ++turn) {
            if (turn % each == each - 1) {
                trace.SwapBuffers();
            } else {
                small.add(trace, turn);
            }
        }
        return trace;
    });
}

}  // namespace

SBenchTrace WrittenTrace(const std::string& name, const std::function<CTraceBuilder()>& make) {
    static std::map<std::string, SBenchTrace> written;
    SBenchTrace& trace = written[name];
    if (trace.path.empty()) {
        const CTraceBuilder builder = make();
        trace.path = Folder().File(name + ".kstl");
        trace.calls = builder.CallCount();
        if (!builder.Write(trace.path)) throw std::runtime_error("no room for the trace");
        trace.bytes = static_cast<std::int64_t>(std::filesystem::file_size(trace.path));
    }
    return trace;
}

SBenchTrace SmallCallsTrace(std::int64_t calls, std::int64_t frames) {
    return SmallTrace({"small-", Prepare, AddSmallCall}, calls, frames);
}

SBenchTrace SmallEs1CallsTrace(std::int64_t calls, std::int64_t frames) {
    return SmallTrace({"small-es1-", PrepareEs1, AddSmallEs1Call}, calls, frames);
}

SBenchTrace SmallEs3CallsTrace(std::int64_t calls, std::int64_t frames) {
    return SmallTrace({"small-es3-", PrepareEs3, AddSmallEs3Call}, calls, frames);
}

SBenchTrace DataTrace(std::int64_t records, std::int64_t size) {
    return WrittenTrace("data-" + std::to_string(records) + "-" + std::to_string(size), [&] {
        CTraceBuilder trace;
        Prepare(trace);
        const Bytes bytes(static_cast<std::size_t>(size), 0x5A);
        for (std::int64_t i = 0; i < records; ++i) {
            trace.Add(2013, trace.Gl().Enum(34962).Sizeiptr(size).Data(0x10, bytes).Enum(35044));
        }
        return trace;
    });
}

SBenchTrace NamesTrace(std::int64_t names, std::int64_t binds) {
    return WrittenTrace("names-" + std::to_string(names) + "-" + std::to_string(binds), [&] {
        CTraceBuilder trace;
        trace.StartUp(2, 300, 300);
        std::vector<std::int64_t> all;
        for (std::int64_t i = 1; i <= names; ++i) all.push_back(i);
        trace.Add(2054, trace.Gl().Sizei(names).Array(tag::Uint, 0x10, all));
        for (std::int64_t i = 0; i < binds; ++i) {
            const auto name = static_cast<std::uint32_t>(1 + i * 7919 % names);
            trace.Add(2007, trace.Gl().Enum(3553).Uint(name));
        }
        return trace;
    });
}

CSilence::CSilence() {
    std::cout.flush();
    output::Flush();
    m_saved = dup(STDOUT_FILENO);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
}

CSilence::~CSilence() {
    output::Flush();
    dup2(m_saved, STDOUT_FILENO);
    close(m_saved);
}

}  // namespace kestrail
