// A library of the platform, opened at run time, and the finding of its entry points. The program
// links to no graphics library: every played call goes through a table that was filled here.
#pragma once

#include <span>

#include "base/kstl_string.h"
#include "host/entry_table.h"

namespace kestrail {

class CHostLibException {
public:
    /// The library cannot be used: it was not found, or it lacks the entry point that was called.
    static constexpr int kLoadFailed = 1;

    explicit CHostLibException(int why) : reason(why) {}

    int reason;
};

class SHostLib {
public:
    /// Opens the library. A name is tried as it stands and in the working directory, then both
    /// again without its last character. Throws CHostLibException when none of these opens.
    explicit SHostLib(const CKSTLString& path);
    virtual ~SHostLib();
    SHostLib(const SHostLib&) = delete;
    SHostLib& operator=(const SHostLib&) = delete;

    /// The address of a symbol, or null; a missing one is reported and counts as a failure, unless
    /// it is optional.
    void* GetProcAddress(const char* name);
    bool Failed() const { return failed; }
    /// Closes the library, if it is open.
    void Unload();

protected:
    /// Fills the record `entries`. What the library lacks becomes an entry that throws
    /// CHostLibException; while `optional`, a null pointer.
    void ResolveEntries(void* entries, std::span<const SEntryPlace> places);
    /// Unloads, and lets those entries throw whose code has gone with the library. Code that
    /// something else keeps loaded stays callable.
    void UnloadEntries(void* entries, std::span<const SEntryPlace> places);

    void* handle = nullptr;
    bool failed = false;
    bool optional = false;
};

}  // namespace kestrail
