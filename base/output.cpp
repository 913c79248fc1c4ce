#include "base/output.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace kestrail::output {
namespace {

constexpr const char* kMessagePrefix = "KESTRAIL(M) ";
constexpr const char* kWarningPrefix = "KESTRAIL(W) WARNING: ";
constexpr const char* kErrorPrefix = "KESTRAIL(W) ERROR: ";
constexpr std::size_t kFlushAt = std::size_t{64} * 1024;
constexpr int kEndingSignals[] = {SIGSEGV, SIGBUS, SIGFPE,  SIGILL,  SIGABRT, SIGTERM,
                                  SIGINT,  SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU, SIGSYS};

/// Never destroyed: text may be printed by what runs at process exit.
TextWriter& g_pending = *new TextWriter;
/// How much of it is written: a signal that comes during a flush writes only the rest.
volatile std::size_t g_written = 0;
std::terminate_handler g_terminate = nullptr;

/// Calls nothing but write(2) and poll(2), so that it can run in a signal handler. Text that cannot
/// be written is given up.
void WritePending() {
    while (g_written < g_pending.Size()) {
        const ssize_t written =
            ::write(STDOUT_FILENO, g_pending.Data() + g_written, g_pending.Size() - g_written);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0 && errno == EAGAIN) {
            pollfd ready{STDOUT_FILENO, POLLOUT, 0};
            ::poll(&ready, 1, -1);
            continue;
        }
        if (written <= 0) return;
        g_written = g_written + static_cast<std::size_t>(written);
    }
}

void FlushAtSignal(int signal) {
    WritePending();
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

class CPrinted : public Diagnostics {
    void OnTold(EDiagnostic kind, const char* format, std::va_list arguments) override {
        switch (kind) {
            case EDiagnostic::kMessage:
                return PrefixedLine(kMessagePrefix, format, arguments);
            case EDiagnostic::kWarning:
                return PrefixedLine(kWarningPrefix, format, arguments);
            case EDiagnostic::kError:
                return PrefixedLine(kErrorPrefix, format, arguments);
            case EDiagnostic::kText:
                g_pending.AppendFormatV(format, arguments);
                return LineDone();
            case EDiagnostic::kErrorStream:
                TextWriter text;
                text.AppendFormatV(format, arguments);
                text.Append('\0');
                return ErrorStreamLine(text.Data());
        }
    }
};

}  // namespace

void FlushOnAnyExit() {
    // Whatever the program opens would take the number of a stream that is closed, and the text.
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (::fcntl(stream, F_GETFD) == -1) ::open("/dev/null", O_RDWR);
    }
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
    PrefixedLine(kMessagePrefix, format, arguments);
    va_end(arguments);
}

void Warning(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    PrefixedLine(kWarningPrefix, format, arguments);
    va_end(arguments);
}

void Error(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    PrefixedLine(kErrorPrefix, format, arguments);
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
    WritePending();
    g_pending.Clear();
    std::atomic_signal_fence(std::memory_order_seq_cst);
    g_written = 0;
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

Diagnostics& Printed() {
    static CPrinted printed;
    return printed;
}

}  // namespace kestrail::output
