#include "rewrite/trim.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>

#include "companion/command_line.h"
#include "companion/exit_status.h"
#include "companion/verbs.h"

namespace kestrail {
namespace {

int StatusOf(STrimFailure::EKind kind) {
    switch (kind) {
        case STrimFailure::EKind::kTrace:
            return kExitTrace;
        case STrimFailure::EKind::kFrames:
            return kExitUsage;
        case STrimFailure::EKind::kOutput:
            break;
    }
    return kExitOutput;
}

}  // namespace

int RunTrim(Arguments arguments) {
    CLI::App app("Cuts frames out of a trace, with all that they stand on.", "kestrail trim");
    STrim wanted;
    std::string frames;
    bool force = false;
    bool keep = false;
    bool drop = false;
    app.add_option("TRACE", wanted.trace, "the trace")->required();
    app.add_option("--frames", frames, "the frames, one or the first and the last")
        ->type_name("A-B")
        ->required();
    app.add_option("-o,--output", wanted.output, "the trace to write")
        ->type_name("FILE")
        ->required();
    app.add_flag("--force", force, "write over a file that is there");
    app.add_flag("--drop-unused", drop, "leave out objects that no frame uses (default)");
    app.add_flag("--no-drop-unused", keep, "keep them");
    const std::optional<int> status = ParseArguments(app, std::move(arguments), [&] {
        int used = 0;
        const std::string& text = frames;
        const bool range =
            std::sscanf(text.c_str(), "%u-%u%n", &wanted.firstFrame, &wanted.lastFrame, &used) == 2;
        if (!range) {
            if (std::sscanf(text.c_str(), "%u%n", &wanted.firstFrame, &used) != 1) used = 0;
            wanted.lastFrame = wanted.firstFrame;
        }
        if (used == 0 || static_cast<std::size_t>(used) != text.size()) {
            throw CLI::ValidationError("--frames", "is A or A-B");
        }
    });
    if (status) return *status;
    if (keep && !drop) wanted.unused = EUnused::kKept;
    if (std::filesystem::exists(wanted.output) && !force) {
        std::fprintf(stderr, "kestrail trim: %s is there; --force writes over it\n",
                     wanted.output.c_str());
        return kExitOutput;
    }
    try {
        const STrimmed done = Trim(wanted);
        std::fprintf(stderr, "%s: %u calls of state, %u calls of %u frames, %llu bytes",
                     wanted.output.c_str(), done.stateCalls, done.calls,
                     wanted.lastFrame - wanted.firstFrame + 1,
                     static_cast<unsigned long long>(done.bytes));
        if (done.unused != 0) std::fprintf(stderr, "; %u objects left out", done.unused);
        std::fputc('\n', stderr);
        if (done.damaged) {
            std::fprintf(stderr, "kestrail trim: %s is damaged; it ends behind %u calls\n",
                         wanted.trace.c_str(), done.callsInTrace);
            return kExitTrace;
        }
    } catch (const STrimFailure& failure) {
        std::fprintf(stderr, "kestrail trim: %s\n", failure.text.c_str());
        return StatusOf(failure.kind);
    }
    return kExitDone;
}

}  // namespace kestrail
