#include "host/es1_host.h"

#include "base/output.h"
#include "host/host_config.h"

namespace kestrail {

SEs1Host* SEs1Host::s_instance = nullptr;

SEs1Host::SEs1Host()
    : SHostLib(GetHostConfig()->Es1LibraryPath),
      SEs1Entries{},
      SExtensionEntries{},
      SOptionalEntries{} {
    SEs1Entries* entries = this;
    ResolveEntries(entries, kEs1Entries);
    optional = true;
    ResolveEntries(static_cast<SOptionalEntries*>(this), kOptionalEntries);
    optional = false;
    if (!failed) return;
    UnloadEntries(entries, kEs1Entries);
    static_cast<SOptionalEntries&>(*this) = {};
    output::Message(
        "Kestrail ES1 - ERROR: failed to load entry points from host library\n"
        "Please check library paths in kestrail.cfg\n");
}

SEs1Host* SEs1Host::Create() {
    s_instance = new SEs1Host;
    // Kept: told in a sentence run together, and used all the same; readers match it.
    if (s_instance->Failed()) {
        output::Message(
            "Could not load Host library OGLES1. Please check library paths in kestrail.cfg if you "
            "are not using Extensions.Ignored..");
        es1Available = false;
    }
    return s_instance;
}

}  // namespace kestrail
