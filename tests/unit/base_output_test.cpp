#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
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
    std::array<char, 4096> part;
    for (;;) {
        const ssize_t got = ::read(ends[0], part.data(), part.size());
        if (got < 0 && errno == EAGAIN) {
            ::usleep(1000);
            continue;
        }
        if (got <= 0) break;
        end.text.append(part.data(), static_cast<std::size_t>(got));
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
    const struct {
        const char* name;
        std::function<void()> ending;
        int signal;
    } endings[] = {
        {"exit", [] { std::exit(0); }, 0},
        {"abort", [] { std::abort(); }, SIGABRT},
        // NOLINTNEXTLINE(bugprone-exception-escape): that is this ending.
        {"an exception", []() noexcept { ThrowSomething(); }, SIGABRT},
        {"a fault", [] { ::raise(SIGSEGV); }, SIGSEGV},
        {"a stack overflow", [] { Overflow("x"); }, SIGSEGV},
        {"termination", [] { ::kill(::getpid(), SIGTERM); }, SIGTERM},
        {"an interrupt", [] { ::raise(SIGINT); }, SIGINT},
    };
    for (const auto& ending : endings) {
        const SEnd end = RunApart([&] {
            output::Message("first %d", 1);
            output::Print("%s", "bare\n");
            output::Error("last\n");
            ending.ending();
        });
        EXPECT_EQ(end.text, "KESTRAIL(M) first 1\nbare\nKESTRAIL(W) ERROR: last\n\n")
            << ending.name;
        EXPECT_EQ(WIFSIGNALED(end.status) ? WTERMSIG(end.status) : 0, ending.signal) << ending.name;
    }
}

TEST(Output, AnIgnoredInterruptStaysIgnored) {
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
        const SEnd end = RunApart(
            [] {
                for (int i = 0; i < kLines; ++i) output::Print("line %d\n", i);
            },
            flags);
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
