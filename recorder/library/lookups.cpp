// Applications that don't link with the host's libraries look their entries up: those of ours are
// handed out in their place.
#include <dlfcn.h>
#include <link.h>

#include <cstring>

#include "recorder/library/host.h"
#include "recorder/library/recorder.h"

namespace kestrail::recorder {
namespace {

/// The library behind the handle, as far as it is one that we stand for.
ELibrary LibraryBehind(void* handle) {
    if (handle == nullptr || handle == RTLD_NEXT) return kLibraries;
    link_map* map = nullptr;
    if (dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0 || map == nullptr) return kLibraries;
    return LibraryOf(map->l_name);
}

/// Our entry for a name looked up in that library; null for any other.
void* TakeOver(void* handle, const char* name) {
    const bool ours = std::strncmp(name, "gl", 2) == 0 || std::strncmp(name, "egl", 3) == 0;
    if (!ours || !CRecorder::Instance().Wanted()) return nullptr;
    const ELibrary library = LibraryBehind(handle);
    if (library == kLibraries) return nullptr;
    const int entry = FindEntry(name);
    if (entry < 0 || PlainLookUp(handle, name) == nullptr) return nullptr;
    KeepLibrary(library, handle);
    return kEntries[entry].ours;
}

[[gnu::constructor]] void Load() {
    CRecorder::Instance().Start();
}

}  // namespace
}  // namespace kestrail::recorder

extern "C" [[gnu::visibility("default")]] void* dlsym(void* handle, const char* name) noexcept {
    using namespace kestrail::recorder;
    if (void* const ours = TakeOver(handle, name)) return ours;
    return PlainLookUp(handle, name);
}
