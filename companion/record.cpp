#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "companion/command_line.h"
#include "companion/exit_status.h"
#include "companion/verbs.h"
#include "recorder/channel/trace_sink.h"
#include "rewrite/trim.h"

namespace kestrail {
namespace {

namespace fs = std::filesystem;

struct SRecordOptions {
    std::string output;
    std::string summary;
    std::vector<std::string> program;
    bool force = false;
    unsigned firstFrame = 1;
    SRecordSettings settings;
};

/// Signals that someone who asks the command to end, or to do something, means for the program.
constexpr int kPassedOn[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGCONT, SIGWINCH};

/// "A-B"; A goes to `first`.
bool TakeFrames(const std::string& range, unsigned& first, SRecordSettings& settings) {
    unsigned last = 0;
    int used = 0;
    const bool whole = std::sscanf(range.c_str(), "%u-%u%n", &first, &last, &used) == 2 &&
                       static_cast<std::size_t>(used) == range.size();
    if (!whole || first < 1 || last < first) return false;
    settings.lastFrame = last;
    return true;
}

class CUsage : public CLI::Formatter {
    std::string make_usage(const CLI::App*, std::string) const override {
        return "Usage: kestrail record [OPTIONS] [--] PROGRAM [ARGUMENTS]...\n";
    }
};

/// The status to exit with when there is nothing to run.
std::optional<int> Parse(Arguments arguments, SRecordOptions& options) {
    CLI::App app("Runs PROGRAM and records what it asks of EGL and OpenGL ES into a trace.",
                 "kestrail record");
    app.formatter(std::make_shared<CUsage>());
    app.prefix_command();
    std::string frames;
    std::string only;
    bool noFollow = false;
    bool noLimit = false;
    app.add_option("-o,--output", options.output, "the trace; PROGRAM's name with .kstl without it")
        ->type_name("FILE");
    app.add_flag("--force", options.force, "write over a file that is there");
    app.add_flag("--pictures{1}", options.settings.pictureEvery,
                 "keep the picture of every Nth frame with --pictures=N, else of every one");
    app.add_option("--frames", frames, "record frames A to B alone")->type_name("A-B");
    app.add_flag("--exit", options.settings.exitBehindLast, "end PROGRAM behind the last frame");
    app.add_option("--only", only, "record processes of this executable alone")->type_name("NAME");
    app.add_flag("--follow", options.settings.follow,
                 "record processes that PROGRAM starts, each into a file (default)");
    app.add_flag("--no-follow", noFollow, "record PROGRAM's own process alone");
    app.add_flag("--no-limit", noLimit, "tell PROGRAM of what a trace can't hold, too");
    app.add_option("--summary", options.summary, "write what was recorded as JSON")
        ->type_name("FILE");
    const std::optional<int> status = ParseArguments(app, std::move(arguments), [&] {
        options.program = app.remaining();
        if (!options.program.empty() && options.program[0] == "--") {
            options.program.erase(options.program.begin());
        } else if (!options.program.empty() && options.program[0][0] == '-') {
            throw CLI::ExtrasError({options.program[0]});
        }
        if (options.program.empty()) throw CLI::RequiredError("PROGRAM");
        if (!frames.empty() && !TakeFrames(frames, options.firstFrame, options.settings)) {
            throw CLI::ValidationError("--frames", "is A-B, A at least 1 and B at least A");
        }
        if (only.size() >= sizeof options.settings.only) {
            throw CLI::ValidationError("--only", "is too long");
        }
    });
    if (status) return status;
    std::strcpy(options.settings.only, only.c_str());
    options.settings.follow = !noFollow;
    options.settings.limit = !noLimit;
    if (options.output.empty()) {
        options.output = fs::path(options.program[0]).filename().string() + ".kstl";
    }
    return {};
}

/// The library that is loaded into the program: where it is installed beside this command.
fs::path LibraryPath() {
    return fs::read_symlink("/proc/self/exe").parent_path() / KESTRAIL_RECORD_LIBRARY;
}

/// What the command changes for itself, and the program has as it was.
struct SInherited {
    sigset_t mask;
    struct sigaction childEnds;
};

/// Signals to wait for are held back, and those that writes to full disks bring. Files never take
/// the numbers of standard streams that are closed.
SInherited PrepareProcess(const sigset_t& awaited) {
    SInherited inherited{};
    sigset_t held = awaited;
    for (const int signal : {SIGXFSZ, SIGPIPE}) sigaddset(&held, signal);
    sigprocmask(SIG_BLOCK, &held, &inherited.mask);
    struct sigaction usual {};
    sigaction(SIGCHLD, &usual, &inherited.childEnds);
    while (true) {
        const int stream = open("/dev/null", O_RDWR | O_CLOEXEC);
        if (stream <= STDERR_FILENO && stream >= 0) continue;
        if (stream >= 0) close(stream);
        return inherited;
    }
}

/// In the child. Gives up what it is for the program.
[[noreturn]] void BecomeProgram(const SRecordOptions& options, const fs::path& library,
                                const fs::path& folder, const SInherited& inherited) {
    const char* const loaded = std::getenv("LD_PRELOAD");
    std::string preload = library;
    if (loaded != nullptr && *loaded != '\0') preload += std::string(":") + loaded;
    setenv("LD_PRELOAD", preload.c_str(), 1);
    setenv(kFolderVariable, folder.c_str(), 1);
    std::vector<char*> words;
    for (const std::string& word : options.program)
        words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    sigaction(SIGCHLD, &inherited.childEnds, nullptr);
    sigprocmask(SIG_SETMASK, &inherited.mask, nullptr);
    execvp(words[0], words.data());
    const int reason = errno;
    std::fprintf(stderr, "kestrail record: %s: %s\n", words[0], std::strerror(reason));
    _exit(reason == ENOENT || reason == ENOTDIR ? kExitNotFound : kExitNotRun);
}

/// Serves the recording until the program and all that record beside it have ended; the program's
/// wait status.
int Serve(CTraceSink& sink, pid_t program, const sigset_t& awaited) {
    int status = 0;
    bool running = true;
    while (running || sink.AnyAtWork()) {
        const bool busy = sink.Work();
        const timespec pause = {0, busy ? 0 : 2'000'000};
        siginfo_t info{};
        const int signal = sigtimedwait(&awaited, &info, &pause);
        if (signal == SIGCHLD) {
            if (running && waitpid(program, &status, WNOHANG) == program) running = false;
        } else if (signal > 0) {
            // What the terminal sends goes to the program as well, without help.
            if (running && info.si_code <= 0) kill(program, signal);
            // Whoever still records beside an ended program can be left by the same signal.
            if (!running) break;
        }
    }
    sink.Work();
    return status;
}

/// Cuts off what was recorded in front of the first frame that is wanted.
void TrimToFirst(unsigned first, SRecording& recording) {
    if (recording.frames < first) {
        std::fprintf(stderr, "kestrail record: %s is whole: it has no frame %u\n",
                     recording.file.c_str(), first);
        return;
    }
    STrim wanted;
    wanted.trace = recording.file;
    wanted.output = recording.file.string() + ".part";
    wanted.firstFrame = first;
    wanted.lastFrame = static_cast<std::uint32_t>(recording.frames);
    try {
        const STrimmed done = Trim(wanted);
        fs::rename(wanted.output, wanted.trace);
        recording.frames -= first - 1;
        recording.calls = done.stateCalls + done.calls;
        recording.bytes = done.bytes;
    } catch (const STrimFailure& failure) {
        std::fprintf(stderr, "kestrail record: %s is whole: %s\n", recording.file.c_str(),
                     failure.text.c_str());
    }
}

void PrintSummary(const std::vector<SRecording>& recordings, const SRecordOptions& options,
                  double seconds) {
    if (recordings.empty()) {
        std::fprintf(stderr, "kestrail: nothing recorded: %s made no calls of EGL or OpenGL ES\n",
                     options.program[0].c_str());
    }
    for (const SRecording& r : recordings) {
        std::fprintf(stderr, "%s: %llu frames, %llu calls, %llu bytes, %.1f seconds",
                     r.file.c_str(), static_cast<unsigned long long>(r.frames),
                     static_cast<unsigned long long>(r.calls),
                     static_cast<unsigned long long>(r.bytes), seconds);
        if (r.waitedSeconds >= 0.05) {
            std::fprintf(stderr, "; the program waited %.1f seconds for the file", r.waitedSeconds);
        }
        std::fputc('\n', stderr);
        for (const SLeftOut& call : r.leftOut) {
            std::fprintf(stderr, "not in the trace: %s, %llu calls\n", call.name,
                         static_cast<unsigned long long>(call.count));
        }
    }
}

bool WriteSummary(const std::vector<SRecording>& recordings, const std::string& path,
                  double seconds) {
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    for (const SRecording& r : recordings) {
        nlohmann::ordered_json leftOut = nlohmann::ordered_json::object();
        for (const SLeftOut& call : r.leftOut) leftOut[call.name] = call.count;
        all.push_back({{"file", r.file.string()},
                       {"executable", r.executable},
                       {"process", r.process},
                       {"frames", r.frames},
                       {"calls", r.calls},
                       {"bytes", r.bytes},
                       {"seconds", seconds},
                       {"waitedSeconds", r.waitedSeconds},
                       {"failure", r.failure},
                       {"notInTrace", leftOut}});
    }
    std::ofstream out(path);
    out << nlohmann::ordered_json{{"recordings", all}}.dump(2) << '\n';
    return static_cast<bool>(out.flush());
}

}  // namespace

int RunRecord(Arguments arguments) {
    SRecordOptions options;
    if (const std::optional<int> status = Parse(std::move(arguments), options)) return *status;
    if (!options.force && fs::exists(options.output)) {
        std::fprintf(stderr, "kestrail record: %s is there; --force writes over it\n",
                     options.output.c_str());
        return kExitOutput;
    }
    const fs::path library = LibraryPath();
    if (!fs::exists(library)) {
        std::fprintf(stderr, "kestrail record: %s is missing\n", library.c_str());
        return kExitOutput;
    }
    sigset_t awaited;
    sigemptyset(&awaited);
    for (const int signal : kPassedOn) sigaddset(&awaited, signal);
    sigaddset(&awaited, SIGCHLD);
    const SInherited inherited = PrepareProcess(awaited);
    CTraceSink sink(fs::absolute(options.output), options.settings);

    const auto start = std::chrono::steady_clock::now();
    const pid_t program = fork();
    if (program < 0) {
        std::perror("kestrail record");
        return kExitNotRun;
    }
    if (program == 0) BecomeProgram(options, library, sink.Folder(), inherited);
    const int status = Serve(sink, program, awaited);
    sink.Finish();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::vector<SRecording> recordings = sink.Recordings();
    if (options.firstFrame > 1) {
        for (SRecording& recording : recordings) TrimToFirst(options.firstFrame, recording);
    }
    const bool ran = !(WIFEXITED(status) && WEXITSTATUS(status) >= kExitNotRun);
    if (ran || !recordings.empty()) PrintSummary(recordings, options, seconds.count());
    if (!options.summary.empty() && !WriteSummary(recordings, options.summary, seconds.count())) {
        std::fprintf(stderr, "kestrail record: %s can't be written\n", options.summary.c_str());
    }
    return WIFSIGNALED(status) ? kExitSignal + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace kestrail
