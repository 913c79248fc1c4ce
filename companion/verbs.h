// The verbs of the command `kestrail`, a file each.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace kestrail {

/// A verb's arguments, without the command's name and the verb.
using Arguments = std::vector<std::string>;

/// Runs a program and records what it asks of EGL and OpenGL ES.
int RunRecord(Arguments arguments);

/// Renders frames of a trace, each as it was when it was recorded.
int RunFrames(Arguments arguments);

/// Cuts frames out of a trace.
int RunTrim(Arguments arguments);

struct SVerb {
    const char* name;
    const char* summary;
    int (*run)(Arguments arguments);
};

std::span<const SVerb> Verbs();

}  // namespace kestrail
