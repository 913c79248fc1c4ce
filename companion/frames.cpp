#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <string>

#include "companion/exit_status.h"
#include "companion/verbs.h"
#include "host/host_lib.h"
#include "playback/frame_renderer.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

class CQuiet : public Diagnostics {
    void OnTold(EDiagnostic, const char*, std::va_list) override {}
};

struct SDifference {
    std::size_t pixels = 0;
    int largest = 0;
};

/// Alpha doesn't count: windows without have whatever the driver makes of it.
SDifference Compare(const SPicture& left, const SPicture& right) {
    SDifference found;
    for (std::size_t pixel = 0; pixel < left.pixels.size(); pixel += 4) {
        int largest = 0;
        for (std::size_t i = pixel; i < pixel + 3; ++i) {
            largest = std::max(largest, std::abs(left.pixels[i] - right.pixels[i]));
        }
        if (largest != 0) ++found.pixels;
        found.largest = std::max(found.largest, largest);
    }
    return found;
}

/// "1,8,100-120", of so many frames; empty for what is no list of them.
std::vector<std::uint32_t> FramesOf(const std::string& text, std::uint32_t count) {
    std::vector<std::uint32_t> frames;
    if (text == "all") {
        for (std::uint32_t frame = 1; frame <= count; ++frame) frames.push_back(frame);
        return frames;
    }
    const char* at = text.c_str();
    while (*at != '\0') {
        unsigned first = 0;
        unsigned last = 0;
        int used = 0;
        if (std::sscanf(at, "%u-%u%n", &first, &last, &used) != 2 || used == 0) {
            if (std::sscanf(at, "%u%n", &first, &used) != 1) return {};
            last = first;
        }
        if (first == 0 || last < first || last > count) return {};
        for (unsigned frame = first; frame <= last; ++frame) frames.push_back(frame);
        at += used;
        if (*at == ',') {
            ++at;
        } else if (*at != '\0') {
            return {};
        }
    }
    std::sort(frames.begin(), frames.end());
    frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
    return frames;
}

}  // namespace

int RunFrames(Arguments arguments) {
    CLI::App app("Renders frames of a trace, each alone, as they were when they were recorded.",
                 "kestrail frames");
    std::string file;
    std::string list = "all";
    app.add_option("TRACE", file, "the trace")->required();
    app.add_option("--frames", list, "which frames: numbers and ranges, or all (default)")
        ->type_name("LIST");
    std::reverse(arguments.begin(), arguments.end());
    try {
        app.parse(arguments);
    } catch (const CLI::CallForHelp&) {
        std::fputs(app.help().c_str(), stdout);
        return kExitDone;
    } catch (const CLI::ParseError& wrong) {
        std::fprintf(stderr, "kestrail frames: %s\nSee kestrail frames --help\n", wrong.what());
        return kExitUsage;
    }
    CQuiet quiet;
    CTraceDocument document(quiet);
    document.SetTrackState(false);
    const EOpenResult opened = document.OpenTrace(CKSTLString(file.c_str()), true);
    CFrameStore* const trace = document.GetFrameStore();
    if (trace == nullptr || trace->CallCount() == 0) {
        std::fprintf(stderr, "kestrail frames: %s can't be read (%d)\n", file.c_str(), opened);
        return kExitTrace;
    }
    const std::vector<std::uint32_t> frames = FramesOf(list, trace->FrameCount());
    if (frames.empty()) {
        std::fprintf(stderr, "kestrail frames: --frames: '%s' is no list of frames from 1 to %u\n",
                     list.c_str(), trace->FrameCount());
        return kExitUsage;
    }
    CSlicer slicer(*trace);
    bool different = false;
    const auto compare = [&](const SRenderedFrame& rendered) {
        const SPicture kept = PictureInTrace(*trace, rendered.frame);
        if (kept.pixels.empty()) return;
        const bool sized =
            kept.width == rendered.picture.width && kept.height == rendered.picture.height;
        const SDifference found = sized ? Compare(kept, rendered.picture) : SDifference{};
        different = different || !sized || found.pixels != 0;
        if (!sized) {
            std::printf("frame %u: %ux%u instead of %ux%u\n", rendered.frame,
                        rendered.picture.width, rendered.picture.height, kept.width, kept.height);
        } else if (found.pixels != 0) {
            std::printf("frame %u: %zu pixels differ, by up to %d\n", rendered.frame, found.pixels,
                        found.largest);
        } else {
            std::printf("frame %u: equal\n", rendered.frame);
        }
    };
    try {
        CFrameRenderer(*trace, slicer, quiet).Render(frames, compare);
    } catch (const CHostLibException&) {
        std::fprintf(stderr, "kestrail frames: there is no driver to render with\n");
        return kExitDriver;
    } catch (const char* reason) {
        std::fprintf(stderr, "kestrail frames: %s\n", reason);
        return kExitDriver;
    }
    return different ? kExitFound : kExitDone;
}

}  // namespace kestrail
