#include "companion/frame_reasons.h"

#include <array>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "slicing/slicer.h"

namespace kestrail {
namespace {

/// Calls of a frame that fill the same contents.
struct SFilling {
    std::uint32_t calls = 0;
    std::uint32_t reason = 0;  ///< the last call that stands on them
};

struct SFrameReasons {
    std::uint32_t calls = 0;
    std::uint32_t sent = 0;                 ///< that pass contents to the driver
    std::map<std::string, SFilling> drawn;  ///< by what is drawn into
};

bool Draws(std::string_view call) {
    constexpr std::array<std::string_view, 7> kStarts = {
        "glDraw", "glMultiDraw", "glClear", "glBlit", "glCopy", "glGenerateMipmap", "glEnd"};
    for (const std::string_view start : kStarts) {
        if (call.substr(0, start.size()) == start) return true;
    }
    return false;
}

std::map<std::uint32_t, SFrameReasons> ReasonsOf(CFrameStore& trace, std::uint32_t frame) {
    std::map<std::uint32_t, SFrameReasons> frames;
    const CFrameRecord* const record = trace.GetFrameRecord(frame);
    if (record == nullptr || record->lastCall == CFrameRecord::kNoCall) return frames;
    CSlicer slicer(trace);
    const SSlice slice = slicer.Slice({{record->firstCall + 1, record->lastCall + 1}});
    for (std::size_t i = 0; i < slice.calls.size(); ++i) {
        const std::uint32_t call = slice.calls[i];
        SFrameReasons& reasons = frames[trace.FrameOfCall(call - 1)];
        ++reasons.calls;
        const std::string contents = slicer.ContentsOf(slice.journals[i]);
        if (contents.empty()) continue;
        if (!Draws(trace.CallAt(call)->call->GetName())) {
            ++reasons.sent;
            continue;
        }
        SFilling& filling = reasons.drawn[contents];
        ++filling.calls;
        filling.reason = std::max(filling.reason, slice.reasons[i]);
    }
    return frames;
}

}  // namespace

void PrintReasons(CFrameStore& trace, std::uint32_t frame, bool json, std::FILE* out) {
    for (const auto& [earlier, reasons] : ReasonsOf(trace, frame)) {
        nlohmann::ordered_json line = {{"frame", earlier},
                                       {"calls", reasons.calls},
                                       {"sendContents", reasons.sent},
                                       {"draw", nlohmann::ordered_json::array()}};
        if (!json) {
            std::fprintf(out, "frame %u: %u calls", earlier, reasons.calls);
            if (reasons.sent != 0) std::fprintf(out, ", %u of them send contents", reasons.sent);
            std::fputc('\n', out);
        }
        for (const auto& [contents, filling] : reasons.drawn) {
            const char* const name = trace.CallAt(filling.reason)->call->GetName();
            line["draw"].push_back({{"into", contents},
                                    {"calls", filling.calls},
                                    {"for", {{"call", filling.reason}, {"name", name}}}});
            if (json) continue;
            std::fprintf(out, "frame %u: %u that draw into %s, for %u %s\n", earlier, filling.calls,
                         contents.c_str(), filling.reason, name);
        }
        if (json) std::fprintf(out, "%s\n", line.dump().c_str());
    }
}

}  // namespace kestrail
