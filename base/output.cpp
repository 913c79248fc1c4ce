#include "base/output.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace kestrail::output {
namespace {

constexpr std::size_t kFlushAt = 64 * 1024;
constexpr int kEndingSignals[] = {SIGSEGV, SIGBUS, SIGFPE,  SIGILL,  SIGABRT, SIGTERM,
                                  SIGINT,  SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU, SIGSYS};

/// Never destroyed: text may be printed by what runs at process exit.
TextWriter& g_pending = *new TextWriter;
std::terminate_handler g_terminate = nullptr;

/// Only write(2), so that it can run in a signal handler.
void WriteAll(const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(STDOUT_FILENO, data, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        data += written;
        size -= static_cast<std::size_t>(written);
    }
}

void FlushAtSignal(int signal) {
    WriteAll(g_pending.Data(), g_pending.Size());
    // The default action is back in place, so this ends the process as the signal would have.
    ::raise(signal);
}

void FlushAtTerminate() {
    Flush();
    if (g_terminate != nullptr) g_terminate();
    std::abort();
}

void InstallHandler(int signal) {
    struct sigaction action = {};
    struct sigaction previous = {};
    if (::sigaction(signal, nullptr, &previous) != 0 || previous.sa_handler == SIG_IGN) return;
    action.sa_handler = FlushAtSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_ONSTACK | SA_NODEFER);
    ::sigaction(signal, &action, nullptr);
}

/// "prefix" + text + "\n".
void PrefixedLine(const char* prefix, const char* format, std::va_list arguments) {
    g_pending.Append(prefix);
    g_pending.AppendFormatV(format, arguments);
    g_pending.Append('\n');
    LineDone();
}

}  // namespace

void FlushOnAnyExit() {
    std::atexit(Flush);
    g_terminate = std::set_terminate(FlushAtTerminate);
    // A stack of its own, for the handler of a stack overflow.
    static char alternateStack[64 * 1024];
    stack_t stack = {};
    stack.ss_sp = alternateStack;
    stack.ss_size = sizeof(alternateStack);
    ::sigaltstack(&stack, nullptr);
    for (const int signal : kEndingSignals) InstallHandler(signal);
}

void Message(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    PrefixedLine("KESTRAIL(M) ", format, arguments);
    va_end(arguments);
}

void Warning(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    PrefixedLine("KESTRAIL(W) WARNING: ", format, arguments);
    va_end(arguments);
}

void Error(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    PrefixedLine("KESTRAIL(W) ERROR: ", format, arguments);
    va_end(arguments);
}

void Print(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    g_pending.AppendFormatV(format, arguments);
    va_end(arguments);
    LineDone();
}

TextWriter& Pending() {
    return g_pending;
}

void LineDone() {
    static const bool terminal = ::isatty(STDOUT_FILENO) == 1;
    if (terminal || g_pending.Size() >= kFlushAt) Flush();
}

void Flush() {
    WriteAll(g_pending.Data(), g_pending.Size());
    g_pending.Clear();
}

void SystemError(const char* text) {
    const int error = errno;
    Flush();
    errno = error;
    std::perror(text);
}

void ErrorStreamLine(const char* text) {
    Flush();
    std::fprintf(stderr, "%s\n", text);
}

}  // namespace kestrail::output
