#include "host/es2_host.h"

#include "base/output.h"
#include "host/host_config.h"

namespace kestrail {

constinit TraceScopedPtr<SEs2Host> SEs2Host::s_instance;

SEs2Host::SEs2Host()
    : SHostLib(GetHostConfig()->Es2LibraryPath),
      SEs2Entries{},
      SExtensionEntries{},
      SOptionalEntries{} {
    SEs2Entries* entries = this;
    ResolveEntries(entries, kEs2Entries);
    if (failed) {
        UnloadEntries(entries, kEs2Entries);
        output::Message(
            "Kestrail ES2 - ERROR: failed to load entry points from host library\n"
            "Please check library paths in kestrail.cfg\n");
    }
    optional = true;
    ResolveEntries(static_cast<SOptionalEntries*>(this), kOptionalEntries);
    optional = false;
    // Kept: so nobody is told of a lack a second time; drivers may lack what no call needs.
    failed = false;
}

SEs2Host* SEs2Host::Create() {
    s_instance.Reset(std::make_unique<SEs2Host>());
    if (s_instance->Failed()) {
        output::Message(
            "Could not load Host library OGLES2. Please check library paths in kestrail.cfg");
        es2Available = false;
    }
    return s_instance.Get();
}

}  // namespace kestrail
