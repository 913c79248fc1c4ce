// The platform's OpenGL ES 3.0 library as a table of entry points: those of ES 2.0 first.
#pragma once

#include "generated/host/es3_entries.h"
#include "host/host_lib.h"
#include "host/trace_scoped_ptr.h"

namespace kestrail {

struct SEs3Host final : SHostLib, SEs3Entries {
    /// Opens the library configured for ES 2.0, which holds ES 3.0 too. Throws CHostLibException
    /// without one. An entry point that is missing is reported, and throws the same when called.
    SEs3Host();

    /// The table of the process, made on first use. Ends the process when it is incomplete.
    static SEs3Host* Instance() { return Exists() ? s_instance.Get() : Create(); }
    static bool Exists() { return static_cast<bool>(s_instance); }

private:
    static SEs3Host* Create();

    static TraceScopedPtr<SEs3Host> s_instance;
};

inline SEs3Host* GetEs3Host() {
    return SEs3Host::Instance();
}
/// Whether the table was made; does not make it.
inline bool HasEs3Host() {
    return SEs3Host::Exists();
}

}  // namespace kestrail
