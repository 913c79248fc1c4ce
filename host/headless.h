// A host without a window system: the platform's EGL, with pbuffers in the places of windows.
#pragma once

#include "host/hosts.h"
#include "host/os_environment.h"

namespace kestrail {

/// Whether there is a window system to draw on, as far as the process's environment tells.
bool HasDisplay();

/// The platform's table of EGL with a display that has no windows; what is asked of windows there
/// is asked of pbuffers. One for the process. Throws CHostLibException without the library.
SEglHost& HostWithoutWindows();

/// Has windows of an environment be nothing but sizes, as that host takes them.
void GiveNoWindows(COsEnvironment& environment);

}  // namespace kestrail
