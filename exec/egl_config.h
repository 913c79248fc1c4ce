// Finds a configuration of the host for a recorded one, by the attributes that the recorded one
// had: all of them, then fewer and weaker ones, then any configuration at all.
#pragma once

#include <cstdint>

#include "exec/session.h"

namespace kestrail {

/// The live configuration; a null one for a null or empty list. The answer is kept for the display
/// and the recorded configuration. `attributes` is a list ended by EGL_NONE. Throws the text
/// "Impossible to create a proper EGL Context" when the host has no configuration.
EGLConfig FindEglConfig(SSession& session, EGLDisplay display, std::int64_t recordedConfig,
                        const EGLint* attributes);

/// Prints all attributes of a configuration.
void DumpEglConfig(SSession& session, EGLConfig config, EGLDisplay display);

}  // namespace kestrail
