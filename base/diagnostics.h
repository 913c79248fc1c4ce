// Whom those tell who find something while a trace is read or played.
#pragma once

#include <cstdarg>

namespace kestrail {

enum class EDiagnostic {
    kMessage,
    kWarning,
    kError,
    kText,         ///< with a line end of its own
    kErrorStream,  ///< a line that goes apart from the others
};

class Diagnostics {
public:
    virtual ~Diagnostics() = default;

    void Tell(EDiagnostic kind, const char* format, ...) __attribute__((format(printf, 3, 4))) {
        std::va_list arguments;
        va_start(arguments, format);
        OnTold(kind, format, arguments);
        va_end(arguments);
    }

    void Message(const char* format, ...) __attribute__((format(printf, 2, 3))) {
        std::va_list arguments;
        va_start(arguments, format);
        OnTold(EDiagnostic::kMessage, format, arguments);
        va_end(arguments);
    }

protected:
    virtual void OnTold(EDiagnostic kind, const char* format, std::va_list arguments) = 0;
};

}  // namespace kestrail
