// The platform's EGL library as a table of entry points.
#pragma once

#include <EGL/egl.h>

#include <array>

#include "generated/host/egl_entries.h"
#include "host/host_lib.h"

namespace kestrail {

struct SEglHost final : SHostLib, SEglEntries {
    /// Opens the configured library. Throws CHostLibException without one. An entry point that is
    /// missing is reported, and throws the same when called.
    SEglHost();

    /// The table of the process, made on first use.
    static SEglHost* Instance() { return s_instance != nullptr ? s_instance : Create(); }

    /// Room for entry points of EGL extensions, null.
    std::array<EntryAddress, 9> extensions{};

private:
    static SEglHost* Create();

    static SEglHost* s_instance;
};

inline SEglHost* GetEglHost() {
    return SEglHost::Instance();
}

}  // namespace kestrail
