// What calls are played and states are set with: the host, and what it calls the objects of the
// recording. Any number of sessions can stand side by side, each for one thread at a time.
#pragma once

#include "base/output.h"
#include "exec/egl_names.h"
#include "exec/es1_names.h"
#include "exec/es2_names.h"
#include "host/hosts.h"
#include "host/os_environment.h"

namespace kestrail {

struct SSession {
    CHosts hosts;
    Diagnostics& diagnostics = output::Printed();  ///< whom to tell
    COsEnvironment environment;
    CEglNames eglNames;
    CEs1Names es1Names;
    CEs2Names es2Names;
};

}  // namespace kestrail
