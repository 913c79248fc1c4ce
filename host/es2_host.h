// The platform's OpenGL ES 2.0 library as a table of entry points.
#pragma once

#include "generated/host/es2_entries.h"
#include "host/extension_entries.h"
#include "host/host_lib.h"
#include "host/trace_scoped_ptr.h"

namespace kestrail {

/// False once no OpenGL ES 2.0 library could be used.
inline bool es2Available = true;

struct SEs2Host final : SHostLib, SEs2Entries, SExtensionEntries, SOptionalEntries {
    /// Opens the configured library. Throws CHostLibException without one. An entry point that is
    /// missing is reported, and throws the same when called; the table itself never counts as
    /// failed.
    SEs2Host();

    /// The table of the process, made on first use.
    static SEs2Host* Instance() { return Exists() ? s_instance.Get() : Create(); }
    static bool Exists() { return static_cast<bool>(s_instance); }

private:
    static SEs2Host* Create();

    static TraceScopedPtr<SEs2Host> s_instance;
};

inline SEs2Host* GetEs2Host() {
    return SEs2Host::Instance();
}
/// Whether the table was made; does not make it.
inline bool HasEs2Host() {
    return SEs2Host::Exists();
}

}  // namespace kestrail
