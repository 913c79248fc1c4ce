#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "companion/command_line.h"
#include "companion/exit_status.h"
#include "companion/frame_list.h"
#include "companion/frame_reasons.h"
#include "companion/frame_report.h"
#include "companion/jobs.h"
#include "companion/verbs.h"
#include "host/headless.h"
#include "host/host_lib.h"
#include "playback/frame_renderer.h"
#include "tracefile/document/trace_document.h"

namespace kestrail {
namespace {

namespace fs = std::filesystem;

class CQuiet : public Diagnostics {
    void OnTold(EDiagnostic, const char*, std::va_list) override {}
};

struct SFramesOptions {
    std::string trace;
    std::string list = "all";
    SFrameOutputs outputs;
    bool inOrder = false;
    EScreen screen = EScreen::kWindows;
    std::uint32_t why = 0;  ///< the frame to tell of; 0 for none
    std::size_t jobs = 1;
    std::size_t shard = 1;
    std::size_t shards = 1;
};

/// Standard output for data alone: what the player and libraries print there goes nowhere.
class CDataStream {
public:
    CDataStream() : m_file(fdopen(dup(STDOUT_FILENO), "w")) {
        if (m_file == nullptr) throw std::runtime_error("there is no standard output");
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
    }
    ~CDataStream() {
        if (m_file != nullptr) std::fclose(m_file);
    }
    CDataStream(const CDataStream&) = delete;
    CDataStream& operator=(const CDataStream&) = delete;

    std::FILE* File() { return m_file; }
    /// Whether all has been written.
    bool Close() {
        const bool failed = std::ferror(m_file) != 0;
        return std::fclose(std::exchange(m_file, nullptr)) == 0 && !failed;
    }

private:
    std::FILE* m_file;
};

void AddOptions(CLI::App& app, SFramesOptions& options, std::string& size, std::string& shard,
                std::string& compareWith, bool& headless) {
    SFrameOutputs& outputs = options.outputs;
    app.add_option("TRACE", options.trace, "the trace")->required();
    app.add_option("--frames", options.list,
                   "which: 1,8,100-120,every:50 as an example, or all (default)")
        ->type_name("LIST");
    app.add_option("-o,--output", outputs.folder,
                   "write pictures into this folder, frame-00000008.png for frame 8")
        ->type_name("DIR");
    app.add_option("--size", size, "scale written pictures to fit into W by H")->type_name("WxH");
    auto* const compare =
        app.add_flag("--compare{}", compareWith,
                     "compare with the pictures in the trace, or with those in a folder with "
                     "--compare=DIR; what is done without -o and --checksums");
    app.add_option("--threshold", outputs.threshold,
                   "let pass what is off by no more than this, of 255")
        ->type_name("N")
        ->check(CLI::Range(0, 255));
    app.add_flag("--checksums", outputs.checksums, "print a line with each frame's checksum")
        ->excludes(compare);
    app.add_flag("--json", outputs.json, "print a JSON object a line for each frame");
    app.add_flag("--sequential", options.inOrder,
                 "play all that is in front of the frames, instead of what they stand on");
    app.add_option("--jobs", options.jobs, "share the work among N processes")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    app.add_option("--shard", shard, "take part I of N of the frames alone")->type_name("I/N");
    app.add_flag("--headless", headless,
                 "render without a window system, as is done where there is no display");
    app.add_option("--why", options.why, "tell what frame N stands on, and for what")
        ->type_name("N");
}

bool ParseSize(const std::string& text, SFrameOutputs& outputs) {
    constexpr unsigned kMost = 1 << 15;
    int used = 0;
    return std::sscanf(text.c_str(), "%5ux%5u%n", &outputs.width, &outputs.height, &used) == 2 &&
           static_cast<std::size_t>(used) == text.size() && outputs.width >= 1 &&
           outputs.width <= kMost && outputs.height >= 1 && outputs.height <= kMost;
}

/// The status to exit with when there is nothing to do.
std::optional<int> Parse(Arguments arguments, SFramesOptions& options) {
    CLI::App app("Renders frames of a trace, each alone, as they were when they were recorded.",
                 "kestrail frames");
    std::string size;
    std::string shard;
    std::string compareWith;
    bool headless = !HasDisplay();
    AddOptions(app, options, size, shard, compareWith, headless);
    SFrameOutputs& outputs = options.outputs;
    return ParseArguments(app, std::move(arguments), [&] {
        if (!size.empty() && !ParseSize(size, outputs)) {
            throw CLI::ValidationError("--size", "is WxH, such as 320x240");
        }
        if (!shard.empty() && !ParseShard(shard, options.shard, options.shards)) {
            throw CLI::ValidationError("--shard", "is I/N, I from 1 to N");
        }
        if (headless) options.screen = EScreen::kNone;
        const bool compares = app.count("--compare") != 0;
        if (compares || (outputs.folder.empty() && !outputs.checksums)) {
            outputs.compareWith = compareWith;
        }
        std::error_code none;
        if (!compareWith.empty() && !outputs.folder.empty() &&
            fs::equivalent(compareWith, outputs.folder, none)) {
            throw CLI::ValidationError("-o", "is the folder to compare with");
        }
    });
}

/// Null without any call; says what is wrong.
CFrameStore* Open(CTraceDocument& document, const std::string& path, int& status) {
    document.SetTrackState(false);
    const EOpenResult opened = document.OpenTrace(CKSTLString(path.c_str()), true);
    CFrameStore* const trace = document.GetFrameStore();
    const bool any = trace != nullptr && trace->CallCount() != 0;
    if (any && opened == kOpened) return trace;
    status = kExitTrace;
    if (any) {
        std::fprintf(stderr, "kestrail frames: %s is damaged; it ends behind %u calls\n",
                     path.c_str(), trace->CallCount());
        return trace;
    }
    const char* reason = "it is no trace";
    if (access(path.c_str(), R_OK) != 0) {
        reason = std::strerror(errno);
    } else if (opened == kOpenEmpty) {
        reason = "there are no calls in it";
    }
    std::fprintf(stderr, "kestrail frames: %s can't be read: %s\n", path.c_str(), reason);
    return nullptr;
}

int Render(CFrameStore& trace, const Frames& frames, const SFramesOptions& options,
           std::FILE* lines) {
    CQuiet quiet;
    std::optional<CSlicer> slicer;
    if (!options.inOrder) slicer.emplace(trace);
    const CSharedCounts counts;
    const std::size_t jobs = std::min(options.jobs, frames.size());
    const Job job = [&](std::size_t number, std::FILE* out) {
        CFrameReport report(trace, options.outputs, out);
        const auto take = [&](const SRenderedFrame& rendered) {
            report.Take(rendered);
            ++counts->done;
        };
        const Frames part = PartOf(frames, number + 1, jobs);
        CFrameRenderer renderer(trace, quiet, options.screen);
        try {
            if (slicer) {
                renderer.Render(*slicer, part, take);
            } else {
                renderer.RenderInOrder(part, take);
            }
        } catch (const CHostLibException&) {
            std::fprintf(stderr, "kestrail frames: there is no driver to render with\n");
            return static_cast<int>(kExitDriver);
        } catch (const char* reason) {
            std::fprintf(stderr, "kestrail frames: there is nothing to render on: %s\n", reason);
            return static_cast<int>(kExitDriver);
        }
        counts->compared += report.Compared();
        return report.Status();
    };
    const auto total = static_cast<std::uint32_t>(frames.size());
    const int status = RunJobs(jobs, job, lines, counts, total);
    if (!options.outputs.compareWith || counts->compared != 0 || status > kExitFound) return status;
    std::fprintf(stderr, "kestrail frames: no frame had a picture to compare with\n");
    return kExitFound;
}

bool MakeFolder(const std::string& folder) {
    std::error_code problem;
    if (!folder.empty()) fs::create_directories(folder, problem);
    if (!problem) return true;
    std::fprintf(stderr, "kestrail frames: %s can't be made: %s\n", folder.c_str(),
                 problem.message().c_str());
    return false;
}

}  // namespace

int RunFrames(Arguments arguments) {
    SFramesOptions options;
    if (const std::optional<int> status = Parse(std::move(arguments), options)) return *status;
    int status = kExitDone;
    CQuiet quiet;
    CTraceDocument document(quiet);
    CFrameStore* const trace = Open(document, options.trace, status);
    if (trace == nullptr) return status;
    const std::uint32_t count = ShownFrames(*trace);
    if (options.why > count) {
        std::fprintf(stderr, "kestrail frames: --why: there are frames from 1 to %u\n", count);
        return kExitUsage;
    }
    Frames frames = ParseFrames(options.list, count);
    if (frames.empty()) {
        std::fprintf(stderr, "kestrail frames: --frames: '%s' is no list of frames from 1 to %u\n",
                     options.list.c_str(), count);
        return std::max<int>(status, kExitUsage);
    }
    frames = PartOf(frames, options.shard, options.shards);
    if (!MakeFolder(options.outputs.folder)) return kExitOutput;
    CDataStream data;
    if (options.why != 0) {
        PrintReasons(*trace, options.why, options.outputs.json, data.File());
    } else if (!frames.empty()) {
        status = std::max(status, Render(*trace, frames, options, data.File()));
    }
    if (!data.Close()) {
        std::fprintf(stderr, "kestrail frames: standard output can't be written\n");
        status = kExitOutput;
    }
    return status;
}

}  // namespace kestrail
