#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>

#include "base/output.h"

namespace kestrail {
namespace {

struct SEnd {
    std::string text;
    int status = 0;
};

/// Runs `work` in a process of its own that writes to a pipe: what came out, and how it ended.
SEnd RunApart(const std::function<void()>& work, int pipeFlags = 0) {
    int ends[2];
    if (::pipe2(ends, pipeFlags) != 0) return {};
    // Nothing that is waiting in this process is printed by the other one too.
    output::Flush();
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        ::close(ends[0]);
        ::close(ends[1]);
        // What a sanitizer or the run time says about the crash is no part of the test.
        ::dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
        ::alarm(30);
        output::FlushOnAnyExit();
        work();
        std::exit(0);
    }
    ::close(ends[1]);
    SEnd end;
    char part[4096];
    for (ssize_t got = 0; (got = ::read(ends[0], part, sizeof part)) != 0;) {
        if (got > 0) {
            end.text.append(part, static_cast<std::size_t>(got));
        } else if (errno != EAGAIN) {
            break;
        } else {
            ::usleep(1000);
        }
    }
    ::close(ends[0]);
    ::waitpid(child, &end.status, 0);
    return end;
}

/// Every frame points into the one above it, so that no compiler makes a loop of this.
// NOLINTNEXTLINE(misc-no-recursion): it is what the stack overflows by.
int Overflow(const volatile char* above) {
    volatile char frame[4096];
    if (above == nullptr) return 0;
    frame[0] = *above;
    return Overflow(frame) + frame[0];
}

void ThrowSomething() {
    throw std::runtime_error("nobody catches");
}

TEST(Output, NoLineIsLostHoweverTheProcessEnds) {
    // NOLINTNEXTLINE(bugprone-exception-escape): that is this ending.
    const auto throws = []() noexcept { ThrowSomething(); };
    const struct {
        std::function<void()> ending;
        int signal;
    } endings[] = {{[] { std::exit(0); }, 0},
                   {[] { std::abort(); }, SIGABRT},
                   {throws, SIGABRT},
                   {[] { ::raise(SIGSEGV); }, SIGSEGV},
                   {[] { Overflow("x"); }, SIGSEGV},
                   {[] { ::kill(::getpid(), SIGTERM); }, SIGTERM},
                   {[] { ::raise(SIGINT); }, SIGINT}};
    for (const auto& [ending, signal] : endings) {
        const SEnd end = RunApart([&ending = ending] {
            output::Message("first %d", 1);
            output::Print("%s", "bare\n");
            output::Error("last\n");
            ending();
        });
        EXPECT_EQ(end.text, "KESTRAIL(M) first 1\nbare\nKESTRAIL(W) ERROR: last\n\n") << signal;
        EXPECT_EQ(WIFSIGNALED(end.status) ? WTERMSIG(end.status) : 0, signal);
    }
    // An ignored interrupt stays ignored.
    const auto previous = std::signal(SIGINT, SIG_IGN);
    const SEnd end = RunApart([] {
        ::raise(SIGINT);
        output::Warning("still here");
    });
    std::signal(SIGINT, previous);
    EXPECT_EQ(end.text, "KESTRAIL(W) WARNING: still here\n");
    EXPECT_TRUE(WIFEXITED(end.status));
}

TEST(Output, LongTextComesWholeThroughASlowPipe) {
    constexpr int kLines = 40000;
    std::string expected;
    for (int i = 0; i < kLines; ++i) expected += "line " + std::to_string(i) + "\n";
    for (const int flags : {0, O_NONBLOCK}) {
        const auto print = [] {
            for (int i = 0; i < kLines; ++i) output::Print("line %d\n", i);
        };
        const SEnd end = RunApart(print, flags);
        EXPECT_TRUE(end.text == expected) << "flags " << flags << ", bytes " << end.text.size();
    }
}

TEST(Output, TextThatCannotBeWrittenIsDropped) {
    const SEnd end = RunApart([] {
        ::close(STDOUT_FILENO);
        for (int i = 0; i < 100000; ++i) output::Message("nowhere to go");
        if (output::Pending().Size() > 100UL * 1024) std::exit(1);
    });
    EXPECT_EQ(end.status, 0);
}

}  // namespace
}  // namespace kestrail
