#include "recorder/library/host.h"

#include <dlfcn.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <iterator>

namespace kestrail::recorder {
namespace {

/// As systems install them, and what their names begin with, the second as on QNX.
constexpr const char* kFiles[kLibraries] = {"libGLESv2.so.2", "libGLESv1_CM.so.1", "libEGL.so.1"};
constexpr const char* kStems[kLibraries][2] = {
    {"libGLESv2.so", "libGLESv2.so"},
    {"libGLESv1_CM.so", "libGLES_CM.so"},
    {"libEGL.so", "libEGL.so"},
};

std::atomic<void*> g_libraries[kLibraries];

/// dlopen of the C library itself: tools that stand before it give themselves for the host.
void* Open(const char* file, int flags) {
    static const auto s_open = [] {
        void* const library = dlopen("libc.so.6", RTLD_LAZY | RTLD_NOLOAD);
        void* const found = library != nullptr ? PlainLookUp(library, "dlopen") : nullptr;
        return found != nullptr ? reinterpret_cast<decltype(&dlopen)>(found) : &dlopen;
    }();
    return s_open(file, flags);
}

void* Library(ELibrary library) {
    void* handle = g_libraries[library].load();
    if (handle == nullptr) handle = Open(kFiles[library], RTLD_LAZY | RTLD_LOCAL);
    g_libraries[library].store(handle);
    return handle;
}

/// Stands for an entry that the machine lacks: does nothing.
std::uintptr_t Nothing() {
    return 0;
}

using LookUp = void* (*)(void*, const char*) noexcept;

/// The one of the C library, under one of the versions that it has had.
LookUp FindLookUp() {
    for (const char* version : {"GLIBC_2.34", "GLIBC_2.2.5", "GLIBC_2.17", "GLIBC_2.0"}) {
        if (void* found = dlvsym(RTLD_NEXT, "dlsym", version)) {
            return reinterpret_cast<LookUp>(found);
        }
    }
    return nullptr;
}

}  // namespace

int FindEntry(const char* name) {
    const SEntry* const end = kEntries + kEntryCount;
    const SEntry* const found =
        std::lower_bound(kEntries, end, name, [](const SEntry& entry, const char* wanted) {
            return std::strcmp(entry.name, wanted) < 0;
        });
    return found != end && std::strcmp(found->name, name) == 0 ? static_cast<int>(found - kEntries)
                                                               : -1;
}

void KeepLibrary(ELibrary library, void* handle) {
    void* none = nullptr;
    g_libraries[library].compare_exchange_strong(none, handle);
}

ELibrary LibraryOf(const char* path) {
    const char* const slash = std::strrchr(path, '/');
    const char* const file = slash != nullptr ? slash + 1 : path;
    for (int library = 0; library < kLibraries; ++library) {
        for (const char* stem : kStems[library]) {
            if (std::strncmp(file, stem, std::strlen(stem)) == 0) {
                return static_cast<ELibrary>(library);
            }
        }
    }
    return kLibraries;
}

void* PlainLookUp(void* handle, const char* name) noexcept {
    static const LookUp s_lookUp = FindLookUp();
    return s_lookUp(handle, name);
}

bool IsLoaded(const char* name) {
    if (PlainLookUp(RTLD_NEXT, name) != nullptr) return true;
    for (const char* const file : kFiles) {
        void* const handle = Open(file, RTLD_LAZY | RTLD_NOLOAD);
        if (handle == nullptr) continue;
        const bool has = PlainLookUp(handle, name) != nullptr;
        dlclose(handle);
        if (has) return true;
    }
    return false;
}

void* FindHostEntry(int entry, ELibrary library) {
    const char* const name = kEntries[entry].name;
    // The application's own library comes first, then whatever it is linked with, which is behind
    // us, then the machine's. An entry of the other API, which drivers take as well, stands
    // elsewhere.
    const ELibrary other = library == kEs1Library ? kEs2Library : kEs1Library;
    void* found = nullptr;
    if (g_libraries[library].load() != nullptr) found = PlainLookUp(Library(library), name);
    if (found == nullptr) found = PlainLookUp(RTLD_NEXT, name);
    for (const ELibrary wanted : {library, other}) {
        void* const handle = found == nullptr ? Library(wanted) : nullptr;
        if (handle != nullptr) found = PlainLookUp(handle, name);
    }
    if (found == nullptr && Library(kEglLibrary) != nullptr) {
        using Procedure = void (*)();
        using Find = Procedure (*)(const char*);
        const auto find =
            reinterpret_cast<Find>(PlainLookUp(Library(kEglLibrary), "eglGetProcAddress"));
        if (find != nullptr) found = reinterpret_cast<void*>(find(name));
    }
    if (found == nullptr) found = reinterpret_cast<void*>(&Nothing);
    g_hostEntries[library == kEs1Library][entry] = found;
    return found;
}

void GiveHostEntry(int entry, void* address) {
    for (auto& table : g_hostEntries) {
        if (table[entry] == nullptr) table[entry] = address;
    }
}

}  // namespace kestrail::recorder
