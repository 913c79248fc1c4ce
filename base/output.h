// All text that the program prints on standard output goes through here, buffered. The lines
// printed before the process ends are never lost, however it ends: the last line on standard output
// names the call that a driver fault happened in.
#pragma once

#include <cstdarg>

#include "base/diagnostics.h"
#include "base/text_writer.h"

namespace kestrail::output {

/// Arranges that pending text is written when the process exits, when an exception is not caught
/// and when a signal ends the process. Called once, at the start of `main`.
void FlushOnAnyExit();

/// "KESTRAIL(M) %s\n" around the formatted text.
void Message(const char* format, ...) __attribute__((format(printf, 1, 2)));
/// "KESTRAIL(W) WARNING: %s\n" around the formatted text.
void Warning(const char* format, ...) __attribute__((format(printf, 1, 2)));
/// "KESTRAIL(W) ERROR: %s\n" around the formatted text.
void Error(const char* format, ...) __attribute__((format(printf, 1, 2)));
/// The formatted text alone, without prefix or line end.
void Print(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The pending text itself, for a caller that builds a line in place. Every such line is closed
/// with `LineDone`.
TextWriter& Pending();
/// Writes the pending text out when there is enough of it, or at once on a terminal.
void LineDone();
/// Writes all pending text to standard output.
void Flush();
/// Flushes, then `perror(text)`: keeps the two streams in the order of their events.
void SystemError(const char* text);
/// Flushes, then the text with a line end on standard error.
void ErrorStreamLine(const char* text);
/// Diagnostics that are printed as all of these are.
Diagnostics& Printed();

}  // namespace kestrail::output
