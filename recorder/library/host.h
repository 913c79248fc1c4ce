// The host's own entry points, behind those that the library puts in their places.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "generated/recorder/library/entries.h"

namespace kestrail::recorder {

/// One of our entries, and what it stands for.
struct SEntry {
    const char* name;
    void* ours;
    /// A trace has a place for it, and the player plays it.
    bool held;
};

/// All entries, ascending by name; at an entry's identifier.
extern const SEntry kEntries[kEntryCount];
/// -1 for a name that isn't one of ours.
int FindEntry(const char* name);

/// The published extensions all of whose entries are held, ascending.
extern const std::string_view kHeldExtensions[];
extern const std::size_t kHeldExtensionCount;

/// Which library an entry is wanted from. Those of ES2 and ES1 have names in common.
enum ELibrary : std::uint8_t { kEs2Library, kEs1Library, kEglLibrary, kLibraries };

/// Keeps the library that the application has opened itself, and looks entries up in.
void KeepLibrary(ELibrary library, void* handle);
/// The library that goes by this file name; kLibraries for any other.
ELibrary LibraryOf(const char* path);

/// What dlsym would give without us. RTLD_NEXT is what comes behind the caller, so whoever stands
/// for dlsym has to jump here.
void* PlainLookUp(void* handle, const char* name) noexcept;

/// Whether the process has an entry of that name without us.
bool IsLoaded(const char* name);

/// Found at the first call. For an entry that the machine lacks it is one that does nothing and
/// gives 0.
void* FindHostEntry(int entry, ELibrary library);
/// Has the entry be that one, which eglGetProcAddress gave.
void GiveHostEntry(int entry, void* address);

inline void* g_hostEntries[2][kEntryCount];

/// The host's entry for the API that is current.
template <typename Function>
Function HostEntry(int entry, ELibrary library) {
    void* found = g_hostEntries[library == kEs1Library][entry];
    if (found == nullptr) [[unlikely]]
        found = FindHostEntry(entry, library);
    return reinterpret_cast<Function>(found);
}

}  // namespace kestrail::recorder
