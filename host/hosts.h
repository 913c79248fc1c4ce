// The host: the entry points of EGL and of OpenGL ES 1.1, 2.0 and 3.0.
#pragma once

#include <array>

#include "generated/host/egl_entries.h"
#include "generated/host/es1_entries.h"
#include "generated/host/es2_entries.h"
#include "generated/host/es3_entries.h"
#include "host/extension_entries.h"

namespace kestrail {

struct SEglHost : SEglEntries {
    /// Room for entry points of EGL extensions, null.
    std::array<EntryAddress, 9> extensions;
};
struct SEs1Host : SEs1Entries, SExtensionEntries, SOptionalEntries {};
struct SEs2Host : SEs2Entries, SExtensionEntries, SOptionalEntries {};
/// Those of ES 2.0 first.
struct SEs3Host : SEs3Entries {};

/// The tables of the platform's libraries, one of each for the process, filled on first use; the
/// libraries stay open until the process ends. Throw CHostLibException without the library. An
/// entry point that it lacks is reported, and throws the same when called; an ES 3.0 library that
/// lacks one ends the process.
SEglHost* GetEglHost();
SEs1Host* GetEs1Host();
SEs2Host* GetEs2Host();
SEs3Host* GetEs3Host();
/// Whether the table was made; do not make it.
bool HasEs2Host();
bool HasEs3Host();
/// False once the library turned out to be incomplete.
inline bool es1Available = true;
inline bool es2Available = true;

/// The tables of a session.
class CHosts {
public:
    /// The platform's, each from when it is first needed.
    CHosts() = default;
    /// The platform's but for EGL, whose table someone else has filled, not owned.
    explicit CHosts(SEglHost& egl) : m_egl(&egl) {}
    /// Tables that someone else has filled, not owned.
    CHosts(SEglHost& egl, SEs1Host& es1, SEs2Host& es2, SEs3Host& es3)
        : m_egl(&egl), m_es1(&es1), m_es2(&es2), m_es3(&es3) {}

    SEglHost& Egl() { return *(m_egl != nullptr ? m_egl : m_egl = GetEglHost()); }
    SEs1Host& Es1() { return *(m_es1 != nullptr ? m_es1 : m_es1 = GetEs1Host()); }
    SEs2Host& Es2() { return *(m_es2 != nullptr ? m_es2 : m_es2 = GetEs2Host()); }
    SEs3Host& Es3() { return *(m_es3 != nullptr ? m_es3 : m_es3 = GetEs3Host()); }

private:
    SEglHost* m_egl = nullptr;
    SEs1Host* m_es1 = nullptr;
    SEs2Host* m_es2 = nullptr;
    SEs3Host* m_es3 = nullptr;
};

}  // namespace kestrail
