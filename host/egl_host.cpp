#include "host/egl_host.h"

#include "base/output.h"
#include "host/host_config.h"

namespace kestrail {

SEglHost* SEglHost::s_instance = nullptr;

SEglHost::SEglHost() : SHostLib(GetHostConfig()->EglLibraryPath), SEglEntries{} {
    SEglEntries* entries = this;
    ResolveEntries(entries, kEglEntries);
    if (!failed) return;
    UnloadEntries(entries, kEglEntries);
    output::Message(
        "Kestrail EGL - ERROR: failed to load entry points from host library\n"
        "Please check library paths in kestrail.cfg\n");
    // Kept: goes on all the same; readers match it, and drivers may lack what no call needs.
    output::Message("\nKestrail - aborting\n");
}

SEglHost* SEglHost::Create() {
    return s_instance = new SEglHost;
}

}  // namespace kestrail
