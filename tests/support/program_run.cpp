#include "tests/support/program_run.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace kestrail {

namespace {

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

constexpr char callLine[] = "KESTRAIL(M) Frame(P)";

bool StartsWith(const std::string& text, std::string_view start) {
    return text.compare(0, start.size(), start) == 0;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> Environment(const SRunOptions& options, const CTempFolder& folder) {
    std::vector<std::string> environment = options.environment;
    environment.push_back("KESTRAIL_HOST_LOG=" + folder.File("host.log"));
    environment.push_back("KESTRAIL_HOST_SCRIPT=" + folder.File("script"));
    // What a folder lacks comes from the full set, never from the system.
    const std::string hosts = KESTRAIL_HOST_FOLDER;
    if (!options.host.empty()) {
        environment.push_back("LD_LIBRARY_PATH=" + hosts + "/" + options.host + ":" + hosts +
                              "/recording");
    }
    for (const char* name : {"PATH", "HOME", "TMPDIR", "ASAN_OPTIONS", "UBSAN_OPTIONS",
                             "KESTRAIL_MUTANT", "KESTRAIL_MUTANTS_REACHED"}) {
        if (const char* value = std::getenv(name)) {
            environment.push_back(std::string(name) + "=" + value);
        }
    }
    return environment;
}

void RedirectTo(const char* name, int target) {
    const int file = open(name, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (file < 0) _exit(126);
    dup2(file, target);
    close(file);
}

[[noreturn]] void RunChild(const SRunOptions& options, const CTempFolder& folder,
                           char* const* arguments, char* const* environment) {
    if (chdir(folder.Path().c_str()) != 0) _exit(126);
    RedirectTo("out", STDOUT_FILENO);
    RedirectTo("err", STDERR_FILENO);
    if (!options.folder.empty() && chdir(options.folder.c_str()) != 0) _exit(126);
    rlimit limit{0, 0};
    setrlimit(RLIMIT_CORE, &limit);
    if (options.memoryLimit != 0 && !IsSanitized()) {
        limit.rlim_cur = limit.rlim_max = static_cast<rlim_t>(options.memoryLimit) << 20;
        setrlimit(RLIMIT_AS, &limit);
    }
    execve(KESTRAIL_PLAYER, arguments, environment);
    _exit(127);
}

/// The kernel's own mark. What wait4 reports would count this process's memory from before the
/// child's exec.
long PeakKilobytes(pid_t child) {
    std::ifstream file("/proc/" + std::to_string(child) + "/status");
    std::string word;
    long peak = 0;
    while (file >> word) {
        if (word == "VmHWM:") file >> peak;
    }
    return peak;
}

void WaitFor(pid_t child, const SRunOptions& options, SRunResult& result) {
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::seconds(options.timeoutSeconds);
    int status = 0;
    for (;;) {
        if (options.measureMemory) {
            // A child that has ended has no mark left; the last one seen stands.
            const long peak = PeakKilobytes(child);
            if (peak != 0) result.maxResidentKilobytes = peak;
        }
        const pid_t done = waitpid(child, &status, WNOHANG);
        if (done == child) break;
        if (std::chrono::steady_clock::now() > deadline) {
            result.timedOut = true;
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
}

}  // namespace

bool IsSanitized() {
#if defined(__SANITIZE_ADDRESS__)
    return true;
#else
    return false;
#endif
}

CTempFolder::CTempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "kestrail-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_path = name;
}

CTempFolder::~CTempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::vector<std::string> SRunResult::Lines() const {
    return SplitLines(out);
}

std::vector<std::string> SRunResult::Messages() const {
    static const char* const usual[] = {"KESTRAIL(M) Running KestrailPlayback",
                                        "KESTRAIL(M) Opening Trace file",
                                        "KESTRAIL(M) Trace file open",
                                        "KESTRAIL(M) Processing File....",
                                        "KESTRAIL(M) Processing File... Done",
                                        "KESTRAIL(M) Host Library Loaded",
                                        "KESTRAIL(M) Default FBO",
                                        callLine,
                                        "****** Low Memory option enabled"};
    std::vector<std::string> lines = Lines();
    std::erase_if(lines, [](const std::string& line) {
        return std::any_of(std::begin(usual), std::end(usual),
                           [&](const char* start) { return StartsWith(line, start); });
    });
    return lines;
}

std::vector<std::string> SRunResult::CallLines() const {
    std::vector<std::string> lines = Lines();
    std::erase_if(lines, [](const std::string& line) { return !StartsWith(line, callLine); });
    return lines;
}

std::vector<std::string> SRunResult::GlCalls() const {
    std::vector<std::string> found = calls;
    std::erase_if(found, [](const std::string& call) { return StartsWith(call, "egl"); });
    // The player's own look at the default framebuffer opens the ES 2 traces.
    if (!found.empty() && StartsWith(found[0], "glGetIntegerv(")) found.erase(found.begin());
    std::erase_if(found, [](const std::string& call) {
        return StartsWith(call, "glGetError(") || StartsWith(call, "es1.glGetError(");
    });
    return found;
}

std::string SRunResult::Ending() const {
    if (timedOut) return "timed out";
    if (signal != 0) return "signal " + std::to_string(signal) + "\n" + err;
    return "status " + std::to_string(status) + "\n" + err;
}

SRunResult RunProgram(const std::vector<std::string>& arguments, const SRunOptions& options) {
    const CTempFolder folder;
    std::ofstream(folder.File("script")) << options.script;
    std::vector<std::string> environment = Environment(options, folder);
    std::vector<std::string> words = {KESTRAIL_PLAYER};
    words.insert(words.end(), arguments.begin(), arguments.end());
    const std::vector<char*> environmentPointers = Pointers(environment);
    const std::vector<char*> wordPointers = Pointers(words);

    SRunResult result;
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error(std::strerror(errno));
    if (child == 0) RunChild(options, folder, wordPointers.data(), environmentPointers.data());
    WaitFor(child, options, result);
    result.out = ReadFile(folder.File("out"));
    result.err = ReadFile(folder.File("err"));
    for (std::string& line : SplitLines(ReadFile(folder.File("host.log")))) {
        if (StartsWith(line, "live ")) {
            const std::size_t space = line.rfind(' ');
            result.live[line.substr(5, space - 5)] = std::atoi(line.c_str() + space);
        } else {
            result.calls.push_back(std::move(line));
        }
    }
    return result;
}

SRunResult RunTrace(const CTraceBuilder& trace, const std::vector<std::string>& arguments,
                    const SRunOptions& options) {
    const CTempFolder folder;
    std::vector<std::string> words = {folder.File("trace.kstl")};
    words.insert(words.end(), arguments.begin(), arguments.end());
    trace.Write(words[0]);
    return RunProgram(words, options);
}

}  // namespace kestrail
