// Runs the built player on a trace against a folder of stand-in host libraries, and keeps what came
// out: text, exit status, and the host's log of calls.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/support/trace_builder.h"

namespace kestrail {

/// A folder of its own under the temporary directory, removed with all that is in it.
class CTempFolder {
public:
    CTempFolder();
    ~CTempFolder();
    CTempFolder(const CTempFolder&) = delete;
    CTempFolder& operator=(const CTempFolder&) = delete;

    const std::string& Path() const { return m_path; }
    std::string File(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

struct SRunOptions {
    /// recording, lacking, lackingegl or idle; empty where the environment names the folder.
    std::string host = "recording";
    /// Lines of the host's script.
    std::string script;
    /// Extra environment, NAME=value.
    std::vector<std::string> environment;
    int timeoutSeconds = 20;
    /// A limit on the address space in MiB, 0 for none; sanitizer builds leave it off.
    unsigned memoryLimit = 2048;
    /// Watches the program's peak memory, at the cost of a look at it every millisecond.
    bool measureMemory = false;
    /// Where the program starts; its own folder otherwise.
    std::string folder;
};

struct SRunResult {
    bool timedOut = false;
    int signal = 0;
    int status = -1;
    /// Of the last look before the end; 0 unless asked for.
    long maxResidentKilobytes = 0;
    std::string out;
    std::string err;
    /// The host's calls, one line each, in order.
    std::vector<std::string> calls;
    /// Objects left at exit by kind.
    std::map<std::string, int> live;

    bool Ok() const { return !timedOut && signal == 0 && status == 0; }
    /// The printed lines without their ends.
    std::vector<std::string> Lines() const;
    /// Lines other than those of the calls ("Frame(P)") and of the loading.
    std::vector<std::string> Messages() const;
    /// The "Frame(P)" lines.
    std::vector<std::string> CallLines() const;
    /// Host calls from the end of the start-up on, without the checks by glGetError and
    /// eglGetError.
    std::vector<std::string> GlCalls() const;
    bool Printed(const std::string& text) const { return out.find(text) != std::string::npos; }
    std::string Ending() const;
};

/// Runs the player with these arguments.
SRunResult RunProgram(const std::vector<std::string>& arguments, const SRunOptions& options = {});
/// Writes the trace to a file and runs the player on it with further arguments behind.
SRunResult RunTrace(const CTraceBuilder& trace, const std::vector<std::string>& arguments = {},
                    const SRunOptions& options = {});

/// True for a build whose sanitizer reserves address space of its own.
bool IsSanitized();

}  // namespace kestrail
