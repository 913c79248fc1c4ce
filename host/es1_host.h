// The platform's OpenGL ES 1.1 library as a table of entry points.
#pragma once

#include "generated/host/es1_entries.h"
#include "host/extension_entries.h"
#include "host/host_lib.h"

namespace kestrail {

/// False once an OpenGL ES 1.1 library turned out to be incomplete.
inline bool es1Available = true;

struct SEs1Host final : SHostLib, SEs1Entries, SExtensionEntries, SOptionalEntries {
    /// Opens the configured library. Throws CHostLibException without one. An entry point that is
    /// missing is reported, and throws the same when called.
    SEs1Host();

    /// The table of the process, made on first use.
    static SEs1Host* Instance() { return s_instance != nullptr ? s_instance : Create(); }

private:
    static SEs1Host* Create();

    static SEs1Host* s_instance;
};

inline SEs1Host* GetEs1Host() {
    return SEs1Host::Instance();
}

}  // namespace kestrail
