// Calls as applications make them: the frames of a recorded desktop of windows over and over, or
// frames of our own with the same calls in them where the recording isn't there.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "bench/bench_traces.h"
#include "bench/written_trace.h"
#include "tests/support/recordings.h"

namespace kestrail {
namespace {

constexpr std::uint16_t kSwapBuffers = 1022;

struct SRecord {
    std::uint16_t id;
    Bytes payload;
};
using SFrame = std::vector<SRecord>;

std::string Recording() {
    return RecordingsFolder() + "/glmark-desktop.kstl";
}

/// The frames of a trace of version 14 without edits and state. The last is what follows the last
/// swap.
std::vector<SFrame> ReadFrames(const std::string& path) {
    constexpr std::size_t kTableLength = 22;
    constexpr std::size_t kEditLists = 8;
    constexpr std::size_t kFooter = 10;
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    std::size_t at = 0;
    const auto take = [&](std::size_t size) {
        if (size > bytes.size() - at) throw std::runtime_error("trace is cut short");
        at += size;
        return bytes.data() + at - size;
    };
    take(kTableLength);
    take(static_cast<std::uint8_t>(*take(1)) + kEditLists);
    std::vector<SFrame> frames(1);
    while (at + kFooter < bytes.size()) {
        std::uint32_t size = 0;
        SRecord record{};
        std::memcpy(&size, take(sizeof(size)), sizeof(size));
        std::memcpy(&record.id, take(sizeof(record.id)), sizeof(record.id));
        const char* const payload = take(size);
        record.payload.assign(payload, payload + size);
        frames.back().push_back(record);
        if (record.id == kSwapBuffers) frames.emplace_back();
    }
    return frames;
}

/// Applications don't read their frames back: a swap without its picture.
Bytes WithoutPicture(Bytes swap) {
    constexpr std::size_t kPointerAndSize = 8;
    constexpr std::size_t kBefore = 28;
    swap.resize(kBefore);
    swap.resize(kBefore + kPointerAndSize, 0);
    return swap;
}

CTraceBuilder Repeated(const std::vector<SFrame>& frames, std::int64_t count) {
    if (frames.size() < 3) throw std::runtime_error("no frames to repeat");
    CTraceBuilder trace;
    const auto add = [&trace](const SFrame& frame) {
        constexpr std::uint16_t kLastMarker = 5;
        for (const SRecord& record : frame) {
            const bool swap = record.id == kSwapBuffers;
            const Bytes payload = swap ? WithoutPicture(record.payload) : record.payload;
            // Not a call, which the builder counts.
            if (record.id <= kLastMarker) continue;
            trace.Add(record.id, trace.Plain().Raw(payload));
        }
    };
    add(frames.front());
    // Neither the frame that sets up nor what tears down.
    const std::size_t repeated = frames.size() - 2;
    for (std::int64_t i = 0; i < count; ++i) {
        add(frames[1 + static_cast<std::size_t>(i) % repeated]);
    }
    return trace;
}

void Prepare(CTraceBuilder& trace) {
    trace.StartUp(2, 300, 300);
    trace.Add(2054, trace.Gl().Sizei(4).Array(tag::Uint, 0x10, {1, 2, 3, 4}));
    trace.Add(2052, trace.Gl().Sizei(2).Array(tag::Uint, 0x10, {1, 2}));
    for (const std::uint32_t program : {5U, 6U}) trace.Add(2026, trace.Gl().Uint(program));
}

/// A window of the desktop: a quad from client memory.
void AddWindow(CTraceBuilder& trace, std::uint32_t window) {
    static const Bytes kCorners(32, 0x3F);
    const std::uint32_t program = 5 + window % 2;
    trace.Add(2005, trace.Gl().Enum(36160).Uint(window % 3));
    trace.Add(2142, trace.Gl().Int(0).Int(0).Sizei(300).Sizei(300));
    trace.Add(2007, trace.Gl().Enum(3553).Uint(1 + window % 4));
    trace.Add(2131, trace.Gl().Uint(program));
    for (const std::uint32_t index : {0U, 1U}) {
        trace.Add(2044, trace.Gl().Uint(index));
        trace.Add(2141,
                  trace.Gl().Uint(index).Int(2).Enum(5126).Boolean(false).Sizei(0).Pointer(0x1000));
    }
    trace.Add(2041, trace.Gl()
                        .Enum(5)
                        .Int(0)
                        .Sizei(4)
                        .ClientArray(0, 0x1000, kCorners)
                        .ClientArray(1, 0x2000, kCorners));
    for (const std::uint32_t index : {0U, 1U}) trace.Add(2040, trace.Gl().Uint(index));
    trace.Add(2131, trace.Gl().Uint(0));
    if (window % 3 == 0) trace.Add(2043, trace.Gl().Enum(3042));
    if (window % 3 == 0) trace.Add(2039, trace.Gl().Enum(3042));
    if (window % 3 != 0) trace.Add(2001, trace.Gl().Enum(33984));
    if (window % 4 == 0) {
        trace.Add(2012, trace.Gl().Enum(770).Enum(771).Enum(1).Enum(771));
    }
}

CTraceBuilder Desktop(std::int64_t count) {
    CTraceBuilder trace;
    Prepare(trace);
    for (std::int64_t frame = 0; frame < count; ++frame) {
        for (int i = 0; i < 2; ++i) {
            trace.Add(2017, trace.Gl().Clampf(0).Clampf(0).Clampf(0).Clampf(1));
            trace.Add(2016, trace.Gl().Bitfield(16640));
        }
        trace.Add(2018, trace.Gl().Clampf(1)).Add(2011, trace.Gl().Enum(770).Enum(771));
        for (std::uint32_t window = 0; window < 14; ++window) AddWindow(trace, window);
        trace.SwapBuffers();
    }
    return trace;
}

}  // namespace

SBenchTrace RealMixTrace(std::int64_t frames) {
    return WrittenTrace("mix-" + std::to_string(frames), [&] {
        const std::string recording = Recording();
        if (!std::filesystem::exists(recording)) return Desktop(frames);
        return Repeated(ReadFrames(recording), frames);
    });
}

}  // namespace kestrail
