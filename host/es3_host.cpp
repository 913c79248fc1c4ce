#include "host/es3_host.h"

#include <cstdlib>

#include "base/output.h"
#include "host/host_config.h"

namespace kestrail {

constinit TraceScopedPtr<SEs3Host> SEs3Host::s_instance;

SEs3Host::SEs3Host() : SHostLib(GetHostConfig()->Es2LibraryPath), SEs3Entries{} {
    SEs3Entries* entries = this;
    ResolveEntries(entries, kEs3Entries);
    if (!failed) return;
    // Kept: ES2 is named for ES3 too, as its library is; readers match it.
    output::Message(
        "Kestrail ES2 - ERROR: failed to load entry points from host library\n"
        "Please check library paths in kestrail.cfg\n");
    UnloadEntries(entries, kEs3Entries);
}

SEs3Host* SEs3Host::Create() {
    s_instance.Reset(std::make_unique<SEs3Host>());
    // Kept: ends the process, where other libraries' lacks don't; scripts see the status.
    if (s_instance->Failed()) std::exit(-1);
    return s_instance.Get();
}

}  // namespace kestrail
