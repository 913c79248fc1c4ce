#include "companion/jobs.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <exception>
#include <mutex>
#include <new>
#include <thread>
#include <vector>

#include "companion/exit_status.h"

namespace kestrail {
namespace {

/// Tells a terminal now and then, from a thread of its own, and wipes the line at the end.
class CProgress {
public:
    /// `shown`: what is done shows by itself.
    CProgress(const CSharedCounts& counts, std::uint32_t total, bool shown) {
        if (shown || isatty(STDERR_FILENO) == 0) return;
        m_thread = std::thread([this, &counts, total] { Tell(counts, total); });
    }
    ~CProgress() {
        if (!m_thread.joinable()) return;
        {
            const std::lock_guard lock(m_mutex);
            m_ended = true;
        }
        m_end.notify_one();
        m_thread.join();
    }
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;

private:
    void Tell(const CSharedCounts& counts, std::uint32_t total) {
        using namespace std::chrono_literals;
        std::unique_lock lock(m_mutex);
        bool told = false;
        for (auto pause = 1000ms; !m_end.wait_for(lock, pause, [this] { return m_ended; });
             pause = 200ms) {
            std::fprintf(stderr, "\r%u of %u frames", counts->done.load(), total);
            told = true;
        }
        if (told) std::fputs("\r\033[K", stderr);
    }

    std::thread m_thread;
    std::mutex m_mutex;
    std::condition_variable m_end;
    bool m_ended = false;
};

struct SChild {
    pid_t process = -1;
    std::FILE* lines = nullptr;
};

[[noreturn]] void BecomeJob(std::size_t number, const Job& job, std::FILE* lines, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) _exit(kExitDriver);
    int status = kExitDriver;
    try {
        status = job(number, lines);
    } catch (const std::exception& reason) {
        std::fprintf(stderr, "kestrail: job %zu: %s\n", number + 1, reason.what());
    }
    if (std::fflush(lines) != 0 || std::ferror(lines) != 0) {
        std::fprintf(stderr, "kestrail: what job %zu printed can't be written\n", number + 1);
        status = kExitOutput;
    }
    // What the driver arranged for its end belongs to processes that end by themselves.
    _exit(status);
}

/// The job's exit status.
int WaitFor(pid_t process, std::size_t number) {
    int status = 0;
    waitpid(process, &status, 0);
    if (WIFEXITED(status)) return WEXITSTATUS(status);
    std::fprintf(stderr, "kestrail: job %zu ended by signal %d\n", number + 1, WTERMSIG(status));
    return kExitDriver;
}

void Copy(std::FILE* from, std::FILE* to) {
    std::rewind(from);
    char block[1 << 14];
    for (std::size_t got = 0; (got = std::fread(block, 1, sizeof block, from)) != 0;) {
        std::fwrite(block, 1, got, to);
    }
}

}  // namespace

CSharedCounts::CSharedCounts() {
    void* const memory =
        mmap(nullptr, sizeof(SCounts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    m_counts = new (memory) SCounts;
}

CSharedCounts::~CSharedCounts() {
    munmap(m_counts, sizeof(SCounts));
}

int RunJobs(std::size_t jobs, const Job& job, std::FILE* lines, const CSharedCounts& counts,
            std::uint32_t total) {
    std::vector<SChild> children(jobs);
    const pid_t parent = getpid();
    int worst = kExitDone;
    std::fflush(lines);
    for (std::size_t number = 0; number < jobs; ++number) {
        SChild& child = children[number];
        child.lines = jobs == 1 ? lines : std::tmpfile();
        if (child.lines != nullptr) child.process = fork();
        if (child.process == 0) BecomeJob(number, job, child.lines, parent);
        if (child.process < 0) {
            std::perror("kestrail: a job can't be started");
            worst = kExitOutput;
            children.resize(number);
            break;
        }
    }
    {
        const CProgress progress(counts, total, jobs == 1 && isatty(fileno(lines)) != 0);
        for (std::size_t number = 0; number < children.size(); ++number) {
            worst = std::max(worst, WaitFor(children[number].process, number));
        }
    }
    if (jobs == 1) return worst;
    for (const SChild& child : children) {
        Copy(child.lines, lines);
        std::fclose(child.lines);
    }
    return worst;
}

}  // namespace kestrail
